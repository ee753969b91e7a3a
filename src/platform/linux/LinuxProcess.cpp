#include "platform/linux/LinuxProcess.h"

#include <glib.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <climits>
#include <csignal>
#include <filesystem>
#include <optional>

#include "foundation/GFileSystem.h"
#include "foundation/GStringUtils.h"

namespace fs = std::filesystem;

namespace {

// What the kernel puts after the path of a file that was removed or replaced.
constexpr std::string_view kDeleted = " (deleted)";

bool IsNumber(const std::string& text) {
  return !text.empty() && text.find_first_not_of("0123456789") == std::string::npos;
}

bool IsSameFile(const std::string& a, const std::string& b) {
  struct stat first {};
  struct stat second {};
  return stat(a.c_str(), &first) == 0 && stat(b.c_str(), &second) == 0 &&
         first.st_dev == second.st_dev && first.st_ino == second.st_ino;
}

// The file of a process of this user, as this process sees it.
std::optional<std::string> ProgramOfProcess(const std::string& processFolder) {
  struct stat owner {};
  if (stat(processFolder.c_str(), &owner) != 0 || owner.st_uid != getuid()) return std::nullopt;
  const std::string link = processFolder + "/exe";
  std::array<char, PATH_MAX> buffer;
  const ssize_t length = readlink(link.c_str(), buffer.data(), buffer.size());
  if (length <= 0 || static_cast<std::size_t>(length) == buffer.size()) return std::nullopt;
  std::string path(buffer.data(), static_cast<std::size_t>(length));
  // A link into another mount namespace may name a different file here.
  if (IsSameFile(path, link)) return path;
  if (!GStringUtils::EndsWith(path, kDeleted)) return std::nullopt;
  path.resize(path.size() - kDeleted.size());
  if (!GFileSystem::OSDoesFileExist(path)) return std::nullopt;
  return path;
}

std::vector<char*> MakeArguments(const std::string& path,
                                 const std::vector<std::string>& arguments) {
  std::vector<char*> result{const_cast<char*>(path.c_str())};
  for (const std::string& argument : arguments) {
    result.push_back(const_cast<char*>(argument.c_str()));
  }
  result.push_back(nullptr);
  return result;
}

// Runs in the child between fork and exec: only calls that are safe there.
void LeaveSession(gpointer) {
  setsid();
  sigset_t none;
  sigemptyset(&none);
  sigprocmask(SIG_SETMASK, &none, nullptr);
}

}  // namespace

bool LinuxProcess::GetPathToRunningProcessExe(const std::string& name, std::string& folder) {
  std::error_code error;
  for (fs::directory_iterator entry("/proc", error), end; !error && entry != end;
       entry.increment(error)) {
    if (!IsNumber(entry->path().filename().string())) continue;
    const std::optional<std::string> program = ProgramOfProcess(entry->path().string());
    if (!program || fs::path(*program).filename() != name) continue;
    if (!GFileSystem::OSIsTrustedLocation(*program)) continue;
    folder = program->substr(0, program->rfind('/') + 1);
    return true;
  }
  return false;
}

bool LinuxProcess::LaunchDetached(const std::string& path,
                                  const std::vector<std::string>& arguments) {
  std::vector<char*> argv = MakeArguments(path, arguments);
  const auto flags =
      static_cast<GSpawnFlags>(G_SPAWN_STDOUT_TO_DEV_NULL | G_SPAWN_STDERR_TO_DEV_NULL);
  return g_spawn_async("/", argv.data(), nullptr, flags, LeaveSession, nullptr, nullptr, nullptr) !=
         FALSE;
}

int LinuxProcess::LaunchAndWait(const std::string& path,
                                const std::vector<std::string>& arguments) {
  std::vector<char*> argv = MakeArguments(path, arguments);
  int status = 0;
  if (g_spawn_sync(nullptr, argv.data(), nullptr, G_SPAWN_DEFAULT, nullptr, nullptr, nullptr,
                   nullptr, &status, nullptr) == FALSE) {
    return -1;
  }
  return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}
