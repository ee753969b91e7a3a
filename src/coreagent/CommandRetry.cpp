#include "coreagent/CommandRetry.h"

#include <algorithm>
#include <chrono>
#include <thread>
#include <utility>

#include "coreagent/CoreAgentInterface.h"
#include "facade/SkerryLoader.h"
#include "foundation/PluginLog.h"

namespace {

struct Hooks {
  std::function<bool()> isInterrupted;
  std::function<void(unsigned)> sleep;
};

Hooks& GetHooks() {
  static Hooks& hooks = *new Hooks;  // reachable to the end, never destroyed
  return hooks;
}

bool IsInterrupted() {
  const auto& isInterrupted = GetHooks().isInterrupted;
  return isInterrupted && isInterrupted();
}

}  // namespace

void SetRetryInterrupted(std::function<bool()> isInterrupted) {
  GetHooks().isInterrupted = std::move(isInterrupted);
}

void SetRetrySleep(std::function<void(unsigned milliseconds)> sleep) {
  GetHooks().sleep = std::move(sleep);
}

bool HasAgentGone(std::uint32_t code) {
  return code == kPluginInterface_AgentShutdown || code == kPluginInterface_ServiceUnavailable ||
         code == kPluginInterface_AgentGone;
}

bool CommandRetry::ShouldSendAgain(std::uint32_t code) {
  if (!HasAgentGone(code)) return false;
  OutputFormattedDebugString("Agent not running:  error code = %d", static_cast<int>(code));
  ++mRound;
  if (PrepareRound()) return true;
  OutputFormattedDebugString(
      "Agent not running, done attempting to relaunch.  Disabling plugin functionality");
  CoreAgentInterface::Disable();
  return false;
}

bool CommandRetry::PrepareRound() {
  if (IsInterrupted()) return false;
  if (mRound == 2) {
    CoreAgentInterface::AskUserToRelaunchAgent();
    OutputFormattedDebugString("Agent not running, relaunching agent and retrying command");
  } else {
    OutputFormattedDebugString(
        "Agent not running, automatically relaunching agent and retrying command");
  }
  if (!CoreAgentInterface::AttemptRelaunchTryAgain()) return false;
  if (mRound > 1 || CoreAgentInterface::HasLastLaunchFailed()) Pause();
  return !IsInterrupted();
}

void CommandRetry::Pause() {
  if (const auto& sleep = GetHooks().sleep) {
    sleep(mPauseMilliseconds);
  } else {
    std::this_thread::sleep_for(std::chrono::milliseconds(mPauseMilliseconds));
  }
  mPauseMilliseconds = std::min(mPauseMilliseconds * 2, kLongestPauseMilliseconds);
}
