// Fonts that are visible to this process alone: their files are application fonts of the process's
// current fontconfig configuration. Nothing takes one away again before the process ends, since
// fontconfig can only drop all of them, the host's own included.
#pragma once

#include <cstdint>
#include <set>
#include <string>

class LocalFonts {
 public:
  // Makes the file visible, unless it is, and remembers the font. False if fontconfig refuses it.
  bool Add(std::uint32_t fontID, const std::string& path);
  bool Has(std::uint32_t fontID) const { return mFonts.contains(fontID); }

 private:
  std::set<std::uint32_t> mFonts;
};
