#include "foundation/GCondition.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <vector>

#include "foundation/GBarrier.h"

namespace {

constexpr TModuleErrorCode kTimedOut = GTimedWaitable::kWaitTimedOutErr;

// Threads that each wait once; the constructor gives them time to fall asleep.
class Waiters {
 public:
  Waiters(GCondition& condition, int count) {
    for (int i = 0; i < count; ++i) {
      mThreads.emplace_back([this, &condition] {
        mComing += 1;
        if (condition.Wait() == 0) mWoken += 1;
      });
    }
    while (mComing != count) std::this_thread::yield();
    std::this_thread::sleep_for(std::chrono::milliseconds(100));
  }
  ~Waiters() {
    for (std::thread& thread : mThreads) thread.join();
  }
  Waiters(const Waiters&) = delete;
  Waiters& operator=(const Waiters&) = delete;

  void AwaitWoken(int count) const {
    while (mWoken < count) std::this_thread::yield();
    EXPECT_EQ(mWoken, count);
  }

 private:
  std::vector<std::thread> mThreads;
  std::atomic<int> mComing{0};
  std::atomic<int> mWoken{0};
};

TEST(GCondition, WithoutSleepers) {
  GCondition condition;
  EXPECT_EQ(condition.TimedWait(0), kTimedOut);
  EXPECT_EQ(condition.Signal(), 0U);
  EXPECT_EQ(condition.Wait() + condition.Wait(), 0U);
  EXPECT_EQ(condition.Reset(), 0U);
  const auto start = std::chrono::steady_clock::now();
  EXPECT_EQ(condition.TimedWait(1100), kTimedOut);
  EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(1100));
  EXPECT_EQ(condition.Broadcast(), 0U);
  EXPECT_EQ(condition.TimedWait(0), 0U);  // a wait that need not sleep leaves it set, even now
  EXPECT_EQ(condition.TimedWait(0), 0U);
}

TEST(GCondition, SignalWakesOneAndStaysSetUntilReset) {
  GCondition condition;
  Waiters waiters(condition, 3);
  condition.Signal();
  waiters.AwaitWoken(1);
  EXPECT_EQ(condition.TimedWait(0), 0U);
  condition.Broadcast();
  waiters.AwaitWoken(3);
}

// Though the woken ones clear the flag one after the other, and it is cleared at once.
TEST(GCondition, BroadcastWakesAllItMet) {
  GCondition condition;
  condition.Reset();
  for (int turn = 0; turn < 3; ++turn) {
    Waiters waiters(condition, 4);
    condition.Broadcast();
    condition.Reset();
    waiters.AwaitWoken(4);
  }
}

TEST(GCondition, SignalPassesByAWaiterWhoseTimeRanOut) {
  GCondition condition;
  condition.Reset();
  EXPECT_EQ(condition.TimedWait(1), kTimedOut);
  Waiters waiters(condition, 2);
  condition.Signal();
  waiters.AwaitWoken(1);
  EXPECT_EQ(condition.TimedWait(1), kTimedOut);  // once reset, the woken one clears it
  condition.Signal();
  condition.Reset();
  waiters.AwaitWoken(2);
}

TEST(GBarrier, NobodyGoesOnBeforeAllHaveCome) {
  constexpr int kThreads = 3;
  GBarrier barrier(kThreads);
  std::atomic<int> come{0};
  std::atomic<int> early{0};
  std::vector<std::thread> threads;
  for (int i = 0; i < kThreads; ++i) {
    threads.emplace_back([&] {
      for (int round = 1; round <= 200; ++round) {
        come += 1;
        EXPECT_EQ(barrier.Wait(), 0U);
        if (come < round * kThreads) early += 1;
        EXPECT_EQ(barrier.Wait(), 0U);
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(early, 0);
  EXPECT_DEATH(GBarrier{0}, "threadCount != 0");
}

}  // namespace
