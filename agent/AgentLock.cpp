#include "agent/AgentLock.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

namespace Nodrix {
namespace {

constexpr int kAttempts = 20;
constexpr useconds_t kPauseMicroseconds = 50'000;

}  // namespace

std::unique_ptr<AgentLock> AgentLock::Take(const std::string& path, std::string& error) {
  const int file = open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0600);
  if (file < 0) {
    error = path + ": " + std::strerror(errno);
    return nullptr;
  }
  for (int attempt = 0; attempt < kAttempts; ++attempt) {
    if (flock(file, LOCK_EX | LOCK_NB) == 0) {
      return std::unique_ptr<AgentLock>(new AgentLock(file));
    }
    if (errno != EWOULDBLOCK && errno != EINTR) {
      error = path + ": " + std::strerror(errno);
      break;
    }
    usleep(kPauseMicroseconds);
  }
  close(file);
  return nullptr;
}

AgentLock::~AgentLock() { close(mFile); }

}  // namespace Nodrix
