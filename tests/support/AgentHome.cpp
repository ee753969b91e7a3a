#include "support/AgentHome.h"

#include <gio/gio.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <stdlib.h>

#include "agent/library/Paths.h"

AgentHome::AgentHome() {
  mHome.MakeFolder("system");
  mHome.MakeFolder("library");
  // fontconfig's "xdg" folders are these too.
  setenv("XDG_DATA_DIRS", mHome.MakeFolder("data").c_str(), 1);
  setenv("FONTCONFIG_FILE",
         mHome
             .WriteFile("fonts.conf",
                        "<?xml version=\"1.0\"?><!DOCTYPE fontconfig SYSTEM \"fonts.dtd\">"
                        "<fontconfig><dir>" +
                            mHome.Path() +
                            "/system</dir><dir prefix=\"xdg\">fonts</dir>"
                            "<cachedir prefix=\"xdg\">fontconfig</cachedir></fontconfig>")
             .c_str(),
         1);
}

AgentHome::~AgentHome() {
  if (mAgent) mAgent->Signal(SIGTERM);
  if (mAgent) mAgent->Wait();
}

void AgentHome::StartAgent() {
  mAgent = std::make_unique<ChildProcess>(std::vector<std::string>{TEST_BUILD_DIR "/bin/Nodrix"});
}

void AgentHome::KillAgent() {
  mAgent->Signal(SIGKILL);
  mAgent->Wait();
  mAgent.reset();
}

std::unique_ptr<Nodrix::AgentClient> AgentHome::Connect(const std::string& name) {
  std::string error;
  auto client = Nodrix::AgentClient::Connect(name, 30'000, error);
  EXPECT_TRUE(client) << error;
  return client;
}

std::unique_ptr<Nodrix::LibraryReader> AgentHome::Reader() {
  std::string error;
  auto reader = Nodrix::LibraryReader::Open(Nodrix::DatabasePath(), error);
  EXPECT_TRUE(reader) << error;
  return reader;
}

Nodrix::ScanOutcome AgentHome::AddLibrary(Nodrix::AgentClient& client) {
  Nodrix::ScanOutcome outcome;
  std::string message;
  EXPECT_EQ(client.AddFolder(LibraryPath(""), {}, outcome, message), Nodrix::CallResult::eOk)
      << message;
  return outcome;
}

std::uint32_t AgentHome::FontID(const std::string& postScriptName) {
  const auto reader = Reader();
  if (!reader) return 0;
  const auto ids = reader->FontsByPostScriptName(postScriptName, {});
  return ids.size() == 1 ? ids[0] : 0;
}

std::string AgentHome::MatchedFile(const std::string& postScriptName) const {
  return OutputOf({"/usr/bin/fc-match", "-f", "%{file}", ":postscriptname=" + postScriptName});
}
