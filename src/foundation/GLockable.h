// What can be locked.
#pragma once

#include "foundation/ErrorCodes.h"

class GLockable {
 public:
  static constexpr TModuleErrorCode kLockBusyErr = MakeErrorCode(0x00100C, 1);

  virtual ~GLockable() = default;
  virtual TModuleErrorCode Lock() = 0;
  // kLockBusyErr if another thread holds the lock.
  virtual TModuleErrorCode TryLock() = 0;
  // Tries every 50 ms until the time is used up, then kLockBusyErr. Any other failure of TryLock
  // ends it at once.
  virtual TModuleErrorCode TryLockWithTimeout(unsigned int milliseconds);
  virtual TModuleErrorCode Unlock() = 0;
};
