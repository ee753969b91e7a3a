// Where the parts of the product lie beside this program.
#pragma once

#include <string>

namespace Places {

// <prefix>/plugins/AutoActivation.plugin, where <prefix> is the parent of this program's folder; an
// installed program has it in <prefix>/lib/vendrel.
std::string PluginBundle();
// The agent's program, in this program's own folder or in <prefix>/lib/vendrel.
std::string AgentProgram();

}  // namespace Places
