#include "foundation/linux/FolderWalk.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <memory>

namespace {

constexpr int kOpenFolder = O_RDONLY | O_DIRECTORY | O_CLOEXEC;

struct StreamCloser {
  void operator()(DIR* stream) const { closedir(stream); }
};

// A file system need not tell the type with the name.
bool FindType(int folder, const char* name, unsigned char& type) {
  if (type != DT_UNKNOWN) return true;
  struct stat status {};
  if (fstatat(folder, name, &status, AT_SYMLINK_NOFOLLOW) != 0) return false;
  type = static_cast<unsigned char>(IFTODT(status.st_mode));
  return true;
}

}  // namespace

bool ListFolder(int folder, std::vector<FolderEntry>& outEntries) {
  outEntries.clear();
  // Of its own, since a descriptor has one place in its list.
  FileDescriptor again(openat(folder, ".", kOpenFolder));
  if (!again.IsOpen()) return false;
  const std::unique_ptr<DIR, StreamCloser> stream(fdopendir(again.Get()));
  if (!stream) return false;
  again.Release();
  for (;;) {
    errno = 0;
    const dirent* entry = readdir(stream.get());
    if (entry == nullptr) break;
    const std::string name = entry->d_name;
    unsigned char type = entry->d_type;
    if (name == "." || name == "..") continue;
    if (FindType(folder, entry->d_name, type)) {
      outEntries.push_back({name, type});
    } else if (errno != ENOENT) {
      return false;
    }
  }
  if (errno != 0) return false;
  std::sort(outEntries.begin(), outEntries.end(),
            [](const FolderEntry& a, const FolderEntry& b) { return a.name < b.name; });
  return true;
}

bool GetFolderIdentity(int folder, FolderIdentity& outIdentity) {
  struct stat status {};
  if (fstat(folder, &status) != 0) return false;
  outIdentity = {status.st_dev, status.st_ino};
  return true;
}

bool OpenFolderIn(int folder, const std::string& name, FileDescriptor& outFolder) {
  outFolder = FileDescriptor(openat(folder, name.c_str(), kOpenFolder | O_NOFOLLOW));
  return outFolder.IsOpen();
}

bool FolderTrail::Descend(const std::string& name) {
  FileDescriptor below;
  return OpenFolderIn(Get(), name, below) && Descend(std::move(below));
}

bool FolderTrail::Descend(FileDescriptor below) {
  FolderIdentity here{};
  if (!GetFolderIdentity(Get(), here)) return false;
  // Fails here, and not on the way back, in a folder that may be listed but not searched.
  struct stat above {};
  if (fstatat(below.Get(), "..", &above, 0) != 0) return false;
  if (here != FolderIdentity{above.st_dev, above.st_ino}) {
    errno = ESTALE;
    return false;
  }
  mAbove.push_back(here);
  mFolder = std::move(below);
  return true;
}

bool FolderTrail::Ascend() {
  FileDescriptor above(openat(Get(), "..", kOpenFolder));
  FolderIdentity identity{};
  if (!above.IsOpen() || !GetFolderIdentity(above.Get(), identity)) return false;
  if (identity != mAbove.back()) {
    errno = ESTALE;
    return false;
  }
  mAbove.pop_back();
  mFolder = std::move(above);
  return true;
}

FolderWalk::EStep FolderWalk::Next() {
  if (mLost != 0) {
    errno = mLost;
    return EStep::eFailed;
  }
  if (mLevels.empty()) {
    mLevels.emplace_back();
    if (!ListFolder(Folder(), mLevels.back().entries)) return EStep::eFailed;
  }
  Level& level = mLevels.back();
  if (level.next < level.entries.size()) {
    ++level.next;
    return EStep::eEntry;
  }
  if (mTrail.Depth() == 0) return EStep::eEnd;
  if (!mTrail.Ascend()) {
    mLost = errno;
    return EStep::eFailed;
  }
  mLevels.pop_back();
  return EStep::eLeft;
}

bool FolderWalk::Enter() {
  FileDescriptor folder;
  Level below;
  if (!OpenFolderIn(Folder(), Entry().name, folder) || !ListFolder(folder.Get(), below.entries) ||
      !mTrail.Descend(std::move(folder))) {
    return false;
  }
  mLevels.push_back(std::move(below));
  return true;
}
