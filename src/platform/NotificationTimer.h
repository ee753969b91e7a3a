// The plug-in's heartbeat: a 10 ms timer on the host's main loop that also ticks in modal sessions.
// The machine's sleep takes it off the loop, the wake puts it back.
//
// Threads: [main-thread].
#pragma once

#include <functional>
#include <memory>

#include "platform/RunLoop.h"
#include "platform/SleepWakeObserver.h"

class NotificationTimer {
 public:
  // Seconds, for the first fire and between fires.
  static constexpr double kInterval = 0.01;

  // Ticks from here on.
  explicit NotificationTimer(std::function<void()> callback);
  ~NotificationTimer();
  NotificationTimer(const NotificationTimer&) = delete;
  NotificationTimer& operator=(const NotificationTimer&) = delete;

  // Does nothing if it is installed.
  void installTimer();
  void uninstallTimer();

 private:
  std::function<void()> callback;
  std::unique_ptr<RunLoop::Timer> timerRef;
  std::unique_ptr<SleepWakeObserver::Subscription> mSleepWake;
};
