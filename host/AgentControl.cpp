#include "host/AgentControl.h"

#include <map>

#include "facade/AgentLauncher.h"
#include "foundation/GConfigurationFile.h"
#include "foundation/GFileSystem.h"
#include "host/Places.h"
#include "platform/Platform.h"
#include "platform/Process.h"

namespace {

constexpr const char* kClientName = "kestrane";

GFileSystemSpec LaunchInformationIn(GFileSystemSpec folder) {
  folder.AppendPathComponent(kCompanyName);
  folder.AppendPathComponent(kLaunchInfoConfigName);
  return folder;
}

bool NamesExistingProgram(const GFileSystemSpec& file) {
  std::map<std::string, std::string> values;
  if (!GFileSystem::OSDoesFileExist(file)) return false;
  if (GConfigurationFile::ParseFile(file, values) != 0) return false;
  const auto path = values.find(kNodrixPathKeyName);
  return path != values.end() && GFileSystem::OSIsExecutableFile(path->second);
}

}  // namespace

std::unique_ptr<Nodrix::AgentClient> AgentControl::Connect(std::string& error) {
  return Nodrix::AgentClient::Connect(kClientName, 0, error);
}

std::unique_ptr<Nodrix::AgentClient> AgentControl::ConnectOrStart(std::string& error) {
  if (auto client = Nodrix::AgentClient::Connect(kClientName, 0, error)) return client;
  const std::string program = Places::AgentProgram();
  if (!GFileSystem::OSIsTrustedLocation(program)) {
    error = program + " is missing, or somebody else could have changed it";
    return nullptr;
  }
  if (!Platform::Current().GetProcess().LaunchDetached(program, {})) {
    error = program + " can't be started";
    return nullptr;
  }
  auto client = Nodrix::AgentClient::Connect(kClientName, kStartMilliseconds, error);
  std::string ignored;
  if (client) RecordLaunchInformation(ignored);
  return client;
}

bool AgentControl::RecordLaunchInformation(std::string& error) {
  const GFileSystemSpec system = LaunchInformationIn(GFileSystem::OSGetSystemAppDataDirectory());
  GFileSystemSpec user = LaunchInformationIn(GFileSystem::OSGetUsersRoamingAppDataDirectory());
  if (NamesExistingProgram(system) || NamesExistingProgram(user)) return true;
  GFileSystemSpec folder = user;
  folder.RemoveLastPathComponent();
  const std::map<std::string, std::string> values = {{kNodrixPathKeyName, Places::AgentProgram()},
                                                     {kNodrixArgsKeyName, ""}};
  if (GFileSystem::OSCreateDirectory(folder, true) != 0 ||
      GConfigurationFile::WriteFile(user, values) != 0) {
    error = user.GetPath() + " can't be written";
    return false;
  }
  return true;
}
