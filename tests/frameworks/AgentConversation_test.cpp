// The client library in conversation with an agent: commands, their codes, notifications.
#include <gtest/gtest.h>

#include <atomic>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <optional>
#include <thread>
#include <vector>

#include "foundation/ErrorCodes.h"
#include "frameworks/FakeAgent.h"
#include "frameworks/FrameworkLibraries.h"
#include "support/ScratchHome.h"

namespace {

using IDs = std::vector<std::uint32_t>;

// What the callback heard. The callback has no context of its own, hence one for all.
struct Heard {
  std::mutex mutex;
  std::condition_variable changed;
  std::vector<std::pair<std::int32_t, std::uint32_t>> events;  // kind, font or 0
  std::vector<std::thread::id> threads;
  bool hold = false;  // keep the call from returning
  bool inside = false;
  const FacadeTable* unregistersBy = nullptr;

  void Await(std::size_t count) {
    std::unique_lock lock(mutex);
    changed.wait(lock, [&] { return events.size() >= count; });
  }
};
Heard* sHeard;

std::uint32_t Listen(std::int32_t kind, const void* data) {
  Heard& heard = *sHeard;
  if (heard.unregistersBy != nullptr) {
    heard.unregistersBy->UnregisterForNotifications(heard.unregistersBy->GetPluginFacadeInstance(),
                                                    Listen);
  }
  std::unique_lock lock(heard.mutex);
  heard.events.emplace_back(kind, data ? *static_cast<const std::uint32_t*>(data) : 0);
  heard.threads.push_back(std::this_thread::get_id());
  heard.inside = true;
  heard.changed.notify_all();
  heard.changed.wait(lock, [&] { return !heard.hold; });
  heard.inside = false;
  return CoreErrorCodes::kUnknownError;
}

class AgentConversation : public testing::Test {
 protected:
  AgentConversation() { sHeard = &heard; }
  ~AgentConversation() override { facade.CleanUpOnShutdown(instance); }

  std::uint32_t Activate(const IDs& fonts, std::uint32_t capacity, IDs& failed, IDs& second) {
    const auto count = static_cast<std::uint32_t>(fonts.size());
    failed.assign(8, 0);
    second.assign(8, 0);
    std::uint32_t failedCount = 9, secondCount = 9;
    const std::uint32_t code =
        facade.ActivateFonts(instance, count, fonts.data(), 0, 1, 1, 1, capacity, capacity,
                             failed.data(), second.data(), &failedCount, &secondCount);
    failed.resize(failedCount);
    second.resize(secondCount);
    return code;
  }

  ScratchHome home;
  Heard heard;
  FacadeTable facade;
  PluginFacadeInstance instance = facade.GetPluginFacadeInstance();
};

}  // namespace

TEST_F(AgentConversation, SendsCommandsAndFillsListsWithinTheirCapacity) {
  FakeAgent agent;
  agent.SetAnswers({.failed = {3, 4, 5}, .restricted = {2}, .refuses = false});
  EXPECT_EQ(facade.InitThreadInstance(instance), 0u);
  std::int32_t running = 0;
  EXPECT_EQ(facade.GetIsCoreAgentProcessRunning(instance, &running), 0u);
  EXPECT_EQ(running, 1);
  IDs failed, second;
  EXPECT_EQ(Activate({1, 2, 3, 4, 5}, 2, failed, second), 0u);
  EXPECT_EQ(failed, (IDs{3, 4}));
  EXPECT_EQ(second, IDs{2});
  const IDs fonts{1, 2};
  EXPECT_EQ(facade.DeactivateFonts(instance, 2, fonts.data(), 0), 0u);
  const auto calls = agent.Calls();
  ASSERT_EQ(calls.size(), 3u) << "one connection for all";
  EXPECT_EQ(calls[1], "Activate([1, 2, 3, 4, 5], 1)");
  EXPECT_EQ(calls[2], "Deactivate([1, 2], 1)");
}

TEST_F(AgentConversation, TellsRefusedFromGoneAndFindsANewAgent) {
  auto agent = std::make_unique<FakeAgent>();
  agent->SetAnswers({.failed = {}, .restricted = {}, .refuses = true});
  IDs failed, second;
  EXPECT_EQ(Activate({1}, 1, failed, second), CoreErrorCodes::kError);
  agent.reset();
  EXPECT_EQ(Activate({1}, 1, failed, second), kPluginInterface_ServiceUnavailable);
  std::int32_t running = 9;
  facade.GetIsCoreAgentProcessRunning(instance, &running);
  EXPECT_EQ(running, 0);
  // A new agent is on its way while the next command is sent.
  std::optional<FakeAgent> late;
  facade.ResetPluginFacadeInstance();
  std::thread launch([&] {
    std::this_thread::sleep_for(std::chrono::milliseconds(800));
    late.emplace();
  });
  EXPECT_EQ(Activate({1}, 1, failed, second), 0u);
  launch.join();
}

