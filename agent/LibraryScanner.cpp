#include "agent/LibraryScanner.h"

#include <algorithm>
#include <condition_variable>
#include <mutex>
#include <thread>
#include <unordered_set>

#include "agent/SystemFonts.h"
#include "agent/library/LibraryReader.h"

namespace Nodrix {
namespace {

constexpr unsigned kReaders = 2;
// Files in one transaction: some ten milliseconds.
constexpr std::size_t kBatch = 500;
// Read and not yet written: readers wait beyond that.
constexpr std::size_t kMaxWaiting = 4 * kBatch;
// Files between two reports.
constexpr std::size_t kReportEvery = 50;

// Threads that read a list of files; one other thread takes what they found.
class ReaderPool {
 public:
  ReaderPool(const std::vector<FoundFile>& files, const std::atomic<bool>& stopped)
      : mFiles(files), mStopped(stopped), mRunning(kReaders) {
    for (unsigned i = 0; i < kReaders; ++i) mThreads.emplace_back([this] { Work(); });
  }
  ~ReaderPool() {
    {
      const std::lock_guard lock(mMutex);
      mAbandoned = true;
    }
    mChanged.notify_all();
    for (std::thread& thread : mThreads) thread.join();
  }
  ReaderPool(const ReaderPool&) = delete;
  ReaderPool& operator=(const ReaderPool&) = delete;

  // Waits for some files and adds them to `batch`; false when there are no more.
  bool Take(std::vector<ScannedFile>& batch) {
    std::unique_lock lock(mMutex);
    mChanged.wait(lock, [this] { return mDone.size() >= kReportEvery || mRunning == 0; });
    if (mDone.empty()) return false;
    std::ranges::move(mDone, std::back_inserter(batch));
    mDone.clear();
    lock.unlock();
    mChanged.notify_all();
    return true;
  }

 private:
  void Work() {
    FontFileReader reader;
    for (;;) {
      const std::size_t index = mNext++;
      if (index >= mFiles.size() || mStopped) break;
      ScannedFile scanned{mFiles[index], reader.Read(mFiles[index].path)};
      std::unique_lock lock(mMutex);
      mChanged.wait(lock, [this] { return mDone.size() < kMaxWaiting || mAbandoned; });
      if (mAbandoned) break;
      mDone.push_back(std::move(scanned));
      if (mDone.size() >= kReportEvery) mChanged.notify_all();
    }
    {
      const std::lock_guard lock(mMutex);
      --mRunning;
    }
    mChanged.notify_all();
  }

  const std::vector<FoundFile>& mFiles;
  const std::atomic<bool>& mStopped;
  std::atomic<std::size_t> mNext = 0;
  std::mutex mMutex;
  std::condition_variable mChanged;
  std::vector<ScannedFile> mDone;
  unsigned mRunning;
  bool mAbandoned = false;
  std::vector<std::thread> mThreads;
};

// The system's list names what it likes, a bitmap font for instance; a user's folder holds other
// files beside fonts.
bool IsWorthARow(const ScannedFile& scanned, std::int64_t folder, bool isKnown) {
  if (folder == 0) return !scanned.info.faces.empty();
  return scanned.info.isFontFile || isKnown;
}

}  // namespace

void LibraryScanner::ScanFolder(const StoredFolder& folder, ScanControl& control,
                                ScanResult& result) {
  Job job;
  job.folder = folder.id;
  const bool readable = WalkFolder(folder.path, mActivationFolder, control.stopped, job.found);
  if (!mStore.MarkFolder(folder.id, !readable)) result.failed = true;
  job.stored = mStore.FilesOfFolder(folder.id);
  const StoredFiles system = mStore.FilesOfWorkgroup(kSystemWorkgroupID);
  const auto before = job.found.size();
  std::erase_if(job.found, [&](const FoundFile& file) {
    const auto found = system.find(file.path);
    return found != system.end() && !found->second.missing;
  });
  result.systemFiles += before - job.found.size();
  Update(job, control, result);
}

void LibraryScanner::ScanSystem(ScanControl& control, ScanResult& result) {
  Job job;
  if (!ListSystemFonts(mActivationFolder, job.found)) return;
  job.stored = mStore.FilesOfWorkgroup(kSystemWorkgroupID);
  Update(job, control, result);
}

void LibraryScanner::Update(Job& job, ScanControl& control, ScanResult& result) {
  // A walk that was stopped did not see everything: nothing has gone for that.
  if (!control.stopped) {
    std::unordered_set<std::string_view> there;
    for (const FoundFile& file : job.found) there.insert(file.path);
    std::vector<std::int64_t> gone;
    for (const auto& [path, file] : job.stored) {
      if (!file.missing && !there.contains(path)) gone.push_back(file.id);
    }
    if (!gone.empty() && !mStore.MarkMissing(gone, result.missingFaces)) result.failed = true;
    result.outcome.removed += gone.size();
  }
  const std::vector<FoundFile> files = FilesToRead(job, result);
  ReadAndWrite(job, files, control, result);
  if (job.folder != 0) mStore.CountFolder(job.folder, result.outcome);
}

std::vector<FoundFile> LibraryScanner::FilesToRead(Job& job, ScanResult& result) {
  std::vector<FoundFile> files;
  std::vector<std::int64_t> back;
  for (FoundFile& file : job.found) {
    const auto known = job.stored.find(file.path);
    if (known == job.stored.end() || known->second.size != file.size ||
        known->second.modifiedNs != file.modifiedNs) {
      files.push_back(std::move(file));
    } else if (known->second.missing) {
      back.push_back(known->second.id);
    }
  }
  if (!back.empty() && !mStore.MarkPresent(back)) result.failed = true;
  result.outcome.added += back.size();
  return files;
}

void LibraryScanner::ReadAndWrite(const Job& job, const std::vector<FoundFile>& files,
                                  ScanControl& control, ScanResult& result) {
  if (files.empty()) return;
  ReaderPool pool(files, control.stopped);
  std::uint64_t done = 0;
  std::vector<ScannedFile> taken, batch;
  for (bool more = true; more;) {
    taken.clear();
    more = pool.Take(taken);
    done += taken.size();
    const std::string last = taken.empty() ? std::string() : taken.back().file.path;
    for (ScannedFile& scanned : taken) {
      const auto known = job.stored.find(scanned.file.path);
      const bool isKnown = known != job.stored.end();
      if (!IsWorthARow(scanned, job.folder, isKnown)) continue;
      if (!isKnown || known->second.missing) ++result.outcome.added;
      batch.push_back(std::move(scanned));
    }
    while (batch.size() >= kBatch || (!more && !batch.empty())) {
      const std::size_t size = std::min(batch.size(), kBatch);
      if (!mStore.Write(std::span(batch).first(size), job.folder)) {
        result.failed = true;
        return;
      }
      batch.erase(batch.begin(), batch.begin() + static_cast<std::ptrdiff_t>(size));
    }
    if (control.progress && !last.empty()) control.progress(done, files.size(), last);
  }
}

}  // namespace Nodrix
