// Places where files can't be had or don't fit, for one test each.
#pragma once

#include <sched.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <string>

// A disk of a few pages on `folder`, where the rights allow one.
class SmallDisk {
 public:
  explicit SmallDisk(const std::string& folder) : mFolder(folder) {
    mIsThere = unshare(CLONE_NEWNS) == 0 &&
               mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 &&
               mount("tmpfs", folder.c_str(), "tmpfs", 0, "size=64k") == 0;
  }
  ~SmallDisk() {
    if (mIsThere) umount2(mFolder.c_str(), MNT_DETACH);
  }
  SmallDisk(const SmallDisk&) = delete;
  SmallDisk& operator=(const SmallDisk&) = delete;
  bool IsThere() const { return mIsThere; }

 private:
  std::string mFolder;
  bool mIsThere = false;
};

// No file grows beyond this.
class FileSizeLimit {
 public:
  explicit FileSizeLimit(rlim_t bytes) : mHandler(std::signal(SIGXFSZ, SIG_IGN)) {
    getrlimit(RLIMIT_FSIZE, &mBefore);
    const rlimit limit{bytes, mBefore.rlim_max};
    setrlimit(RLIMIT_FSIZE, &limit);
  }
  ~FileSizeLimit() {
    setrlimit(RLIMIT_FSIZE, &mBefore);
    std::signal(SIGXFSZ, mHandler);
  }
  FileSizeLimit(const FileSizeLimit&) = delete;
  FileSizeLimit& operator=(const FileSizeLimit&) = delete;

 private:
  void (*mHandler)(int);
  rlimit mBefore{};
};

// Root is refused nothing, so it acts as nobody.
class AsNobody {
 public:
  AsNobody() {
    if (geteuid() == 0) mIsChanged = seteuid(65534) == 0;
  }
  ~AsNobody() {
    if (mIsChanged && seteuid(0) != 0) std::abort();
  }
  AsNobody(const AsNobody&) = delete;
  AsNobody& operator=(const AsNobody&) = delete;

 private:
  bool mIsChanged = false;
};
