#include "foundation/linux/OpenFile.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>

FileDescriptor OpenWithoutWaiting(int folder, const char* path, int flags, mode_t newMode) {
  FileDescriptor file(openat(folder, path, flags | O_CLOEXEC | O_NOCTTY | O_NONBLOCK, newMode));
  struct stat status {};
  if (file.IsOpen() || errno != EWOULDBLOCK) return file;
  // A lease: file servers have them on what their clients cache.
  if (fstatat(folder, path, &status, 0) != 0 || !S_ISREG(status.st_mode)) {
    errno = EWOULDBLOCK;
    return file;
  }
  return FileDescriptor(openat(folder, path, flags | O_CLOEXEC | O_NOCTTY, newMode));
}
