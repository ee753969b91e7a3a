// The one way locks are taken.
#pragma once

#include <memory>

#include "foundation/GMutex.h"

class GLockStrategy {
 public:
  virtual ~GLockStrategy() = default;
  virtual TModuleErrorCode Lock(GLockable& lockable) = 0;
  virtual TModuleErrorCode Unlock(GLockable& lockable);
};

// Waits without limit.
class GBlockingLockStrategy : public GLockStrategy {
 public:
  TModuleErrorCode Lock(GLockable& lockable) override;
};

class GScopedLock {
 public:
  // Takes ownership of `strategy`; null waits without limit, as a GBlockingLockStrategy does, and
  // costs no allocation.
  explicit GScopedLock(GLockable& lockable, bool lockNow = true, GLockStrategy* strategy = nullptr);
  ~GScopedLock();
  GScopedLock(const GScopedLock&) = delete;
  GScopedLock& operator=(const GScopedLock&) = delete;

  TModuleErrorCode Lock();
  TModuleErrorCode Unlock();
  bool IsLocked() const { return mIsLocked; }

 private:
  GLockable& mLockable;
  std::unique_ptr<GLockStrategy> mStrategy;
  bool mIsLocked = false;
};
