#include "frameworks/plugins/Terminal.h"

#include <glib.h>
#include <signal.h>
#include <unistd.h>

#include <cerrno>
#include <ctime>
#include <memory>

namespace {

// A host may not have turned SIGPIPE off: it is held back from this thread while we write, and one
// that our own writing raised is taken out.
class SignalHeldBack {
 public:
  SignalHeldBack() {
    sigemptyset(&mPipe);
    sigaddset(&mPipe, SIGPIPE);
    sigset_t pending;
    sigpending(&pending);
    mWasPending = sigismember(&pending, SIGPIPE) == 1;
    pthread_sigmask(SIG_BLOCK, &mPipe, &mBefore);
  }
  ~SignalHeldBack() {
    const timespec now{};
    while (mRaised && !mWasPending && sigtimedwait(&mPipe, nullptr, &now) < 0 && errno == EINTR) {
    }
    pthread_sigmask(SIG_SETMASK, &mBefore, nullptr);
  }
  SignalHeldBack(const SignalHeldBack&) = delete;
  SignalHeldBack& operator=(const SignalHeldBack&) = delete;

  void WasRaised() { mRaised = true; }

 private:
  sigset_t mPipe{};
  sigset_t mBefore{};
  bool mWasPending = false;
  bool mRaised = false;
};

std::string Harmless(std::string_view text) {
  const std::unique_ptr<char, decltype(&g_free)> valid(
      g_utf8_make_valid(text.data(), static_cast<gssize>(text.size())), g_free);
  std::string result;
  for (const char* at = valid.get(); *at != '\0'; at = g_utf8_next_char(at)) {
    const gunichar character = g_utf8_get_char(at);
    if (character != '\n' && g_unichar_iscntrl(character)) {
      result += '?';
    } else {
      result.append(at, static_cast<std::size_t>(g_utf8_next_char(at) - at));
    }
  }
  return result;
}

}  // namespace

Terminal& Terminal::Standard() {
  static Terminal terminal(STDIN_FILENO, STDERR_FILENO);
  return terminal;
}

bool Terminal::IsInteractive() const { return isatty(mInput) == 1 && isatty(mOutput) == 1; }

bool Terminal::ShowsProgress() const { return isatty(mOutput) == 1; }

void Terminal::WriteLine(std::string_view text) const { WriteBytes(Harmless(text) + "\n"); }

void Terminal::WriteWithoutEnd(std::string_view text) const { WriteBytes(Harmless(text)); }

void Terminal::ReplaceLine(std::string_view text) const { WriteBytes("\r\x1b[K" + Harmless(text)); }

void Terminal::WriteBytes(std::string_view bytes) const {
  SignalHeldBack signal;
  while (!bytes.empty()) {
    const ssize_t written = write(mOutput, bytes.data(), bytes.size());
    if (written < 0 && errno == EINTR) continue;
    if (written < 0 && errno == EPIPE) signal.WasRaised();
    if (written <= 0) return;
    bytes.remove_prefix(static_cast<std::size_t>(written));
  }
}

std::optional<std::string> Terminal::ReadLine() const {
  std::string line;
  for (;;) {
    char character = 0;
    const ssize_t count = read(mInput, &character, 1);
    if (count < 0 && errno == EINTR) continue;
    if (count <= 0) return std::nullopt;
    if (character == '\n') return line;
    if (line.size() < kMaxAnswer) line += character;
  }
}
