#include "agent/FolderWalker.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstring>
#include <memory>
#include <set>
#include <utility>

namespace Nodrix {
namespace {

constexpr int kMaxDepth = 64;

struct CloseFolder {
  void operator()(DIR* folder) const { closedir(folder); }
};

FoundFile Described(std::string path, const struct stat& info) {
  return {std::move(path), static_cast<std::uint64_t>(info.st_size),
          std::int64_t{info.st_mtim.tv_sec} * 1'000'000'000 + info.st_mtim.tv_nsec};
}

class Walk {
 public:
  Walk(const std::string& except, const std::atomic<bool>& stopped, std::vector<FoundFile>& files)
      : mExcept(except), mStopped(stopped), mFiles(files) {}

  bool Enter(const std::string& path, int depth) {
    const std::unique_ptr<DIR, CloseFolder> folder(opendir(path.c_str()));
    struct stat info {};
    if (!folder || fstat(dirfd(folder.get()), &info) != 0) return false;
    // Already entered by another way: a link in a circle ends here.
    if (path == mExcept || !mEntered.emplace(info.st_dev, info.st_ino).second) return true;
    std::vector<std::string> below;
    while (const dirent* entry = readdir(folder.get())) {
      if (mStopped) return true;
      Look(dirfd(folder.get()), path, entry->d_name, below);
    }
    if (depth >= kMaxDepth) return true;
    for (const std::string& next : below) Enter(next, depth + 1);
    return true;
  }

 private:
  void Look(int folder, const std::string& path, const char* name,
            std::vector<std::string>& below) {
    if (std::strcmp(name, ".") == 0 || std::strcmp(name, "..") == 0) return;
    if (std::strncmp(name, "._", 2) == 0) return;
    struct stat info {};
    if (fstatat(folder, name, &info, 0) != 0) return;
    std::string full = path.ends_with('/') ? path + name : path + "/" + name;
    if (S_ISDIR(info.st_mode)) {
      below.push_back(std::move(full));
    } else if (S_ISREG(info.st_mode)) {
      mFiles.push_back(Described(std::move(full), info));
    }
  }

  const std::string& mExcept;
  const std::atomic<bool>& mStopped;
  std::vector<FoundFile>& mFiles;
  std::set<std::pair<dev_t, ino_t>> mEntered;
};

}  // namespace

bool DescribeFile(const std::string& path, FoundFile& file) {
  struct stat info {};
  if (stat(path.c_str(), &info) != 0 || !S_ISREG(info.st_mode)) return false;
  file = Described(path, info);
  return true;
}

bool WalkFolder(const std::string& folder, const std::string& except,
                const std::atomic<bool>& stopped, std::vector<FoundFile>& files) {
  return Walk(except, stopped, files).Enter(folder, 0);
}

}  // namespace Nodrix
