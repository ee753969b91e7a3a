#include "foundation/GMutex.h"

#include <cerrno>

namespace {

TModuleErrorCode CodeOfFailedWait(int error) {
  switch (error) {
    case EAGAIN:
      return GMutex::kMutexDeadlockErr;
    case EINVAL:
      return GMutex::kMutexInvalidErr;
    case ETIMEDOUT:
      return GLockable::kLockBusyErr;
    default:
      return CoreErrorCodes::kError;
  }
}

}  // namespace

GMutex::GMutex(bool recursive) : mIsRecursive(recursive) {
  pthread_mutex_init(&mGuard, nullptr);
  GUtils::InitTimedCondition(mCondition);
}

GMutex::~GMutex() {
  pthread_cond_destroy(&mCondition);
  pthread_mutex_destroy(&mGuard);
}

TModuleErrorCode GMutex::LockSlowly(unsigned int milliseconds) {
  if (pthread_equal(mOwner, pthread_self()) != 0) {
    if (!mIsRecursive) return kMutexDeadlockErr;
    mLockCount += 1;
    return 0;
  }
  if (milliseconds == 0) return kLockBusyErr;
  if (const TModuleErrorCode code = WaitUntilFree(milliseconds)) return code;
  mLockCount = 1;
  mOwner = pthread_self();
  return 0;
}

TModuleErrorCode GMutex::WaitUntilFree(unsigned int milliseconds) {
  const bool forever = milliseconds == kWaitForever;
  const timespec deadline =
      forever ? timespec{} : GUtils::FutureMillisecondsToAbsTime(milliseconds);
  int error = 0;
  mWaiters += 1;
  while (mLockCount != 0 && error == 0) {
    error = forever ? pthread_cond_wait(&mCondition, &mGuard)
                    : pthread_cond_timedwait(&mCondition, &mGuard, &deadline);
  }
  mWaiters -= 1;
  // A wait that ran out just as the mutex became free has it.
  return mLockCount == 0 ? 0 : CodeOfFailedWait(error);
}