TEST_F(AgentConversation, KeepsALiveConnectionOverAReset) {
  FakeAgent agent;
  EXPECT_EQ(facade.InitThreadInstance(instance), 0u);
  facade.ResetPluginFacadeInstance();
  EXPECT_EQ(facade.DeactivateFonts(instance, 0, nullptr, 0), 0u);
  EXPECT_EQ(agent.Calls().size(), 2u) << "leaving would give this process's fonts back";
}

TEST_F(AgentConversation, HearsSignalsOnAThreadOfTheLibrary) {
  FakeAgent agent;
  EXPECT_EQ(facade.RegisterForNotifications(instance, Listen), 0u);
  EXPECT_EQ(facade.RegisterForNotifications(instance, Listen), 0u);
  agent.AwaitClients(1);
  agent.Emit("FontActivated", {5, 6});
  agent.Emit("FontDeactivated", {5});
  agent.Emit("FontMissing", {6});
  agent.Emit("LibraryChanged");
  agent.Emit("ShuttingDown");
  heard.Await(6);
  const std::vector<std::pair<std::int32_t, std::uint32_t>> expected{
      {kCallback_FontActivated, 5}, {kCallback_FontActivated, 6},    {kCallback_FontDeactivated, 5},
      {kCallback_FontMissing, 6},   {kCallback_PanelDataChanged, 0}, {kCallback_AgentShutdown, 0}};
  facade.CleanUpOnShutdown(instance);
  EXPECT_EQ(heard.events, expected);
  for (const auto thread : heard.threads) EXPECT_NE(thread, std::this_thread::get_id());
}

TEST_F(AgentConversation, UnregisteringWaitsForTheCall) {
  FakeAgent agent;
  facade.RegisterForNotifications(instance, Listen);
  agent.AwaitClients(1);
  heard.hold = true;
  agent.Emit("FontActivated", {5});
  heard.Await(1);
  std::atomic<bool> released = false;
  std::thread release([&] {
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
    const std::lock_guard lock(heard.mutex);
    released = true;
    heard.hold = false;
    heard.changed.notify_all();
  });
  EXPECT_EQ(facade.UnregisterForNotifications(instance, Listen), 0u);
  EXPECT_TRUE(released);
  EXPECT_FALSE(heard.inside);
  release.join();
  agent.Emit("FontActivated", {6});
  EXPECT_EQ(facade.UnregisterForNotifications(instance, Listen), CoreErrorCodes::kNotFound);
  facade.CleanUpOnShutdown(instance);
  EXPECT_EQ(heard.events.size(), 1u);
}

TEST_F(AgentConversation, UnregistersFromInsideTheCallAndStartsAgain) {
  FakeAgent agent;
  heard.unregistersBy = &facade;
  facade.RegisterForNotifications(instance, Listen);
  agent.AwaitClients(1);
  agent.Emit("FontActivated", {5, 6});
  heard.Await(1);
  facade.CleanUpOnShutdown(instance);
  EXPECT_EQ(heard.events.size(), 1u) << "no second call";
  heard.unregistersBy = nullptr;
  facade.RegisterForNotifications(instance, Listen);
  agent.AwaitClients(2);
  agent.Emit("FontActivated", {7});
  heard.Await(2);
  EXPECT_EQ(heard.events[1].second, 7u);
}

TEST_F(AgentConversation, SaysNothingWhenTheConnectionDropsAndHearsTheNextAgent) {
  auto agent = std::make_unique<FakeAgent>();
  facade.RegisterForNotifications(instance, Listen);
  agent->AwaitClients(1);
  agent = nullptr;
  agent = std::make_unique<FakeAgent>();
  facade.ResetPluginFacadeInstance();
  agent->AwaitClients(1);
  agent->Emit("FontActivated", {8});
  heard.Await(1);
  const std::pair<std::int32_t, std::uint32_t> first{kCallback_FontActivated, 8};
  EXPECT_EQ(heard.events.front(), first);
}
