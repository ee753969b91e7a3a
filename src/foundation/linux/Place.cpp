#include "foundation/linux/Place.h"

#include <fcntl.h>
#include <stdio.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

#include "foundation/ErrorChecks.h"
#include "foundation/GFileSystem.h"
#include "foundation/linux/SystemErrors.h"

namespace {

constexpr mode_t kPrivateFolderMode = 0700;

bool Exists(const Place& place) {
  struct stat status {};
  return fstatat(place.folder.Get(), place.name.c_str(), &status, AT_SYMLINK_NOFOLLOW) == 0;
}

// An existing empty folder may be replaced by a folder: our own is put there to hold the name.
bool RenameFolderOntoOwn(int fromFolder, const std::string& fromName, const Place& to) {
  if (mkdirat(to.folder.Get(), to.name.c_str(), kPrivateFolderMode) != 0) return false;
  if (RenameOver(fromFolder, fromName, to)) return true;
  const int error = errno;
  unlinkat(to.folder.Get(), to.name.c_str(), AT_REMOVEDIR);
  errno = error;
  return false;
}

bool LinkAndUnlink(int fromFolder, const std::string& fromName, const Place& to) {
  if (linkat(fromFolder, fromName.c_str(), to.folder.Get(), to.name.c_str(), 0) != 0) return false;
  if (unlinkat(fromFolder, fromName.c_str(), 0) == 0) return true;
  const int error = errno;
  unlinkat(to.folder.Get(), to.name.c_str(), 0);
  errno = error;
  return false;
}

}  // namespace

bool RenameOver(int fromFolder, const std::string& fromName, const Place& to) {
  return renameat(fromFolder, fromName.c_str(), to.folder.Get(), to.name.c_str()) == 0;
}

TModuleErrorCode OpenPlace(const GFileSystemSpec& spec, TModuleErrorCode codeOfMissing,
                           Place& outPlace) {
  GFileSystemSpec parent = spec;
  parent.RemoveLastPathComponent();
  outPlace.name = spec.GetLastPathComponent();
  const bool isName = !outPlace.name.empty() && outPlace.name != "." && outPlace.name != "..";
  G_CHECK_CONDITION(!isName, GFileSystem::kInvalidPath);
  outPlace.folder =
      FileDescriptor(open(parent.GetPath().c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
  G_CHECK_CONDITION(!outPlace.folder.IsOpen(), CodeOfSystemError(errno, codeOfMissing));
  return 0;
}

TModuleErrorCode OpenFreePlace(const GFileSystemSpec& spec, Place& outPlace) {
  if (const TModuleErrorCode code = OpenPlace(spec, GFileSystem::kDirectoryNotFound, outPlace)) {
    return code;
  }
  G_CHECK_CONDITION(Exists(outPlace), GFileSystem::kFileOrDirectoryAlreadyExists);
  G_CHECK_CONDITION(errno != ENOENT, CodeOfSystemError(errno, GFileSystem::kDirectoryNotFound));
  return 0;
}

bool RenameWithoutReplacing(int fromFolder, const std::string& fromName, const Place& to,
                            bool isFolder) {
  if (renameat2(fromFolder, fromName.c_str(), to.folder.Get(), to.name.c_str(), RENAME_NOREPLACE) ==
      0) {
    return true;
  }
  // Network and user-space file systems may not have it.
  if (errno != EINVAL && errno != ENOSYS) return false;
  if (isFolder) return RenameFolderOntoOwn(fromFolder, fromName, to);
  if (LinkAndUnlink(fromFolder, fromName, to)) return true;
  // EMLINK: no more of them.
  if (errno != EPERM && errno != EOPNOTSUPP && errno != ENOSYS && errno != EMLINK) return false;
  // No hard links either: the best that there is.
  if (Exists(to)) {
    errno = EEXIST;
    return false;
  }
  return RenameOver(fromFolder, fromName, to);
}
