#include <dirent.h>
#include <fcntl.h>
#include <unistd.h>

#include <cerrno>

#include "foundation/ErrorChecks.h"
#include "foundation/GEnumFolderContentsCallback.h"
#include "foundation/GFileSystem.h"
#include "foundation/GString.h"
#include "foundation/linux/FolderWalk.h"
#include "foundation/linux/SystemErrors.h"

namespace {

using Kind = GEnumFolderContentsCallback::EKind;

TModuleErrorCode CodeOfEnumeration(int error) {
  return CodeOfSystemError(error, GFileSystem::kDirectoryNotFound);
}

Kind KindOfType(unsigned char type) {
  switch (type) {
    case DT_REG:
      return Kind::eFile;
    case DT_DIR:
      return Kind::eFolder;
    case DT_LNK:
      return Kind::eLink;
    default:
      return Kind::eOther;
  }
}

TModuleErrorCode CheckName(const std::string& name) {
  G_CHECK_CONDITION(!GString::IsValidUtf8(name), GFileSystem::kCouldNotDecodeInput);
  return 0;
}

class Enumeration {
 public:
  Enumeration(FileDescriptor top, std::string path, GEnumFolderContentsCallback& callback,
              bool recursive)
      : mWalk(std::move(top)),
        mPath(std::move(path)),
        mCallback(callback),
        mIsRecursive(recursive) {}

  TModuleErrorCode Run() {
    for (;;) {
      const FolderWalk::EStep step = mWalk.Next();
      if (step == FolderWalk::EStep::eEnd) return mCodeOfSkipped;
      G_CHECK_CONDITION(step == FolderWalk::EStep::eFailed, CodeOfEnumeration(errno));
      if (step == FolderWalk::EStep::eLeft) {
        mPath.resize(mPath.size() - mWalk.Entry().name.size() - 1);
      } else if (!TellEntry()) {
        return GFileSystem::kEnumFolderContentsCanceled;
      }
    }
  }

 private:
  // False if the callback wants no more.
  bool TellEntry() {
    const FolderEntry entry = mWalk.Entry();
    if (const TModuleErrorCode code = CheckName(entry.name)) {
      if (mCodeOfSkipped == 0) mCodeOfSkipped = code;
      return true;
    }
    const Kind kind = KindOfType(entry.type);
    if (!mCallback.OnEntry(GFileSystemSpec(mPath + "/" + entry.name), kind)) return false;
    if (kind == Kind::eFolder && mIsRecursive) EnterFolder(entry.name);
    return true;
  }

  void EnterFolder(const std::string& name) {
    const TModuleErrorCode code = TryToEnter();
    if (code == 0) mPath.append("/").append(name);
    // Gone meanwhile: nothing is missing.
    const bool isMissing = code == GFileSystem::kDirectoryNotFound;
    if (mCodeOfSkipped == 0 && !isMissing) mCodeOfSkipped = code;
  }

  TModuleErrorCode TryToEnter() {
    G_CHECK_CONDITION(!mWalk.Enter(), CodeOfEnumeration(errno));
    return 0;
  }

  FolderWalk mWalk;
  std::string mPath;  // of the walk's folder; empty for the root
  GEnumFolderContentsCallback& mCallback;
  bool mIsRecursive;
  TModuleErrorCode mCodeOfSkipped = 0;
};

}  // namespace

TModuleErrorCode GFileSystem::OSEnumFolderContents(const GFileSystemSpec& spec,
                                                   GEnumFolderContentsCallback& callback,
                                                   bool recursive) {
  FileDescriptor top(open(spec.GetPath().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  G_CHECK_CONDITION(!top.IsOpen(), CodeOfEnumeration(errno));
  const std::string path = spec.GetPath() == "/" ? std::string() : spec.GetPath();
  return Enumeration(std::move(top), path, callback, recursive).Run();
}
