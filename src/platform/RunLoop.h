// Repeating timers on the host's main loop.
#pragma once

#include <functional>
#include <memory>

class RunLoop {
 public:
  // Common modes also tick while the host tracks a menu or runs a modal session; the default mode
  // does not.
  enum class Mode { eCommon, eDefault };

  // Destroying a timer stops it, also from within its own callback.
  class Timer {
   public:
    virtual ~Timer() = default;
    // Moves the next fire to `seconds` from now.
    virtual void SetNextFire(double seconds) = 0;
  };

  virtual ~RunLoop() = default;
  // First fires after `firstFire` seconds, then every `interval` seconds. A callback that runs the
  // loop itself is called again in there. [main-thread]
  [[nodiscard]] virtual std::unique_ptr<Timer> CreateRepeatingTimer(
      double firstFire, double interval, Mode mode, std::function<void()> callback) = 0;
};
