#include "frameworks/plugin-interface/LogFile.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <utility>

#include "agent/library/Paths.h"
#include "foundation/ErrorCodes.h"

LogFile::~LogFile() { Close(); }

std::uint32_t LogFile::Begin(std::string_view name) {
  name.remove_prefix(name.rfind('/') + 1);  // npos + 1 is 0
  if (name.empty() || name == "." || name == "..") return CoreErrorCodes::kInvalidParam;
  const std::lock_guard lock(mMutex);
  Close();
  const std::string folder = Nodrix::StateFolder();
  std::string ignored;
  if (!Nodrix::MakeFolder(folder, ignored)) return CoreErrorCodes::kError;
  mPath = folder + "/" + std::string(name);
  return Open() ? CoreErrorCodes::kSuccess : CoreErrorCodes::kError;
}

std::uint32_t LogFile::Append(std::string_view text) {
  const std::lock_guard lock(mMutex);
  if (mFile < 0) return CoreErrorCodes::kNotInitialized;
  RotateIfFull();
  while (!text.empty() && mFile >= 0) {
    const ssize_t written = write(mFile, text.data(), text.size());
    if (written < 0 && errno == EINTR) continue;
    if (written <= 0) return CoreErrorCodes::kError;
    text.remove_prefix(static_cast<std::size_t>(written));
  }
  return mFile >= 0 ? CoreErrorCodes::kSuccess : CoreErrorCodes::kError;
}

// Anything but a plain file is refused: a link leads elsewhere, and a pipe would block the host or
// raise a signal in it.
bool LogFile::Open() {
  const int flags = O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK;
  mFile = open(mPath.c_str(), flags, 0600);
  struct stat info {};
  if (mFile >= 0 && (fstat(mFile, &info) != 0 || !S_ISREG(info.st_mode) ||
                     ((info.st_mode & 077) != 0 && fchmod(mFile, 0600) != 0))) {
    Close();
  }
  return mFile >= 0;
}

void LogFile::Close() {
  if (mFile >= 0) close(std::exchange(mFile, -1));
}

void LogFile::RotateIfFull() {
  struct stat ours {};
  if (fstat(mFile, &ours) != 0 || ours.st_size < kMaxBytes) return;
  // One process renames; the others find another file, or none, under the name.
  flock(mFile, LOCK_EX);
  struct stat named {};
  if (lstat(mPath.c_str(), &named) == 0 && named.st_dev == ours.st_dev &&
      named.st_ino == ours.st_ino) {
    rename(mPath.c_str(), (mPath + ".1").c_str());
  }
  Close();  // ends the lock
  Open();
}
