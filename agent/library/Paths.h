// Where the font manager keeps its things. All follow the XDG base directories of the environment
// at the moment of the call.
#pragma once

#include <string>

namespace Nodrix {

// $XDG_DATA_HOME/vendrel/library.db
std::string DatabasePath();
// $XDG_DATA_HOME/fonts/vendrel: activated files lie in 256 shard folders below it.
std::string ActivationFolder();
// $XDG_RUNTIME_DIR/vendrel, else a folder of mode 0700 in the temporary folder that is checked to
// be ours. Empty, with the reason in `error`, if there is none that can be trusted.
std::string RuntimeFolder(std::string& error);
// <runtime folder>/nodrix.sock and its D-Bus address. A path too long for a socket is an error.
std::string SocketPath(std::string& error);
std::string SocketAddress(std::string& error);
// <runtime folder>/nodrix.lock: held by the one running agent.
std::string LockPath(std::string& error);
// $XDG_STATE_HOME/vendrel: logs.
std::string StateFolder();

// Makes the folder and its parents, mode 0700 for those made. False with a reason.
bool MakeFolder(const std::string& path, std::string& error);

}  // namespace Nodrix
