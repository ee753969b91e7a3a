// Keeps all GThread objects, for GThread alone.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "foundation/GMutex.h"
#include "foundation/GSingleton.h"

class GThread;

// [any-thread] Locks its own mutex before an object's, never the other way round.
class GInternalThreadMgr {
 private:
  friend class GThread;
  friend class GSingleton<GInternalThreadMgr>;

  GInternalThreadMgr() = default;
  static GInternalThreadMgr* GetSharedInstance();

  std::string MakeName();
  void Add(GThread* thread);
  void Remove(const GThread* thread);
  // Null if all rank 0. Other threads wait meanwhile.
  GThread* FindHighest(std::uint64_t (*rank)(GThread& thread));

  GRecursiveMutex mMutex;
  std::vector<GThread*> mThreads;
  unsigned int mNamesGiven = 0;
};
