// What every command to the agent goes through: when the agent has gone, it is started again and
// the command is sent once more, round after round, until the code changes or the user gives up.
// The first round is silent, the second one tells the user, later ones are silent again.
//
// A launch that failed shows up as the command failing again, so rounds are spaced: after a failed
// launch, and after every launch but the first, 100 ms doubling to 1 s pass before the next
// command.
//
// Threads: [main-thread].
#pragma once

#include <cstdint>
#include <functional>

// A host that has to end sets this; when it answers true, a loop in progress ends as if the user
// had given up. An empty function clears it.
void SetRetryInterrupted(std::function<bool()> isInterrupted);

// Replaces the pause between rounds; an empty function puts the real one back. [tests only]
void SetRetrySleep(std::function<void(unsigned milliseconds)> sleep);

// Does the code mean that the agent process has gone?
bool HasAgentGone(std::uint32_t code);

// The rounds of one command.
class CommandRetry {
 public:
  static constexpr unsigned kFirstPauseMilliseconds = 100;
  static constexpr unsigned kLongestPauseMilliseconds = 1000;

  // Is the command to be sent again after this code? Relaunches the agent first; disables the
  // plug-in when that is given up.
  bool ShouldSendAgain(std::uint32_t code);

 private:
  bool PrepareRound();
  void Pause();

  int mRound = 0;
  unsigned mPauseMilliseconds = kFirstPauseMilliseconds;
};

// Sends `command`, a callable that gives the facade's code, until it is answered; gives the last
// code.
template <typename Command>
std::uint32_t SendWithRetry(Command&& command) {
  CommandRetry retry;
  std::uint32_t code = command();
  while (retry.ShouldSendAgain(code)) code = command();
  return code;
}
