#include <string>
#include <vector>

#include "host/CommandLine.h"

int main(int argc, char** argv) {
  return RunCommandLine(std::vector<std::string>(argv + 1, argv + argc));
}
