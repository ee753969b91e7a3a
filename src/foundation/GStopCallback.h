// Asked by long operations, on their caller's thread, whether to go on.
#pragma once

class GStopCallback {
 public:
  virtual ~GStopCallback() = default;
  // true ends the operation with CoreErrorCodes::kStopped.
  virtual bool ShouldStop() = 0;
};
