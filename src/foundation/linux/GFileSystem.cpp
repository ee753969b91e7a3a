#include "foundation/GFileSystem.h"

#include <grp.h>
#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <vector>

#include "foundation/ErrorChecks.h"
#include "foundation/GStringUtils.h"
#include "foundation/linux/SystemErrors.h"

namespace {

// As the base directory rules ask for folders of a user.
constexpr mode_t kFolderMode = 0700;

using FreeText = std::unique_ptr<char, decltype(&std::free)>;

bool GetStatus(const std::string& path, struct stat& status) {
  return stat(path.c_str(), &status) == 0;
}

// A group of the user's own name that has no other member: with it, folders are made writable for
// the group as a matter of course, and nobody else is let in.
bool IsPrivateGroup(gid_t group) {
  std::array<char, 4096> userBuffer;
  std::array<char, 4096> groupBuffer;
  passwd userEntry{};
  struct group groupEntry {};
  passwd* user = nullptr;
  struct group* found = nullptr;
  if (getpwuid_r(geteuid(), &userEntry, userBuffer.data(), userBuffer.size(), &user) != 0 ||
      getgrgid_r(group, &groupEntry, groupBuffer.data(), groupBuffer.size(), &found) != 0) {
    return false;
  }
  return user && found && user->pw_gid == group &&
         std::strcmp(user->pw_name, found->gr_name) == 0 && found->gr_mem[0] == nullptr;
}

bool IsWritableByUsAlone(const struct stat& status) {
  if (status.st_uid != 0 && status.st_uid != geteuid()) return false;
  if ((status.st_mode & S_IWOTH) != 0) return false;
  return (status.st_mode & S_IWGRP) == 0 || IsPrivateGroup(status.st_gid);
}

// In a sticky folder of root's nobody can exchange what another one put there.
bool IsSharedByRoot(const struct stat& status) {
  return S_ISDIR(status.st_mode) && (status.st_mode & S_ISVTX) != 0 && status.st_uid == 0;
}

// Most paths come expanded. A name that begins with "." is looked at more closely.
bool MayNeedExpansion(const std::string& path) {
  return path.ends_with('/') || path.find("//") != std::string::npos ||
         path.find("/.") != std::string::npos;
}

TModuleErrorCode CreateOneDirectory(const std::string& path) {
  if (mkdir(path.c_str(), kFolderMode) == 0) return 0;
  const int error = errno;
  struct stat status {};
  // Also where it may not be made: some file systems refuse before they look.
  if (GetStatus(path, status) && S_ISDIR(status.st_mode)) return 0;
  const TModuleErrorCode code = CodeOfSystemError(error, GFileSystem::kDirectoryNotFound);
  WriteErrorRecord(1, __FILE__, __LINE__, "mkdir(path.c_str(), kFolderMode) != 0", code);
  return code;
}

}  // namespace

bool GFileSystem::OSDoesFileExist(const GFileSystemSpec& spec) {
  struct stat status {};
  return GetStatus(spec.GetPath(), status) && !S_ISDIR(status.st_mode);
}

bool GFileSystem::OSDoesDirectoryExist(const GFileSystemSpec& spec) {
  struct stat status {};
  return GetStatus(spec.GetPath(), status) && S_ISDIR(status.st_mode);
}

bool GFileSystem::OSIsExecutableFile(const GFileSystemSpec& spec) {
  struct stat status {};
  return GetStatus(spec.GetPath(), status) && S_ISREG(status.st_mode) &&
         access(spec.GetPath().c_str(), X_OK) == 0;
}

bool GFileSystem::OSIsValidFullPath(const std::string& path) {
  return path.starts_with('/') && path.find('\0') == std::string::npos;
}

std::string GFileSystem::OSGetPathSeparator() { return "/"; }

std::string GFileSystem::OSExpandPath(const std::string& path) {
  std::string whole = path;
  if (path == "~" || path.starts_with("~/")) {
    const std::string home = OSGetUsersRootDirectory().GetPath();
    if (!home.empty()) whole = home + path.substr(1);
  }
  if (!whole.starts_with('/') || !MayNeedExpansion(whole)) return whole;
  std::string expanded;
  for (std::size_t start = 1; start < whole.size();) {
    const std::size_t end = std::min(whole.find('/', start), whole.size());
    const std::string_view component = std::string_view(whole).substr(start, end - start);
    start = end + 1;
    if (component.empty() || component == ".") continue;
    if (component != "..") {
      expanded.append("/").append(component);
    } else if (!expanded.empty()) {
      expanded.resize(expanded.rfind('/'));
    }
  }
  return expanded.empty() ? "/" : expanded;
}

TModuleErrorCode GFileSystem::OSCreateDirectory(const GFileSystemSpec& spec, bool recursive) {
  G_CHECK_CONDITION(spec.IsEmpty(), kInvalidPath);
  if (recursive) {
    std::string path;
    for (const std::string& component : spec.GetPathComponents()) {
      path.append("/").append(component);
      if (const TModuleErrorCode code = CreateOneDirectory(path)) return code;
    }
    return 0;
  }
  return CreateOneDirectory(spec.GetPath());
}

TModuleErrorCode GFileSystem::OSDeleteFile(const GFileSystemSpec& spec) {
  // A folder is no file.
  G_CHECK_CONDITION(unlink(spec.GetPath().c_str()) != 0,
                    CodeOfSystemError(errno == EISDIR ? ENOENT : errno, kFileNotFound));
  return 0;
}

TModuleErrorCode GFileSystem::OSGetFileSize(const GFileSystemSpec& spec, unsigned long long& size) {
  return OSGetFileSizeWithoutResourceFork(spec, size);
}

TModuleErrorCode GFileSystem::OSGetFileSizeWithoutResourceFork(const GFileSystemSpec& spec,
                                                               unsigned long long& size) {
  struct stat status {};
  G_CHECK_CONDITION(!GetStatus(spec.GetPath(), status), CodeOfSystemError(errno, kFileNotFound));
  G_CHECK_CONDITION(S_ISDIR(status.st_mode), kFileNotFound);
  size = static_cast<unsigned long long>(status.st_size);
  return 0;
}

bool GFileSystem::OSHasResourceFork(const GFileSystemSpec&) { return false; }

bool GFileSystem::OSIsTrustedLocation(const GFileSystemSpec& spec) {
  const FreeText real(realpath(spec.GetPath().c_str(), nullptr), &std::free);
  if (!real) return false;
  const std::vector<std::string> components = GStringUtils::OSTokenizeString(real.get(), "/");
  std::string path = "/";
  for (std::size_t i = 0;; ++i) {
    const bool isLast = i == components.size();
    struct stat status {};
    // A link here was put there after the path was resolved.
    if (lstat(path.c_str(), &status) != 0 || S_ISLNK(status.st_mode)) return false;
    if (!IsWritableByUsAlone(status) && (isLast || !IsSharedByRoot(status))) return false;
    if (isLast) return true;
    if (path.size() > 1) path.append("/");
    path.append(components[i]);
  }
}
