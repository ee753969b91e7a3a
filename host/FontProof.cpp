#include "host/FontProof.h"

#include <fontconfig/fontconfig.h>

struct FontProof::Config {
  FcConfig* config = FcInitLoadConfigAndFonts();
  Config() = default;
  Config(const Config&) = delete;
  Config& operator=(const Config&) = delete;
  ~Config() {
    if (config) FcConfigDestroy(config);
  }
};

FontProof::FontProof() : mConfig(std::make_unique<Config>()) {}

FontProof::~FontProof() = default;

std::string FontProof::FileFor(const std::string& postScriptName) const {
  FcPattern* pattern = FcPatternCreate();
  FcPatternAddString(pattern, FC_POSTSCRIPT_NAME,
                     reinterpret_cast<const FcChar8*>(postScriptName.c_str()));
  FcConfigSubstitute(mConfig->config, pattern, FcMatchPattern);
  FcDefaultSubstitute(pattern);
  FcResult result = FcResultNoMatch;
  FcPattern* match = FcFontMatch(mConfig->config, pattern, &result);
  FcPatternDestroy(pattern);
  std::string file;
  if (match) {
    FcChar8* name = nullptr;
    FcChar8* path = nullptr;
    if (FcPatternGetString(match, FC_POSTSCRIPT_NAME, 0, &name) == FcResultMatch &&
        postScriptName == reinterpret_cast<const char*>(name) &&
        FcPatternGetString(match, FC_FILE, 0, &path) == FcResultMatch) {
      file = reinterpret_cast<const char*>(path);
    }
    FcPatternDestroy(match);
  }
  return file;
}
