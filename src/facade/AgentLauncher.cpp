#include "facade/AgentLauncher.h"

#include <map>

#include "foundation/GConfigurationFile.h"
#include "foundation/GFileSystem.h"
#include "foundation/PluginLog.h"
#include "platform/Platform.h"
#include "platform/Process.h"

namespace {

GFileSystemSpec LaunchInfoFile(const GFileSystemSpec& folder) {
  GFileSystemSpec file = folder;
  if (file.IsEmpty()) return file;
  file.AppendPathComponent(kCompanyName);
  file.AppendPathComponent(kLaunchInfoConfigName);
  return file;
}

// The file to read; empty if there is none.
GFileSystemSpec FindLaunchInfo(const GFileSystemSpec& systemFolder,
                               const GFileSystemSpec& userFolder) {
  GFileSystemSpec file = LaunchInfoFile(systemFolder);
  if (file.IsEmpty()) return file;
  if (!GFileSystem::OSDoesFileExist(file)) file = LaunchInfoFile(userFolder);
  if (file.IsEmpty()) return file;
  OutputFormattedDebugString("Will attempt to open '%s'", file.GetPath().c_str());
  if (GFileSystem::OSDoesFileExist(file)) return file;
  OutputFormattedDebugString("Could not find Nodrix-LaunchInfo.conf");
  return {};
}

bool LaunchAgent(const std::string& path, const std::string& argument) {
  if (!GFileSystem::OSIsTrustedLocation(path)) {
    OutputFormattedDebugString("Not launching '%s': others can write there", path.c_str());
    return false;
  }
  std::vector<std::string> arguments;
  if (!argument.empty()) arguments.push_back(argument);
  if (Platform::Current().GetProcess().LaunchDetached(path, arguments)) return true;
  OutputFormattedDebugString("Launching '%s' failed", path.c_str());
  return false;
}

// As a person would type it: the path in double quotes, an argument only where it needs them.
std::string CommandLine(const std::string& path, const std::vector<std::string>& arguments) {
  std::string line = "\"" + path + "\"";
  for (const std::string& argument : arguments) {
    const bool hasBlank = argument.find_first_of(" \t\r\n") != std::string::npos;
    line += hasBlank ? " \"" + argument + "\"" : " " + argument;
  }
  return line;
}

}  // namespace

int LaunchNodrixFrom(const GFileSystemSpec& systemFolder, const GFileSystemSpec& userFolder,
                     std::string* outFolder) {
  const GFileSystemSpec file = FindLaunchInfo(systemFolder, userFolder);
  std::map<std::string, std::string> values;
  if (!file.IsEmpty() && GConfigurationFile::ParseFile(file, values) == 0) {
    const std::string path = values[kNodrixPathKeyName];
    const auto argument = values.find(kNodrixArgsKeyName);
    if (!path.empty() && argument != values.end() && GFileSystem::OSDoesFileExist(path) &&
        LaunchAgent(path, argument->second)) {
      if (outFolder) *outFolder = path.substr(0, path.rfind('/') + 1);
      return 0;
    }
  }
  OutputFormattedDebugString("Could not launch Nodrix");
  return -1;
}

int FindAndLaunchNodrix(std::string* outFolder) {
  const OperationTrace trace(__func__);
  const GFileSystemSpec user = GFileSystem::OSGetUsersRoamingAppDataDirectory();
  return trace.Return(
      LaunchNodrixFrom(GFileSystem::OSGetSystemAppDataDirectory(), user, outFolder));
}

int LaunchAndWaitForResult(const std::string& path, const std::vector<std::string>& arguments) {
  const OperationTrace trace(__func__);
  const int status = Platform::Current().GetProcess().LaunchAndWait(path, arguments);
  OutputFormattedDebugString("%s(%s) returning %d", __func__, CommandLine(path, arguments).c_str(),
                             status);
  return trace.Return(status);
}
