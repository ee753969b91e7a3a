#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <memory>

#include "foundation/ErrorChecks.h"
#include "foundation/GFileSystem.h"
#include "foundation/linux/FileCopy.h"
#include "foundation/linux/PendingEntry.h"
#include "foundation/linux/SystemErrors.h"

namespace {

TModuleErrorCode CodeOfReplace(int error) {
  return CodeOfSystemError(error, GFileSystem::kDirectoryNotFound);
}

GFileSystemSpec ResolveLinks(const GFileSystemSpec& spec) {
  const std::unique_ptr<char, decltype(&std::free)> real(realpath(spec.GetPath().c_str(), nullptr),
                                                         &std::free);
  return real ? GFileSystemSpec(real.get()) : spec;
}

// The owner first: giving a file away takes some of its bits.
bool TakeOver(int file, const struct stat& old) {
  struct stat status {};
  if (fstat(file, &status) != 0) return false;
  const bool isSameOwner = status.st_uid == old.st_uid && status.st_gid == old.st_gid;
  if (!isSameOwner && fchown(file, old.st_uid, old.st_gid) != 0) return false;
  return SetPermissions(file, old.st_mode & 07777);
}

}  // namespace

TModuleErrorCode GFileSystem::OSReplaceFile(const GFileSystemSpec& spec,
                                            std::span<const unsigned char> bytes) {
  Place place;
  G_CHECK_CALL(OpenPlace(ResolveLinks(spec), kDirectoryNotFound, place));
  struct stat status {};
  const bool exists =
      fstatat(place.folder.Get(), place.name.c_str(), &status, AT_SYMLINK_NOFOLLOW) == 0;
  G_CHECK_CONDITION(exists && !S_ISREG(status.st_mode), kInvalidPath);
  PendingEntry pending(place);
  FileDescriptor file = pending.MakeFile();
  G_CHECK_CONDITION(!file.IsOpen(), CodeOfReplace(errno));
  G_CHECK_CONDITION(exists && !TakeOver(file.Get(), status), CodeOfReplace(errno));
  G_CHECK_CONDITION(
      !WriteAll(file.Get(), reinterpret_cast<const char*>(bytes.data()), bytes.size()),
      CodeOfReplace(errno));
  G_CHECK_CONDITION(fsync(file.Get()) != 0, CodeOfReplace(errno));
  G_CHECK_CONDITION(close(file.Release()) != 0, CodeOfReplace(errno));
  G_CHECK_CONDITION(!pending.PublishInPlaceOfOld(), CodeOfReplace(errno));
  WaitForDisk(place);
  return 0;
}
