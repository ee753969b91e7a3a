#include "coreagent/AgentFixture.h"
#include "coreagent/AllocationCounter.h"

namespace {

using Connection = AgentTest;

struct Start {
  const char* title;
  void (*prepare)(AgentTest& test, FakeFacade& facade, FakeTarn& tarn);
  bool isRegistered;
  bool isEnabled;
  bool displayedSchemaError;
  Texts titles;
  Texts messages;
  const char* logged;
};

void AnswerVerdict(FakeFacade& facade, std::uint32_t code) {
  facade.Answer("InitThreadInstance", {code});
}

const Start kStarts[] = {
    {"connected",
     [](AgentTest&, FakeFacade&, FakeTarn&) {},
     true,
     true,
     false,
     {},
     {},
     "GLarkspurSdk::Initialize SUCCEEDED."},
    {"schema out of sync",
     [](AgentTest&, FakeFacade& facade, FakeTarn&) {
       facade.Answer("InitAppInstance", {0x14000000});
       facade.schemaInSync = false;
     },
     false,
     false,
     true,
     {"VaultNeedsUpgradeTitle"},
     {"VaultNeedsUpgradeMessage"},
     "WARNING:  CoreAgentInterface::AreSchemaVersionsInSync() returning FALSE"},
    {"refused, but the schema fits",
     [](AgentTest&, FakeFacade& facade, FakeTarn&) {
       facade.Answer("InitAppInstance", {0x14000000});
     },
     false,
     true,
     false,
     {},
     {},
     ""},
    {"agent not running",
     [](AgentTest&, FakeFacade& facade, FakeTarn&) { facade.agentRunning = false; },
     false,
     false,
     false,
     {"FontManagerNotFoundHeader"},
     {"FontManagerNotFoundMessage"},
     "Core Agent process not running; rc=0, isRunning=0, sizeof(isRunning)=4"},
    {"agent not running, dialogs suppressed",
     [](AgentTest&, FakeFacade& facade, FakeTarn& tarn) {
       facade.agentRunning = false;
       tarn.preferences[kSuppressPluginCoreDialogsPrefKey] = true;
     },
     false,
     false,
     false,
     {},
     {},
     ""},
    {"the question fails",
     [](AgentTest&, FakeFacade& facade, FakeTarn&) {
       facade.Answer("GetIsCoreAgentProcessRunning", {16});
     },
     false,
     false,
     false,
     {"FontManagerNotFoundHeader"},
     {"FontManagerNotFoundMessage"},
     "Core Agent process not running; rc=16, isRunning=0, sizeof(isRunning)=4"},
    {"wrong mode",
     [](AgentTest&, FakeFacade& facade, FakeTarn&) { AnswerVerdict(facade, 0x03002005); },
     true,
     false,
     false,
     {},
     {},
     "Core Agent process running in wrong mode"},
    {"wrong mode, older",
     [](AgentTest&, FakeFacade& facade, FakeTarn&) { AnswerVerdict(facade, 0x03007005); },
     true,
     false,
     false,
     {},
     {},
     "Core Agent process running in wrong mode"},
    {"not found",
     [](AgentTest&, FakeFacade& facade, FakeTarn&) { AnswerVerdict(facade, 0x02002005); },
     true,
     false,
     false,
     {"FontManagerNotFoundHeader"},
     {"FontManagerNotFoundMessage"},
     "Core Agent process not found"},
    {"not found, older",
     [](AgentTest&, FakeFacade& facade, FakeTarn&) { AnswerVerdict(facade, 0x02007005); },
     true,
     false,
     false,
     {"FontManagerNotFoundHeader"},
     {"FontManagerNotFoundMessage"},
     "Core Agent process not found"},
    {"vault in use",
     [](AgentTest&, FakeFacade& facade, FakeTarn&) { AnswerVerdict(facade, 0x02002008); },
     true,
     false,
     false,
     {"-"},
     {"in use: /home/x/Fonts.vault"},
     "GLarkspurSdk::Initialize FAILED, error code = 33562632 (GLarkspurSdk::kVaultInUse)."},
    {"vault in use, older",
     [](AgentTest&, FakeFacade& facade, FakeTarn&) { AnswerVerdict(facade, 0x02007008); },
     true,
     false,
     false,
     {"-"},
     {"in use: /home/x/Fonts.vault"},
     "Disabling plug-in services in CoreAgentInterface::InitializeCoreAgent() because of SDK "
     "initialization error 33583112."},
    {"any other verdict",
     [](AgentTest&, FakeFacade& facade, FakeTarn&) { AnswerVerdict(facade, 77); },
     true,
     false,
     false,
     {"-"},
     {"not open: /home/x/Fonts.vault"},
     "GLarkspurSdk::Initialize FAILED, error code = 77."},
};

TEST(ConnectionAtStart, EndsInTheStateOfItsVerdict) {
  struct Opened : AgentTest {
    void TestBody() override {}
    using AgentTest::Start;
    using AgentTest::world;
  };
  for (const auto& start : kStarts) {
    SCOPED_TRACE(start.title);
    Opened test;
    FakeFacade& facade = test.world.facade;
    FakeTarn& tarn = test.world.tarn;
    tarn.texts = {{"CouldNotOpenVaultInUseLaunchPrefs", "in use: %s"},
                  {"CouldNotOpenVaultLaunchPrefs", "not open: %s"}};
    KestraneGlobals::SetLoggedIn(true);
    start.prepare(test, facade, tarn);
    test.Start();
    EXPECT_EQ(facade.HasCallback(), start.isRegistered);
    EXPECT_EQ(facade.CountOf("EnableDesignActivation"), start.isRegistered ? 1u : 0u);
    EXPECT_EQ(KestraneGlobals::ArePluginServicesEnabled(), start.isEnabled);
    EXPECT_EQ(KestraneGlobals::GetConnectedToCore(), start.isEnabled);
    EXPECT_EQ(KestraneGlobals::GetDisplayedSchemaError(), start.displayedSchemaError);
    Texts titles;
    for (const auto& message : tarn.messages) titles.push_back(message.title);
    EXPECT_EQ(titles, start.titles);
    EXPECT_EQ(tarn.TakeMessages(), start.messages);
    if (*start.logged) {
      EXPECT_TRUE(facade.HasLogged(start.logged)) << start.logged;
    }
    EXPECT_EQ(facade.CallsOf("InitAppInstance"), Calls{"2,21"});
  }
}

TEST_F(Connection, EndsWithItsThreadInstance) {
  Start();
  EXPECT_EQ(agent->DisconnectFromFontManager(), 0);
  EXPECT_FALSE(facade.HasCallback());
  FontManagerInterface::ExchangeFontManager(nullptr);
  agent.reset();
  EXPECT_EQ(facade.CountOf("DestroyThreadInstance"), 1u);
}

TEST_F(Connection, FallsToStartValuesWhereAQuestionFails) {
  Start();
  facade.standalone = false;
  facade.loggedIn = true;
  EXPECT_FALSE(agent->RunningStandalone());
  EXPECT_TRUE(agent->IsLoggedIn());
  facade.AnswerAlways("GetIsLoggedIn", 5);
  EXPECT_FALSE(agent->IsLoggedIn());
  facade.AnswerAlways("GetIsStandaloneMode", 5);
  EXPECT_TRUE(agent->RunningStandalone());
  EXPECT_TRUE(agent->IsLoggedIn());
  facade.AnswerAlways("GetIsCoreAgentProcessRunning", 5);
  EXPECT_FALSE(agent->IsRunning());
  EXPECT_TRUE(
      facade.HasLogged("WARNING:  PluginInterface::GetIsCoreAgentProcessRunning() returned 5"));
}

// Without any library nothing is called through the table.
TEST_F(Connection, LivesWithoutALibrary) {
  agent = std::make_unique<CoreAgentInterface>();
  EXPECT_FALSE(agent->IsRunning());
  EXPECT_TRUE(agent->RunningStandalone());
  EXPECT_EQ(agent->DeactivateFont(MakeFont(7), nullptr), -1);
  EXPECT_FALSE(agent->CanActivateFromAllWorkgroups());
  EXPECT_EQ(agent->ProcessNotifications(), 0);
}

TEST_F(Connection, WatchdogAsksEverySixSecondsAndUpToThreeTimes) {
  constexpr const char* kQuestion = "GetIsCoreAgentProcessRunning";
  Start();
  facade.ForgetCalls();
  agent->ProcessNotifications();  // the first check is due
  EXPECT_EQ(facade.CountOf(kQuestion), 1u);
  world.platform.runLoop.Advance(5);
  agent->ProcessNotifications();
  EXPECT_EQ(facade.CountOf(kQuestion), 1u);
  world.platform.runLoop.Advance(1);
  facade.Answer(kQuestion, {5, 5});  // the third one counts
  agent->ProcessNotifications();
  EXPECT_EQ(facade.CountOf(kQuestion), 4u);
  EXPECT_TRUE(KestraneGlobals::ArePluginServicesEnabled());

  world.platform.runLoop.Advance(6);
  facade.AnswerAlways(kQuestion, 5);
  agent->ProcessNotifications();
  EXPECT_EQ(facade.CountOf(kQuestion), 7u);
  EXPECT_FALSE(KestraneGlobals::ArePluginServicesEnabled());
  EXPECT_FALSE(KestraneGlobals::GetConnectedToCore());
  EXPECT_EQ(tarn.TakeTitles(), Texts{"FontManagerNotFoundHeader"});
  EXPECT_TRUE(facade.HasLogged(
      "Disabling plug-in services in CoreAgentInterface::ProcessNotifications() because Nodrix is "
      "no longer running."));

  world.platform.runLoop.Advance(60);  // not connected: silent
  agent->ProcessNotifications();
  EXPECT_EQ(facade.CountOf(kQuestion), 7u);
}

TEST_F(Connection, WatchdogBelievesAnAnswerOfNotRunningAtOnce) {
  Start();
  facade.ForgetCalls();
  facade.agentRunning = false;
  tarn.preferences[kSuppressPluginCoreDialogsPrefKey] = true;
  agent->ProcessNotifications();
  EXPECT_EQ(facade.CountOf("GetIsCoreAgentProcessRunning"), 1u);
  EXPECT_FALSE(KestraneGlobals::GetConnectedToCore());
  EXPECT_TRUE(tarn.messages.empty());
}

TEST_F(Connection, AnIdleTickAllocatesNothing) {
  Start();
  agent->ProcessNotifications();
  const long before = CountOfAllocations();
  agent->ProcessNotifications();
  EXPECT_EQ(CountOfAllocations(), before);
}

}  // namespace
