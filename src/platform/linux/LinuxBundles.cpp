#include "platform/linux/LinuxBundles.h"

#include <dlfcn.h>
#include <link.h>

#include <filesystem>
#include <vector>

#include "foundation/GFile.h"
#include "foundation/GFileSystem.h"
#include "foundation/GLogger.h"
#include "foundation/GStringUtils.h"
#include "propertylist/XmlForm.h"

namespace fs = std::filesystem;

namespace {

constexpr const char* kLogIdentifier = "Bundle";
constexpr unsigned long long kMaxPropertyListBytes = 1 << 20;

// Null if there is no such file or it holds no dictionary.
PropertyList::DictionaryRef ReadDictionary(const std::string& path) {
  if (!GFileSystem::OSDoesFileExist(path)) return nullptr;
  unsigned long long size = 0;
  if (GFileSystem::OSGetFileSize(path, size) != 0 || size > kMaxPropertyListBytes) return nullptr;
  GFile file;
  std::string text;
  if (file.Open(path, GFile::eRead | GFile::eBinary) != 0 || file.Read(text) != 0) return nullptr;
  const std::optional<PropertyList::Value> value = PropertyList::ReadXml(text);
  if (!value || value->AsDictionary() == nullptr) return nullptr;
  return PropertyList::DictionaryRef::Share(value->AsDictionary());
}

// Without links; empty if there is nothing at that path.
std::string RealPath(const std::string& path) {
  std::error_code error;
  const fs::path real = fs::canonical(path, error);
  return error ? std::string() : real.string();
}

class LinuxBundle : public Bundle {
 public:
  LinuxBundle(std::string path, PropertyList::DictionaryRef info)
      : mPath(std::move(path)), mInfo(std::move(info)) {}

  std::string Path() const override { return mPath; }
  std::string Identifier() const override { return Value("CFBundleIdentifier").value_or(""); }

  std::optional<std::string> Value(const std::string& key) const override {
    const std::string* text = mInfo->GetString(key);
    return text ? std::optional(*text) : std::nullopt;
  }

  std::string ExecutablePath() const override {
    std::string name = Value("CFBundleExecutable").value_or("");
    if (name.empty() || name.find('/') != std::string::npos) name = fs::path(mPath).stem().string();
    return mPath + "/Contents/Linux/" + name;
  }

  std::string PrivateFrameworksPath() const override { return mPath + "/Contents/Frameworks"; }

  std::string LocalizedString(const std::string& table, const std::string& key,
                              const std::string& defaultValue) const override {
    if (table.find('/') != std::string::npos) return defaultValue;
    const PropertyList::DictionaryRef texts =
        ReadDictionary(mPath + "/Contents/Resources/" + table + ".strings.plist");
    const std::string* text = texts ? texts->GetString(key) : nullptr;
    return text ? *text : defaultValue;
  }

  void* LookUpSymbol(const char* name) override {
    if (!mTriedToLoad) Load();
    return mHandle ? dlsym(mHandle, name) : nullptr;
  }

 private:
  void Load() {
    mTriedToLoad = true;
    const std::string library = RealPath(ExecutablePath());
    if (library.empty() || !GFileSystem::OSIsTrustedLocation(library)) {
      GLogger::GetSharedInstance()->LogError(kLogIdentifier,
                                             "'%s' is missing, or others can write it: not loaded",
                                             ExecutablePath().c_str());
      return;
    }
    mHandle = dlopen(library.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (mHandle) return;
    const char* reason = dlerror();
    GLogger::GetSharedInstance()->LogError(kLogIdentifier, "'%s' can't be loaded: %s",
                                           library.c_str(), reason ? reason : "");
  }

  std::string mPath;
  PropertyList::DictionaryRef mInfo;
  void* mHandle = nullptr;  // never closed
  bool mTriedToLoad = false;
};

std::shared_ptr<Bundle> ReadBundle(const std::string& path) {
  PropertyList::DictionaryRef info = ReadDictionary(path + "/Contents/Info.plist");
  return info ? std::make_shared<LinuxBundle>(path, std::move(info)) : nullptr;
}

// The bundle folder X.ext of a library X.ext/Contents/Linux/X; empty for any other library.
std::string BundleFolderOf(const std::string& library) {
  const fs::path path = library;
  const fs::path code = path.parent_path();
  const fs::path contents = code.parent_path();
  const fs::path folder = contents.parent_path();
  if (code.filename() != "Linux" || contents.filename() != "Contents") return {};
  if (!folder.has_extension() || folder.stem() != path.filename()) return {};
  return folder.string();
}

unsigned long long CountLoads() {
  unsigned long long count = 0;
  dl_iterate_phdr(
      [](dl_phdr_info* info, std::size_t, void* data) {
        *static_cast<unsigned long long*>(data) = info->dlpi_adds;
        return 1;
      },
      &count);
  return count;
}

// The loader is locked during the walk, so nothing but the names is taken there.
std::vector<std::string> LoadedLibraries() {
  std::vector<std::string> paths;
  dl_iterate_phdr(
      [](dl_phdr_info* info, std::size_t, void* data) {
        if (info->dlpi_name != nullptr && info->dlpi_name[0] != '\0') {
          static_cast<std::vector<std::string>*>(data)->emplace_back(info->dlpi_name);
        }
        return 0;
      },
      &paths);
  return paths;
}

}  // namespace

void LinuxBundles::ReadLoadedLibraries() {
  const unsigned long long loads = CountLoads();
  if (loads == mSeenLoads) return;
  mSeenLoads = loads;
  for (const std::string& library : LoadedLibraries()) {
    if (mLoaded.contains(library)) continue;
    const std::string folder = RealPath(BundleFolderOf(library));
    mLoaded[library] = folder.empty() ? nullptr : ReadBundle(folder);
  }
}

std::shared_ptr<Bundle> LinuxBundles::FindByIdentifier(const std::string& identifier) {
  for (const auto& [path, bundle] : mOpened) {
    if (bundle->Identifier() == identifier) return bundle;
  }
  ReadLoadedLibraries();
  for (const auto& [library, bundle] : mLoaded) {
    if (bundle && bundle->Identifier() == identifier) return bundle;
  }
  return nullptr;
}

std::shared_ptr<Bundle> LinuxBundles::Open(const std::string& path) {
  const std::string folder = RealPath(path);
  if (folder.empty()) return nullptr;
  if (const auto opened = mOpened.find(folder); opened != mOpened.end()) return opened->second;
  if (!GFileSystem::OSIsTrustedLocation(folder + "/Contents/Info.plist")) {
    GLogger::GetSharedInstance()->LogError(
        kLogIdentifier, "'%s' is no bundle, or others can write there: not opened", path.c_str());
    return nullptr;
  }
  std::shared_ptr<Bundle> bundle = ReadBundle(folder);
  if (bundle) mOpened[folder] = bundle;
  return bundle;
}

bool LinuxBundles::IsLoaded(const std::string& identifier) {
  return FindByIdentifier(identifier) != nullptr;
}
