#include "platform/linux/LogindSleepWakeObserver.h"

#include <gio/gio.h>

#include <utility>

namespace {

// Shared by the subscription and the calls under way, which may outlive it.
struct Watch {
  std::function<void()> willSleep;
  std::function<void()> didWake;
  GCancellable* cancellable = g_cancellable_new();
  GDBusConnection* connection = nullptr;
  guint signal = 0;

  Watch() = default;
  Watch(const Watch&) = delete;
  Watch& operator=(const Watch&) = delete;
  ~Watch() {
    g_clear_object(&connection);
    g_clear_object(&cancellable);
  }
};

using WatchRef = std::shared_ptr<Watch>;

void OnPrepareForSleep(GDBusConnection*, const gchar*, const gchar*, const gchar*, const gchar*,
                       GVariant* parameters, gpointer data) {
  if (!g_variant_is_of_type(parameters, G_VARIANT_TYPE("(b)"))) return;
  gboolean sleeping = FALSE;
  g_variant_get(parameters, "(b)", &sleeping);
  const WatchRef watch = *static_cast<WatchRef*>(data);  // a handler may end the subscription
  (sleeping ? watch->willSleep : watch->didWake)();
}

void ReleaseWatch(gpointer data) { delete static_cast<WatchRef*>(data); }

void OnConnected(GObject*, GAsyncResult* result, gpointer data) {
  const std::unique_ptr<WatchRef> held(static_cast<WatchRef*>(data));
  Watch& watch = **held;
  GDBusConnection* connection = g_dbus_connection_new_for_address_finish(result, nullptr);
  if (connection == nullptr) return;
  if (g_cancellable_is_cancelled(watch.cancellable)) {
    g_object_unref(connection);
    return;
  }
  watch.connection = connection;
  watch.signal = g_dbus_connection_signal_subscribe(
      connection, "org.freedesktop.login1", "org.freedesktop.login1.Manager", "PrepareForSleep",
      "/org/freedesktop/login1", nullptr, G_DBUS_SIGNAL_FLAGS_NONE, OnPrepareForSleep,
      new WatchRef(*held), ReleaseWatch);
}

class LogindSubscription : public SleepWakeObserver::Subscription {
 public:
  explicit LogindSubscription(WatchRef watch) : mWatch(std::move(watch)) {}
  ~LogindSubscription() override {
    g_cancellable_cancel(mWatch->cancellable);
    if (mWatch->connection == nullptr) return;
    g_dbus_connection_signal_unsubscribe(mWatch->connection, mWatch->signal);
    g_clear_object(&mWatch->connection);
  }
  LogindSubscription(const LogindSubscription&) = delete;
  LogindSubscription& operator=(const LogindSubscription&) = delete;

 private:
  WatchRef mWatch;
};

}  // namespace

std::unique_ptr<SleepWakeObserver::Subscription> LogindSleepWakeObserver::Subscribe(
    std::function<void()> willSleep, std::function<void()> didWake) {
  auto watch = std::make_shared<Watch>();
  watch->willSleep = std::move(willSleep);
  watch->didWake = std::move(didWake);
  if (gchar* address = g_dbus_address_get_for_bus_sync(G_BUS_TYPE_SYSTEM, nullptr, nullptr)) {
    const auto flags =
        static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                          G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION);
    g_dbus_connection_new_for_address(address, flags, nullptr, watch->cancellable, OnConnected,
                                      new WatchRef(watch));
    g_free(address);
  }
  return std::make_unique<LogindSubscription>(std::move(watch));
}
