#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

#include "foundation/ErrorChecks.h"
#include "foundation/GFileSystem.h"
#include "foundation/linux/FileCopy.h"
#include "foundation/linux/FolderWalk.h"
#include "foundation/linux/PendingEntry.h"
#include "foundation/linux/SystemErrors.h"

namespace {

constexpr mode_t kWhileCopied = 0700;

TModuleErrorCode CodeOfCopy(int error) {
  return CodeOfSystemError(error, GFileSystem::kDirectoryNotFound);
}

// One folder's tree into another one, which is ours and empty.
class FolderCopy {
 public:
  FolderCopy(FileDescriptor from, FileDescriptor to, const CopyOptions& options)
      : mWalk(std::move(from)), mTo(std::move(to)), mOptions(options) {}

  TModuleErrorCode Run() {
    G_CHECK_CONDITION(!GetFolderIdentity(mTo.Get(), mCopy), CodeOfCopy(errno));
    for (;;) {
      if (IsStopped(mOptions)) return CoreErrorCodes::kStopped;
      const FolderWalk::EStep step = mWalk.Next();
      if (step == FolderWalk::EStep::eEnd) return 0;
      G_CHECK_CONDITION(step == FolderWalk::EStep::eFailed, CodeOfCopy(errno));
      const TModuleErrorCode code = step == FolderWalk::EStep::eEntry ? CopyEntry() : LeaveFolder();
      if (code != 0) return code;
    }
  }

 private:
  TModuleErrorCode CopyEntry() {
    const FolderEntry entry = mWalk.Entry();
    if (entry.type == DT_DIR) return EnterFolder(entry.name);
    if (entry.type == DT_LNK) return CopyLink(entry.name);
    return CopyFile(entry.name);
  }

  TModuleErrorCode EnterFolder(const std::string& name) {
    FolderIdentity entered{};
    G_CHECK_CONDITION(!mWalk.Enter() || !GetFolderIdentity(mWalk.Folder(), entered),
                      CodeOfCopy(errno));
    // A mount can hide that the copy is inside.
    G_CHECK_CONDITION(entered == mCopy, GFileSystem::kInvalidPath);
    G_CHECK_CONDITION(mkdirat(mTo.Get(), name.c_str(), kWhileCopied) != 0, CodeOfCopy(errno));
    G_CHECK_CONDITION(!mTo.Descend(name), CodeOfCopy(errno));
    return 0;
  }

  // Only now may the copy be one that can't be changed.
  TModuleErrorCode LeaveFolder() {
    struct stat status {};
    const std::string name = mWalk.Entry().name;
    G_CHECK_CONDITION(fstatat(mWalk.Folder(), name.c_str(), &status, AT_SYMLINK_NOFOLLOW) != 0,
                      CodeOfCopy(errno));
    const int folder = mTo.Get();
    const FileDescriptor left(fcntl(folder, F_DUPFD_CLOEXEC, 0));
    G_CHECK_CONDITION(!left.IsOpen() || !mTo.Ascend(), CodeOfCopy(errno));
    G_CHECK_CONDITION(!SetPermissions(left.Get(), status.st_mode & kCopiedBits), CodeOfCopy(errno));
    return 0;
  }

  TModuleErrorCode CopyLink(const std::string& name) {
    std::string target;
    G_CHECK_CONDITION(!ReadLink(mWalk.Folder(), name, target), CodeOfCopy(errno));
    G_CHECK_CONDITION(symlinkat(target.c_str(), mTo.Get(), name.c_str()) != 0, CodeOfCopy(errno));
    return 0;
  }

  TModuleErrorCode CopyFile(const std::string& name) {
    FileDescriptor from;
    if (const TModuleErrorCode code = OpenCopySource(mWalk.Folder(), name, O_NOFOLLOW, from)) {
      return code;
    }
    FileDescriptor to(openat(mTo.Get(), name.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC,
                             S_IRUSR | S_IWUSR));
    G_CHECK_CONDITION(!to.IsOpen(), CodeOfCopy(errno));
    // The whole tree waits for the disk at its end.
    if (const TModuleErrorCode code = CopyOpenFile(from.Get(), to.Get(), {mOptions.stop, false})) {
      return code;
    }
    G_CHECK_CONDITION(close(to.Release()) != 0, CodeOfCopy(errno));
    return 0;
  }

  FolderWalk mWalk;
  FolderTrail mTo;
  FolderIdentity mCopy{};
  const CopyOptions& mOptions;
};

// Texts don't tell: links and mounts lead to a folder by many paths.
TModuleErrorCode CheckIsOutside(int source, const Place& to) {
  FolderIdentity sourceIdentity{};
  FolderIdentity above{};
  FolderIdentity here{};
  FileDescriptor folder(fcntl(to.folder.Get(), F_DUPFD_CLOEXEC, 0));
  G_CHECK_CONDITION(!GetFolderIdentity(source, sourceIdentity), CodeOfCopy(errno));
  G_CHECK_CONDITION(!folder.IsOpen() || !GetFolderIdentity(folder.Get(), here), CodeOfCopy(errno));
  for (;;) {
    G_CHECK_CONDITION(here == sourceIdentity, GFileSystem::kInvalidPath);
    folder = FileDescriptor(openat(folder.Get(), "..", O_PATH | O_DIRECTORY | O_CLOEXEC));
    G_CHECK_CONDITION(!folder.IsOpen() || !GetFolderIdentity(folder.Get(), above),
                      CodeOfCopy(errno));
    if (above == here) return 0;  // the root
    here = above;
  }
}

}  // namespace

TModuleErrorCode CopyFolderTo(FileDescriptor from, const Place& to, const CopyOptions& options) {
  if (const TModuleErrorCode code = CheckIsOutside(from.Get(), to)) return code;
  struct stat status {};
  G_CHECK_CONDITION(fstat(from.Get(), &status) != 0, CodeOfCopy(errno));
  PendingEntry copy(to);
  const FileDescriptor folder = copy.MakeFolder();
  G_CHECK_CONDITION(!folder.IsOpen(), CodeOfCopy(errno));
  FileDescriptor top(fcntl(folder.Get(), F_DUPFD_CLOEXEC, 0));
  G_CHECK_CONDITION(!top.IsOpen(), CodeOfCopy(errno));
  if (const TModuleErrorCode code = FolderCopy(std::move(from), std::move(top), options).Run()) {
    return code;
  }
  G_CHECK_CONDITION(!SetPermissions(folder.Get(), status.st_mode & kCopiedBits), CodeOfCopy(errno));
  G_CHECK_CONDITION(options.waitsForDisk && syncfs(folder.Get()) != 0, CodeOfCopy(errno));
  G_CHECK_CONDITION(!copy.Publish(), CodeOfCopy(errno));
  if (options.waitsForDisk) WaitForDisk(to);
  return 0;
}

TModuleErrorCode GFileSystem::OSCopyDirectory(const GFileSystemSpec& source,
                                              const GFileSystemSpec& destination,
                                              GStopCallback* stop) {
  FileDescriptor from(open(source.GetPath().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  Place to;
  G_CHECK_CONDITION(!from.IsOpen(), CodeOfCopy(errno));
  G_CHECK_CALL(OpenFreePlace(destination, to));
  return CopyFolderTo(std::move(from), to, {stop, false});
}
