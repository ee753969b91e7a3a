// Scans, one after the other, on a thread of their own.
#pragma once

#include <condition_variable>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>

#include "agent/LibraryScanner.h"

namespace Nodrix {

class ScanQueue {
 public:
  using Work = std::function<void(LibraryScanner&, ScanControl&)>;

  // The store is borrowed.
  ScanQueue(LibraryStore& store, std::string activationFolder);
  // Stops the running scan, forgets the waiting ones and waits for the thread.
  ~ScanQueue();
  ScanQueue(const ScanQueue&) = delete;
  ScanQueue& operator=(const ScanQueue&) = delete;

  // `work` runs on the scanning thread. Who holds the control can stop it, also before it began.
  void Add(std::shared_ptr<ScanControl> control, Work work);

 private:
  struct Job {
    std::shared_ptr<ScanControl> control;
    Work work;
  };
  void Run();

  LibraryScanner mScanner;
  std::mutex mMutex;
  std::condition_variable mChanged;
  std::deque<Job> mJobs;
  std::shared_ptr<ScanControl> mRunning;
  bool mEnding = false;
  std::thread mThread;
};

}  // namespace Nodrix
