#include "support/ScratchHome.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>

namespace fs = std::filesystem;

ScratchHome::ScratchHome() {
  std::string pattern = (fs::temp_directory_path() / "kestrane-test-XXXXXX").string();
  if (mkdtemp(pattern.data()) == nullptr) throw std::runtime_error("no scratch folder");
  mPath = pattern;
  const auto set = [this](const char* name, const char* folder, fs::perms mode) {
    const fs::path path = fs::path(mPath) / folder;
    fs::create_directories(path);
    fs::permissions(path, mode);
    setenv(name, path.c_str(), 1);
  };
  setenv("HOME", mPath.c_str(), 1);
  set("XDG_CONFIG_HOME", ".config", fs::perms::owner_all);
  set("XDG_DATA_HOME", ".local/share", fs::perms::owner_all);
  set("XDG_STATE_HOME", ".local/state", fs::perms::owner_all);
  set("XDG_CACHE_HOME", ".cache", fs::perms::owner_all);
  set("XDG_RUNTIME_DIR", "run", fs::perms::owner_all);
  // fontconfig's "xdg" folders are below these too.
  set("XDG_DATA_DIRS", "usr/share", fs::perms::owner_all);
  MakeFolder("system-fonts");
  const std::string config =
      WriteFile("fonts.conf",
                "<?xml version=\"1.0\"?><!DOCTYPE fontconfig SYSTEM \"fonts.dtd\">"
                "<fontconfig><dir>" +
                    SystemFonts() +
                    "</dir><dir prefix=\"xdg\">fonts</dir>"
                    "<cachedir prefix=\"xdg\">fontconfig</cachedir>"
                    "</fontconfig>");
  setenv("FONTCONFIG_FILE", config.c_str(), 1);
}

ScratchHome::~ScratchHome() {
  std::error_code ignored;
  fs::remove_all(mPath, ignored);
}

std::string ScratchHome::WriteFile(const std::string& name, const std::string& contents) const {
  const fs::path path = fs::path(mPath) / name;
  fs::create_directories(path.parent_path());
  std::ofstream(path, std::ios::binary) << contents;
  return path.string();
}

std::string ScratchHome::MakeFolder(const std::string& name) const {
  const fs::path path = fs::path(mPath) / name;
  fs::create_directories(path);
  return path.string();
}

std::string ReadWholeFile(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}
