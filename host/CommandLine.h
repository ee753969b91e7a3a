// What a person types, taken apart and carried out.
#pragma once

#include <string>
#include <vector>

// `arguments` without the program's name. Gives the exit code.
int RunCommandLine(std::vector<std::string> arguments);
