// The font library, read only: one connection to the agent's database, which is never blocked by
// the agent's writing (WAL). Questions are prepared point queries.
//
// Threads: one reader belongs to one thread.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace Nodrix {

inline constexpr std::uint32_t kSystemWorkgroupID = 1;    // type 4: what fontconfig lists
inline constexpr std::uint32_t kPersonalWorkgroupID = 2;  // type 3: the user's library
// Both mean every workgroup.
inline constexpr bool IsEveryWorkgroup(std::uint32_t id) { return id == 0 || id == 0xFFFFFFFFu; }

// Who turned a font on.
enum class ActivationMode : std::uint32_t { eAuto = 1, eUser = 4 };

// One face. Checksums that were not computed yet are absent, and so is an unknown foundry.
struct FontRow {
  std::uint32_t id = 0;
  std::string postScriptName;
  std::string family;  // what a person sees as one family
  std::uint32_t familyID = 0;
  std::string style;
  std::string kind;  // a value of kFP_KindKey
  std::optional<std::string> foundry;
  std::string version;  // the digits of the font's own version text
  std::optional<std::uint32_t> checksum11;
  std::optional<std::uint32_t> checksum12;
  std::optional<std::uint32_t> kerningChecksum;
  std::string path;             // bytes of the file system, not always UTF-8
  std::string outlineFileName;  // last component of the path
  std::uint64_t outlineFileSize = 0;
  std::int32_t faceIndex = 0;  // instance in bits 16 and up
  std::uint32_t workgroupID = 0;
  std::uint32_t workgroupType = 0;
  std::string workgroupName;
  bool missing = false;                  // the file has gone from disk
  std::uint32_t rawActivationState = 0;  // previews are the client library's to put in
};

struct WorkgroupRow {
  std::uint32_t id = 0;
  std::uint32_t type = 0;
  std::string name;
};

struct FolderRow {
  std::string path;
  std::uint64_t files = 0;
  std::uint64_t faces = 0;
  std::uint64_t broken = 0;  // files that are no usable font
  bool missing = false;
};

struct BrokenFileRow {
  std::string path;
  std::string error;
};

class LibraryReader {
 public:
  // Null with a reason if there is no database, or one of another schema.
  static std::unique_ptr<LibraryReader> Open(const std::string& path, std::string& error);
  ~LibraryReader();
  LibraryReader(const LibraryReader&) = delete;
  LibraryReader& operator=(const LibraryReader&) = delete;

  // PRAGMA user_version of the file; this build's is kSchemaVersion.
  int SchemaVersion() const;

  // Exactly this name, with case; IDs ascending. No workgroup, or one that means every workgroup,
  // does not restrict. Faces whose file is missing are left out.
  std::vector<std::uint32_t> FontsByPostScriptName(std::string_view name,
                                                   std::span<const std::uint32_t> workgroups);
  std::vector<std::uint32_t> FontsByFamilyName(std::string_view name,
                                               std::span<const std::uint32_t> workgroups);
  std::vector<std::uint32_t> FontsOfFamily(std::uint32_t familyID,
                                           std::span<const std::uint32_t> workgroups);
  // With the raw activation state of the same moment; without a client it says only whether the
  // face is on.
  std::optional<FontRow> FontByID(std::uint32_t id, std::int64_t clientPid = 0);
  // Raw activation state of sdk/PluginInterface.h as the client with this process ID sees it,
  // previews left out: 0, 1 (automatic, by this client), 2 (automatic, by another), 4 or 5.
  std::uint32_t RawActivationState(std::uint32_t fontID, std::int64_t clientPid);
  // A face of another font of the same PostScript name that is on; 0 for none.
  std::uint32_t ConflictingFont(std::uint32_t fontID);

  std::vector<WorkgroupRow> Workgroups();
  std::vector<FolderRow> Folders();
  std::vector<BrokenFileRow> BrokenFiles();
  // Counts of faces: all, those in the user's library, those that are on.
  struct Totals {
    std::uint64_t faces = 0, libraryFaces = 0, activeFaces = 0;
  };
  Totals CountAll();

 private:
  struct Statements;
  explicit LibraryReader(std::unique_ptr<Statements> statements);
  std::unique_ptr<Statements> mStatements;
};

inline constexpr int kSchemaVersion = 1;

}  // namespace Nodrix
