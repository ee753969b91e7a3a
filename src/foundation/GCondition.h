// An event with two flags, "signaled" and "autoReset", both false at first.
//
// While it is signaled, every wait returns at once and leaves it so. A wait that had to sleep
// clears "signaled" as it wakes, but only once Reset was called: Reset clears "signaled" and turns
// the event into one that resets itself, for good.
//
// Waiters are woken in the order in which they fell asleep, and each that a Signal or Broadcast met
// returns, even if the event is cleared before it runs. In an event that resets itself a woken wait
// clears the flag when it runs, that of a later Signal too.
// [any-thread] All operations; the destructor when nobody uses it any more.
#pragma once

#include <pthread.h>

#include "foundation/GTimedWaitable.h"

class GCondition : public GTimedWaitable {
 public:
  GCondition();
  ~GCondition() override;
  GCondition(const GCondition&) = delete;
  GCondition& operator=(const GCondition&) = delete;

  // All return 0, or CoreErrorCodes::kError if the system refuses.
  TModuleErrorCode Wait();
  // Milliseconds; 0 only looks. GTimedWaitable::kWaitTimedOutErr if the time ran out.
  [[nodiscard]] TModuleErrorCode TimedWait(unsigned int milliseconds) override;
  // Sets "signaled" and wakes the one that sleeps longest. Others stay asleep.
  TModuleErrorCode Signal();
  // Sets "signaled" and wakes all that sleep.
  TModuleErrorCode Broadcast();
  TModuleErrorCode Reset();

 private:
  // One sleeper, on its own stack; in the list until it is woken.
  struct Sleeper {
    Sleeper* next = nullptr;
    bool woken = false;
  };

  TModuleErrorCode WaitInternal(const timespec* deadline);
  // The guard is held in all three.
  int Sleep(Sleeper& self, const timespec* deadline);
  void Append(Sleeper& sleeper);
  void Remove(const Sleeper& sleeper);

  pthread_mutex_t mGuard;
  pthread_cond_t mCondition;
  bool mSignaled = false;
  bool mAutoReset = false;
  Sleeper* mFirst = nullptr;
};
