#include "foundation/linux/DeleteFolder.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

#include "foundation/ErrorChecks.h"
#include "foundation/GFileSystem.h"
#include "foundation/linux/FolderWalk.h"
#include "foundation/linux/Place.h"
#include "foundation/linux/SystemErrors.h"

namespace {

constexpr mode_t kOwnerMayAll = 0700;

TModuleErrorCode CodeOfDelete(int error) {
  return CodeOfSystemError(error, GFileSystem::kDirectoryNotFound);
}

// What somebody else deleted meanwhile is gone as well.
TModuleErrorCode DeleteIn(int folder, const std::string& name, int flags) {
  const bool isGone = unlinkat(folder, name.c_str(), flags) == 0 || errno == ENOENT;
  G_CHECK_CONDITION(!isGone, CodeOfDelete(errno));
  return 0;
}

void LetOwnerChange(int folder, const std::string& name) {
  fchmodat(folder, name.c_str(), kOwnerMayAll, AT_SYMLINK_NOFOLLOW);
}

// Kernels before 5.8 don't tell.
bool IsMountPoint(int folder, const std::string& name) {
  struct statx status {};
  return statx(folder, name.c_str(), AT_SYMLINK_NOFOLLOW | AT_NO_AUTOMOUNT, 0, &status) == 0 &&
         (status.stx_attributes & STATX_ATTR_MOUNT_ROOT) != 0;
}

TModuleErrorCode DeleteEntry(FolderWalk& walk, bool force) {
  const FolderEntry entry = walk.Entry();
  if (entry.type != DT_DIR) return DeleteIn(walk.Folder(), entry.name, 0);
  G_CHECK_CONDITION(IsMountPoint(walk.Folder(), entry.name), GFileSystem::kFileIsLocked);
  if (force) LetOwnerChange(walk.Folder(), entry.name);
  if (walk.Enter()) return 0;
  const int error = errno;
  // A link or file took its place.
  if (error == ENOTDIR || error == ELOOP) return DeleteIn(walk.Folder(), entry.name, 0);
  // It can't be read: then it goes only if it is empty.
  const bool isGone =
      unlinkat(walk.Folder(), entry.name.c_str(), AT_REMOVEDIR) == 0 || errno == ENOENT;
  G_CHECK_CONDITION(!isGone, CodeOfDelete(errno == ENOTEMPTY ? error : errno));
  return 0;
}

TModuleErrorCode DeleteContents(FileDescriptor folder, bool force) {
  FolderWalk walk(std::move(folder));
  for (;;) {
    const FolderWalk::EStep step = walk.Next();
    TModuleErrorCode code = 0;
    if (step == FolderWalk::EStep::eEnd) return 0;
    G_CHECK_CONDITION(step == FolderWalk::EStep::eFailed, CodeOfDelete(errno));
    if (step == FolderWalk::EStep::eEntry) code = DeleteEntry(walk, force);
    if (step == FolderWalk::EStep::eLeft) {
      code = DeleteIn(walk.Folder(), walk.Entry().name, AT_REMOVEDIR);
    }
    if (code != 0) return code;
  }
}

}  // namespace

TModuleErrorCode DeleteTree(int parent, const std::string& name, bool force,
                            const FolderIdentity* expected) {
  G_CHECK_CONDITION(IsMountPoint(parent, name), GFileSystem::kFileIsLocked);
  if (force) LetOwnerChange(parent, name);
  FileDescriptor folder;
  FolderIdentity identity{};
  // ELOOP and ENOTDIR: a link.
  G_CHECK_CONDITION(
      !OpenFolderIn(parent, name, folder) || !GetFolderIdentity(folder.Get(), identity),
      CodeOfDelete(errno == ELOOP ? ENOTDIR : errno));
  G_CHECK_CONDITION(expected != nullptr && identity != *expected, CodeOfDelete(ESTALE));
  if (const TModuleErrorCode code = DeleteContents(std::move(folder), force)) return code;
  return DeleteIn(parent, name, AT_REMOVEDIR);
}

TModuleErrorCode GFileSystem::OSDeleteDirectory(const GFileSystemSpec& spec, bool recursive) {
  Place place;
  G_CHECK_CALL(OpenPlace(spec, kDirectoryNotFound, place));
  if (recursive) return DeleteTree(place.folder.Get(), place.name, false);
  G_CHECK_CONDITION(unlinkat(place.folder.Get(), place.name.c_str(), AT_REMOVEDIR) != 0,
                    CodeOfDelete(errno == EEXIST ? ENOTEMPTY : errno));
  return 0;
}
