#include "frameworks/plugin-interface/NotificationThread.h"

#include <glib.h>

#include <algorithm>
#include <optional>
#include <string>
#include <utility>

#include "frameworks/plugin-interface/ClientName.h"

namespace {

constexpr int kConnectWait = 20;               // milliseconds for one attempt
constexpr guint kEagerPeriod = 100;            // milliseconds between attempts after Reconnect
constexpr guint kIdlePeriod = 5000;            // and otherwise
constexpr std::chrono::seconds kEagerTime{6};  // longer than a command waits for a new agent

std::optional<PluginInterfaceECallbackKind> KindOf(Nodrix::AgentSignal signal) {
  switch (signal) {
    case Nodrix::AgentSignal::eFontActivated:
      return kCallback_FontActivated;
    case Nodrix::AgentSignal::eFontDeactivated:
      return kCallback_FontDeactivated;
    case Nodrix::AgentSignal::eFontMissing:
      return kCallback_FontMissing;
    case Nodrix::AgentSignal::eLibraryChanged:
      return kCallback_PanelDataChanged;
    case Nodrix::AgentSignal::eShuttingDown:
      return kCallback_AgentShutdown;
  }
  return std::nullopt;
}

bool CarriesFont(PluginInterfaceECallbackKind kind) {
  return kind == kCallback_FontActivated || kind == kCallback_FontDeactivated ||
         kind == kCallback_FontMissing;
}

}  // namespace

NotificationThread::~NotificationThread() {
  Stop();
  if (mContext != nullptr) g_main_context_unref(mContext);
}

void NotificationThread::Register(PluginInterfaceCallback callback) {
  const std::lock_guard lock(mMutex);
  if (mJoining) return;
  if (std::find(mCallbacks.begin(), mCallbacks.end(), callback) == mCallbacks.end()) {
    mCallbacks.push_back(callback);
  }
  mEnd = false;
  if (!mLive) Start();
  g_main_context_wakeup(mContext);
}

bool NotificationThread::Unregister(PluginInterfaceCallback callback) {
  std::unique_lock lock(mMutex);
  const bool known = std::erase(mCallbacks, callback) != 0;
  if (mContext != nullptr) g_main_context_wakeup(mContext);
  if (std::this_thread::get_id() != mThreadID) {
    mIdle.wait(lock, [&] { return mRunning != callback; });
  }
  return known;
}

void NotificationThread::Reconnect() {
  const std::lock_guard lock(mMutex);
  mEagerUntil = (Clock::now() + kEagerTime).time_since_epoch().count();
  if (mContext != nullptr) g_main_context_wakeup(mContext);
}

void NotificationThread::Stop() {
  std::thread ending;
  {
    const std::lock_guard lock(mMutex);
    mCallbacks.clear();
    mEnd = true;
    if (mContext != nullptr) g_main_context_wakeup(mContext);
    if (std::this_thread::get_id() == mThreadID) return;
    ending = std::exchange(mThread, {});
    mJoining = ending.joinable();
  }
  if (!ending.joinable()) return;
  ending.join();
  const std::lock_guard lock(mMutex);
  mJoining = false;
}

// With mMutex, and no live thread. One that decided to end touches nothing of ours any more.
void NotificationThread::Start() {
  if (mThread.joinable()) mThread.join();
  if (mContext == nullptr) mContext = g_main_context_new();
  mLive = true;
  mThread = std::thread([this] { Run(); });
  mThreadID = mThread.get_id();
}

void NotificationThread::Run() {
  g_main_context_push_thread_default(mContext);
  {
    std::unique_ptr<Nodrix::AgentClient> client;
    for (bool wanted = false; GoesOn(wanted);) {
      if (!wanted || (client && !client->IsConnected())) client.reset();
      if (wanted && !client) client = Connect();
      AwaitSomething(wanted);
    }
  }
  // What the connection left to be freed.
  while (g_main_context_iteration(mContext, FALSE)) {
  }
  g_main_context_pop_thread_default(mContext);
}

bool NotificationThread::GoesOn(bool& wanted) {
  const std::lock_guard lock(mMutex);
  wanted = !mCallbacks.empty();
  if (mEnd) mLive = false;
  return mLive;
}

std::unique_ptr<Nodrix::AgentClient> NotificationThread::Connect() {
  std::string ignored;
  auto client = Nodrix::AgentClient::Connect(ClientName(), kConnectWait, ignored);
  if (client) {
    client->Subscribe(
        [this](Nodrix::AgentSignal signal, std::uint32_t fontID) { Deliver(signal, fontID); });
  }
  return client;
}

// Signals are delivered in here. Returns at the latest when the connection is to be looked at.
void NotificationThread::AwaitSomething(bool wanted) {
  GSource* timeout = nullptr;
  if (wanted) {
    const bool eager = Clock::now().time_since_epoch().count() < mEagerUntil;
    timeout = g_timeout_source_new(eager ? kEagerPeriod : kIdlePeriod);
    g_source_set_callback(
        timeout, [](gpointer) -> gboolean { return G_SOURCE_REMOVE; }, nullptr, nullptr);
    g_source_attach(timeout, mContext);
  }
  g_main_context_iteration(mContext, TRUE);
  if (timeout != nullptr) {
    g_source_destroy(timeout);
    g_source_unref(timeout);
  }
}

void NotificationThread::Deliver(Nodrix::AgentSignal signal, std::uint32_t fontID) {
  const auto kind = KindOf(signal);
  if (!kind) return;
  std::unique_lock lock(mMutex);
  const auto callbacks = mCallbacks;
  for (const PluginInterfaceCallback callback : callbacks) {
    // Unregistered by one that was called before it?
    if (std::find(mCallbacks.begin(), mCallbacks.end(), callback) == mCallbacks.end()) continue;
    mRunning = callback;
    lock.unlock();
    callback(*kind, CarriesFont(*kind) ? &fontID : nullptr);
    lock.lock();
    mRunning = nullptr;
    mIdle.notify_all();
  }
}
