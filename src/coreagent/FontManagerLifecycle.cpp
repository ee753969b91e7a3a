#include "coreagent/FontManagerLifecycle.h"

#include <algorithm>
#include <memory>

#include "activation/FontActivationTracker.h"
#include "coreagent/CoreAgentInterface.h"
#include "dialogs/TarnInterface.h"
#include "facade/SkerryLoader.h"
#include "fontmanager/FontManagerInterface.h"
#include "foundation/GScopedLock.h"
#include "foundation/PluginLog.h"
#include "state/KestraneGlobals.h"

namespace {

constexpr std::string_view kUnnumberedVersion = "1.0.0.0";
constexpr int kDotsThatDecide = 3;

// Raised by a shutdown that came while the font manager was being made. [main-thread]
bool sShutdownWhileMaking = false;

struct Facade {
  bool isLoaded = false;
  std::string location;
  std::string version;
};

// The code of a start that gets no further.
std::uint32_t FindFacade(Facade& facade) {
  std::uint32_t missing = 0;
  facade.isLoaded =
      SkerryLoader::GetSharedInstance()->IsLoaded(&facade.location, &facade.version, &missing);
  if (!facade.isLoaded || missing == 0) return CoreErrorCodes::kUnknownError;
  OutputFormattedDebugString("ERROR:  %d function(s) missing from \"%s\"",
                             static_cast<int>(missing), facade.location.c_str());
  return CoreErrorCodes::kVersionMismatch;
}

void NameEdition(FontManagerInterface& fontManager, std::string* outBundleName) {
  const char* name = fontManager.RunningStandalone() ? kKestraneDuoraPlugin : kOmnarelPlugin;
  if (TarnInterface* tarn = KestraneGlobals::GetSharedTarnInterface()) {
    tarn->SetFontManagerBundleName(name);
  }
  if (outBundleName) *outBundleName = name;
}

bool ShallCloseFonts(const TarnInterface& tarn, FontManagerInterface* fontManager) {
  return KestraneGlobals::ArePluginServicesEnabled() && tarn.GetCloseFontsOnHostAppQuit() &&
         tarn.GetEnabledAutoActivationPref() && fontManager && fontManager->IsLoggedIn();
}

}  // namespace

bool VersionsAreCompatible(std::string_view facadeVersion, std::string_view pluginVersion) {
  if (facadeVersion == pluginVersion) return true;
  if (facadeVersion.empty() || pluginVersion.empty()) return false;
  if (facadeVersion == kUnnumberedVersion || pluginVersion == kUnnumberedVersion) return true;
  const std::size_t shorter = std::min(facadeVersion.size(), pluginVersion.size());
  int dots = 0;
  for (std::size_t i = 0; i < shorter; ++i) {
    if (facadeVersion[i] != pluginVersion[i]) return false;
    if (facadeVersion[i] == '.' && ++dots == kDotsThatDecide) return true;
  }
  const std::string_view longer =
      facadeVersion.size() > pluginVersion.size() ? facadeVersion : pluginVersion;
  return longer.size() > shorter && longer[shorter] == '.';
}

std::uint32_t FontManagerInterface::CompatibleFontManagerIsRunning(std::string* outBundleName,
                                                                   bool* outRunning) {
  const OperationTrace trace(__func__);
  GScopedLock lock(FontManagerMutex());
  bool ignored = false;
  bool& running = outRunning ? *outRunning : ignored;
  running = false;
  if (!lock.IsLocked()) return trace.Return(CoreErrorCodes::kUnknownError);
  sShutdownWhileMaking = false;
  if (FontManagerInterface* existing = GetFontManager()) {
    running = existing->IsRunning();
    return trace.Return(running ? CoreErrorCodes::kSuccess : CoreErrorCodes::kUnknownError);
  }

  Facade facade;
  const std::uint32_t code = FindFacade(facade);
  if (!facade.isLoaded) return trace.Return(code);
  auto made = std::make_unique<CoreAgentInterface>();
  if (sShutdownWhileMaking) {
    made->DisconnectFromFontManager();
    return trace.Return(code);
  }
  ExchangeFontManager(made.release());
  FontManagerInterface& fontManager = *GetFontManager();
  NameEdition(fontManager, outBundleName);
  running = fontManager.IsRunning();
  if (!running) return trace.Return(code);
  if (!fontManager.IsLoggedIn()) return trace.Return(kFontManagerNotLoggedIn);
  const std::string pluginVersion = KestraneGlobals::GetPluginVersion();
  OutputFormattedDebugString("Skerry at location '%s' is version '%s' and plugin version is '%s'",
                             facade.location.c_str(), facade.version.c_str(),
                             pluginVersion.c_str());
  running = VersionsAreCompatible(facade.version, pluginVersion);
  return trace.Return(CoreErrorCodes::kSuccess);
}

void FontManagerInterface::OnHostAppShuttingDown(bool showProgress) {
  const OperationTrace trace(__func__);
  GScopedLock lock(FontManagerMutex());
  if (!lock.IsLocked()) {
    sShutdownWhileMaking = true;
    return;
  }
  const TarnInterface* tarn = KestraneGlobals::GetSharedTarnInterface();
  FontActivationTracker* tracker = KestraneGlobals::GetExistingFontActivationTracker();
  if (tarn && tarn->IsValid() && tracker) {
    tracker->CloseAllFonts(ShallCloseFonts(*tarn, GetFontManager()), showProgress);
  }
  FontManagerInterface* fontManager = GetFontManager();
  if (!fontManager) {
    OutputFormattedDebugString(
        "*** UH-OH, sm_pFontManager is NULL in FontManagerInterface::OnHostAppShuttingDown");
    return;
  }
  // Unregistering returns when no callback is running any more; only then the instance goes.
  fontManager->DisconnectFromFontManager();
  const std::unique_ptr<FontManagerInterface> last(ExchangeFontManager(nullptr));
}
