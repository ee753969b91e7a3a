// Wall clock in whole seconds since 1970 and in milliseconds. A test moves it.
#pragma once

#include <cstdint>
#include <ctime>
#include <functional>

namespace WallClock {

std::time_t Now();
std::int64_t NowMilliseconds();

// Replaces the clock by `milliseconds`; an empty function puts the system's back. [tests only]
void SetForTest(std::function<std::int64_t()> milliseconds);

}  // namespace WallClock
