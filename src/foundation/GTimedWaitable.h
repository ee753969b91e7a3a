// What can be waited for with a time limit.
#pragma once

#include "foundation/ErrorCodes.h"

class GTimedWaitable {
 public:
  static constexpr TModuleErrorCode kWaitTimedOutErr = MakeErrorCode(0x00100D, 1);

  virtual ~GTimedWaitable() = default;
  // kWaitTimedOutErr if the time ran out.
  virtual TModuleErrorCode TimedWait(unsigned int milliseconds) = 0;
};
