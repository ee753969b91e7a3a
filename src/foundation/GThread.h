// A thread that runs one function, any number of times one after the other, and is never cancelled:
// its function asks GetThreadState now and then and returns when it is eThreadStopping.
//
// The POSIX thread is detached, carries the object's name (the system may shorten it) and blocks
// all signals but those of its own faults: a guest's thread must not take what is meant for its
// host. What the function throws ends in an error record and the result CoreErrorCodes::kError. The
// function returns; it neither leaves by pthread_exit nor destroys its own object.
//
// [any-thread] All operations, but the destructor when nobody else uses the object any more.
#pragma once

#include <pthread.h>

#include <atomic>
#include <cstdint>
#include <memory>
#include <string>

#include "foundation/GBarrier.h"
#include "foundation/GCondition.h"
#include "foundation/GScopedLock.h"

enum EThreadState : std::uint32_t {
  eThreadNotStarted = 0,
  eThreadStarting = 1,
  eThreadRunning = 2,
  eThreadStopping = 3,
  eThreadFinished = 4
};

class GThread {
 public:
  using TEntryFunction = unsigned int (*)(GThread*);

  // `userData` is lent.
  GThread(TEntryFunction entry, void* userData);
  // Tells a running thread to stop and waits for it. In the thread itself, or while
  // RunSynchronously has not returned on this one, that is a programming error and ends the
  // process.
  ~GThread();
  GThread(const GThread&) = delete;
  GThread& operator=(const GThread&) = delete;

  // Returns when the thread runs. CoreErrorCodes::kAlreadyInitialized unless it was never started
  // or has finished; CoreErrorCodes::kError, and the former state, if the system gives no thread.
  [[nodiscard]] TModuleErrorCode StartThread();
  // Tells the thread to stop if it is starting or running. With `wait`, returns when the run that
  // was going on is over, also if another one has been started since. With `wait` in the thread
  // itself GMutex::kMutexDeadlockErr: it is told to stop, but not waited for.
  TModuleErrorCode StopThread(bool wait);
  // Runs the function on the calling thread, which keeps its name and signals; the rest is as in a
  // thread of its own, GetCurrentThreadObject included. Codes as of StartThread.
  [[nodiscard]] TModuleErrorCode RunSynchronously();

  // What the function returned last; 0 before.
  unsigned int GetResult() const { return mResult; }
  const std::string& GetName() const { return mName; }
  void* GetUserData() const { return mUserData; }
  EThreadState GetThreadState() const { return mState; }

  // A handle of the calling thread, for AreThreadsEqual only.
  static void* GetCurrentThread();
  static bool AreThreadsEqual(void* a, void* b);
  // The object whose function runs on the calling thread, the innermost if there are several; null
  // on any other thread. Lent.
  static GThread* GetCurrentThreadObject();
  // What logs call the thread that has no object.
  static const char* GetMainThreadName() { return "Main Thread"; }

 private:
  // Posix thread function.
  static void* PthreadInternal(void* object);
  // Begins a new run. The lock is held, if perhaps not throughout: a run that has reached its last
  // state but not its end is waited for.
  TModuleErrorCode ClaimRun(GScopedLock& lock, EThreadState& former);
  void BeginRun();
  void RunEntry();
  // Whoever waits for the done condition may destroy the object at once.
  void EndRun();
  // 0 if no run of it goes on on this thread, else a number that grows from run to run.
  std::uint64_t GetRunOnThisThread();

  // The system's half.
  static void OSSetThreadName(const std::string& name);
  void OSThreadSetup();
  void OSThreadCleanup();

  const TEntryFunction mEntry;
  void* const mUserData;
  const std::string mName;
  GMutex mMutex;  // around state changes
  std::atomic<EThreadState> mState{eThreadNotStarted};
  std::atomic<unsigned int> mResult{0};
  GBarrier mStartupBarrier{2};
  bool mRunGoesOn = false;  // from the claim to the very end, the clean-up after state 4 included
  std::uint64_t mRun = 0;   // a number of its own in the process; 0 while mHandle is nobody
  pthread_t mHandle{};
  // One for each run: who waits for a run never misses its end because the next has begun.
  std::shared_ptr<GCondition> mDoneCondition;
};
