#include "platform/linux/FontconfigFontLookup.h"

#include <fontconfig/fontconfig.h>

#include <filesystem>
#include <memory>
#include <set>

namespace {

struct DestroyConfig {
  void operator()(FcConfig* config) const { FcConfigDestroy(config); }
};
using ConfigOwner = std::unique_ptr<FcConfig, DestroyConfig>;

void CollectNames(FcConfig* config, std::unordered_set<std::string>& names) {
  const FcFontSet* fonts = FcConfigGetFonts(config, FcSetSystem);
  if (fonts == nullptr) return;
  for (int i = 0; i < fonts->nfont; ++i) {
    FcChar8* name = nullptr;
    for (int n = 0;
         FcPatternGetString(fonts->fonts[i], FC_POSTSCRIPT_NAME, n, &name) == FcResultMatch; ++n) {
      names.emplace(reinterpret_cast<const char*>(name));
    }
  }
}

template <typename Add>
void ForEachPath(FcStrList* list, Add add) {
  if (list == nullptr) return;
  while (const FcChar8* path = FcStrListNext(list)) add(reinterpret_cast<const char*>(path));
  FcStrListDone(list);
}

const FcChar8* BytesOf(const std::string& path) {
  return reinterpret_cast<const FcChar8*>(path.c_str());
}

// What the configuration is made of, with the folders where a further file of it could appear.
void AddConfigurationPaths(FcConfig* config, std::set<std::string>& paths) {
  ForEachPath(FcConfigGetConfigFiles(config), [&](const char* path) {
    paths.insert(path);
    const std::filesystem::path folder = std::filesystem::path(path).parent_path();
    if (folder.extension() == ".d") paths.insert(folder.string());
  });
}

}  // namespace

bool FontconfigFontLookup::IsVisible(const std::string& postScriptName) {
  if (mWatch.HasChanged()) Rebuild();
  return mNames.contains(postScriptName);
}

// A font that was half written when a folder was read left its absence in fontconfig's cache of
// that folder, and the folder's time does not change when it is complete: such folders are read
// anew.
void FontconfigFontLookup::Rebuild() {
  const timespec started = PathWatch::Now();
  mWritten.merge(mWatch.TakeWritten());
  const ConfigOwner config(FcInitLoadConfig());
  if (!config) return;
  for (const std::string& folder : mWritten) {
    if (!mFontFolders.contains(folder)) continue;  // a part of the configuration
    FcCache* const cache = FcDirCacheRead(BytesOf(folder), FcTrue, config.get());
    if (cache != nullptr) FcDirCacheUnload(cache);
  }
  if (!FcConfigBuildFonts(config.get())) return;
  mWritten.clear();
  mNames.clear();
  CollectNames(config.get(), mNames);
  mFontFolders.clear();
  ForEachPath(FcConfigGetFontDirs(config.get()),
              [this](const char* path) { mFontFolders.insert(path); });
  std::set<std::string> paths = mFontFolders;
  AddConfigurationPaths(config.get(), paths);
  mWatch.Start(paths, started);
}
