#include <sys/stat.h>

#include <cerrno>

#include "foundation/ErrorChecks.h"
#include "foundation/GFileSystem.h"
#include "foundation/linux/SystemErrors.h"

namespace {

constexpr mode_t kAllBits = 07777;
constexpr mode_t kWrite = S_IWUSR | S_IWGRP | S_IWOTH;
constexpr mode_t kRead = S_IRUSR | S_IRGRP | S_IROTH;

TModuleErrorCode ChangeBits(const GFileSystemSpec& spec, mode_t added, mode_t removed) {
  const char* path = spec.GetPath().c_str();
  struct stat status {};
  G_CHECK_CONDITION(stat(path, &status) != 0, CodeOfSystemError(errno, GFileSystem::kFileNotFound));
  G_CHECK_CONDITION(S_ISDIR(status.st_mode), GFileSystem::kFileNotFound);
  const mode_t bits = ((status.st_mode & kAllBits) | added) & ~removed;
  G_CHECK_CONDITION(chmod(path, bits) != 0, CodeOfSystemError(errno, GFileSystem::kFileNotFound));
  return 0;
}

}  // namespace

TModuleErrorCode GFileSystem::OSMakeFileWritable(const GFileSystemSpec& spec) {
  return ChangeBits(spec, S_IWUSR, 0);
}

TModuleErrorCode GFileSystem::OSMakeFileWorldWritable(const GFileSystemSpec& spec) {
  return ChangeBits(spec, kWrite, 0);
}

TModuleErrorCode GFileSystem::OSMakeFileReadOnly(const GFileSystemSpec& spec) {
  return ChangeBits(spec, 0, kWrite);
}

TModuleErrorCode GFileSystem::OSMakeFileReadable(const GFileSystemSpec& spec, bool readable) {
  return readable ? ChangeBits(spec, S_IRUSR, 0) : ChangeBits(spec, 0, kRead);
}
