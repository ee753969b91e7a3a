#include "foundation/linux/Place.h"

#include <fcntl.h>
#include <stdio.h>
#include <sys/random.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cinttypes>
#include <cstdint>
#include <cstdio>

#include "foundation/ErrorChecks.h"
#include "foundation/GFileSystem.h"
#include "foundation/linux/DeleteFolder.h"
#include "foundation/linux/FolderWalk.h"
#include "foundation/linux/SystemErrors.h"

namespace {

constexpr mode_t kPrivateFileMode = 0600;
constexpr mode_t kPrivateFolderMode = 0700;

// Short whatever the name of the place, which may have all of the 255 bytes there are.
std::string NewTemporaryName() {
  std::uint64_t number = 0;
  // With so few bytes it neither fails nor is short; and nobody's safety hangs on it, since an
  // existing name is never taken.
  if (getrandom(&number, sizeof(number), 0) < 0) number = static_cast<std::uint64_t>(getpid());
  char name[32];
  std::snprintf(name, sizeof(name), ".copy-%016" PRIx64, number);
  return name;
}

bool Exists(const Place& place) {
  struct stat status {};
  return fstatat(place.folder.Get(), place.name.c_str(), &status, AT_SYMLINK_NOFOLLOW) == 0;
}

bool RenameOver(int fromFolder, const std::string& fromName, const Place& to) {
  return renameat(fromFolder, fromName.c_str(), to.folder.Get(), to.name.c_str()) == 0;
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

TModuleErrorCode OpenPlace(const GFileSystemSpec& spec, TModuleErrorCode codeOfMissing,
                           Place& outPlace) {
  GFileSystemSpec parent = spec;
  parent.RemoveLastPathComponent();
  outPlace.name = spec.GetLastPathComponent();
  G_CHECK_CONDITION(outPlace.name.empty(), GFileSystem::kInvalidPath);
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
  if (errno != EPERM && errno != EOPNOTSUPP) return false;
  // No hard links either: the best that there is.
  if (Exists(to)) {
    errno = EEXIST;
    return false;
  }
  return RenameOver(fromFolder, fromName, to);
}

PendingEntry::PendingEntry(const Place& place) : mPlace(place), mName(NewTemporaryName()) {}

PendingEntry::~PendingEntry() {
  const int error = errno;
  if (mState == EState::eFile) unlinkat(mPlace.folder.Get(), mName.c_str(), 0);
  if (mState == EState::eFolder) DeleteTree(mPlace.folder.Get(), mName, true);
  errno = error;
}

FileDescriptor PendingEntry::MakeFile() {
  FileDescriptor file(openat(mPlace.folder.Get(), mName.c_str(),
                             O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, kPrivateFileMode));
  if (file.IsOpen()) mState = EState::eFile;
  return file;
}

FileDescriptor PendingEntry::MakeFolder() {
  FileDescriptor folder;
  if (mkdirat(mPlace.folder.Get(), mName.c_str(), kPrivateFolderMode) != 0) return folder;
  mState = EState::eFolder;
  OpenFolderIn(mPlace.folder.Get(), mName, folder);
  return folder;
}

bool PendingEntry::MakeLink(const std::string& target) {
  if (symlinkat(target.c_str(), mPlace.folder.Get(), mName.c_str()) != 0) return false;
  mState = EState::eFile;
  return true;
}

bool PendingEntry::Publish() {
  if (!RenameWithoutReplacing(mPlace.folder.Get(), mName, mPlace, mState == EState::eFolder)) {
    return false;
  }
  mState = EState::eNone;
  return true;
}

bool PendingEntry::PublishInPlaceOfOld() {
  if (!RenameOver(mPlace.folder.Get(), mName, mPlace)) return false;
  mState = EState::eNone;
  return true;
}
