#include "foundation/GLockable.h"

#include <algorithm>
#include <chrono>
#include <thread>

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::chrono::milliseconds kRetryPause{50};

}  // namespace

TModuleErrorCode GLockable::TryLockWithTimeout(unsigned int milliseconds) {
  const Clock::time_point deadline = Clock::now() + std::chrono::milliseconds(milliseconds);
  for (;;) {
    const TModuleErrorCode code = TryLock();
    if (code != kLockBusyErr) return code;
    const Clock::duration left = deadline - Clock::now();
    if (left <= Clock::duration::zero()) return kLockBusyErr;
    std::this_thread::sleep_for(std::min<Clock::duration>(left, kRetryPause));
  }
}
