// Brings the library in line with what lies on disk. Unchanged files (size and time) are not read
// again; two threads read fonts, the calling one writes in batches, so that another writer waits
// for one batch at most.
//
// Threads: one scan at a time, on any thread.
#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "agent/LibraryStore.h"

namespace Nodrix {

struct ScanControl {
  // Files done, files in all, the path of the last one; called on the scanning thread. May be
  // empty.
  std::function<void(std::uint64_t, std::uint64_t, const std::string&)> progress;
  std::atomic<bool> stopped = false;
};

struct ScanResult {
  ScanOutcome outcome;
  std::vector<std::uint32_t> missingFaces;  // their files have gone
  std::uint64_t systemFiles = 0;  // in a library folder, and the system's fonts all the same
  bool failed = false;            // the library could not be written
};

class LibraryScanner {
 public:
  // `activationFolder` holds our own copies and is no source of fonts.
  LibraryScanner(LibraryStore& store, std::string activationFolder)
      : mStore(store), mActivationFolder(std::move(activationFolder)) {}

  // Adds to `result`. A folder that can't be read is marked missing, and its files with it.
  void ScanFolder(const StoredFolder& folder, ScanControl& control, ScanResult& result);
  // The fonts that fontconfig lists become the system's workgroup. Files of kinds that the library
  // does not know are left out.
  void ScanSystem(ScanControl& control, ScanResult& result);

 private:
  struct Job {
    std::int64_t folder = 0;
    std::vector<FoundFile> found;
    StoredFiles stored;
  };
  void Update(Job& job, ScanControl& control, ScanResult& result);
  std::vector<FoundFile> FilesToRead(Job& job, ScanResult& result);
  void ReadAndWrite(const Job& job, const std::vector<FoundFile>& files, ScanControl& control,
                    ScanResult& result);

  LibraryStore& mStore;
  const std::string mActivationFolder;
};

}  // namespace Nodrix
