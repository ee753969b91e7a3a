// Tells of the machine's sleep and wake.
#pragma once

#include <functional>
#include <memory>

class SleepWakeObserver {
 public:
  // Destroying it ends the subscription.
  class Subscription {
   public:
    virtual ~Subscription() = default;
  };

  virtual ~SleepWakeObserver() = default;
  // Both are called on the main loop. Never null; where the system tells nothing, nothing is
  // called.
  [[nodiscard]] virtual std::unique_ptr<Subscription> Subscribe(std::function<void()> willSleep,
                                                                std::function<void()> didWake) = 0;
};
