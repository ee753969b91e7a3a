// Locks of threads. A plain GMutex detects self-deadlock and refuses; a GRecursiveMutex counts.
#pragma once

#include <pthread.h>

#include "foundation/GLockable.h"
#include "foundation/GUtils.h"

class GMutex : public GLockable {
 public:
  static constexpr TModuleErrorCode kMutexDeadlockErr = MakeErrorCode(0x00100B, 1);
  static constexpr TModuleErrorCode kMutexInvalidErr = MakeErrorCode(0x00100B, 2);

  GMutex() : GMutex(false) {}
  ~GMutex() override;
  GMutex(const GMutex&) = delete;
  GMutex& operator=(const GMutex&) = delete;

  // All three: kMutexDeadlockErr, also of TryLock, if this thread holds a plain mutex already.
  TModuleErrorCode Lock() override { return LockInternal(kWaitForever); }
  TModuleErrorCode TryLock() override { return LockInternal(0); }
  // 0 does not wait, 0xFFFFFFFF waits without limit.
  TModuleErrorCode TryLockWithTimeout(unsigned int milliseconds) override {
    return LockInternal(milliseconds);
  }
  // kMutexDeadlockErr, and nothing changes, if the mutex is free or another thread's.
  TModuleErrorCode Unlock() override;

  static constexpr unsigned int kWaitForever = 0xFFFFFFFF;

 protected:
  explicit GMutex(bool recursive);

 private:
  TModuleErrorCode LockInternal(unsigned int milliseconds);
  // The guard is held in both, and so is the mutex.
  TModuleErrorCode LockSlowly(unsigned int milliseconds);
  TModuleErrorCode WaitUntilFree(unsigned int milliseconds);

  pthread_mutex_t mGuard;  // held only for a moment in each operation
  pthread_cond_t mCondition;
  unsigned int mLockCount = 0;
  unsigned int mWaiters = 0;  // nobody is signalled if there is none
  bool mIsRecursive;
  pthread_t mOwner{};
};

class GRecursiveMutex : public GMutex {
 public:
  GRecursiveMutex() : GMutex(true) {}
};

// Short and inline: most locks are free.
inline TModuleErrorCode GMutex::LockInternal(unsigned int milliseconds) {
  const GUtils::Guard guard(mGuard);
  if (mLockCount != 0) [[unlikely]]
    return LockSlowly(milliseconds);
  mLockCount = 1;
  mOwner = pthread_self();
  return 0;
}

inline TModuleErrorCode GMutex::Unlock() {
  const GUtils::Guard guard(mGuard);
  if (mLockCount == 0 || pthread_equal(mOwner, pthread_self()) == 0) return kMutexDeadlockErr;
  mLockCount -= 1;
  if (mLockCount == 0) {
    mOwner = pthread_t{};
    // Under the guard: the next owner may destroy the mutex as soon as it has let go of it.
    if (mWaiters != 0) [[unlikely]]
      pthread_cond_signal(&mCondition);
  }
  return 0;
}
