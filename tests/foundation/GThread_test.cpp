#include "foundation/GThread.h"

#include <gtest/gtest.h>
#include <pthread.h>

#include <csignal>
#include <stdexcept>
#include <thread>
#include <vector>

#include "support/ErrorRecords.h"

namespace {

// What a function saw of its own thread.
struct Seen {
  std::atomic<int> runs{0};
  EThreadState state{};
  GThread* object = nullptr;
  void* thread = nullptr;
  TModuleErrorCode stopCode = 0;
  sigset_t blocked{};
  char systemName[16] = {};
};

unsigned int LookAround(GThread* self) {
  auto* seen = static_cast<Seen*>(self->GetUserData());
  seen->runs += 1;
  seen->state = self->GetThreadState();
  seen->object = GThread::GetCurrentThreadObject();
  seen->thread = GThread::GetCurrentThread();
  pthread_sigmask(SIG_SETMASK, nullptr, &seen->blocked);
  pthread_getname_np(pthread_self(), seen->systemName, sizeof seen->systemName);
  seen->stopCode = self->StopThread(true);
  return self->GetThreadState() == eThreadStopping ? 17 : 18;
}

TEST(GThread, RunsOnAThreadOfItsOwnOrOnThis) {
  for (const bool synchronously : {false, true}) {
    Seen seen;
    GThread thread(&LookAround, &seen);
    EXPECT_EQ(thread.GetThreadState(), eThreadNotStarted);
    EXPECT_EQ(thread.StopThread(true), 0U);
    for (int run = 1; run <= 2; ++run) {
      ASSERT_EQ(synchronously ? thread.RunSynchronously() : thread.StartThread(), 0U);
      EXPECT_EQ(thread.StopThread(true), 0U);
      EXPECT_EQ(thread.GetThreadState(), eThreadFinished);
      EXPECT_EQ(thread.GetResult(), 17U);
      EXPECT_EQ(seen.runs, run);
    }
    EXPECT_GE(seen.state, eThreadRunning);
    EXPECT_EQ(seen.object, &thread);
    EXPECT_EQ(GThread::AreThreadsEqual(seen.thread, GThread::GetCurrentThread()), synchronously);
    EXPECT_EQ(seen.stopCode, GMutex::kMutexDeadlockErr);
    EXPECT_EQ(sigismember(&seen.blocked, SIGCHLD), synchronously ? 0 : 1);
    EXPECT_EQ(sigismember(&seen.blocked, SIGSEGV), 0);
    EXPECT_EQ(seen.systemName != thread.GetName(), synchronously);
    EXPECT_EQ(GThread::GetCurrentThreadObject(), nullptr);
  }
}

TEST(GThread, StopsWhenToldAndStartsOnlyOnce) {
  const auto untilStopped = [](GThread* self) -> unsigned int {
    while (self->GetThreadState() != eThreadStopping) std::this_thread::yield();
    return 5;
  };
  GThread thread(untilStopped, nullptr);
  GThread other(untilStopped, nullptr);
  EXPECT_NE(thread.GetName(), other.GetName());
  ASSERT_EQ(thread.StartThread() + other.StartThread(), 0U);  // the other's destructor stops it
  EXPECT_EQ(thread.StartThread(), CoreErrorCodes::kAlreadyInitialized);
  EXPECT_EQ(thread.RunSynchronously(), CoreErrorCodes::kAlreadyInitialized);
  EXPECT_EQ(thread.StopThread(false) + thread.StopThread(true), 0U);
  EXPECT_EQ(thread.GetResult(), 5U);
}

// Each run that a start was granted ran once, and each wait ended.
TEST(GThread, StartsAndStopsOfSeveralThreads) {
  std::atomic<int> runs{0};
  std::atomic<int> granted{0};
  GThread thread(
      [](GThread* self) {
        EXPECT_EQ(GThread::GetCurrentThreadObject(), self);
        *static_cast<std::atomic<int>*>(self->GetUserData()) += 1;
        return 0U;
      },
      &runs);
  std::vector<std::thread> users;
  for (int user = 0; user < 4; ++user) {
    users.emplace_back([&thread, &granted, user] {
      for (int turn = 0; turn < 1000; ++turn) {
        const TModuleErrorCode code = user == 3 ? thread.RunSynchronously() : thread.StartThread();
        if (code == 0) granted += 1;
        EXPECT_TRUE(code == 0 || code == CoreErrorCodes::kAlreadyInitialized) << code;
        EXPECT_EQ(thread.StopThread(turn % 2 == user % 2), 0U);
      }
    });
  }
  for (std::thread& user : users) user.join();
  EXPECT_EQ(thread.StopThread(true), 0U);
  EXPECT_EQ(runs, granted);
  EXPECT_GT(granted, 0);
}

TEST(GThread, ExceptionEndsTheFunctionOnly) {
  const RecordingAppender& log = RecordingAppender::Install();
  GThread thread([](GThread*) -> unsigned int { throw std::runtime_error("thrown"); }, nullptr);
  EXPECT_EQ(thread.RunSynchronously(), 0U);
  EXPECT_EQ(thread.GetResult(), CoreErrorCodes::kError);
  EXPECT_EQ(ExpressionsOf(log), "mEntry(this)\n");
}

TEST(GThread, ObjectMayGoAsSoonAsItIsStopped) {
  for (int turn = 0; turn < 1000; ++turn) {
    Seen seen;
    {
      GThread thread(&LookAround, &seen);
      ASSERT_EQ(thread.StartThread() + thread.StopThread(turn % 2 == 0), 0U);
    }
    ASSERT_EQ(seen.runs, 1);
  }
}

}  // namespace
