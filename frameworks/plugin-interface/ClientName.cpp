#include "frameworks/plugin-interface/ClientName.h"

#include <fstream>

std::string ClientName() {
  std::ifstream in("/proc/self/comm");
  std::string name;
  std::getline(in, name);
  return name.empty() ? "plug-in" : name;
}
