#include "foundation/GScopedLock.h"

TModuleErrorCode GLockStrategy::Unlock(GLockable& lockable) { return lockable.Unlock(); }

TModuleErrorCode GBlockingLockStrategy::Lock(GLockable& lockable) { return lockable.Lock(); }

GScopedLock::GScopedLock(GLockable& lockable, bool lockNow, GLockStrategy* strategy)
    : mLockable(lockable), mStrategy(strategy) {
  if (lockNow) Lock();
}

GScopedLock::~GScopedLock() {
  if (mIsLocked) Unlock();
}

TModuleErrorCode GScopedLock::Lock() {
  const TModuleErrorCode code = mStrategy ? mStrategy->Lock(mLockable) : mLockable.Lock();
  if (code == 0) mIsLocked = true;
  return code;
}

TModuleErrorCode GScopedLock::Unlock() {
  const TModuleErrorCode code = mStrategy ? mStrategy->Unlock(mLockable) : mLockable.Unlock();
  if (code == 0) mIsLocked = false;
  return code;
}
