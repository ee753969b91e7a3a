// The writing side of the font library: what the scanner found, which folders there are. The
// activations' books write through the same connection.
//
// Threads: any; each operation takes the store's lock for its own length, a batch for one
// transaction. Who needs several statements in one transaction takes Lock() first.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <span>
#include <string>
#include <unordered_map>
#include <vector>

#include "agent/FolderWalker.h"
#include "agent/FontFileReader.h"
#include "agent/library/AgentClient.h"
#include "agent/library/Database.h"

namespace Nodrix {

// A row of the table files.
struct StoredFile {
  std::int64_t id = 0;
  std::uint32_t workgroup = 0;
  std::int64_t folder = 0;  // 0 for a system font
  std::uint64_t size = 0;
  std::int64_t modifiedNs = 0;
  bool missing = false;
  bool broken = false;
};
using StoredFiles = std::unordered_map<std::string, StoredFile>;  // by path

// A file that was read, to be written.
struct ScannedFile {
  FoundFile file;
  FontFileInfo info;
};

struct StoredFolder {
  std::int64_t id = 0;
  std::string path;
};

class LibraryStore {
 public:
  // Opens, or makes, the library at this path. Null with a reason.
  static std::unique_ptr<LibraryStore> Open(const std::string& path, std::string& error);

  // For several statements in a row; recursive.
  std::unique_lock<std::recursive_mutex> Lock() { return std::unique_lock(mMutex); }
  Database& Connection() { return *mDatabase; }

  StoredFiles FilesOfWorkgroup(std::uint32_t workgroup);
  StoredFiles FilesOfFolder(std::int64_t folder);
  // Writes one batch in one transaction. A file keeps its ID, a face its own by index and name.
  // With folder 0 the files become the system's.
  bool Write(std::span<const ScannedFile> files, std::int64_t folder);
  // Marks files as gone from disk. Adds the IDs of their faces to `faces`.
  bool MarkMissing(std::span<const std::int64_t> files, std::vector<std::uint32_t>& faces);
  // Marks files that are back unchanged.
  bool MarkPresent(std::span<const std::int64_t> files);

  std::vector<StoredFolder> Folders();
  // The folder's ID, made if it is new; folders below it become part of it. 0 after a failure.
  std::int64_t AddFolder(const std::string& path);
  bool MarkFolder(std::int64_t folder, bool missing);
  // Takes the folder, its files and their faces out.
  bool RemoveFolder(std::int64_t folder);

  // Fills in files, faces and broken files of a folder as they are now.
  void CountFolder(std::int64_t folder, ScanOutcome& outcome);

  std::string Setting(const std::string& key);
  bool SetSetting(const std::string& key, const std::string& value);

 private:
  explicit LibraryStore(std::unique_ptr<Database> database) : mDatabase(std::move(database)) {}
  StoredFiles Files(Query query);
  bool WriteFile(const ScannedFile& file, std::int64_t folder);
  bool WriteFaces(std::int64_t file, std::span<const FaceInfo> faces);
  std::int64_t FamilyID(const std::string& name);

  std::recursive_mutex mMutex;
  std::unique_ptr<Database> mDatabase;
};

}  // namespace Nodrix
