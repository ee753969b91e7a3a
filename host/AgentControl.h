// The font manager's agent as the command line needs it: there, or started.
#pragma once

#include <memory>
#include <string>

#include "agent/library/AgentClient.h"

namespace AgentControl {

// How long an agent that was just started may take to answer.
inline constexpr int kStartMilliseconds = 5000;

// Connects; starts the agent first when it is not running. Null with a reason.
std::unique_ptr<Nodrix::AgentClient> ConnectOrStart(std::string& error);
// Connects to an agent that runs already. Null with a reason.
std::unique_ptr<Nodrix::AgentClient> Connect(std::string& error);
// Writes the user's launch information, by which a plug-in in any host finds the agent, unless the
// system's or the user's file names a program that is there. False with a reason.
bool RecordLaunchInformation(std::string& error);

}  // namespace AgentControl
