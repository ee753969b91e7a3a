// A lazily made instance that is never deleted.
#pragma once

#include <atomic>

#include "foundation/GScopedLock.h"

template <typename T>
class GSingleton {
 public:
  // [any-thread]
  static T* GetSharedInstance() {
    static GMutex& mutex = *new GMutex;  // reachable to the end, never destroyed
    static std::atomic<T*> instance{nullptr};
    if (T* existing = instance.load(std::memory_order_acquire)) return existing;
    GScopedLock lock(mutex, true, new GBlockingLockStrategy);
    if (instance.load(std::memory_order_relaxed) == nullptr) {
      instance.store(new T, std::memory_order_release);
    }
    return instance.load(std::memory_order_relaxed);
  }
};
