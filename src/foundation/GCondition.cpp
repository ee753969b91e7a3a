#include "foundation/GCondition.h"

#include <cerrno>

#include "foundation/GUtils.h"

GCondition::GCondition() {
  pthread_mutex_init(&mGuard, nullptr);
  GUtils::InitTimedCondition(mCondition);
}

GCondition::~GCondition() {
  pthread_cond_destroy(&mCondition);
  pthread_mutex_destroy(&mGuard);
}

TModuleErrorCode GCondition::Wait() { return WaitInternal(nullptr); }

TModuleErrorCode GCondition::TimedWait(unsigned int milliseconds) {
  const timespec deadline = GUtils::FutureMillisecondsToAbsTime(milliseconds);
  return WaitInternal(&deadline);
}

TModuleErrorCode GCondition::WaitInternal(const timespec* deadline) {
  const GUtils::Guard guard(mGuard);
  if (mSignaled) return 0;
  Sleeper self;
  Append(self);
  const int error = Sleep(self, deadline);
  if (!self.woken) {
    Remove(self);
    return error == ETIMEDOUT ? kWaitTimedOutErr : CoreErrorCodes::kError;
  }
  if (mAutoReset) mSignaled = false;
  return 0;
}

int GCondition::Sleep(Sleeper& self, const timespec* deadline) {
  int error = 0;
  while (!self.woken && error == 0) {
    error = deadline == nullptr ? pthread_cond_wait(&mCondition, &mGuard)
                                : pthread_cond_timedwait(&mCondition, &mGuard, deadline);
  }
  return error;
}

void GCondition::Append(Sleeper& sleeper) {
  Sleeper** link = &mFirst;
  while (*link != nullptr) link = &(*link)->next;
  *link = &sleeper;
}

void GCondition::Remove(const Sleeper& sleeper) {
  Sleeper** link = &mFirst;
  while (*link != &sleeper) link = &(*link)->next;
  *link = sleeper.next;
}

TModuleErrorCode GCondition::Signal() {
  const GUtils::Guard guard(mGuard);
  mSignaled = true;
  if (mFirst == nullptr) return 0;
  mFirst->woken = true;
  mFirst = mFirst->next;
  // All look whether it was they; those that were not sleep on.
  return pthread_cond_broadcast(&mCondition) == 0 ? 0 : CoreErrorCodes::kError;
}

TModuleErrorCode GCondition::Broadcast() {
  const GUtils::Guard guard(mGuard);
  mSignaled = true;
  if (mFirst == nullptr) return 0;
  for (Sleeper* sleeper = mFirst; sleeper != nullptr; sleeper = sleeper->next) {
    sleeper->woken = true;
  }
  mFirst = nullptr;
  return pthread_cond_broadcast(&mCondition) == 0 ? 0 : CoreErrorCodes::kError;
}

TModuleErrorCode GCondition::Reset() {
  const GUtils::Guard guard(mGuard);
  mSignaled = false;
  mAutoReset = true;
  return 0;
}
