#include "agent/Activator.h"

#include <dirent.h>
#include <fcntl.h>
#include <linux/fs.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>

namespace Nodrix {
namespace {

constexpr std::size_t kMaxFileName = 255;
constexpr std::size_t kCopyBuffer = 256 << 10;

class File {
 public:
  explicit File(int number) : mNumber(number) {}
  ~File() { Close(); }
  File(const File&) = delete;
  File& operator=(const File&) = delete;
  int Number() const { return mNumber; }
  bool IsOpen() const { return mNumber >= 0; }
  bool Close() {
    const bool good = mNumber < 0 || close(mNumber) == 0;
    mNumber = -1;
    return good;
  }

 private:
  int mNumber;
};

std::string ParentOf(const std::string& path) { return path.substr(0, path.find_last_of('/')); }

// Folders that every application may look into.
bool MakeVisibleFolder(const std::string& path) {
  struct stat info {};
  if (stat(path.c_str(), &info) == 0) return S_ISDIR(info.st_mode);
  const std::string parent = ParentOf(path);
  if (!parent.empty() && !MakeVisibleFolder(parent)) return false;
  return (mkdir(path.c_str(), 0755) == 0 && chmod(path.c_str(), 0755) == 0) || errno == EEXIST;
}

bool WriteAll(int file, const char* bytes, std::size_t count) {
  while (count > 0) {
    const ssize_t written = write(file, bytes, count);
    if (written < 0 && errno == EINTR) continue;
    if (written <= 0) return false;
    bytes += written;
    count -= static_cast<std::size_t>(written);
  }
  return true;
}

bool CopyByHand(int from, int to) {
  const auto buffer = std::make_unique<std::array<char, kCopyBuffer>>();
  for (;;) {
    const ssize_t got = read(from, buffer->data(), buffer->size());
    if (got < 0 && errno == EINTR) continue;
    if (got <= 0) return got == 0;
    if (!WriteAll(to, buffer->data(), static_cast<std::size_t>(got))) return false;
  }
}

// A clone where the file system can, else a copy, by the kernel where that works.
bool CopyContents(int from, int to) {
  if (ioctl(to, FICLONE, from) == 0) return true;
  bool started = false;
  for (;;) {
    const ssize_t copied = copy_file_range(from, nullptr, to, nullptr, 1 << 30, 0);
    if (copied > 0) {
      started = true;
    } else if (copied == 0 && started) {
      return true;
    } else if (copied < 0 && errno == EINTR) {
      continue;
    } else {
      // Not here, or not between these two. Both offsets stand where the copy ended.
      return CopyByHand(from, to);
    }
  }
}

bool IsShardName(const std::string& name) {
  return name.size() == 2 && name.find_first_not_of("0123456789abcdef") == std::string::npos;
}

// The names in a folder, without "." and "..".
std::vector<std::string> NamesIn(const std::string& folder) {
  std::vector<std::string> names;
  DIR* opened = opendir(folder.c_str());
  if (opened == nullptr) return names;
  while (const dirent* entry = readdir(opened)) {
    if (std::strcmp(entry->d_name, ".") != 0 && std::strcmp(entry->d_name, "..") != 0) {
      names.emplace_back(entry->d_name);
    }
  }
  closedir(opened);
  return names;
}

}  // namespace

std::string Activator::PathFor(std::int64_t file, const std::string& name) const {
  char shard[8];
  // IDs are given in order: their low byte spreads files evenly.
  std::snprintf(shard, sizeof shard, "%02x", static_cast<unsigned>(file & 0xFF));
  std::string leaf = std::to_string(file) + "-";
  for (const char c : name) {
    leaf += c == '/' || static_cast<unsigned char>(c) < 0x20 || c == 0x7F ? '_' : c;
  }
  if (leaf.size() > kMaxFileName) {
    // The ending says to some applications what the file is.
    const auto dot = leaf.find_last_of('.');
    const std::string ending =
        dot != std::string::npos && leaf.size() - dot <= 8 ? leaf.substr(dot) : std::string();
    std::size_t end = kMaxFileName - ending.size();
    while ((static_cast<unsigned char>(leaf[end]) & 0xC0) == 0x80) --end;
    leaf = leaf.substr(0, end) + ending;
  }
  return mFolder + "/" + shard + "/" + leaf;
}

Activator::Result Activator::Install(const std::string& source, const std::string& path,
                                     std::string& error) {
  if (access(path.c_str(), F_OK) == 0) return Result::eDone;
  const File from(open(source.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY));
  struct stat info {};
  if (!from.IsOpen() || fstat(from.Number(), &info) != 0 || !S_ISREG(info.st_mode)) {
    const bool gone = !from.IsOpen() && (errno == ENOENT || errno == ENOTDIR);
    error = source + ": " + (from.IsOpen() ? "not a regular file" : std::strerror(errno));
    return gone ? Result::eNoSource : Result::eFailed;
  }
  const std::string shard = ParentOf(path);
  std::string temporary = shard + "/.new-XXXXXX";
  if (!MakeVisibleFolder(shard)) {
    error = shard + ": " + std::strerror(errno);
    return Result::eFailed;
  }
  File to(mkostemp(temporary.data(), O_CLOEXEC));
  if (!to.IsOpen()) {
    error = shard + ": " + std::strerror(errno);
    return Result::eFailed;
  }
  mChanged.insert(shard);
  const bool good = CopyContents(from.Number(), to.Number()) && fchmod(to.Number(), 0444) == 0 &&
                    to.Close() && rename(temporary.c_str(), path.c_str()) == 0;
  if (good) return Result::eDone;
  error = path + ": " + std::strerror(errno);
  unlink(temporary.c_str());
  return Result::eFailed;
}

void Activator::Remove(const std::string& path) {
  unlink(path.c_str());
  const std::string shard = ParentOf(path);
  mChanged.insert(shard);
  rmdir(shard.c_str());
}

void Activator::RemoveAllBut(const std::set<std::string>& paths) {
  for (const std::string& shardName : NamesIn(mFolder)) {
    const std::string shard = mFolder + "/" + shardName;
    if (!IsShardName(shardName)) continue;
    for (const std::string& name : NamesIn(shard)) {
      const std::string path = shard + "/" + name;
      if (!paths.contains(path)) Remove(path);
    }
    rmdir(shard.c_str());
  }
}

void Activator::TouchChanged() {
  for (const std::string& shard : mChanged) {
    // A shard that has gone changed the folder above it.
    if (utimensat(AT_FDCWD, shard.c_str(), nullptr, 0) != 0) {
      utimensat(AT_FDCWD, mFolder.c_str(), nullptr, 0);
    }
  }
}

}  // namespace Nodrix
