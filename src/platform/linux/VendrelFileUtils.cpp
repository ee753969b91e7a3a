#include "platform/VendrelFileUtils.h"

#include <fcntl.h>
#include <sys/stat.h>

namespace VendrelFileUtils {

std::time_t GetFileModificationDate(const std::string& path) {
  struct stat info {};
  return stat(path.c_str(), &info) == 0 ? info.st_mtime : 0;
}

bool SetFileModificationDate(const std::string& path, std::time_t date) {
  const timespec times[2] = {{0, UTIME_OMIT}, {date, 0}};
  return utimensat(AT_FDCWD, path.c_str(), times, 0) == 0;
}

bool FileExistsAtPath(const std::string& path) {
  struct stat info {};
  return stat(path.c_str(), &info) == 0;
}

}  // namespace VendrelFileUtils
