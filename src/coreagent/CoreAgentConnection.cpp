#include "coreagent/CommandRetry.h"
#include "coreagent/CoreAgentInterface.h"
#include "dialogs/TarnInterface.h"
#include "facade/FacadeCall.h"
#include "foundation/PluginLog.h"
#include "foundation/WallClock.h"
#include "state/KestraneGlobals.h"

namespace {

// The version of the entry points that this plug-in was built for.
constexpr std::int32_t kFacadeInterfaceVersion = 21;
constexpr std::size_t kVaultPathSize = 1024;
constexpr std::time_t kSecondsBetweenAgentChecks = 6;
constexpr int kAgentCheckAttempts = 3;

void ShowFontManagerNotFound() {
  if (TarnInterface* tarn = KestraneGlobals::GetSharedTarnInterface()) {
    tarn->ShowFontManagerNotFoundMessageBox();
  }
}

}  // namespace

CoreAgentInterface::CoreAgentInterface() {
  InitializeCoreAgent(KestraneGlobals::GetPluginHostApp());
  InitializeDefaultWorkgroup();
}

CoreAgentInterface::~CoreAgentInterface() { DeleteCoreAgent(); }

void CoreAgentInterface::DeleteCoreAgent() {
  FacadeCall::WithInstance(&SkerryLoader::pfDestroyThreadInstance);
}

void CoreAgentInterface::Disable() {
  KestraneGlobals::SetPluginServicesEnabled(false);
  KestraneGlobals::SetConnectedToCore(false);
}

void CoreAgentInterface::InitializeCoreAgent(const std::string& hostApp) {
  const OperationTrace trace(__func__);
  if (!CheckSchema(hostApp) || !CheckAgentIsRunning()) return;
  ReportVerdict(FacadeCall::WithInstance(&SkerryLoader::pfInitThreadInstance));
  // After a failed start too: that is how the plug-in hears when the agent comes back.
  FacadeCall::WithInstance(&SkerryLoader::pfRegisterForNotifications,
                           &CoreAgentNotificationCallback);
  FacadeCall::WithInstance(&SkerryLoader::pfEnableDesignActivation);
}

bool CoreAgentInterface::CheckSchema(const std::string& hostApp) {
  const std::uint32_t code = FacadeCall::WithInstance(
      &SkerryLoader::pfInitAppInstance, KestraneGlobals::GetHostTypeFromHostAppID(hostApp),
      kFacadeInterfaceVersion);
  if (code == 0) return true;
  TarnInterface* tarn = KestraneGlobals::GetSharedTarnInterface();
  if (!AreSchemaVersionsInSync() && tarn) {
    KestraneGlobals::SetDisplayedSchemaError(true);
    Disable();
    tarn->ShowVaultNeedsUpgradeMessage();
  }
  return false;
}

bool CoreAgentInterface::CheckAgentIsRunning() {
  std::int32_t isRunning = 0;
  const std::uint32_t code =
      FacadeCall::WithInstance(&SkerryLoader::pfGetIsCoreAgentProcessRunning, &isRunning);
  TarnInterface* tarn = KestraneGlobals::GetSharedTarnInterface();
  if (code == 0 && isRunning && tarn) return true;
  OutputFormattedDebugString(
      "Core Agent process not running; rc=%d, isRunning=%d, sizeof(isRunning)=%d",
      static_cast<int>(code), isRunning, static_cast<int>(sizeof isRunning));
  if (tarn && !tarn->GetSuppressPluginCoreDialogs()) tarn->ShowFontManagerNotFoundMessageBox();
  Disable();
  return false;
}

void CoreAgentInterface::ReportVerdict(std::uint32_t verdict) {
  switch (verdict) {
    case 0:
      OutputFormattedDebugString("GLarkspurSdk::Initialize SUCCEEDED.");
      KestraneGlobals::SetPluginServicesEnabled(true);
      KestraneGlobals::SetConnectedToCore(true);
      KestraneGlobals::SetLoggedIn(true);
      break;
    case kPluginInterface_WrongMode:
    case kPluginInterface_WrongModeOlder:
      OutputFormattedDebugString("Core Agent process running in wrong mode");
      Disable();
      break;
    case kPluginInterface_AgentNotFound:
    case kPluginInterface_AgentNotFoundOlder:
      OutputFormattedDebugString("Core Agent process not found");
      ShowFontManagerNotFound();
      Disable();
      break;
    default:
      ReportVaultError(verdict);
      break;
  }
}

