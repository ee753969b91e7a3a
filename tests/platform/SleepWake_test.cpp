#include <gio/gio.h>
#include <gtest/gtest.h>

#include <cstdlib>

#include "platform/NotificationTimer.h"
#include "platform/linux/LogindSleepWakeObserver.h"
#include "support/FakePlatform.h"

namespace {

constexpr const char* kBusVariable = "DBUS_SYSTEM_BUS_ADDRESS";

// A bus of its own on which a stand-in for logind owns the name.
class FakeLogind {
 public:
  FakeLogind() : mBus(g_test_dbus_new(G_TEST_DBUS_NONE)) {
    g_test_dbus_up(mBus);
    const char* address = g_test_dbus_get_bus_address(mBus);
    setenv(kBusVariable, address, 1);
    mConnection = g_dbus_connection_new_for_address_sync(
        address,
        static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                          G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION),
        nullptr, nullptr, nullptr);
    GVariant* reply = g_dbus_connection_call_sync(
        mConnection, "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus",
        "RequestName", g_variant_new("(su)", "org.freedesktop.login1", 0U), nullptr,
        G_DBUS_CALL_FLAGS_NONE, -1, nullptr, nullptr);
    if (reply) g_variant_unref(reply);
  }
  ~FakeLogind() {
    g_object_unref(mConnection);
    g_test_dbus_stop(mBus);
    g_object_unref(mBus);
  }
  FakeLogind(const FakeLogind&) = delete;
  FakeLogind& operator=(const FakeLogind&) = delete;

  void Prepare(bool sleep) {
    g_dbus_connection_emit_signal(mConnection, nullptr, "/org/freedesktop/login1",
                                  "org.freedesktop.login1.Manager", "PrepareForSleep",
                                  g_variant_new("(b)", sleep), nullptr);
    g_dbus_connection_flush_sync(mConnection, nullptr, nullptr);
  }

 private:
  GTestDBus* mBus;
  GDBusConnection* mConnection = nullptr;
};

// Counts what comes through, after it was handled.
class CountingObserver : public SleepWakeObserver {
 public:
  int sleeps = 0;
  int wakes = 0;

  std::unique_ptr<Subscription> Subscribe(std::function<void()> willSleep,
                                          std::function<void()> didWake) override {
    const auto counted = [](std::function<void()> handler, int& counter) {
      return [handler = std::move(handler), &counter] {
        handler();
        ++counter;
      };
    };
    return mLogind.Subscribe(counted(std::move(willSleep), sleeps),
                             counted(std::move(didWake), wakes));
  }

 private:
  LogindSleepWakeObserver mLogind;
};

class PlatformWithLogind : public FakePlatform {
 public:
  CountingObserver observer;
  SleepWakeObserver& GetSleepWakeObserver() override { return observer; }
};

TEST(SleepWake, ExactlyOneTimerIsInstalledWhateverComes) {
  FakeLogind logind;
  PlatformWithLogind platform;
  int ticks = 0;
  NotificationTimer timer([&] { ++ticks; });
  EXPECT_EQ(platform.runLoop.TimerCount(), 1U);

  // The subscription comes to be in the background; a wake too many changes nothing.
  while (platform.observer.wakes == 0) {
    logind.Prepare(false);
    g_usleep(1000);
    while (g_main_context_iteration(nullptr, FALSE)) {
    }
  }
  EXPECT_EQ(platform.runLoop.TimerCount(), 1U);

  const auto afterSleeps = [&](int count) {
    while (platform.observer.sleeps < count) g_main_context_iteration(nullptr, TRUE);
  };
  logind.Prepare(true);
  afterSleeps(1);
  EXPECT_EQ(platform.runLoop.TimerCount(), 0U);
  logind.Prepare(true);
  afterSleeps(2);
  EXPECT_EQ(platform.runLoop.TimerCount(), 0U);
  platform.runLoop.Advance(1);
  EXPECT_EQ(ticks, 0);

  for (int i = 0; i < 2; ++i) {
    const int before = platform.observer.wakes;
    logind.Prepare(false);
    while (platform.observer.wakes == before) g_main_context_iteration(nullptr, TRUE);
    EXPECT_EQ(platform.runLoop.TimerCount(), 1U);
  }
  platform.runLoop.Advance(0.05);
  EXPECT_EQ(ticks, 5);
}

TEST(SleepWake, AnEndWhileTheBusIsBeingReachedDoesNoHarm) {
  FakeLogind logind;
  LogindSleepWakeObserver observer;
  int calls = 0;
  const auto count = [&] { ++calls; };
  (void)observer.Subscribe(count, count);

  // A second one that ends itself in its own handler.
  std::unique_ptr<SleepWakeObserver::Subscription> kept;
  kept = observer.Subscribe([] {},
                            [&] {
                              count();
                              kept.reset();
                            });
  while (calls == 0) {
    logind.Prepare(false);
    g_usleep(1000);
    while (g_main_context_iteration(nullptr, FALSE)) {
    }
  }
  EXPECT_EQ(calls, 1);
}

TEST(SleepWake, WithoutABusNothingIsCalled) {
  setenv(kBusVariable, "unix:path=/nonexistent/bus", 1);
  LogindSleepWakeObserver observer;
  int calls = 0;
  const auto subscription = observer.Subscribe([&] { ++calls; }, [&] { ++calls; });
  ASSERT_NE(subscription, nullptr);
  bool over = false;
  g_timeout_add(
      50,
      [](gpointer data) -> gboolean {
        *static_cast<bool*>(data) = true;
        return G_SOURCE_REMOVE;
      },
      &over);
  while (!over) g_main_context_iteration(nullptr, TRUE);
  EXPECT_EQ(calls, 0);
}

// Without a system to tell of sleep: what the timer does by itself.
TEST(NotificationTimer, TicksInModalSessionsAndEndsWithTheObject) {
  FakePlatform platform;
  int ticks = 0;
  {
    NotificationTimer timer([&] { ++ticks; });
    platform.runLoop.AdvanceModal(0.03);
    EXPECT_EQ(ticks, 3);
    timer.installTimer();
    EXPECT_EQ(platform.runLoop.TimerCount(), 1U);
  }
  EXPECT_EQ(platform.runLoop.TimerCount(), 0U);
  EXPECT_EQ(platform.sleepWake.SubscriptionCount(), 0U);
}

}  // namespace
