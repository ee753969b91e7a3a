#include "agent/library/Paths.h"

#include <fcntl.h>
#include <glib.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>

#include <gio/gio.h>

namespace Nodrix {
namespace {

// An XDG folder: the variable when it holds an absolute path, else the home's own place.
std::string BaseFolder(const char* variable, const char* belowHome) {
  const char* value = std::getenv(variable);
  if (value != nullptr && value[0] == '/') return value;
  const char* home = std::getenv("HOME");
  return std::string(home != nullptr && home[0] == '/' ? home : g_get_home_dir()) + "/" + belowHome;
}

std::string Reason(const std::string& path) { return path + ": " + std::strerror(errno); }

// A folder of this user (no link) that nobody else can enter.
bool IsOursAlone(const std::string& path, std::string& error) {
  struct stat info {};
  if (lstat(path.c_str(), &info) != 0) {
    error = Reason(path);
    return false;
  }
  if (!S_ISDIR(info.st_mode) || info.st_uid != geteuid() || (info.st_mode & 07777) != 0700) {
    error = path + " is not a folder that belongs to this user alone";
    return false;
  }
  return true;
}

bool MakeOursAlone(const std::string& path, std::string& error) {
  if (mkdir(path.c_str(), 0700) != 0 && errno != EEXIST) {
    error = Reason(path);
    return false;
  }
  return IsOursAlone(path, error);
}

std::string InRuntimeFolder(const char* name, std::string& error) {
  const std::string folder = RuntimeFolder(error);
  return folder.empty() ? std::string() : folder + "/" + name;
}

}  // namespace

std::string DatabasePath() {
  return BaseFolder("XDG_DATA_HOME", ".local/share") + "/vendrel/library.db";
}

std::string ActivationFolder() {
  return BaseFolder("XDG_DATA_HOME", ".local/share") + "/fonts/vendrel";
}

std::string StateFolder() { return BaseFolder("XDG_STATE_HOME", ".local/state") + "/vendrel"; }

std::string RuntimeFolder(std::string& error) {
  const char* runtime = std::getenv("XDG_RUNTIME_DIR");
  if (runtime != nullptr && runtime[0] == '/') {
    std::string reason;
    const std::string folder = std::string(runtime) + "/vendrel";
    if (IsOursAlone(runtime, reason) && MakeOursAlone(folder, reason)) return folder;
  }
  const std::string folder = "/tmp/vendrel-" + std::to_string(geteuid());
  return MakeOursAlone(folder, error) ? folder : std::string();
}

std::string SocketPath(std::string& error) {
  std::string path = InRuntimeFolder("nodrix.sock", error);
  if (path.size() >= sizeof(sockaddr_un::sun_path)) {
    error = "The path of the agent's socket is too long: " + path;
    path.clear();
  }
  return path;
}

std::string SocketAddress(std::string& error) {
  const std::string path = SocketPath(error);
  if (path.empty()) return {};
  gchar* escaped = g_dbus_address_escape_value(path.c_str());
  const std::string address = std::string("unix:path=") + escaped;
  g_free(escaped);
  return address;
}

std::string LockPath(std::string& error) { return InRuntimeFolder("nodrix.lock", error); }

bool MakeFolder(const std::string& path, std::string& error) {
  if (g_mkdir_with_parents(path.c_str(), 0700) == 0) return true;
  error = Reason(path);
  return false;
}

}  // namespace Nodrix
