#include "facade/AgentLauncher.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "support/FakePlatform.h"
#include "support/ScratchHome.h"

namespace fs = std::filesystem;

namespace {

class AgentLauncher : public testing::Test {
 protected:
  ScratchHome home;
  FakePlatform platform;
  const std::string system = home.MakeFolder("system");
  const std::string user = home.MakeFolder("user");

  void WriteLaunchInfo(const std::string& folder, const std::string& text) const {
    home.WriteFile(folder + "/Vendrel/com.vendrel.Nodrix-LaunchInfo.conf", text);
  }
  std::string MakeAgent(const std::string& folder) const {
    return home.WriteFile(folder + "/Nodrix", "#!/bin/sh\n");
  }
  int Launch(std::string* folder = nullptr) const { return LaunchNodrixFrom(system, user, folder); }
};

TEST_F(AgentLauncher, TheSystemsFileGoesBeforeTheUsers) {
  const std::string ours = MakeAgent("Users App");
  const std::string theirs = MakeAgent("System App");
  std::string folder;
  EXPECT_EQ(Launch(&folder), -1);

  WriteLaunchInfo("user", "nodrix.path=" + ours + "\nnodrix.args=one two \"three\"\n");
  EXPECT_EQ(Launch(&folder), 0);
  EXPECT_EQ(folder, home.Path() + "/Users App/");
  WriteLaunchInfo("system", "Nodrix.Path = " + theirs + " # the agent\nNODRIX.ARGS = --plugin\n");
  EXPECT_EQ(Launch(&folder), 0);
  EXPECT_EQ(folder, home.Path() + "/System App/");
  EXPECT_EQ(Launch(), 0);

  const auto& launches = platform.process.launches;
  ASSERT_EQ(launches.size(), 3U);
  EXPECT_EQ(launches[0].path, ours);
  EXPECT_EQ(launches[0].arguments, std::vector<std::string>{"one two \"three\""});
  EXPECT_FALSE(launches[0].waited);
  EXPECT_EQ(launches[1].path, theirs);
  EXPECT_EQ(launches[1].arguments, std::vector<std::string>{"--plugin"});
}

TEST_F(AgentLauncher, NothingIsStartedFromAnIncompleteFile) {
  const std::string agent = MakeAgent("App");
  std::string folder = "untouched";
  for (const std::string& text :
       {std::string("nodrix.args=x\n"), "nodrix.path=" + agent + "\n",
        "nodrix.path=" + agent + "-missing\nnodrix.args=x\n", std::string("nonsense")}) {
    WriteLaunchInfo("system", text);
    EXPECT_EQ(Launch(&folder), -1) << text;
  }
  EXPECT_TRUE(platform.process.launches.empty());
  // An argument that is there but empty is no argument.
  WriteLaunchInfo("system", "nodrix.path=" + agent + "\nnodrix.args=\n");
  EXPECT_EQ(Launch(), 0);
  ASSERT_EQ(platform.process.launches.size(), 1U);
  EXPECT_TRUE(platform.process.launches[0].arguments.empty());

  platform.process.launchSucceeds = false;
  EXPECT_EQ(Launch(&folder), -1);
  EXPECT_EQ(folder, "untouched");
}

TEST_F(AgentLauncher, AnAgentThatOthersCanWriteIsNotStarted) {
  const std::string agent = MakeAgent("App");
  WriteLaunchInfo("user", "nodrix.path=" + agent + "\nnodrix.args=x\n");
  fs::permissions(home.Path() + "/App", fs::perms::others_write, fs::perm_options::add);
  EXPECT_EQ(Launch(), -1);
  EXPECT_TRUE(platform.process.launches.empty());
}

TEST_F(AgentLauncher, TheResultOfAProgram) {
  platform.process.exitStatus = 3;
  testing::internal::CaptureStdout();
  EXPECT_EQ(LaunchAndWaitForResult("/opt/a tool", {"plain", "two words"}), 3);
  EXPECT_EQ(testing::internal::GetCapturedStdout(),
            "LaunchAndWaitForResult(\"/opt/a tool\" plain \"two words\") returning 3\n");
}

}  // namespace
