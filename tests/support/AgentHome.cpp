#include "support/AgentHome.h"

#include <gtest/gtest.h>
#include <signal.h>

#include <iostream>

#include "agent/library/Paths.h"

AgentHome::AgentHome() { mHome.MakeFolder("library"); }

AgentHome::~AgentHome() {
  if (!mAgent) return;
  mAgent->Signal(SIGTERM);
  const ProgramResult result = mAgent->Wait();
  if (testing::Test::HasFailure()) std::cerr << "The agent wrote: " << result.error << '\n';
}

void AgentHome::StartAgent() {
  mAgent = std::make_unique<Program>(std::vector<std::string>{TEST_BUILD_DIR "/bin/Nodrix"});
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
