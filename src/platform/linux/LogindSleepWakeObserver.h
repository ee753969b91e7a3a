// Sleep and wake as logind announces them on the system bus (PrepareForSleep, true before the sleep
// and false after it). The bus is reached in the background, at DBUS_SYSTEM_BUS_ADDRESS or the
// system's default; without a bus nothing is called. The connection is private to the subscription:
// the end of the bus must not end the host.
#pragma once

#include "platform/SleepWakeObserver.h"

class LogindSleepWakeObserver : public SleepWakeObserver {
 public:
  std::unique_ptr<Subscription> Subscribe(std::function<void()> willSleep,
                                          std::function<void()> didWake) override;
};
