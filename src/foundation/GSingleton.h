// A lazily made instance that is never deleted.
#pragma once

#include <atomic>

#include "foundation/GScopedLock.h"

template <typename T>
class GSingleton {
 public:
  // Null only to the constructor of T itself, whose instance there is not yet. If that constructor
  // throws, the next call tries again. [any-thread]
  static T* GetSharedInstance() {
    static GMutex& mutex = *new GMutex;  // reachable to the end, never destroyed
    static std::atomic<T*> instance{nullptr};
    if (T* existing = instance.load(std::memory_order_acquire)) return existing;
    const GScopedLock lock(mutex, true, new GBlockingLockStrategy);
    if (lock.IsLocked() && instance.load(std::memory_order_relaxed) == nullptr) {
      instance.store(new T, std::memory_order_release);
    }
    return instance.load(std::memory_order_relaxed);
  }
};
