#include "foundation/GInternalThreadMgr.h"

#include <vector>

#include "foundation/GScopedLock.h"

GInternalThreadMgr* GInternalThreadMgr::GetSharedInstance() {
  return GSingleton<GInternalThreadMgr>::GetSharedInstance();
}

std::string GInternalThreadMgr::MakeName() {
  const GScopedLock lock(mMutex);
  mNamesGiven += 1;
  return "Thread " + std::to_string(mNamesGiven);
}

void GInternalThreadMgr::Add(GThread* thread) {
  const GScopedLock lock(mMutex);
  mThreads.push_back(thread);
}

void GInternalThreadMgr::Remove(const GThread* thread) {
  const GScopedLock lock(mMutex);
  std::erase(mThreads, thread);
}

GThread* GInternalThreadMgr::FindHighest(std::uint64_t (*rank)(GThread& thread)) {
  const GScopedLock lock(mMutex);
  GThread* found = nullptr;
  std::uint64_t highest = 0;
  for (GThread* thread : mThreads) {
    const std::uint64_t ranked = rank(*thread);
    if (ranked > highest) {
      highest = ranked;
      found = thread;
    }
  }
  return found;
}
