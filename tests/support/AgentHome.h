// A home with a font manager of its own: an agent that a test starts and ends. The machine's agent
// is not touched.
#pragma once

#include <memory>
#include <string>

#include "agent/library/AgentClient.h"
#include "agent/library/LibraryReader.h"
#include "support/Eventually.h"
#include "support/RunProgram.h"
#include "support/ScratchHome.h"

class AgentHome {
 public:
  AgentHome();
  ~AgentHome();

  const ScratchHome& Home() const { return mHome; }
  // A path in the folder of the system's fonts, and in one that a test adds to the library.
  std::string SystemPath(const std::string& name) const { return mHome.SystemFonts() + "/" + name; }
  std::string LibraryPath(const std::string& name) const {
    return mHome.Path() + "/library/" + name;
  }

  void StartAgent();
  Program& Agent() { return *mAgent; }
  void KillAgent();  // as a crash does
  // A client; fails the test and gives null if there is no agent within half a minute.
  std::unique_ptr<Nodrix::AgentClient> Connect(const std::string& name = "test");
  std::unique_ptr<Nodrix::LibraryReader> Reader();
  // Adds the library folder; the remark of the agent.
  Nodrix::ScanOutcome AddLibrary(Nodrix::AgentClient& client);
  // The one font of this name; 0 if there is none, or more than one.
  std::uint32_t FontID(const std::string& postScriptName);

 private:
  ScratchHome mHome;
  std::unique_ptr<Program> mAgent;
};
