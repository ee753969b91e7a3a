#include "platform/linux/FontconfigFontLookup.h"

#include <fontconfig/fontconfig.h>
#include <sys/stat.h>

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <set>

namespace {

constexpr std::int64_t kSecond = 1'000'000'000;  // nanoseconds
// File systems stamp with the kernel's clock tick, 10 ms at the coarsest; one that keeps no
// fraction counts in steps of two seconds at most.
constexpr std::int64_t kClockTick = 10'000'000;

struct DestroyConfig {
  void operator()(FcConfig* config) const { FcConfigDestroy(config); }
};
using ConfigOwner = std::unique_ptr<FcConfig, DestroyConfig>;

timespec ModificationTime(const std::string& path) {
  struct stat info {};
  return stat(path.c_str(), &info) == 0 ? info.st_mtim : timespec{};
}

bool IsSameTime(const timespec& a, const timespec& b) {
  return a.tv_sec == b.tv_sec && a.tv_nsec == b.tv_nsec;
}

std::int64_t Nanoseconds(const timespec& time) {
  return std::int64_t{time.tv_sec} * kSecond + time.tv_nsec;
}

// Could a change after the listing began carry this very time? A time in the future comes from
// another machine's clock or from somebody's hand.
bool IsUnsettled(const timespec& modified, const timespec& started, const timespec& ended) {
  const std::int64_t time = Nanoseconds(modified);
  const std::int64_t tick = modified.tv_nsec == 0 ? 2 * kSecond : kClockTick;
  return time >= Nanoseconds(started) - tick && time <= Nanoseconds(ended) + kSecond;
}

timespec Now() {
  timespec now{};
  clock_gettime(CLOCK_REALTIME, &now);
  return now;
}

void AddWithParent(std::set<std::string>& paths, const std::filesystem::path& path) {
  paths.insert(path.string());
  if (path.has_parent_path()) paths.insert(path.parent_path().string());
}

void AddAll(std::set<std::string>& paths, FcStrList* list) {
  if (list == nullptr) return;
  while (const FcChar8* entry = FcStrListNext(list)) {
    AddWithParent(paths, reinterpret_cast<const char*>(entry));
  }
  FcStrListDone(list);
}

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

}  // namespace

bool FontconfigFontLookup::IsVisible(const std::string& postScriptName) {
  if (!mBuilt || !IsUpToDate()) Rebuild();
  return mNames.contains(postScriptName);
}

bool FontconfigFontLookup::IsUpToDate() const {
  if (!mSettled) return false;
  for (const WatchedPath& watched : mWatched) {
    if (!IsSameTime(ModificationTime(watched.path), watched.modified)) return false;
  }
  return true;
}

void FontconfigFontLookup::Rebuild() {
  const timespec started = Now();
  const ConfigOwner config(FcInitLoadConfigAndFonts());
  if (!config) return;
  mNames.clear();
  CollectNames(config.get(), mNames);
  Watch(config.get());
  const timespec ended = Now();
  mSettled = std::none_of(mWatched.begin(), mWatched.end(), [&](const WatchedPath& watched) {
    return IsUnsettled(watched.modified, started, ended);
  });
  mBuilt = true;
}

void FontconfigFontLookup::Watch(_FcConfig* config) {
  std::set<std::string> paths;
  AddAll(paths, FcConfigGetFontDirs(config));
  AddAll(paths, FcConfigGetConfigFiles(config));
  mWatched.clear();
  for (const std::string& path : paths) mWatched.push_back({path, ModificationTime(path)});
}
