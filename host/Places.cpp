#include "host/Places.h"

#include <filesystem>
#include <initializer_list>

namespace fs = std::filesystem;

namespace {

fs::path ProgramFolder() {
  std::error_code ignored;
  return fs::read_symlink("/proc/self/exe", ignored).parent_path();
}

std::string FirstExisting(std::initializer_list<fs::path> places) {
  std::error_code ignored;
  for (const fs::path& place : places) {
    if (fs::exists(place, ignored)) return place.string();
  }
  return places.begin()->string();
}

}  // namespace

std::string Places::PluginBundle() {
  const fs::path prefix = ProgramFolder().parent_path();
  return FirstExisting({prefix / "plugins/AutoActivation.plugin",
                        prefix / "lib/vendrel/plugins/AutoActivation.plugin"});
}

std::string Places::AgentProgram() {
  const fs::path folder = ProgramFolder();
  return FirstExisting({folder / "Nodrix", folder.parent_path() / "lib/vendrel/Nodrix"});
}
