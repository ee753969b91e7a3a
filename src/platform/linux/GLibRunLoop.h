// Timers on the default GLib main context, which the host iterates.
//
// A modal session is a nested run of that context. Common timers may recurse and keep ticking in
// it; a timer of the default mode waits while any callback of the context is running further out,
// and fires when the host is back in its outermost loop.
#pragma once

#include "platform/RunLoop.h"

class GLibRunLoop : public RunLoop {
 public:
  std::unique_ptr<Timer> CreateRepeatingTimer(double firstFire, double interval, Mode mode,
                                              std::function<void()> callback) override;
};
