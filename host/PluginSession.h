// One run of the plug-in in this host, from its start to its end in order.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "agent/library/AgentClient.h"
#include "host/FontReport.h"
#include "host/PluginHost.h"

class PluginSession {
 public:
  PluginSession();
  // Closes what is open and shuts the plug-in down.
  ~PluginSession();
  PluginSession(const PluginSession&) = delete;
  PluginSession& operator=(const PluginSession&) = delete;

  // Loads the plug-in without starting it: preferences need no more. False with a reason.
  bool Load(std::string& error);
  // Starts the agent if need be, loads the plug-in and starts it. False with a reason.
  bool Start(std::string& error);

  // Opens a document as a user does and tells what became of each font.
  FontReport Open(DocumentFonts document);
  PluginHost& Host() { return mHost; }
  // False once the agent has gone.
  bool AgentIsThere() const { return mAgent && mAgent->IsConnected(); }

 private:
  PluginHost::Options HostOptions();
  std::map<std::uint32_t, std::string> ActivePaths();
  void DeclareDocuments();
  void End();

  PluginHost mHost;
  const DocumentFonts* mOpening = nullptr;  // the document that Open is about
  std::unique_ptr<Nodrix::AgentClient> mAgent;
  std::vector<std::pair<std::string, std::vector<std::uint32_t>>> mDeclared;
  bool mStarted = false;
};
