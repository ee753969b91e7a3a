#include "host/Console.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <nlohmann/json.hpp>

#include "foundation/WallClock.h"

namespace {

constexpr int kBarWidth = 24;
constexpr std::int64_t kProgressEveryMilliseconds = 80;
constexpr std::string_view kReplacement = "\xEF\xBF\xBD";

// The length of the well-formed UTF-8 sequence at the front, 0 if there is none.
std::size_t SequenceLength(std::string_view text) {
  const auto byte = [&](std::size_t i) {
    return i < text.size() ? static_cast<unsigned char>(text[i]) : 0u;
  };
  const unsigned first = byte(0);
  const auto continues = [&](std::size_t i) { return (byte(i) & 0xC0u) == 0x80u; };
  if (first < 0x80) return 1;
  if (first >= 0xC2 && first < 0xE0) return continues(1) ? 2 : 0;
  if (first >= 0xE0 && first < 0xF0) {
    const bool overlong = first == 0xE0 && byte(1) < 0xA0;
    const bool surrogate = first == 0xED && byte(1) >= 0xA0;
    return continues(1) && continues(2) && !overlong && !surrogate ? 3 : 0;
  }
  if (first >= 0xF0 && first < 0xF5) {
    const bool overlong = first == 0xF0 && byte(1) < 0x90;
    const bool beyond = first == 0xF4 && byte(1) >= 0x90;
    return continues(1) && continues(2) && continues(3) && !overlong && !beyond ? 4 : 0;
  }
  return 0;
}

}  // namespace

std::string Printable(std::string_view bytes) {
  std::string text;
  while (!bytes.empty()) {
    const std::size_t length = SequenceLength(bytes);
    const auto first = static_cast<unsigned char>(bytes[0]);
    const bool c1 = length == 2 && first == 0xC2 && static_cast<unsigned char>(bytes[1]) < 0xA0;
    if (length == 0 || first < 0x20 || first == 0x7F || c1) {
      text += kReplacement;
    } else {
      text += bytes.substr(0, length);
    }
    bytes.remove_prefix(std::max<std::size_t>(length, 1));
  }
  return text;
}

Console::Console()
    : mErrorIsTerminal(isatty(STDERR_FILENO) == 1), mOutputIsTerminal(isatty(STDOUT_FILENO) == 1) {
  mOutput = fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, 3);
  const int nowhere = open("/dev/null", O_WRONLY | O_CLOEXEC);
  if (nowhere >= 0) {
    dup2(nowhere, STDOUT_FILENO);
    close(nowhere);
  }
}

Console::~Console() {
  if (mOutput >= 0) {
    std::fflush(stdout);  // what others printed goes away with the descriptor
    dup2(mOutput, STDOUT_FILENO);
    close(mOutput);
  }
}

void Console::Write(int descriptor, std::string_view text) {
  while (!text.empty()) {
    const ssize_t written = write(descriptor, text.data(), text.size());
    if (written < 0 && errno == EINTR) continue;
    if (written <= 0) {
      if (descriptor == mOutput) mOutputIsThere = false;
      return;
    }
    text.remove_prefix(static_cast<std::size_t>(written));
  }
}

void Console::Print(std::string_view line) {
  EndProgress();
  Write(mOutput, std::string(line) + "\n");
}

void Console::PrintJson(const nlohmann::json& json) {
  Print(json.dump(2, ' ', false, nlohmann::json::error_handler_t::replace));
}

void Console::Say(std::string_view text) {
  EndProgress();
  Write(STDERR_FILENO, "kestrane: " + std::string(text) + "\n");
}

void Console::Error(std::string_view text) { Say(text); }

void Console::Progress(std::uint64_t done, std::uint64_t total, std::string_view what) {
  if (!mErrorIsTerminal) return;
  const std::int64_t now = WallClock::NowMilliseconds();
  if (mProgressShown && done < total && now - mLastProgress < kProgressEveryMilliseconds) return;
  mLastProgress = now;
  mProgressShown = true;
  const int filled = total == 0 ? 0 : static_cast<int>(std::min(done, total) * kBarWidth / total);
  std::string line = "\r\033[K[";
  for (int i = 0; i < kBarWidth; ++i) line += i < filled ? '#' : '.';
  line += "] " + std::to_string(done) + "/" + std::to_string(total) + " ";
  Write(STDERR_FILENO, line + std::string(what));
}

void Console::EndProgress() {
  if (!mProgressShown) return;
  mProgressShown = false;
  Write(STDERR_FILENO, "\r\033[K");
}
