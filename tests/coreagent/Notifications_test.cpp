#include <atomic>
#include <thread>

#include "coreagent/AgentFixture.h"

namespace {

class Notifications : public AgentTest {
 protected:
  // What the host interface is told of one event.
  Texts Told(std::int32_t kind, const void* data) {
    host.told.clear();
    EXPECT_TRUE(facade.Notify(kind, data));
    agent->ProcessNotifications();
    return host.Take();
  }
  void Queue(std::initializer_list<std::pair<const char*, PropertyList::Value>> entries) {
    auto notification = std::make_unique<CoreAgentPluginNotification>(agent.get());
    for (const auto& [key, value] : entries) notification->dictionary->Set(key, value);
    agent->EnqueueNotification(std::move(notification));
  }
  void LogIn(bool isLoggedIn, int serverType) {
    Queue({{kPluginNotification_LoggedInStateChanged, true},
           {kPI_kIsLoggedInKey, isLoggedIn},
           {kPI_kServerTypeKey, serverType}});
    agent->ProcessNotifications();
  }
};

PropertyList::DictionaryRef MakeDetails(const char* text) {
  const auto details = PropertyList::Dictionary::Create();
  details->Set(kPI_kTextKey, text);
  return details;
}

TEST_F(Notifications, EachKindReachesTheHost) {
  Start();
  agent->ProcessNotifications();
  FontManagerInterface::SetValidWorkgroupSelected(true);
  const std::uint8_t on = 1;
  const std::uint8_t off = 0;
  const std::uint32_t id = 7;
  const std::uint32_t noID = 0xFFFFFFFFu;
  const auto details = MakeDetails("t");
  const void* progress = PropertyList::AsHandle(details);
  struct Case {
    std::int32_t kind;
    const void* data;
    Texts told;
  };
  const Case cases[] = {
      {1, &on, {"SetIsOnline(1)"}},
      {1, &off, {"SetIsOnline(0)"}},
      {2, progress, {"SetLoggedInState(0,1)"}},
      {3, nullptr, {"RebuildWorkgroupsMenu"}},
      {4, nullptr, {"RebuildWorkgroupsMenu"}},
      {8, &id, {"FontActivated(7)"}},
      {8, &noID, {}},
      {8, nullptr, {}},
      {9, &id, {"FontDeactivated(7)"}},
      {10, &id, {"FontMissing(7)"}},
      {10, &noID, {}},
      {14, &on, {"GoogleWebFontsEnabled(1)"}},
      {14, &off, {"GoogleWebFontsEnabled(0)"}},
      {14, nullptr, {}},
      {15, progress, {"GoogleReplicationProgress(t)"}},
      {16, nullptr, {"GoogleReplicationStopped"}},
      {17, progress, {"PreviewPNGsRendered(t)"}},
      {18, nullptr, {"SmartListsChanged"}},
      {19, progress, {"BulkReplicationProgress(t)"}},
      {20, nullptr, {"BulkReplicationStopped"}},
      {21, progress, {"IncrementalReplicationProgress(t)"}},
      {22, nullptr, {"IncrementalReplicationStopped"}},
      {23, nullptr, {"HandlePanelDataChanged"}},
      {24, &id, {"DesignActivationFailedComplianceCheck(7)"}},
      {25, nullptr, {"OfflineDownloadFinished"}},
      {27, progress, {"FontServerReplicationProgress(t)"}},
      {28, nullptr, {"FontServerReplicationStopped"}},
      {0, nullptr, {}},
  };
  for (const Case& c : cases) EXPECT_EQ(Told(c.kind, c.data), c.told) << c.kind;
  for (const std::int32_t kind : {5, 6, 7, 11, 12, 13, 26, 29, 1000, -1}) {
    EXPECT_EQ(Told(kind, nullptr), Texts{}) << kind;
  }
  EXPECT_TRUE(facade.HasLogged(
      "CoreAgentNotificationCallback(callbackType=29, pCallbackData=0x00000000) returning "
      "352321536"));
  EXPECT_EQ(tarn.onlineStates, (std::vector<bool>{true, false}));
}

TEST_F(Notifications, TheCallersDictionaryIsCopiedAtOnce) {
  Start();
  const auto details = MakeDetails("before");
  facade.Notify(kCallback_BulkReplicationProgress, PropertyList::AsHandle(details));
  details->Set(kPI_kTextKey, "after");
  agent->ProcessNotifications();
  EXPECT_EQ(host.Take(), Texts{"BulkReplicationProgress(before)"});
}

TEST_F(Notifications, TheFirstKeyOfTheOrderDecides) {
  Start();
  agent->ProcessNotifications();
  const Texts order = {"SetIsOnline(0)",         "HandlePanelDataChanged",
                       "FontActivated(7)",       "DesignActivationFailedComplianceCheck(7)",
                       "FontDeactivated(7)",     "FontMissing(7)",
                       "BulkReplicationStopped", "GoogleReplicationStopped",
                       "SmartListsChanged",      "OfflineDownloadFinished"};
  std::vector<const char*> keys = {
      kPluginNotification_OnlineStateChanged,     kPluginNotification_PanelDataChanged,
      kPluginNotification_FontActivated,          kPluginNotification_DesignActivationNonCompliant,
      kPluginNotification_FontDeactivated,        kPluginNotification_FontMissing,
      kPluginNotification_BulkReplicationStopped, kPluginNotification_GoogleReplicationStopped,
      kPluginNotification_SmartListsChanged,      kPluginNotification_OfflineDownloadFinished};
  for (std::size_t first = 0; first < keys.size(); ++first) {
    auto notification = std::make_unique<CoreAgentPluginNotification>(agent.get());
    notification->dictionary->Set(kPluginNotification_FontActivation_Font_ID, 7);
    // Last things first; a key counts whatever its value is.
    for (std::size_t i = keys.size(); i-- > first;) notification->dictionary->Set(keys[i], false);
    agent->EnqueueNotification(std::move(notification));
    EXPECT_EQ(agent->ProcessNotifications(), 1);
    EXPECT_EQ(host.Take(), Texts{order[first]});
  }
}

struct LogInCase {
  const char* title;
  bool was;
  bool isLoggedIn;
  int serverType;
  bool services;
  bool replicating;
  bool loggedInAfter;
  bool checked;  // the workgroup
  Texts titles;
  const char* logged;
};

TEST_F(Notifications, LogInAndLogOff) {
  const LogInCase cases[] = {
      {"off",
       true,
       false,
       1,
       true,
       false,
       false,
       false,
       {"NotLoggedInHeader"},
       "Disabling plugin functionality until the user logs back in"},
      {"off, services off already",
       true,
       false,
       1,
       false,
       false,
       false,
       false,
       {},
       "Plugin Services are already disabled. Logging back in will not-renable them"},
      {"in",
       false,
       true,
       1,
       true,
       false,
       true,
       true,
       {},
       "Re-enabling plugin functionality, now that the user has logged-in."},
      {"in, services off",
       false,
       true,
       1,
       false,
       false,
       true,
       true,
       {},
       "User logged in, but plugin functionality was disabled for non-login reasons."},
      {"in again", true, true, 1, true, false, true, true, {}, ""},
      {"in while fonts arrive", false, true, 1, true, true, true, false, {}, ""},
      {"another server's", false, true, 3, true, false, false, false, {}, ""},
      {"another server's log-off", true, false, 3, true, false, true, false, {}, ""},
  };
  Start();
  agent->ProcessNotifications();
  for (const LogInCase& c : cases) {
    SCOPED_TRACE(c.title);
    KestraneGlobals::SetLoggedIn(c.was);
    KestraneGlobals::SetPluginServicesEnabled(c.services);
    KestraneGlobals::SetBulkReplicationRunning(c.replicating);
    FontManagerInterface::SetValidWorkgroupSelected(true);
    host.told.clear();
    facade.ForgetCalls();
    LogIn(c.isLoggedIn, c.serverType);
    Texts told = {"SetLoggedInState(" + std::to_string(c.isLoggedIn) + "," +
                  std::to_string(c.serverType) + ")"};
    if (c.checked) told.push_back("RebuildWorkgroupsMenu");
    EXPECT_EQ(host.Take(), told);
    EXPECT_EQ(KestraneGlobals::GetLoggedIn(), c.loggedInAfter);
    // With services off the selection is cleared and not made again.
    EXPECT_EQ(FontManagerInterface::GetValidWorkgroupSelected(), !c.checked || c.services);
    EXPECT_EQ(tarn.TakeTitles(), c.titles);
    if (*c.logged) {
      EXPECT_TRUE(facade.HasLogged(c.logged));
    }
  }
}

TEST_F(Notifications, WorkgroupsAreChosenAnewUnlessFontsArrive) {
  Start();
  agent->ProcessNotifications();
  FontManagerInterface::SetValidWorkgroupSelected(false);
  tarn.longPreferences[kCurrentWorkgroupPrefKey] = 99;
  KestraneGlobals::SetIncrementalReplicationRunning(true);
  Told(kCallback_WorkgroupsChanged, nullptr);
  EXPECT_EQ(tarn.longPreferences[kCurrentWorkgroupPrefKey], 99);
  Told(kCallback_IncrementalReplicationStopped, nullptr);
  EXPECT_FALSE(KestraneGlobals::GetIncrementalReplicationRunning());
  EXPECT_EQ(tarn.longPreferences[kCurrentWorkgroupPrefKey], 11) << "made up for when it stops";
  EXPECT_TRUE(FontManagerInterface::GetValidWorkgroupSelected());
}

TEST_F(Notifications, AgentShutdownTurnsServicesOff) {
  Start();
  agent->ProcessNotifications();
  Told(kCallback_AgentShutdown, nullptr);
  EXPECT_FALSE(KestraneGlobals::ArePluginServicesEnabled());
  EXPECT_FALSE(KestraneGlobals::GetConnectedToCore());
  EXPECT_EQ(tarn.TakeTitles(), Texts{"FontManagerNotFoundHeader"});
}

TEST_F(Notifications, OnlyActivationsReachTheCache) {
  Start();
  FontManagerInterface::FontOrSetInfoRec rec;
  rec.activationState = kActivationStateActive;
  rec.info = MakeFontRecord();
  rec.info->Set(kFP_PostScriptNameKey, "Name");
  rec.info->Set(kFP_ActivationStateKey, "2");
  FontDataPreviouslyGottenFromDatabase::Add(7, rec);
  const auto isActive = [] {
    FontRecord record;
    std::uint32_t id = 0;
    return FontDataPreviouslyGottenFromDatabase::CreateCopyOfFaceprintDataForActiveFont("Name",
                                                                                        record, id);
  };
  const std::uint32_t id = 7;
  Told(kCallback_FontMissing, &id);
  Told(kCallback_DesignActivationNonCompliant, &id);
  EXPECT_TRUE(isActive());
  Told(kCallback_FontDeactivated, &id);
  EXPECT_FALSE(isActive());
  Told(kCallback_FontActivated, &id);
  EXPECT_TRUE(isActive());
}

// The message box of the only entry runs the host's loop: more comes in, and the timer ticks.
TEST_F(Notifications, EventsDuringAMessageWaitAndAreHandledInTheSameRound) {
  Start();
  agent->ProcessNotifications();
  int nested = -1;
  tarn.onDialog = [&] {
    facade.Notify(kCallback_SmartListsChanged);
    nested = agent->ProcessNotifications();
    EXPECT_TRUE(host.told.empty());
  };
  facade.Notify(kCallback_AgentShutdown);
  EXPECT_EQ(agent->ProcessNotifications(), 2);
  EXPECT_EQ(nested, 0);
  EXPECT_EQ(host.Take(), Texts{"SmartListsChanged"});
}

TEST_F(Notifications, WithoutAFontManagerNothingIsQueuedOrDone) {
  Start();
  agent->ProcessNotifications();
  FontManagerInterface::ExchangeFontManager(nullptr);
  facade.Notify(kCallback_SmartListsChanged);
  EXPECT_TRUE(facade.HasLogged("WARNING:  CoreAgentInterface::GetFontManager() returned NULL."));
  CoreAgentPluginNotification notification(agent.get());
  notification.dictionary->Set(kPluginNotification_SmartListsChanged, true);
  EXPECT_EQ(notification.Respond(), -1);
  EXPECT_EQ(agent->ProcessNotifications(), 0);
  EXPECT_TRUE(host.told.empty());
}

TEST(NotificationQueue, KeepsItsOrderAndSurvivesWithEntriesLeft) {
  CoreAgentPluginNotificationQueue queue;
  queue.EnqueueNotification(nullptr);
  EXPECT_EQ(queue.DequeueNotification(), nullptr);
  std::vector<CoreAgentPluginNotification*> entries;
  for (int i = 0; i < 3; ++i) {
    auto entry = std::make_unique<CoreAgentPluginNotification>(nullptr);
    entries.push_back(entry.get());
    queue.EnqueueNotification(std::move(entry));
  }
  EXPECT_EQ(queue.DequeueNotification().get(), entries[0]);
  EXPECT_EQ(queue.DequeueNotification().get(), entries[1]);
}

// The library's threads report while the main thread drains, and until the font manager goes.
TEST_F(Notifications, ComeInOnThreadsOfTheLibrary) {
  constexpr int kThreads = 2;
  constexpr int kEventsEach = 300;
  Start();
  agent->ProcessNotifications();
  FontManagerInterface::ExchangeFontManager(nullptr);
  std::atomic<int> accepted{0};
  std::atomic<bool> isRefused{false};
  std::vector<std::thread> threads;
  for (int t = 0; t < kThreads; ++t) {
    threads.emplace_back([&] {
      for (std::uint32_t i = 0; i < kEventsEach || !isRefused; ++i) {
        if (facade.Notify(kCallback_FontMissing, &i))
          ++accepted;
        else
          isRefused = true;
        std::this_thread::yield();
      }
    });
  }
  FontManagerInterface::ExchangeFontManager(agent.get());
  int handled = 0;
  while (handled < kEventsEach) handled += agent->ProcessNotifications();
  agent->DisconnectFromFontManager();
  handled += agent->ProcessNotifications();
  FontManagerInterface::ExchangeFontManager(nullptr);
  agent.reset();
  for (std::thread& thread : threads) thread.join();
  EXPECT_TRUE(isRefused);
  EXPECT_LE(handled, accepted);  // the first may have come before there was a font manager
  EXPECT_EQ(host.told.size(), static_cast<std::size_t>(handled));
}

}  // namespace
