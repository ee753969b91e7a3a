#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

#include "foundation/ErrorChecks.h"
#include "foundation/GFileSystem.h"
#include "foundation/linux/DeleteFolder.h"
#include "foundation/linux/FileCopy.h"
#include "foundation/linux/FolderWalk.h"
#include "foundation/linux/Place.h"
#include "foundation/linux/SystemErrors.h"

namespace {

constexpr CopyOptions kCopyOfMove = {nullptr, true};

TModuleErrorCode CodeOfMove(TModuleErrorCode code) {
  return code == CoreErrorCodes::kError ? GFileSystem::kMoveFailed : code;
}

// Has nobody put another one in its place or written to it since `before`?
bool IsStill(const Place& place, const struct stat& before) {
  struct stat now {};
  return fstatat(place.folder.Get(), place.name.c_str(), &now, AT_SYMLINK_NOFOLLOW) == 0 &&
         now.st_dev == before.st_dev && now.st_ino == before.st_ino &&
         now.st_size == before.st_size && now.st_mtim.tv_sec == before.st_mtim.tv_sec &&
         now.st_mtim.tv_nsec == before.st_mtim.tv_nsec;
}

TModuleErrorCode CopyThenDeleteFile(const Place& from, const struct stat& source, const Place& to) {
  const bool isLink = S_ISLNK(source.st_mode);
  FileDescriptor file;
  TModuleErrorCode code = 0;
  if (!isLink) code = OpenCopySource(from.folder.Get(), from.name, O_NOFOLLOW, file);
  if (code != 0) return code;
  code = isLink ? CopyLinkTo(from, to, kCopyOfMove) : CopyFileTo(file.Get(), to, kCopyOfMove);
  if (code != 0) return code;
  const bool isDeleted =
      IsStill(from, source) && unlinkat(from.folder.Get(), from.name.c_str(), 0) == 0;
  if (!isDeleted) unlinkat(to.folder.Get(), to.name.c_str(), 0);
  G_CHECK_CONDITION(!isDeleted, GFileSystem::kMoveFailed);
  return 0;
}

TModuleErrorCode CopyThenDeleteFolder(const Place& from, const Place& to) {
  FileDescriptor folder;
  FolderIdentity identity{};
  G_CHECK_CONDITION(!OpenFolderIn(from.folder.Get(), from.name, folder) ||
                        !GetFolderIdentity(folder.Get(), identity),
                    CodeOfSystemError(errno, GFileSystem::kDirectoryNotFound));
  if (const TModuleErrorCode code = CopyFolderTo(std::move(folder), to, kCopyOfMove)) return code;
  const bool isDeleted = DeleteTree(from.folder.Get(), from.name, false, &identity) == 0;
  G_CHECK_CONDITION(!isDeleted, GFileSystem::kMoveFailed);
  return 0;
}

TModuleErrorCode Move(const GFileSystemSpec& source, const GFileSystemSpec& destination,
                      bool isFolder) {
  const TModuleErrorCode codeOfMissing =
      isFolder ? GFileSystem::kDirectoryNotFound : GFileSystem::kFileNotFound;
  Place from;
  Place to;
  struct stat status {};
  if (const TModuleErrorCode code = OpenPlace(source, codeOfMissing, from)) return code;
  G_CHECK_CONDITION(
      fstatat(from.folder.Get(), from.name.c_str(), &status, AT_SYMLINK_NOFOLLOW) != 0,
      CodeOfSystemError(errno, codeOfMissing));
  G_CHECK_CONDITION(S_ISDIR(status.st_mode) != isFolder, codeOfMissing);
  if (const TModuleErrorCode code = OpenFreePlace(destination, to)) return code;
  if (RenameWithoutReplacing(from.folder.Get(), from.name, to, isFolder)) return 0;
  G_CHECK_CONDITION(errno != EXDEV, CodeOfSystemError(errno, codeOfMissing));
  return isFolder ? CopyThenDeleteFolder(from, to) : CopyThenDeleteFile(from, status, to);
}

}  // namespace

TModuleErrorCode GFileSystem::OSMoveFile(const GFileSystemSpec& source,
                                         const GFileSystemSpec& destination) {
  G_CHECK_CALL(CodeOfMove(Move(source, destination, false)));
  return 0;
}

TModuleErrorCode GFileSystem::OSMoveDirectory(const GFileSystemSpec& source,
                                              const GFileSystemSpec& destination) {
  G_CHECK_CALL(CodeOfMove(Move(source, destination, true)));
  return 0;
}
