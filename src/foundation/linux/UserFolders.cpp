#include <pwd.h>
#include <unistd.h>

#include <array>
#include <cstdlib>
#include <memory>

#include "foundation/GFile.h"
#include "foundation/GFileSystem.h"
#include "foundation/GStringUtils.h"

namespace {

// That of a real user has a few hundred bytes.
constexpr unsigned long long kMaxUserFoldersBytes = 64 << 10;

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
  folder.AppendPathComponent(belowHome);
  return folder;
}

// The text between quotation marks, in which a backslash frees the character behind it.
std::string Unquote(std::string_view text) {
  std::string plain;
  for (std::size_t i = 1; i < text.size() && text[i] != '"'; ++i) {
    if (text[i] == '\\' && i + 1 < text.size()) ++i;
    plain += text[i];
  }
  return plain;
}

// The value of a line NAME="$HOME/..." or NAME="/..."; empty for any other line.
GFileSystemSpec FolderOfLine(std::string_view line, std::string_view name) {
  constexpr std::string_view kHome = "$HOME";
  const std::size_t equals = line.find('=');
  if (equals == std::string_view::npos) return {};
  if (GStringUtils::StripWhitespace(line.substr(0, equals)) != name) return {};
  const std::string quoted = GStringUtils::StripWhitespace(line.substr(equals + 1));
  if (!quoted.starts_with('"')) return {};
  const std::string value = Unquote(quoted);
  if (value.starts_with('/')) return {value};
  if (value != kHome && !value.starts_with("$HOME/")) return {};
  GFileSystemSpec folder = GFileSystem::OSGetUsersRootDirectory();
  folder.AppendPathComponent(value.substr(kHome.size()));
  return folder;
}

std::string ReadUserFolders() {
  GFileSystemSpec spec = GFileSystem::OSGetUsersRoamingAppDataDirectory();
  spec.AppendPathComponent("user-dirs.dirs");
  unsigned long long size = 0;
  std::string text;
  GFile file;
  // Most often it is just not there, and that needs no record.
  if (!GFileSystem::OSDoesFileExist(spec) || GFileSystem::OSGetFileSize(spec, size) != 0 ||
      size > kMaxUserFoldersBytes || file.Open(spec, GFile::eRead | GFile::eBinary) != 0 ||
      file.Read(text) != 0) {
    return {};
  }
  return text;
}

// The last line of that name counts, as in the shell that the file is written for.
GFileSystemSpec UserFolder(std::string_view name, const char* belowHome) {
  GFileSystemSpec folder;
  for (const std::string& line : GStringUtils::OSTokenizeString(ReadUserFolders(), "\n")) {
    const GFileSystemSpec ofLine = FolderOfLine(line, name);
    if (!ofLine.IsEmpty()) folder = ofLine;
  }
  if (!folder.IsEmpty()) return folder;
  folder = GFileSystem::OSGetUsersRootDirectory();
  folder.AppendPathComponent(belowHome);
  return folder;
}

}  // namespace

GFileSystemSpec GFileSystem::OSGetSystemAppDataDirectory() { return {"/etc/xdg"}; }

GFileSystemSpec GFileSystem::OSGetUsersAppDataDirectory() {
  return FolderOfVariableOrBelowHome("XDG_DATA_HOME", ".local/share");
}

GFileSystemSpec GFileSystem::OSGetUsersAppSupportDirectory() {
  return OSGetUsersAppDataDirectory();
}

GFileSystemSpec GFileSystem::OSGetUsersRoamingAppDataDirectory() {
  return FolderOfVariableOrBelowHome("XDG_CONFIG_HOME", ".config");
}

GFileSystemSpec GFileSystem::OSGetUsersLogDirectory() {
  GFileSystemSpec folder = FolderOfVariableOrBelowHome("XDG_STATE_HOME", ".local/state");
  folder.AppendPathComponent("vendrel");
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

GFileSystemSpec GFileSystem::OSGetDesktopDirectory() {
  return UserFolder("XDG_DESKTOP_DIR", "Desktop");
}

GFileSystemSpec GFileSystem::OSGetDocumentsDirectory() {
  return UserFolder("XDG_DOCUMENTS_DIR", "Documents");
}

GFileSystemSpec GFileSystem::OSGetSharedUserDirectory() {
  const char* folders = std::getenv("XDG_DATA_DIRS");
  for (const std::string& folder :
       GStringUtils::OSTokenizeString(folders == nullptr ? "" : folders, ":")) {
    if (folder.starts_with('/')) return {folder};
  }
  return {"/usr/local/share"};
}

GFileSystemSpec GFileSystem::OSGetTempDirectory() {
  const GFileSystemSpec folder = FolderOfVariable("TMPDIR");
  return folder.IsEmpty() ? GFileSystemSpec("/tmp") : folder;
}

GFileSystemSpec GFileSystem::OSGetCWD() {
  const std::unique_ptr<char, decltype(&std::free)> folder(getcwd(nullptr, 0), &std::free);
  return folder ? GFileSystemSpec(folder.get()) : GFileSystemSpec();
}
