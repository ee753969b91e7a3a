#include <pwd.h>
#include <unistd.h>

#include <array>
#include <cstdlib>
#include <memory>

#include "foundation/GFileSystem.h"

namespace {

// Relative paths in these variables are to be ignored.
GFileSystemSpec FolderOfVariable(const char* name) {
  const char* value = std::getenv(name);
  if (value == nullptr || value[0] != '/') return {};
  return GFileSystemSpec(value);
}

GFileSystemSpec FolderOfVariableOrBelowHome(const char* name, const char* belowHome) {
  GFileSystemSpec folder = FolderOfVariable(name);
  if (!folder.IsEmpty()) return folder;
  folder = GFileSystem::OSGetUsersRootDirectory();
  if (!folder.IsEmpty()) folder.AppendPathComponent(belowHome);
  return folder;
}

}  // namespace

GFileSystemSpec GFileSystem::OSGetSystemAppDataDirectory() { return {"/etc/xdg"}; }

GFileSystemSpec GFileSystem::OSGetUsersAppDataDirectory() {
  return FolderOfVariableOrBelowHome("XDG_DATA_HOME", ".local/share");
}

GFileSystemSpec GFileSystem::OSGetUsersRoamingAppDataDirectory() {
  return FolderOfVariableOrBelowHome("XDG_CONFIG_HOME", ".config");
}

GFileSystemSpec GFileSystem::OSGetUsersLogDirectory() {
  GFileSystemSpec folder = FolderOfVariableOrBelowHome("XDG_STATE_HOME", ".local/state");
  if (!folder.IsEmpty()) folder.AppendPathComponent("vendrel");
  return folder;
}

GFileSystemSpec GFileSystem::OSGetUsersRootDirectory() {
  GFileSystemSpec home = FolderOfVariable("HOME");
  if (!home.IsEmpty()) return home;
  std::array<char, 16384> buffer{};
  passwd entry{};
  passwd* found = nullptr;
  getpwuid_r(getuid(), &entry, buffer.data(), buffer.size(), &found);
  return found == nullptr ? GFileSystemSpec() : GFileSystemSpec(found->pw_dir);
}

GFileSystemSpec GFileSystem::OSGetTempDirectory() {
  const GFileSystemSpec folder = FolderOfVariable("TMPDIR");
  return folder.IsEmpty() ? GFileSystemSpec("/tmp") : folder;
}

GFileSystemSpec GFileSystem::OSGetCWD() {
  const std::unique_ptr<char, decltype(&std::free)> folder(getcwd(nullptr, 0), &std::free);
  return folder ? GFileSystemSpec(folder.get()) : GFileSystemSpec();
}
