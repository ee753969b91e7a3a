#include "frameworks/plugin-interface/LocalFonts.h"

#include <fontconfig/fontconfig.h>

namespace {

const FcChar8* Bytes(const std::string& text) {
  return reinterpret_cast<const FcChar8*>(text.c_str());
}

// The configuration is asked, not a list of ours: a host that builds a new one drops our files.
bool IsApplicationFont(const std::string& path) {
  const FcFontSet* fonts = FcConfigGetFonts(nullptr, FcSetApplication);
  for (int i = 0; fonts != nullptr && i < fonts->nfont; ++i) {
    FcChar8* file = nullptr;
    if (FcPatternGetString(fonts->fonts[i], FC_FILE, 0, &file) == FcResultMatch &&
        path == reinterpret_cast<const char*>(file)) {
      return true;
    }
  }
  return false;
}

}  // namespace

bool LocalFonts::Add(std::uint32_t fontID, const std::string& path) {
  if (!IsApplicationFont(path) && !FcConfigAppFontAddFile(nullptr, Bytes(path))) return false;
  mFonts.insert(fontID);
  return true;
}
