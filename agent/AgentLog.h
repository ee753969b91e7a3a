// The agent's log: a file of lines with their time, and one older file, each up to 1 MB.
//
// Threads: any.
#pragma once

#include <cstddef>
#include <cstdio>
#include <mutex>
#include <string>

namespace Nodrix {

class AgentLog {
 public:
  // A log that can't be opened stays silent.
  explicit AgentLog(std::string path);
  ~AgentLog();
  AgentLog(const AgentLog&) = delete;
  AgentLog& operator=(const AgentLog&) = delete;

  void Write(const std::string& text);

 private:
  void Open();

  const std::string mPath;
  std::mutex mMutex;
  std::FILE* mFile = nullptr;
  std::size_t mSize = 0;
};

}  // namespace Nodrix
