#include <memory>
#include <optional>
#include <string>

#include "facade/SkerryLoader.h"
#include "foundation/GStringUtils.h"
#include "foundation/PluginLog.h"
#include "photoshop/CommonStartup.h"
#include "photoshop/CompositionRoot.h"
#include "platform/Bundle.h"
#include "platform/Platform.h"
#include "state/KestraneGlobals.h"

namespace CommonFunctionality {
namespace {

constexpr const char* kBundleIdentifierPrefix = "com.vendrel.";
constexpr const char* kUnknownVersion = "x.x.x.x";
constexpr int kFoldersAboveExecutable = 3;  // X.plugin/Contents/Linux/X

struct PluginIdentity {
  std::string version = kUnknownVersion;
  std::optional<std::string> hostApp;
  std::string binaryPath;
};

// The bundle whose executable lies at the path; null if it lies in none.
std::shared_ptr<Bundle> BundleOfExecutable(const std::string& path) {
  std::string folder = path;
  for (int step = 0; step < kFoldersAboveExecutable; ++step) {
    const std::size_t slash = folder.find_last_of('/');
    if (slash == std::string::npos) return nullptr;
    folder.resize(slash);
  }
  return folder.empty() ? nullptr : Platform::Current().GetBundles().Open(folder);
}

PluginIdentity FindIdentity(const std::string& bundleIdentifier) {
  PluginIdentity identity;
  const bool isIdentifier = GStringUtils::BeginsWith(bundleIdentifier, kBundleIdentifierPrefix);
  const std::shared_ptr<Bundle> bundle = isIdentifier
                                             ? GetBundleWithIdentifierReliably(bundleIdentifier)
                                             : BundleOfExecutable(bundleIdentifier);
  if (!isIdentifier) identity.binaryPath = bundleIdentifier;
  if (!bundle) return identity;
  identity.version = bundle->Value("CFBundleShortVersionString").value_or(std::string());
  identity.hostApp = bundle->Value("HostApp");
  identity.binaryPath = bundle->ExecutablePath();
  return identity;
}

void Identify(const std::string& bundleIdentifier) {
  const PluginIdentity identity = FindIdentity(bundleIdentifier);
  KestraneGlobals::IdentifyPluginBundleID(bundleIdentifier);
  KestraneGlobals::IdentifyPluginInterfaceVersion(
      SkerryLoader::GetSharedInstance()->VersionStringRef());
  // Behind the bundle identifier, from which a missing host name is resolved.
  KestraneGlobals::IdentifyPluginHostApp(identity.hostApp);
  KestraneGlobals::IdentifyPluginVersion(identity.version);
  KestraneGlobals::IdentifyPluginBinaryPath(identity.binaryPath);
}

}  // namespace

StaticPluginInitializer::StaticPluginInitializer(const std::string& bundleIdentifier) {
  try {
    InstallHostAppInterface();
    Identify(bundleIdentifier);
  } catch (...) {
    // An exception here would end the host while it loads its plug-ins.
    OutputSimpleDebugString("StaticPluginInitializer() ended with an exception\n");
  }
}

}  // namespace CommonFunctionality
