#include "agent/ScanQueue.h"

#include <utility>

namespace Nodrix {

ScanQueue::ScanQueue(LibraryStore& store, std::string activationFolder)
    : mScanner(store, std::move(activationFolder)), mThread([this] { Run(); }) {}

ScanQueue::~ScanQueue() {
  {
    const std::lock_guard lock(mMutex);
    mEnding = true;
    mJobs.clear();
    if (mRunning) mRunning->stopped = true;
  }
  mChanged.notify_all();
  mThread.join();
}

void ScanQueue::Add(std::shared_ptr<ScanControl> control, Work work) {
  {
    const std::lock_guard lock(mMutex);
    mJobs.push_back({std::move(control), std::move(work)});
  }
  mChanged.notify_all();
}

void ScanQueue::Run() {
  std::unique_lock lock(mMutex);
  for (;;) {
    mChanged.wait(lock, [this] { return mEnding || !mJobs.empty(); });
    if (mEnding) return;
    const Job job = std::move(mJobs.front());
    mJobs.pop_front();
    mRunning = job.control;
    lock.unlock();
    job.work(mScanner, *job.control);
    lock.lock();
    mRunning.reset();
  }
}

}  // namespace Nodrix
