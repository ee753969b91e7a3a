#include "photoshop/CommonStartup.h"

#include "dialogs/TarnInterface.h"
#include "fontmanager/FontManagerInterface.h"
#include "foundation/GScopedLock.h"
#include "foundation/PluginLog.h"
#include "state/KestraneGlobals.h"

namespace CommonFunctionality {
namespace {

int numberOfTimesStartupMethodHasBeenCalled = 0;
int numberOfTimesShutdownMethodHasBeenCalled = 0;

// Guards the two counters.
GMutex& sMutex() {
  static GMutex& mutex = *new GMutex;
  return mutex;
}

void DisableServices() {
  KestraneGlobals::SetPluginServicesEnabled(false);
  KestraneGlobals::SetConnectedToCore(false);
}

// One run of the start. Everything is taken as well until a step finds otherwise.
class StartupRun {
 public:
  explicit StartupRun(bool allowDialogs) : mAllowDialogs(allowDialogs) {}

  TModuleErrorCode Run();

 private:
  void FindFontManager();
  void CheckTarnInterface();
  void CheckLogin();
  void CheckWorkgroups();
  // Services on, a font manager, a valid dialog interface and the preference on.
  bool ActivationIsWanted() const;

  const bool mAllowDialogs;
  bool mShowOldVersion = false;
  TarnInterface* mTarn = nullptr;
  TModuleErrorCode mResult = 0;
};

TModuleErrorCode StartupRun::Run() {
  KestraneGlobals::SetLoggedIn(true);
  KestraneGlobals::SetPluginServicesEnabled(true);
  KestraneGlobals::SetConnectedToCore(true);
  KestraneGlobals::SetUserHasWorkgroups(true);
  FindFontManager();
  mTarn = KestraneGlobals::GetSharedTarnInterface();
  if (mTarn) {
    CheckTarnInterface();
  } else {
    DisableServices();
    mResult = kStartupNoTarnInterface;
  }
  FontManagerInterface* fontManager = FontManagerInterface::GetFontManager();
  if (KestraneGlobals::ArePluginServicesEnabled() && fontManager) {
    fontManager->SetFontAutoActivationStatus(false);
  }
  CheckLogin();
  CheckWorkgroups();
  FontManagerInterface::CheckSelectWorkgroup();
  return mResult;
}

void StartupRun::FindFontManager() {
  std::string bundleName;
  bool isCompatible = false;
  mResult = FontManagerInterface::CompatibleFontManagerIsRunning(&bundleName, &isCompatible);
  if (isCompatible) return;
  DisableServices();
  mShowOldVersion = true;
}

void StartupRun::CheckTarnInterface() {
  InitLogging((KestraneGlobals::GetPluginHostApp() + ".log").c_str());
  if (mTarn->GetEnabledLoggingPref()) StartLogging();
  if (mShowOldVersion && mAllowDialogs) mTarn->ShowKestraneOldVersionMessageBox();
  const int status = mTarn->GetStatus();
  if ((status >= 2 && status <= 4) || !mTarn->IsValid()) {
    if (mAllowDialogs) mTarn->ShowTarnNotFoundMessageBox();
    DisableServices();
  }
}

bool StartupRun::ActivationIsWanted() const {
  return KestraneGlobals::ArePluginServicesEnabled() && FontManagerInterface::GetFontManager() &&
         mTarn && mTarn->IsValid() && mTarn->GetEnabledAutoActivationPref();
}

void StartupRun::CheckLogin() {
  if (!ActivationIsWanted()) return;
  if (FontManagerInterface::GetFontManager()->IsLoggedIn()) {
    OutputFormattedDebugString("login check at startup:  Logged in");
    return;
  }
  OutputFormattedDebugString("login check at startup:  NOT logged in...");
  OutputFormattedDebugString("Disabling plugin functionality");
  KestraneGlobals::SetLoggedIn(false);
  if (mAllowDialogs) mTarn->ShowNotLoggedInMessageBox(false);
  mResult = kStartupNotLoggedIn;
}

void StartupRun::CheckWorkgroups() {
  if (!ActivationIsWanted()) return;
  FontManagerInterface* fontManager = FontManagerInterface::GetFontManager();
  if (!fontManager->IsLoggedIn() || fontManager->RunningStandalone()) return;
  OutputFormattedDebugString("checking for workgroups at startup");
  if (fontManager->CheckForWorkgroups()) {
    KestraneGlobals::SetUserHasWorkgroups(true);
    return;
  }
  OutputFormattedDebugString("Disabling plugin functionality");
  KestraneGlobals::SetUserHasWorkgroups(false);
  if (mAllowDialogs) mTarn->ShowNoWorkgroupsMessageBox();
  mResult = kStartupNoWorkgroups;
}

}  // namespace

TModuleErrorCode Startup(bool allowDialogs) {
  const OperationTrace trace(__func__);
  const GScopedLock lock(sMutex(), true, new GBlockingLockStrategy);
  if (++numberOfTimesStartupMethodHasBeenCalled > 1) {
    OutputFormattedDebugString("Early return from %s() because it has been called %d times",
                               __func__, numberOfTimesStartupMethodHasBeenCalled);
    return trace.Return(CoreErrorCodes::kUnknownError);
  }
  return trace.Return(StartupRun(allowDialogs).Run());
}

TModuleErrorCode Shutdown() {
  const OperationTrace trace(__func__);
  const GScopedLock lock(sMutex(), true, new GBlockingLockStrategy);
  if (++numberOfTimesShutdownMethodHasBeenCalled > 1)
    return trace.Return(CoreErrorCodes::kUnknownError);
  FontManagerInterface::OnHostAppShuttingDown(false);
  KestraneGlobals::CleanUpOnShutdown();
  StopLogging();
  return trace.Return(CoreErrorCodes::kSuccess);
}

}  // namespace CommonFunctionality
