#include "foundation/WallClock.h"

#include <atomic>
#include <chrono>
#include <memory>

namespace {

using TestClock = std::function<std::int64_t()>;

constinit std::atomic<const TestClock*> sTestClock{nullptr};

}  // namespace

namespace WallClock {

std::int64_t NowMilliseconds() {
  if (const TestClock* clock = sTestClock.load(std::memory_order_acquire)) return (*clock)();
  const auto now = std::chrono::system_clock::now().time_since_epoch();
  return std::chrono::duration_cast<std::chrono::milliseconds>(now).count();
}

std::time_t Now() { return static_cast<std::time_t>(NowMilliseconds() / 1000); }

void SetForTest(std::function<std::int64_t()> milliseconds) {
  static std::unique_ptr<const TestClock>& owner = *new std::unique_ptr<const TestClock>;
  auto next = milliseconds ? std::make_unique<const TestClock>(std::move(milliseconds)) : nullptr;
  sTestClock.store(next.get(), std::memory_order_release);
  owner = std::move(next);
}

}  // namespace WallClock
