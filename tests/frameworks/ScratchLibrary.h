// A font library in the scratch home, written without an agent.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "agent/library/Database.h"
#include "support/ScratchHome.h"

struct ScratchFace {
  std::uint32_t id;
  std::string postScriptName;
  std::uint32_t family;
  std::uint32_t workgroup;
  std::string path;
};

class ScratchLibrary {
 public:
  // Makes $XDG_DATA_HOME/vendrel/library.db; families 1 "Grotesk" and 2 "Antiqua" are there.
  ScratchLibrary();
  // One file with one face, and the row's other columns as a fixed pattern: see the source.
  void Add(const ScratchFace& face);
  void Activate(std::uint32_t fontID, std::uint32_t mode, std::int64_t pid);
  void Execute(const std::string& sql);

 private:
  std::unique_ptr<Nodrix::Database> mDatabase;
};
