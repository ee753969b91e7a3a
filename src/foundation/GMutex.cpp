#include "foundation/GMutex.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <thread>

namespace {

using Clock = std::chrono::steady_clock;

constexpr unsigned int kWaitForever = 0xFFFFFFFF;
constexpr std::chrono::milliseconds kRetryPause{50};

// The conditions run on the monotonic clock, so that setting the wall clock moves no deadline.
timespec FutureMillisecondsToAbsTime(unsigned int milliseconds) {
  constexpr long kNanosecondsPerSecond = 1'000'000'000;
  timespec time{};
  clock_gettime(CLOCK_MONOTONIC, &time);
  time.tv_sec += milliseconds / 1000;
  time.tv_nsec += static_cast<long>(milliseconds % 1000) * 1'000'000;
  if (time.tv_nsec >= kNanosecondsPerSecond) {
    time.tv_sec += 1;
    time.tv_nsec -= kNanosecondsPerSecond;
  }
  return time;
}

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

class Guard {
 public:
  explicit Guard(pthread_mutex_t& mutex) : mMutex(mutex) { pthread_mutex_lock(&mMutex); }
  ~Guard() { pthread_mutex_unlock(&mMutex); }
  Guard(const Guard&) = delete;
  Guard& operator=(const Guard&) = delete;

 private:
  pthread_mutex_t& mMutex;
};

}  // namespace

TModuleErrorCode GLockable::TryLockWithTimeout(unsigned int milliseconds) {
  const Clock::time_point deadline = Clock::now() + std::chrono::milliseconds(milliseconds);
  for (;;) {
    const TModuleErrorCode code = TryLock();
    if (code != kLockBusyErr) return code;
    const Clock::duration left = deadline - Clock::now();
    if (left <= Clock::duration::zero()) return kLockBusyErr;
    std::this_thread::sleep_for(std::min<Clock::duration>(left, kRetryPause));
  }
}

GMutex::GMutex(bool recursive) : mIsRecursive(recursive) {
  pthread_mutex_init(&mGuard, nullptr);
  pthread_condattr_t attributes;
  pthread_condattr_init(&attributes);
  pthread_condattr_setclock(&attributes, CLOCK_MONOTONIC);
  pthread_cond_init(&mCondition, &attributes);
  pthread_condattr_destroy(&attributes);
}

GMutex::~GMutex() {
  pthread_cond_destroy(&mCondition);
  pthread_mutex_destroy(&mGuard);
}

TModuleErrorCode GMutex::Lock() { return LockInternal(kWaitForever); }

TModuleErrorCode GMutex::TryLock() { return LockInternal(0); }

TModuleErrorCode GMutex::TryLockWithTimeout(unsigned int milliseconds) {
  return LockInternal(milliseconds);
}

TModuleErrorCode GMutex::Unlock() {
  const Guard guard(mGuard);
  if (mLockCount == 0 || pthread_equal(mOwner, pthread_self()) == 0) return kMutexDeadlockErr;
  mLockCount -= 1;
  if (mLockCount == 0) {
    mOwner = pthread_t{};
    pthread_cond_signal(&mCondition);
  }
  return 0;
}

TModuleErrorCode GMutex::LockInternal(unsigned int milliseconds) {
  const Guard guard(mGuard);
  if (mLockCount != 0) {
    if (pthread_equal(mOwner, pthread_self()) != 0) {
      if (!mIsRecursive) return kMutexDeadlockErr;
      mLockCount += 1;
      return 0;
    }
    if (milliseconds == 0) return kLockBusyErr;
    if (const TModuleErrorCode code = WaitUntilFree(milliseconds)) return code;
  }
  mLockCount = 1;
  mOwner = pthread_self();
  return 0;
}

TModuleErrorCode GMutex::WaitUntilFree(unsigned int milliseconds) {
  const bool forever = milliseconds == kWaitForever;
  const timespec deadline = forever ? timespec{} : FutureMillisecondsToAbsTime(milliseconds);
  while (mLockCount != 0) {
    const int error = forever ? pthread_cond_wait(&mCondition, &mGuard)
                              : pthread_cond_timedwait(&mCondition, &mGuard, &deadline);
    // A wait that ran out just as the mutex became free has it.
    if (error != 0 && mLockCount != 0) return CodeOfFailedWait(error);
  }
  return 0;
}
