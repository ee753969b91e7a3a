#include "platform/linux/StderrMessageBox.h"

#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <ctime>

namespace {

// A pipe that nobody reads any more must not end the host. A signal of somebody else's that was
// waiting already stays waiting.
void WriteWithoutSignal(const std::string& text) {
  sigset_t pipeSignal;
  sigset_t before;
  sigset_t waiting;
  sigemptyset(&pipeSignal);
  sigaddset(&pipeSignal, SIGPIPE);
  sigpending(&waiting);
  const bool wasWaiting = sigismember(&waiting, SIGPIPE) == 1;
  pthread_sigmask(SIG_BLOCK, &pipeSignal, &before);
  const bool failed = write(STDERR_FILENO, text.data(), text.size()) < 0;
  if (failed && !wasWaiting) {
    const timespec atOnce{};
    sigtimedwait(&pipeSignal, nullptr, &atOnce);
  }
  pthread_sigmask(SIG_SETMASK, &before, nullptr);
}

}  // namespace

void StderrMessageBox::ShowMessage(const std::string& message) {
  std::string line = message;
  std::replace(line.begin(), line.end(), '\n', ' ');
  WriteWithoutSignal(line + "\n");
}
