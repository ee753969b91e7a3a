// What a font file says of its faces: TrueType, OpenType, their collections, Type 1 and variable
// fonts. Bounded in memory and time whatever the file holds: 256 MB, 1,024 faces, 1,024 named
// instances; no glyph is ever loaded.
//
// Threads: one reader belongs to one thread.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace Nodrix {

struct FaceInfo {
  std::string postScriptName;
  std::string family;
  std::string style;
  std::string kind;
  std::optional<std::string> foundry;
  std::string version;
  std::int32_t faceIndex = 0;  // named instance in bits 16 and up
};

struct FontFileInfo {
  bool isFontFile = false;  // by its first bytes, or by its name
  // Those with a PostScript name. Characters that none may hold are left out of it.
  std::vector<FaceInfo> faces;
  std::string error;  // why there is no face; empty if there is one
};

class FontFileReader {
 public:
  FontFileReader();
  ~FontFileReader();
  FontFileReader(const FontFileReader&) = delete;
  FontFileReader& operator=(const FontFileReader&) = delete;

  FontFileInfo Read(const std::string& path);

 private:
  struct Library;
  std::unique_ptr<Library> mLibrary;
};

// Do these first bytes (at least 40 of a longer file) begin a font file that can be activated? Web
// fonts are none.
bool BeginsLikeFont(const std::vector<std::uint8_t>& head);
// Does the name end like a font file's?
bool IsNamedLikeFont(const std::string& path);
// The first number of a version text: "Version 2.137;hinted" gives "2.137". Empty without one.
std::string VersionDigits(const std::string& text);

}  // namespace Nodrix
