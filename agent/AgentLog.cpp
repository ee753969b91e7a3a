#include "agent/AgentLog.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <ctime>
#include <utility>

namespace Nodrix {
namespace {

constexpr std::size_t kMaxSize = 1 << 20;
constexpr std::size_t kMaxLine = 4096;

std::string Now() {
  const std::time_t now = std::time(nullptr);
  std::tm parts{};
  localtime_r(&now, &parts);
  char text[40];
  return {text, std::strftime(text, sizeof text, "%Y-%m-%dT%H:%M:%S%z", &parts)};
}

}  // namespace

AgentLog::AgentLog(std::string path) : mPath(std::move(path)) { Open(); }

AgentLog::~AgentLog() {
  if (mFile != nullptr) std::fclose(mFile);
}

void AgentLog::Open() {
  const int file =
      open(mPath.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC | O_NOFOLLOW, 0600);
  struct stat info {};
  if (file < 0 || fstat(file, &info) != 0) {
    if (file >= 0) close(file);
    return;
  }
  mFile = fdopen(file, "a");
  mSize = static_cast<std::size_t>(info.st_size);
}

void AgentLog::Write(const std::string& text) {
  std::string line = Now() + "\t" + text.substr(0, kMaxLine);
  for (char& c : line) {
    if (c == '\n' || c == '\r') c = ' ';
  }
  line += '\n';
  const std::lock_guard lock(mMutex);
  if (mFile == nullptr) return;
  if (mSize > kMaxSize) {
    std::fclose(std::exchange(mFile, nullptr));
    std::rename(mPath.c_str(), (mPath + ".old").c_str());
    Open();
    if (mFile == nullptr) return;
  }
  mSize += std::fwrite(line.data(), 1, line.size(), mFile);
  std::fflush(mFile);
}

}  // namespace Nodrix
