// The commands of the command line. Each gives an exit code of Console.h.
#pragma once

#include <string>
#include <vector>

#include "host/Console.h"

namespace Commands {

int Fonts(Console& console, const std::vector<std::string>& files, bool json);
int Check(Console& console, const std::vector<std::string>& files, bool json);
// Runs `command` with the fonts active, or stays until interrupted if it is empty. The exit code of
// a command that fails goes before ours.
int Open(Console& console, const std::vector<std::string>& files,
         const std::vector<std::string>& command, bool json);

int LibraryAdd(Console& console, const std::vector<std::string>& folders, bool json);
int LibraryList(Console& console, bool json);
int LibraryScan(Console& console, bool json);

int AgentStart(Console& console, bool json);
int AgentStop(Console& console, bool json);
int AgentStatus(Console& console, bool json);

int Status(Console& console, bool json);

// Without a key lists all; without a value shows one.
int Preferences(Console& console, const std::string& key, const std::string& value, bool hasValue,
                bool json);

}  // namespace Commands
