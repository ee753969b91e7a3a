#include "foundation/GThread.h"

#include <gtest/gtest.h>
#include <pthread.h>

#include <csignal>
#include <memory>
#include <stdexcept>
#include <thread>
#include <vector>

#include "support/RecordingAppender.h"

namespace {

// What a function saw of its own thread.
struct Seen {
  std::atomic<int> runs{0};
  EThreadState state{};
  GThread* object = nullptr;
  void* thread = nullptr;
  TModuleErrorCode stopCode = 0;
  bool hostSignalsBlocked = false;
  bool faultsBlocked = false;
  std::string systemName;
};

unsigned int LookAround(GThread* self) {
  auto* seen = static_cast<Seen*>(self->GetUserData());
  seen->runs += 1;
  seen->state = self->GetThreadState();
  seen->object = GThread::GetCurrentThreadObject();
  seen->thread = GThread::GetCurrentThread();
  sigset_t blocked;
  pthread_sigmask(SIG_SETMASK, nullptr, &blocked);
  seen->hostSignalsBlocked =
      sigismember(&blocked, SIGINT) == 1 && sigismember(&blocked, SIGCHLD) == 1;
  seen->faultsBlocked = sigismember(&blocked, SIGSEGV) == 1;
  char name[16] = {};
  pthread_getname_np(pthread_self(), name, sizeof name);
  seen->systemName = name;
  seen->stopCode = self->StopThread(true);
  return self->GetThreadState() == eThreadStopping ? 17 : 18;
}

unsigned int UntilStopped(GThread* self) {
  while (self->GetThreadState() != eThreadStopping) std::this_thread::yield();
  return 5;
}

TEST(GThread, RunsOnAThreadOfItsOwn) {
  Seen seen;
  GThread thread(&LookAround, &seen);
  EXPECT_EQ(thread.GetThreadState(), eThreadNotStarted);
  EXPECT_EQ(thread.StopThread(true), 0U);
  for (int run = 1; run <= 2; ++run) {
    ASSERT_EQ(thread.StartThread(), 0U);
    EXPECT_EQ(thread.StopThread(true), 0U);
    EXPECT_EQ(thread.GetThreadState(), eThreadFinished);
    EXPECT_EQ(thread.GetResult(), 17U);
    EXPECT_EQ(seen.runs, run);
  }
  EXPECT_GE(seen.state, eThreadRunning);
  EXPECT_EQ(seen.object, &thread);
  EXPECT_FALSE(GThread::AreThreadsEqual(seen.thread, GThread::GetCurrentThread()));
  EXPECT_EQ(seen.stopCode, GMutex::kMutexDeadlockErr);
  EXPECT_TRUE(seen.hostSignalsBlocked);
  EXPECT_FALSE(seen.faultsBlocked);
  EXPECT_EQ(seen.systemName, thread.GetName());
  EXPECT_EQ(GThread::GetCurrentThreadObject(), nullptr);
  sigset_t blocked;
  pthread_sigmask(SIG_SETMASK, nullptr, &blocked);
  EXPECT_EQ(sigismember(&blocked, SIGINT), 0);
}

TEST(GThread, RunsSynchronously) {
  Seen seen;
  GThread thread(&LookAround, &seen);
  ASSERT_EQ(thread.RunSynchronously(), 0U);
  EXPECT_EQ(thread.GetThreadState(), eThreadFinished);
  EXPECT_EQ(thread.GetResult(), 17U);
  EXPECT_EQ(seen.state, eThreadRunning);
  EXPECT_EQ(seen.object, &thread);
  EXPECT_TRUE(GThread::AreThreadsEqual(seen.thread, GThread::GetCurrentThread()));
  EXPECT_EQ(seen.stopCode, GMutex::kMutexDeadlockErr);
  EXPECT_FALSE(seen.hostSignalsBlocked);
  EXPECT_NE(seen.systemName, thread.GetName());
  EXPECT_EQ(GThread::GetCurrentThreadObject(), nullptr);
  EXPECT_EQ(thread.StartThread(), 0U);
}

TEST(GThread, StopsWhenToldAndStartsOnlyOnce) {
  GThread thread(&UntilStopped, nullptr);
  GThread other(&UntilStopped, nullptr);
  EXPECT_NE(thread.GetName(), other.GetName());
  EXPECT_EQ(thread.GetName().substr(0, 7), "Thread ");
  ASSERT_EQ(thread.StartThread(), 0U);
  EXPECT_EQ(thread.GetThreadState(), eThreadRunning);
  EXPECT_EQ(thread.StartThread(), CoreErrorCodes::kAlreadyInitialized);
  EXPECT_EQ(thread.RunSynchronously(), CoreErrorCodes::kAlreadyInitialized);
  EXPECT_EQ(thread.StopThread(false), 0U);
  EXPECT_EQ(thread.StopThread(true), 0U);
  EXPECT_EQ(thread.GetResult(), 5U);
  ASSERT_EQ(other.StartThread(), 0U);  // its destructor stops it
}

TEST(GThread, ExceptionEndsTheFunctionOnly) {
  RecordingAppender& log = RecordingAppender::Install();
  GThread thread([](GThread*) -> unsigned int { throw std::runtime_error("thrown"); }, nullptr);
  EXPECT_EQ(thread.RunSynchronously(), 0U);
  EXPECT_EQ(thread.GetResult(), CoreErrorCodes::kError);
  ASSERT_EQ(log.Lines().size(), 1U);
  EXPECT_NE(log.Lines()[0].find("Expression='mEntry(this)'"), std::string::npos);
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

TEST(GThread, ObjectMayGoAsSoonAsItIsStopped) {
  for (int turn = 0; turn < 1000; ++turn) {
    Seen seen;
    auto thread = std::make_unique<GThread>(&LookAround, &seen);
    ASSERT_EQ(thread->StartThread(), 0U);
    if (turn % 2 == 0) {
      ASSERT_EQ(thread->StopThread(true), 0U);
    }
    thread.reset();
    ASSERT_EQ(seen.runs, 1);
  }
}

}  // namespace
