#include "coreagent/CommandRetry.h"

#include "coreagent/AgentFixture.h"

namespace {

constexpr std::uint32_t kGone = kPluginInterface_AgentShutdown;

class Retry : public AgentTest {
 protected:
  // An agent that can be started.
  void InstallAgent() {
    const std::string path = world.home.WriteFile("agent/Nodrix", "");
    world.home.WriteFile(".config/Vendrel/com.vendrel.Nodrix-LaunchInfo.conf",
                         "nodrix.path=" + path + "\nnodrix.args=--daemon\n");
  }
  std::size_t Launches() const { return world.platform.process.launches.size(); }
  std::size_t CountLogged(const std::string& line) const {
    const Calls lines = world.facade.LogLines();
    return static_cast<std::size_t>(std::count(lines.begin(), lines.end(), line));
  }
  void Begin() {
    Start();
    world.platform.process.launches.clear();  // from the search for the dialog framework
    facade.ForgetCalls();
    facade.AddFont(7, "Name", "Name", 11);
  }
};

constexpr const char* kSilentLine =
    "Agent not running, automatically relaunching agent and retrying command";
constexpr const char* kAskingLine = "Agent not running, relaunching agent and retrying command";
constexpr const char* kGivenUpLine =
    "Agent not running, done attempting to relaunch.  Disabling plugin functionality";

TEST_F(Retry, FirstRoundIsSilentSecondAsksLaterOnesAreSilentAgain) {
  InstallAgent();
  Begin();
  facade.Answer("DeactivateFonts",
                {kPluginInterface_AgentShutdown, kPluginInterface_ServiceUnavailable,
                 kPluginInterface_AgentGone, kGone, 0});
  std::vector<std::size_t> shown;  // boxes so far, at each command
  facade.OnCall("DeactivateFonts", [&] { shown.push_back(tarn.messages.size()); });
  EXPECT_EQ(agent->DeactivateFont(MakeFont(7), nullptr), 0);
  EXPECT_EQ(shown, (std::vector<std::size_t>{0, 0, 1, 1, 1}));
  EXPECT_EQ(tarn.TakeTitles(), Texts{"FontManagerNotFoundHeader"});
  EXPECT_EQ(Launches(), 4u);
  EXPECT_EQ(facade.CountOf("ResetPluginFacadeInstance"), 4u);
  EXPECT_EQ(CountLogged(kSilentLine), 3u);
  EXPECT_EQ(CountLogged(kAskingLine), 1u);
  EXPECT_EQ(CountLogged("Agent not running:  error code = 33562637"), 2u);
  EXPECT_TRUE(KestraneGlobals::ArePluginServicesEnabled());
  EXPECT_EQ(pauses, (std::vector<unsigned>{100, 200, 400}));  // none after the first launch
}

TEST_F(Retry, AnotherCodeEndsTheLoop) {
  InstallAgent();
  Begin();
  facade.Answer("DeactivateFonts", {kGone, 16});
  EXPECT_EQ(agent->DeactivateFont(MakeFont(7), nullptr), -1);
  EXPECT_EQ(facade.CountOf("DeactivateFonts"), 2u);
  // Negative as a signed number: no failure.
  facade.Answer("DeactivateFonts", {0x80000001u});
  EXPECT_EQ(agent->DeactivateFont(MakeFont(7), nullptr), 0);
}

// With nothing to start the rounds go on, but further and further apart, until the host ends them.
TEST_F(Retry, WaitsWhereNothingCanBeStartedAndEndsWhenInterrupted) {
  Begin();
  tarn.preferences[kSuppressPluginCoreDialogsPrefKey] = true;
  facade.AnswerAlways("DeactivateFonts", kGone);
  SetRetryInterrupted([this] { return pauses.size() == 6; });
  EXPECT_EQ(agent->DeactivateFont(MakeFont(7), nullptr), -1);
  EXPECT_EQ(pauses, (std::vector<unsigned>{100, 200, 400, 800, 1000, 1000}));
  EXPECT_EQ(facade.CountOf("DeactivateFonts"), 6u);
  EXPECT_EQ(Launches(), 0u);
  EXPECT_TRUE(tarn.messages.empty());
  EXPECT_EQ(CountLogged(kGivenUpLine), 1u);
  EXPECT_FALSE(KestraneGlobals::ArePluginServicesEnabled());
  EXPECT_FALSE(KestraneGlobals::GetConnectedToCore());
}

TEST_F(Retry, DoesNotLaunchOnceInterrupted) {
  InstallAgent();
  Begin();
  facade.AnswerAlways("DeactivateFonts", kGone);
  SetRetryInterrupted([] { return true; });
  EXPECT_EQ(agent->DeactivateFont(MakeFont(7), nullptr), -1);
  EXPECT_EQ(facade.CountOf("DeactivateFonts"), 1u);
  EXPECT_EQ(Launches(), 0u);
  EXPECT_TRUE(pauses.empty());
}

TEST_F(Retry, ServesTheSchemaQuestionToo) {
  InstallAgent();
  Begin();
  facade.Answer("GetAreSchemaVersionsInSync", {kGone});
  EXPECT_TRUE(agent->AreSchemaVersionsInSync());
  EXPECT_EQ(facade.CountOf("GetAreSchemaVersionsInSync"), 2u);
}

}  // namespace
