#include "platform/NotificationTimer.h"

#include "platform/Platform.h"

NotificationTimer::NotificationTimer(std::function<void()> tick) : callback(std::move(tick)) {
  installTimer();
  mSleepWake = Platform::Current().GetSleepWakeObserver().Subscribe([this] { uninstallTimer(); },
                                                                    [this] { installTimer(); });
}

NotificationTimer::~NotificationTimer() {
  uninstallTimer();
  mSleepWake.reset();
}

void NotificationTimer::installTimer() {
  if (timerRef) return;
  timerRef = Platform::Current().GetRunLoop().CreateRepeatingTimer(
      kInterval, kInterval, RunLoop::Mode::eCommon, callback);
}

void NotificationTimer::uninstallTimer() { timerRef.reset(); }
