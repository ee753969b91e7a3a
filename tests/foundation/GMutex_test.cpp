#include "foundation/GMutex.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <vector>

#include "foundation/GScopedLock.h"
#include "foundation/GSingleton.h"

namespace {

template <typename Action>
TModuleErrorCode OnAnotherThread(Action action) {
  TModuleErrorCode code = 0;
  std::thread([&code, &action] { code = action(); }).join();
  return code;
}

TEST(GMutex, RefusesSelfDeadlockAndIsBusyForOthers) {
  GMutex mutex;
  EXPECT_EQ(mutex.Lock(), 0U);
  EXPECT_EQ(mutex.Lock(), GMutex::kMutexDeadlockErr);
  EXPECT_EQ(mutex.TryLock(), GMutex::kMutexDeadlockErr);
  EXPECT_EQ(mutex.TryLockWithTimeout(1), GMutex::kMutexDeadlockErr);
  EXPECT_FALSE(GScopedLock(mutex).IsLocked());
  EXPECT_EQ(OnAnotherThread([&] { return mutex.TryLock(); }), GLockable::kLockBusyErr);
  EXPECT_EQ(OnAnotherThread([&] { return mutex.TryLockWithTimeout(20); }), GLockable::kLockBusyErr);
  EXPECT_EQ(OnAnotherThread([&] { return mutex.Unlock(); }), GMutex::kMutexDeadlockErr);
  EXPECT_EQ(mutex.Unlock(), 0U);
  EXPECT_EQ(mutex.Unlock(), GMutex::kMutexDeadlockErr);
}

TEST(GMutex, RecursiveOneCounts) {
  GRecursiveMutex mutex;
  const auto fromAnother = [&] { return OnAnotherThread([&] { return mutex.TryLock(); }); };
  EXPECT_EQ(mutex.Lock() + mutex.TryLock() + mutex.Unlock(), 0U);
  EXPECT_EQ(fromAnother(), GLockable::kLockBusyErr);
  EXPECT_EQ(mutex.Unlock(), 0U);
  EXPECT_EQ(fromAnother(), 0U);
}

TEST(GMutex, WaitersGetItOneAfterTheOther) {
  GMutex mutex;
  int counter = 0;
  std::vector<std::thread> threads;
  for (int i = 0; i < 4; ++i) {
    threads.emplace_back([&mutex, &counter, i] {
      for (int turn = 0; turn < 500; ++turn) {
        // The impatient ones give up now and then.
        TModuleErrorCode code = i % 2 == 0 ? mutex.Lock() : mutex.TryLockWithTimeout(1);
        while (code == GLockable::kLockBusyErr) code = mutex.TryLockWithTimeout(1);
        ASSERT_EQ(code, 0U);
        counter += 1;
        ASSERT_EQ(mutex.Unlock(), 0U);
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(counter, 2000);
}

// Busy for its first two tries.
class SlowLockable : public GLockable {
 public:
  explicit SlowLockable(TModuleErrorCode answer) : mAnswer(answer) {}
  TModuleErrorCode Lock() override { return 0; }
  TModuleErrorCode TryLock() override { return ++mTries <= 2 ? kLockBusyErr : mAnswer; }
  TModuleErrorCode Unlock() override { return 0; }
  int mTries = 0;
  TModuleErrorCode mAnswer;
};

TEST(GLockable, DefaultTimeoutRetriesWhileBusy) {
  EXPECT_EQ(SlowLockable(0).TryLockWithTimeout(600'000), 0U);
  EXPECT_EQ(SlowLockable(7).TryLockWithTimeout(600'000), 7U);
  EXPECT_EQ(SlowLockable(0).TryLockWithTimeout(0), GLockable::kLockBusyErr);
}

class TryOnce : public GLockStrategy {
 public:
  TryOnce() { sAlive += 1; }
  ~TryOnce() override { sAlive -= 1; }
  TModuleErrorCode Lock(GLockable& lockable) override { return lockable.TryLock(); }
  static std::atomic<int> sAlive;
};
std::atomic<int> TryOnce::sAlive{0};

TEST(GScopedLock, HoldsItOnceAndLetsGoOfItsOwnOnly) {
  GRecursiveMutex mutex;
  const auto tryIt = [&mutex] {
    return OnAnotherThread([&mutex] { return GScopedLock(mutex, false, new TryOnce).Lock(); });
  };
  {
    GScopedLock lock(mutex, false, new GBlockingLockStrategy);
    EXPECT_EQ(tryIt(), 0U);
    EXPECT_EQ(lock.Lock(), 0U);
    EXPECT_EQ(lock.Lock(), GScopedLock::kFailedToAcquireLock);
    EXPECT_TRUE(lock.IsLocked());
    EXPECT_EQ(tryIt(), GLockable::kLockBusyErr);
  }
  EXPECT_EQ(tryIt(), 0U);
  mutex.Lock();
  GScopedLock other(mutex, false);
  EXPECT_EQ(other.Unlock(), GMutex::kMutexDeadlockErr);
  EXPECT_EQ(tryIt(), GLockable::kLockBusyErr);
  EXPECT_EQ(mutex.Unlock(), 0U);
  EXPECT_EQ(TryOnce::sAlive, 0);
}

struct Counted {
  Counted() : itself(GSingleton<Counted>::GetSharedInstance()) { sMade += 1; }
  static std::atomic<int> sMade;
  Counted* itself;
};
std::atomic<int> Counted::sMade{0};

TEST(GSingleton, IsMadeOnceForAllThreadsAndGivesItsConstructorNull) {
  std::vector<std::thread> threads;
  for (int i = 0; i < 8; ++i) {
    threads.emplace_back([] { EXPECT_NE(GSingleton<Counted>::GetSharedInstance(), nullptr); });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(Counted::sMade, 1);
  EXPECT_EQ(GSingleton<Counted>::GetSharedInstance()->itself, nullptr);
}

}  // namespace