void CoreAgentInterface::ReportVaultError(std::uint32_t verdict) {
  char path[kVaultPathSize] = {};
  FacadeCall::WithInstance(&SkerryLoader::pfGetFontVaultPath, std::uint32_t{sizeof path}, path);
  path[sizeof path - 1] = '\0';
  const int code = static_cast<int>(verdict);
  const bool isInUse =
      verdict == kPluginInterface_VaultInUse || verdict == kPluginInterface_VaultInUseOlder;
  if (isInUse) {
    OutputFormattedDebugString(
        "GLarkspurSdk::Initialize FAILED, error code = %d (GLarkspurSdk::kVaultInUse).", code);
  } else {
    OutputFormattedDebugString("GLarkspurSdk::Initialize FAILED, error code = %d.", code);
  }
  OutputFormattedDebugString(
      "Disabling plug-in services in CoreAgentInterface::InitializeCoreAgent() because of SDK "
      "initialization error %d.",
      code);
  if (TarnInterface* tarn = KestraneGlobals::GetSharedTarnInterface()) {
    isInUse ? tarn->ShowVaultInUseMessage(path) : tarn->ShowVaultNotAvailableMessage(path);
  }
  Disable();
}

int CoreAgentInterface::DisconnectFromFontManager() {
  const OperationTrace trace(__func__);
  FacadeCall::WithInstance(&SkerryLoader::pfUnregisterForNotifications,
                           &CoreAgentNotificationCallback);
  return trace.Return(0);
}

void CoreAgentInterface::EnqueueNotification(
    std::unique_ptr<CoreAgentPluginNotification> notification) {
  mNotificationQueue.EnqueueNotification(std::move(notification));
}

int CoreAgentInterface::ProcessNotifications() {
  // A message box shown below turns the run loop: the timer's ticks wait until it is closed.
  if (mProcessingNotifications) return 0;
  mProcessingNotifications = true;
  const int handled = mNotificationQueue.ProcessAllNotifications();
  CheckAgentIsAlive();
  mProcessingNotifications = false;
  return handled;
}

// The watchdog: an agent that died sends no event.
void CoreAgentInterface::CheckAgentIsAlive() {
  if (!KestraneGlobals::GetConnectedToCore()) return;
  const std::time_t now = WallClock::Now();
  const bool clockWentBack = now < mLastCoreAgentCheckTime;
  if (!clockWentBack && now - mLastCoreAgentCheckTime < kSecondsBetweenAgentChecks) return;

  FacadeCall::Answer running{FacadeCall::kMissingEntryPoint, false};
  for (int attempt = 0; attempt < kAgentCheckAttempts && running.code != 0; ++attempt) {
    running = FacadeCall::Ask(&SkerryLoader::pfGetIsCoreAgentProcessRunning, false);
  }
  if (running.code != 0 || !running.value) {
    OutputFormattedDebugString(
        "Disabling plug-in services in CoreAgentInterface::ProcessNotifications() because Nodrix "
        "is no longer running.");
    Disable();
    AskUserToRelaunchAgent();
  }
  mLastCoreAgentCheckTime = now;
}

bool CoreAgentInterface::AreSchemaVersionsInSync() {
  std::int32_t inSync = 1;
  SendWithRetry([&inSync] {
    return FacadeCall::WithInstance(&SkerryLoader::pfGetAreSchemaVersionsInSync, &inSync);
  });
  if (!inSync) {
    OutputFormattedDebugString(
        "WARNING:  CoreAgentInterface::AreSchemaVersionsInSync() returning FALSE");
  }
  return inSync != 0;
}

bool CoreAgentInterface::RunningStandalone() {
  return FacadeCall::Ask(&SkerryLoader::pfGetIsStandaloneMode, true).value;
}

bool CoreAgentInterface::IsGoogleWebFontsEnabled() {
  return FacadeCall::Ask(&SkerryLoader::pfGetIsGoogleWebFontsEnabled, false).value;
}

bool CoreAgentInterface::IsRunning() {
  const auto running = FacadeCall::Ask(&SkerryLoader::pfGetIsCoreAgentProcessRunning, false);
  if (!running.value) {
    OutputFormattedDebugString(
        "WARNING:  PluginInterface::GetIsCoreAgentProcessRunning() returned %d",
        static_cast<int>(running.code));
  }
  return running.value;
}

bool CoreAgentInterface::IsLoggedIn() {
  if (RunningStandalone()) return true;
  const auto loggedIn = FacadeCall::Ask(&SkerryLoader::pfGetIsLoggedIn, false);
  return loggedIn.code == 0 && loggedIn.value;
}

void CoreAgentInterface::DoOnlineOffline() {
  if (IsOnline()) {
    GoOffline();
  } else if (GoOnline() != 0) {
    if (TarnInterface* tarn = KestraneGlobals::GetSharedTarnInterface()) {
      tarn->ShowGoOnlineErrorMessageBox();
    }
  }
}
