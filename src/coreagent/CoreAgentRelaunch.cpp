#include "coreagent/CoreAgentInterface.h"
#include "dialogs/TarnInterface.h"
#include "facade/FacadeCall.h"
#include "facade/SkerryLoader.h"
#include "foundation/PluginLog.h"
#include "state/KestraneGlobals.h"

namespace {

// Results of a launch.
constexpr int kLaunched = 0;
constexpr int kLaunchRefused = 1;
constexpr int kAgentMissing = 2;

// The dialog has one button, whose value this is; a suppressed one counts as pressed.
constexpr int kButtonPressed = 1;

}  // namespace

bool CoreAgentInterface::sLastLaunchFailed = false;

int CoreAgentInterface::LaunchLarkspurAgentIfNeeded() {
  const OperationTrace trace(__func__);
  const auto code = static_cast<std::uint32_t>(FindAndLaunchNodrix(nullptr));
  sLastLaunchFailed = code != 0;
  const bool isMissing =
      code == kPluginInterface_AgentNotFound || code == kPluginInterface_AgentNotFoundOlder;
  return trace.Return(isMissing ? kAgentMissing : kLaunched);
}

int CoreAgentInterface::RelaunchLarkspurAgent() {
  const OperationTrace trace(__func__);
  const int result = LaunchLarkspurAgentIfNeeded();
  if (result == kLaunched) {
    FacadeCall::WithoutInstance(&SkerryLoader::pfResetPluginFacadeInstance);
  }
  return trace.Return(result);
}

bool CoreAgentInterface::AttemptRelaunchTryAgain() {
  int result = RelaunchLarkspurAgent();
  while (result == kLaunchRefused || result == kAgentMissing) {
    TarnInterface* tarn = KestraneGlobals::GetSharedTarnInterface();
    if (!tarn || tarn->GetSuppressPluginCoreDialogs()) return false;
    if (!tarn->ShowCoreAgentMissingMessageBox()) return false;
    result = RelaunchLarkspurAgent();
  }
  return true;
}

int CoreAgentInterface::AskUserToRelaunchAgent() {
  TarnInterface* tarn = KestraneGlobals::GetSharedTarnInterface();
  if (!tarn) return 0;
  if (!tarn->GetSuppressPluginCoreDialogs()) tarn->ShowFontManagerNotFoundMessageBox();
  return kButtonPressed;
}

bool CoreAgentInterface::WarnUserAgentRelaunchFailed() {
  AskUserToRelaunchAgent();
  return true;
}
