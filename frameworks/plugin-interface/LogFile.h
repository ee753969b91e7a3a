// The plug-in log on disk: $XDG_STATE_HOME/vendrel/<name>, mode 0600, appended to. A file that has
// reached kMaxBytes becomes <name>.1, in place of an older one. Several processes may write to one
// log. Threads: any; it locks.
#pragma once

#include <cstdint>
#include <mutex>
#include <string>
#include <string_view>

class LogFile {
 public:
  static constexpr std::int64_t kMaxBytes = std::int64_t{4} << 20;

  LogFile() = default;
  ~LogFile();
  LogFile(const LogFile&) = delete;
  LogFile& operator=(const LogFile&) = delete;

  // Only the last component of `name` counts. A code; the log that was open before is closed.
  std::uint32_t Begin(std::string_view name);
  // Writes the text as it is. CoreErrorCodes::kNotInitialized before Begin.
  std::uint32_t Append(std::string_view text);

 private:
  bool Open();
  void Close();
  void RotateIfFull();

  std::mutex mMutex;
  std::string mPath;
  int mFile = -1;
};
