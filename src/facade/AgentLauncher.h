// Starts the font manager's agent, whose place a launch information file tells: system-wide first,
// then the user's.
//
// Threads: [main-thread].
#pragma once

#include <string>
#include <vector>

#include "foundation/GFileSystemSpec.h"

inline constexpr const char* kLaunchInfoConfigName = "com.vendrel.Nodrix-LaunchInfo.conf";
inline constexpr const char* kCompanyName = "Vendrel";
inline constexpr const char* kNodrixPathKeyName = "nodrix.path";
inline constexpr const char* kNodrixArgsKeyName = "nodrix.args";
inline constexpr const char* kNodrixProcessName = "Nodrix";

// Starts the agent named by the launch information file, detached and with its one argument; gives
// its folder with a trailing "/". 0, or -1 if nothing could be started. The argument's key has to
// be there; with an empty value the agent gets no argument. Nothing is started from a place that
// others can write.
int FindAndLaunchNodrix(std::string* outFolder);

// The same with the two folders that hold kCompanyName.
int LaunchNodrixFrom(const GFileSystemSpec& systemFolder, const GFileSystemSpec& userFolder,
                     std::string* outFolder);

// Waits for the program's end; its exit status, -1 if it can't be started.
int LaunchAndWaitForResult(const std::string& path, const std::vector<std::string>& arguments);
