#include "facade/SkerryLoader.h"

#include "foundation/PluginLog.h"
#include "platform/Bundle.h"
#include "platform/Platform.h"
#include "platform/Process.h"
#include "state/KestraneGlobals.h"

namespace {

constexpr const char* kLibraryName = "VendrelPluginInterface.framework";

#define SKERRY_COUNT(result, name, arguments) +1
constexpr std::uint32_t kEntryPointCount = 0 PLUGIN_INTERFACE_ENTRY_POINTS(SKERRY_COUNT);
#undef SKERRY_COUNT

// The log shows the low 32 bits of a pointer.
unsigned ForLog(const void* pointer) {
  return static_cast<unsigned>(reinterpret_cast<std::uintptr_t>(pointer));
}

void* LookUp(Bundle* bundle, const char* name, std::uint32_t& missing) {
  if (bundle == nullptr) return nullptr;
  void* symbol = bundle->LookUpSymbol(name);
  OutputFormattedDebugString("CFBundleGetFunctionPointerForName(0x%08x, '%s') returned 0x%08x",
                             ForLog(bundle), name, ForLog(symbol));
  if (symbol == nullptr) ++missing;
  return symbol;
}

bool VerifyMember(bool isSet, bool expected, const char* name) {
  if (isSet == expected) return true;
  OutputFormattedDebugString(
      expected ? "ERROR:  this->pf%s is NULL." : "ERROR:  this->pf%s is not NULL.", name);
  return false;
}

}  // namespace

SkerryLoader* SkerryLoader::sSharedInstance = nullptr;

SkerryLoader* SkerryLoader::GetSharedInstance() {
  if (sSharedInstance == nullptr) {
    sSharedInstance = new SkerryLoader;  // lives to the end of the process
    sSharedInstance->Load();
  }
  return sSharedInstance;
}

SkerryLoader::SkerryLoader() : missingCount(kEntryPointCount) { VerifyThatAllMembersAre(false); }

SkerryLoader::~SkerryLoader() {
  SetPluginLogSinks({}, {});
  sSharedInstance = nullptr;
}

void SkerryLoader::Load() {
  const OperationTrace trace(__func__);
  const std::shared_ptr<Bundle> bundle = FindLibrary();
  if (!bundle) return;
  versionString = bundle->Value("CFBundleShortVersionString").value_or("");
  ResetFunctionPointers(bundle);
}

std::shared_ptr<Bundle> SkerryLoader::FindLibrary() {
  const std::string identifier = KestraneGlobals::GetPluginBundleIdentifier();
  std::shared_ptr<Bundle> bundle = LoadPrivateFramework(identifier, kLibraryName);
  if (bundle) {
    const std::string path = bundle->Path();
    location = path.substr(0, path.rfind('/') + 1);
    return bundle;
  }
  bundle = OpenBesideAgent();
  if (bundle) return bundle;
  BundleLayer& bundles = Platform::Current().GetBundles();
  location = bundles.SystemFrameworksPath() + "/";
  const std::string path = location + kLibraryName;
  bundle = bundles.Open(path);
  if (bundle) return bundle;
  location.clear();
  OutputFormattedDebugString("ERROR:  cannot find %s", path.c_str());
  return nullptr;
}

std::shared_ptr<Bundle> SkerryLoader::OpenBesideAgent() {
  Platform& platform = Platform::Current();
  if (!platform.GetProcess().GetPathToRunningProcessExe(kNodrixProcessName, location) &&
      FindAndLaunchNodrix(&location) != 0) {
    return nullptr;
  }
  const std::string path = location + kLibraryName;
  std::shared_ptr<Bundle> bundle = platform.GetBundles().Open(path);
  OutputFormattedDebugString(
      "CFBundleCreate() returned 0x%08x on attempt to load plug-in interface from '%s'",
      ForLog(bundle.get()), path.c_str());
  return bundle;
}

void SkerryLoader::ResetFunctionPointers(const std::shared_ptr<Bundle>& bundle) {
  missingCount = bundle ? 0 : kEntryPointCount;
#define SKERRY_BIND(result, name, arguments) \
  pf##name = reinterpret_cast<decltype(pf##name)>(LookUp(bundle.get(), #name, missingCount));
  PLUGIN_INTERFACE_ENTRY_POINTS(SKERRY_BIND)
#undef SKERRY_BIND
  BindLog();
}

void SkerryLoader::BindLog() {
  PluginLogBegin begin;
  PluginLogSink sink;
  if (pfBeginLogging && pfGetPluginFacadeInstance) {
    begin = [this](const char* name) { pfBeginLogging(pfGetPluginFacadeInstance(), name); };
  }
  if (pfLog && pfGetPluginFacadeInstance) {
    sink = [this](const char* text) { pfLog(pfGetPluginFacadeInstance(), text); };
  }
  SetPluginLogSinks(std::move(begin), std::move(sink));
}

bool SkerryLoader::IsLoaded(std::string* outLocation, std::string* outVersion,
                            std::uint32_t* outMissing) const {
  if (outLocation == nullptr || outVersion == nullptr || outMissing == nullptr) {
    OutputFormattedDebugString(
        "SkerryLoader::IsLoaded() returning false because it was called incorrectly.");
    return false;
  }
  *outLocation = location;
  *outVersion = versionString;
  *outMissing = missingCount;
  if (missingCount == 0) return true;
  if (missingCount == 1 && pfGetIsOnline == nullptr) return true;
  if (missingCount == kEntryPointCount) {
    OutputFormattedDebugString(
        "SkerryLoader::IsLoaded() returning false because all %d functions are missing.",
        static_cast<int>(missingCount));
  } else {
    OutputFormattedDebugString(
        "SkerryLoader::IsLoaded() returning false because of one or more null inputs.");
  }
  return false;
}

std::string SkerryLoader::VersionStringRef() const {
  OutputFormattedDebugString("SkerryLoader::VersionStringRef() returning '%s'",
                             versionString.c_str());
  return versionString;
}

bool SkerryLoader::VerifyThatAllMembersAre(bool expected) const {
  bool result = true;
#define SKERRY_VERIFY(type, name, arguments) \
  result = VerifyMember(pf##name != nullptr, expected, #name) && result;
  PLUGIN_INTERFACE_ENTRY_POINTS(SKERRY_VERIFY)
#undef SKERRY_VERIFY
  return result;
}
