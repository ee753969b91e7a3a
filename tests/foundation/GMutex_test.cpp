#include "foundation/GMutex.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
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

TEST(GMutex, RefusesSelfDeadlock) {
  GMutex mutex;
  EXPECT_EQ(mutex.Lock(), 0U);
  EXPECT_EQ(mutex.Lock(), GMutex::kMutexDeadlockErr);
  EXPECT_EQ(mutex.TryLock(), GMutex::kMutexDeadlockErr);
  EXPECT_EQ(mutex.TryLockWithTimeout(1), GMutex::kMutexDeadlockErr);
  EXPECT_EQ(mutex.Unlock(), 0U);
  EXPECT_EQ(mutex.Unlock(), GMutex::kMutexDeadlockErr);
}

TEST(GMutex, RecursiveOneCounts) {
  GRecursiveMutex mutex;
  EXPECT_EQ(mutex.Lock(), 0U);
  EXPECT_EQ(mutex.TryLock(), 0U);
  EXPECT_EQ(mutex.Unlock(), 0U);
  EXPECT_EQ(OnAnotherThread([&] { return mutex.TryLock(); }), GLockable::kLockBusyErr);
  EXPECT_EQ(mutex.Unlock(), 0U);
  EXPECT_EQ(OnAnotherThread([&] {
              const TModuleErrorCode code = mutex.TryLock();
              return code != 0 ? code : mutex.Unlock();
            }),
            0U);
}

TEST(GMutex, OfAnotherThreadIsBusy) {
  GMutex mutex;
  ASSERT_EQ(mutex.Lock(), 0U);
  EXPECT_EQ(OnAnotherThread([&] { return mutex.TryLock(); }), GLockable::kLockBusyErr);
  EXPECT_EQ(OnAnotherThread([&] { return mutex.TryLockWithTimeout(20); }), GLockable::kLockBusyErr);
  EXPECT_EQ(OnAnotherThread([&] { return mutex.Unlock(); }), GMutex::kMutexDeadlockErr);
  EXPECT_EQ(mutex.Unlock(), 0U);
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
  TModuleErrorCode Lock() override { return 0; }
  TModuleErrorCode TryLock() override { return ++mTries <= 2 ? kLockBusyErr : mAnswer; }
  TModuleErrorCode Unlock() override { return 0; }

  int mTries = 0;
  TModuleErrorCode mAnswer = 0;
};

TEST(GLockable, DefaultTimeoutRetriesWhileBusy) {
  SlowLockable lockable;
  EXPECT_EQ(lockable.TryLockWithTimeout(600'000), 0U);
  EXPECT_EQ(lockable.mTries, 3);
  SlowLockable broken;
  broken.mTries = 2;
  broken.mAnswer = CoreErrorCodes::kError;
  EXPECT_EQ(broken.TryLockWithTimeout(600'000), CoreErrorCodes::kError);
  SlowLockable busy;
  EXPECT_EQ(busy.TryLockWithTimeout(0), GLockable::kLockBusyErr);
}

TEST(GScopedLock, HoldsFromLockToScopeEnd) {
  GMutex mutex;
  {
    GScopedLock lock(mutex, false, new GBlockingLockStrategy);
    EXPECT_FALSE(lock.IsLocked());
    EXPECT_EQ(mutex.TryLock(), 0U);
    EXPECT_EQ(lock.Lock(), GMutex::kMutexDeadlockErr);
    EXPECT_FALSE(lock.IsLocked());
    EXPECT_EQ(mutex.Unlock(), 0U);
    EXPECT_EQ(lock.Lock(), 0U);
    EXPECT_TRUE(lock.IsLocked());
  }
  EXPECT_EQ(mutex.TryLock(), 0U);
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
  const auto isFree = [&mutex] {
    return OnAnotherThread([&mutex] { return GScopedLock(mutex, false, new TryOnce).Lock(); }) == 0;
  };
  {
    GScopedLock lock(mutex);
    EXPECT_EQ(lock.Lock(), GScopedLock::kFailedToAcquireLock);
    EXPECT_TRUE(lock.IsLocked());
  }
  EXPECT_TRUE(isFree());
  mutex.Lock();
  GScopedLock other(mutex, false);
  EXPECT_EQ(other.Unlock(), GMutex::kMutexDeadlockErr);
  EXPECT_FALSE(isFree());
  EXPECT_EQ(mutex.Unlock(), 0U);
}

TEST(GScopedLock, AsksItsStrategyAndFreesIt) {
  GMutex mutex;
  const auto tryOnce = [&mutex] { return GScopedLock(mutex, false, new TryOnce).Lock(); };
  EXPECT_EQ(OnAnotherThread(tryOnce), 0U);
  ASSERT_EQ(mutex.Lock(), 0U);
  EXPECT_EQ(OnAnotherThread(tryOnce), GLockable::kLockBusyErr);
  EXPECT_EQ(TryOnce::sAlive, 0);
  EXPECT_EQ(mutex.Unlock(), 0U);
}

struct Selfish {
  Selfish() : itself(GSingleton<Selfish>::GetSharedInstance()) {}
  Selfish* itself;
};

TEST(GSingleton, ConstructorThatAsksForItselfGetsNull) {
  EXPECT_EQ(GSingleton<Selfish>::GetSharedInstance()->itself, nullptr);
}

struct Counted {
  Counted() { sMade += 1; }
  static std::atomic<int> sMade;
  int payload = 17;
};
std::atomic<int> Counted::sMade{0};

TEST(GSingleton, IsMadeOnceForAllThreads) {
  std::atomic<Counted*> seen[8] = {};
  std::vector<std::thread> threads;
  for (auto& slot : seen) {
    threads.emplace_back([&slot] { slot = GSingleton<Counted>::GetSharedInstance(); });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(Counted::sMade, 1);
  for (const auto& slot : seen) {
    EXPECT_EQ(slot, GSingleton<Counted>::GetSharedInstance());
    EXPECT_EQ(slot.load()->payload, 17);
  }
}

}  // namespace
