// Hears the agent's signals on a thread of its own and calls the registered callbacks there, one
// after the other.
//
// The thread starts with the first registration and stays until Stop; without a callback it sleeps.
// It keeps a connection of its own. A connection that drops is not told to anybody; the thread
// looks for an agent again every few seconds, and eagerly after Reconnect.
//
// Threads: any. A callback may register and unregister, itself included.
#pragma once

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

#include "agent/library/AgentClient.h"
#include "sdk/PluginInterface.h"

typedef struct _GMainContext GMainContext;

class NotificationThread {
 public:
  NotificationThread() = default;
  ~NotificationThread();
  NotificationThread(const NotificationThread&) = delete;
  NotificationThread& operator=(const NotificationThread&) = delete;

  // Registering twice is the same as once.
  void Register(PluginInterfaceCallback callback);
  // Returns when no call of this callback is running, except from inside that call. False if it
  // was not registered.
  bool Unregister(PluginInterfaceCallback callback);
  // An agent is just starting: looks for it eagerly for a while.
  void Reconnect();
  // Unregisters all callbacks, ends the thread and waits for its end, except on the thread itself.
  void Stop();

 private:
  using Clock = std::chrono::steady_clock;

  void Start();
  void Run();
  bool GoesOn(bool& wanted);
  std::unique_ptr<Nodrix::AgentClient> Connect();
  void AwaitSomething(bool wanted);
  void Deliver(Nodrix::AgentSignal signal, std::uint32_t fontID);

  GMainContext* mContext = nullptr;        // of the thread; made with it, kept until we go
  std::atomic<Clock::rep> mEagerUntil{0};  // ticks of Clock

  std::mutex mMutex;  // guards what follows
  std::condition_variable mIdle;
  std::vector<PluginInterfaceCallback> mCallbacks;
  PluginInterfaceCallback mRunning = nullptr;  // the one that is being called
  bool mEnd = false;
  bool mLive = false;     // the thread has not decided to end
  bool mJoining = false;  // Stop waits for the thread
  std::thread mThread;
  std::thread::id mThreadID;
};
