// The file that decides which process is the one agent of its user.
#pragma once

#include <memory>
#include <string>

namespace Nodrix {

class AgentLock {
 public:
  // Null if another agent holds it, or with a reason in `error`. Waits a moment for an agent that
  // is just ending.
  static std::unique_ptr<AgentLock> Take(const std::string& path, std::string& error);
  ~AgentLock();
  AgentLock(const AgentLock&) = delete;
  AgentLock& operator=(const AgentLock&) = delete;

 private:
  explicit AgentLock(int file) : mFile(file) {}
  int mFile;
};

}  // namespace Nodrix
