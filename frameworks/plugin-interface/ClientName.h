#pragma once

#include <string>

// The name by which the agent's status shows this process: that of the program, as the kernel
// knows it.
std::string ClientName();
