#include "foundation/GFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

#include "foundation/ErrorChecks.h"
#include "foundation/GFileSystem.h"
#include "foundation/linux/OpenFile.h"
#include "foundation/linux/SystemErrors.h"

namespace {

constexpr mode_t kNewFileMode = 0666;  // less the process's mask

int OpenFlags(const std::string& modeString) {
  const bool isBoth = modeString.find('+') != std::string::npos;
  switch (modeString[0]) {
    case 'r':
      return isBoth ? O_RDWR : O_RDONLY;
    case 'w':
      return (isBoth ? O_RDWR : O_WRONLY) | O_CREAT | O_TRUNC;
    default:
      return (isBoth ? O_RDWR : O_WRONLY) | O_CREAT | O_APPEND;
  }
}

bool IsRegularFile(int descriptor) {
  struct stat status {};
  return fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode);
}

}  // namespace

// Always binary here.
std::string GFile::OSGetModeString(const std::string& modeString) {
  return modeString.empty() ? modeString : modeString + "b";
}

std::FILE* GFile::OSOpen(const std::string& path, const std::string& modeString) {
  errno = EINVAL;
  if (modeString.empty()) return nullptr;
  FileDescriptor file =
      OpenWithoutWaiting(AT_FDCWD, path.c_str(), OpenFlags(modeString), kNewFileMode);
  if (!file.IsOpen()) return nullptr;
  errno = EINVAL;
  if (!IsRegularFile(file.Get())) return nullptr;
  std::FILE* stream = fdopen(file.Get(), modeString.c_str());
  if (stream != nullptr) file.Release();
  return stream;
}

std::string GFile::OSGetResourceForkSuffix() { return {}; }

TModuleErrorCode GFile::OSSetFileSize(unsigned long long size) {
  G_CHECK_CONDITION(0 != ftruncate(fileno(mpFile), static_cast<off_t>(size)),
                    OSGetCodeOfFailedWrite());
  return 0;
}

TModuleErrorCode GFile::OSGetCodeOfFailedWrite() {
  return IsOutOfRoom(errno) ? GFileSystem::kDiskFull : CoreErrorCodes::kError;
}
