#include "foundation/linux/PendingEntry.h"

#include <fcntl.h>
#include <sys/random.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cinttypes>
#include <cstdint>
#include <cstdio>

#include "foundation/linux/DeleteFolder.h"
#include "foundation/linux/FolderWalk.h"

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

}  // namespace

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
