#include "foundation/GThread.h"

#include <csignal>

#include "foundation/ErrorChecks.h"
#include "foundation/GInternalThreadMgr.h"
#include "foundation/GUtils.h"

namespace {

// Blocks this thread's signals for a scope, for the thread that is created in it to inherit. A
// fault's signal stays: blocked it would pass by the host's crash report.
class BlockedSignals {
 public:
  BlockedSignals() {
    sigset_t all;
    sigfillset(&all);
    for (const int fault : {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGTRAP, SIGABRT, SIGSYS}) {
      sigdelset(&all, fault);
    }
    pthread_sigmask(SIG_SETMASK, &all, &mFormer);
  }
  ~BlockedSignals() { pthread_sigmask(SIG_SETMASK, &mFormer, nullptr); }
  BlockedSignals(const BlockedSignals&) = delete;
  BlockedSignals& operator=(const BlockedSignals&) = delete;

 private:
  sigset_t mFormer{};
};

int CreateDetached(void* (*function)(void*), void* argument) {
  pthread_attr_t attributes;
  if (const int error = pthread_attr_init(&attributes)) return error;
  pthread_attr_setdetachstate(&attributes, PTHREAD_CREATE_DETACHED);
  pthread_t thread{};
  const BlockedSignals blocked;
  const int error = pthread_create(&thread, &attributes, function, argument);
  pthread_attr_destroy(&attributes);
  return error;
}

}  // namespace

GThread::GThread(TEntryFunction entry, void* userData)
    : mEntry(entry),
      mUserData(userData),
      mName(GInternalThreadMgr::GetSharedInstance()->MakeName()) {
  GInternalThreadMgr::GetSharedInstance()->Add(this);
}

GThread::~GThread() {
  GUtils::Assert(StopThread(true) == 0, "StopThread(true) == 0");
  GInternalThreadMgr::GetSharedInstance()->Remove(this);
}

TModuleErrorCode GThread::StartThread() {
  {
    GScopedLock lock(mMutex);
    EThreadState former{};
    if (const TModuleErrorCode code = ClaimRun(lock, former)) return code;
    // The new thread waits for the lock.
    if (CreateDetached(&PthreadInternal, this) == 0) {
      lock.Unlock();
      mStartupBarrier.Wait();
      return 0;
    }
    mState = former;
    mRunGoesOn = false;
  }
  WriteErrorRecord(1, __FILE__, __LINE__, "CreateDetached(&PthreadInternal, this)",
                   CoreErrorCodes::kError);
  return CoreErrorCodes::kError;
}

TModuleErrorCode GThread::ClaimRun(GScopedLock& lock, EThreadState& former) {
  for (;;) {
    if (mState != eThreadNotStarted && mState != eThreadFinished) {
      return CoreErrorCodes::kAlreadyInitialized;
    }
    if (!mRunGoesOn) break;
    const std::shared_ptr<GCondition> done = mDoneCondition;
    lock.Unlock();
    done->Wait();
    lock.Lock();
  }
  mDoneCondition = std::make_shared<GCondition>();
  mRunGoesOn = true;
  former = mState;
  mState = eThreadStarting;
  return 0;
}

void* GThread::PthreadInternal(void* object) {
  auto* thread = static_cast<GThread*>(object);
  OSSetThreadName(thread->mName);
  thread->BeginRun();
  thread->mStartupBarrier.Wait();
  thread->OSThreadSetup();
  thread->RunEntry();
  thread->OSThreadCleanup();
  thread->EndRun();
  return nullptr;
}

TModuleErrorCode GThread::RunSynchronously() {
  {
    GScopedLock lock(mMutex);
    EThreadState former{};
    if (const TModuleErrorCode code = ClaimRun(lock, former)) return code;
  }
  BeginRun();
  RunEntry();
  EndRun();
  return 0;
}

void GThread::BeginRun() {
  static std::atomic<std::uint64_t> sRuns{0};
  const GScopedLock lock(mMutex);
  mHandle = pthread_self();
  mRun = ++sRuns;
  if (mState != eThreadStopping) mState = eThreadRunning;
}

void GThread::RunEntry() {
  unsigned int result = CoreErrorCodes::kError;
  try {
    result = mEntry(this);
  } catch (...) {
    WriteErrorRecord(1, __FILE__, __LINE__, "mEntry(this)", CoreErrorCodes::kError);
  }
  const GScopedLock lock(mMutex);
  mResult = result;
  mState = eThreadFinished;
}

void GThread::EndRun() {
  std::shared_ptr<GCondition> done;
  {
    const GScopedLock lock(mMutex);
    mHandle = pthread_t{};
    mRun = 0;
    mRunGoesOn = false;
    done = mDoneCondition;
  }
  done->Broadcast();
}

TModuleErrorCode GThread::StopThread(bool wait) {
  std::shared_ptr<GCondition> done;
  {
    const GScopedLock lock(mMutex);
    if (mState == eThreadStarting || mState == eThreadRunning) mState = eThreadStopping;
    if (!wait || !mRunGoesOn) return 0;
    if (mRun != 0 && pthread_equal(mHandle, pthread_self()) != 0) return GMutex::kMutexDeadlockErr;
    done = mDoneCondition;
  }
  return done->Wait();
}

std::uint64_t GThread::GetRunOnThisThread() {
  const GScopedLock lock(mMutex);
  return mRun != 0 && pthread_equal(mHandle, pthread_self()) != 0 ? mRun : 0;
}

void* GThread::GetCurrentThread() {
  return reinterpret_cast<void*>(pthread_self());  // NOLINT(performance-no-int-to-ptr): a handle
}

bool GThread::AreThreadsEqual(void* a, void* b) {
  return pthread_equal(reinterpret_cast<pthread_t>(a), reinterpret_cast<pthread_t>(b)) != 0;
}

GThread* GThread::GetCurrentThreadObject() {
  return GInternalThreadMgr::GetSharedInstance()->FindHighest(
      [](GThread& thread) { return thread.GetRunOnThisThread(); });
}
