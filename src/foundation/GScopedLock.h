// The one way locks are taken.
#pragma once

#include <memory>

#include "foundation/GMutex.h"

class GLockStrategy {
 public:
  virtual ~GLockStrategy() = default;
  virtual TModuleErrorCode Lock(GLockable& lockable) = 0;
  virtual TModuleErrorCode Unlock(GLockable& lockable);
};

// Waits without limit.
class GBlockingLockStrategy : public GLockStrategy {
 public:
  TModuleErrorCode Lock(GLockable& lockable) override;
};

// Holds its lockable once or not at all, also a recursive one. Used by one thread.
class GScopedLock {
 public:
  static constexpr TModuleErrorCode kFailedToAcquireLock = MakeErrorCode(0x00101D, 1);

  // Takes ownership of `strategy`; null waits without limit, as a GBlockingLockStrategy does, and
  // costs no allocation. Whether `lockNow` was granted IsLocked tells.
  explicit GScopedLock(GLockable& lockable, bool lockNow = true, GLockStrategy* strategy = nullptr)
      : mLockable(lockable), mStrategy(strategy) {
    if (lockNow) Lock();
  }
  ~GScopedLock() {
    if (mIsLocked) Unlock();
  }
  GScopedLock(const GScopedLock&) = delete;
  GScopedLock& operator=(const GScopedLock&) = delete;

  // kFailedToAcquireLock if this object holds the lock already; else what the strategy says.
  TModuleErrorCode Lock() {
    if (mIsLocked) return kFailedToAcquireLock;
    const TModuleErrorCode code = mStrategy ? mStrategy->Lock(mLockable) : mLockable.Lock();
    mIsLocked = code == 0;
    return code;
  }
  // GMutex::kMutexDeadlockErr, and nothing changes, if this object does not hold the lock, whoever
  // else does.
  TModuleErrorCode Unlock() {
    if (!mIsLocked) return GMutex::kMutexDeadlockErr;
    const TModuleErrorCode code = mStrategy ? mStrategy->Unlock(mLockable) : mLockable.Unlock();
    mIsLocked = code != 0;
    return code;
  }
  bool IsLocked() const { return mIsLocked; }

 private:
  GLockable& mLockable;
  std::unique_ptr<GLockStrategy> mStrategy;
  bool mIsLocked = false;
};
