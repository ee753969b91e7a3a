// Locks. A plain GMutex detects self-deadlock and refuses; a GRecursiveMutex counts.
#pragma once

#include <pthread.h>

#include "foundation/ErrorCodes.h"

class GLockable {
 public:
  static constexpr TModuleErrorCode kLockBusyErr = MakeErrorCode(0x00100C, 1);

  virtual ~GLockable() = default;
  virtual TModuleErrorCode Lock() = 0;
  // kLockBusyErr if another thread holds the lock.
  virtual TModuleErrorCode TryLock() = 0;
  // Tries until the time is used up, then kLockBusyErr.
  virtual TModuleErrorCode TryLockWithTimeout(unsigned int milliseconds);
  virtual TModuleErrorCode Unlock() = 0;
};

class GMutex : public GLockable {
 public:
  static constexpr TModuleErrorCode kMutexDeadlockErr = MakeErrorCode(0x00100B, 1);
  static constexpr TModuleErrorCode kMutexInvalidErr = MakeErrorCode(0x00100B, 2);

  GMutex() : GMutex(false) {}
  ~GMutex() override;
  GMutex(const GMutex&) = delete;
  GMutex& operator=(const GMutex&) = delete;

  TModuleErrorCode Lock() override;
  TModuleErrorCode TryLock() override;
  TModuleErrorCode TryLockWithTimeout(unsigned int milliseconds) override;
  // kMutexDeadlockErr, and nothing changes, if the mutex is free or another thread's.
  TModuleErrorCode Unlock() override;

 protected:
  explicit GMutex(bool recursive);

 private:
  // 0 does not wait, 0xFFFFFFFF waits without limit.
  TModuleErrorCode LockInternal(unsigned int milliseconds);
  // The guard is held.
  TModuleErrorCode WaitUntilFree(unsigned int milliseconds);

  pthread_mutex_t mGuard;  // held only for a moment in each operation
  pthread_cond_t mCondition;
  unsigned int mLockCount = 0;
  bool mIsRecursive;
  pthread_t mOwner{};
};

class GRecursiveMutex : public GMutex {
 public:
  GRecursiveMutex() : GMutex(true) {}
};
