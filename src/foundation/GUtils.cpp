#include "foundation/GUtils.h"

#include <cstdio>
#include <cstdlib>

#include "foundation/PluginLog.h"

namespace GUtils {

timespec FutureMillisecondsToAbsTime(unsigned int milliseconds) {
  constexpr long kNanosecondsPerSecond = 1'000'000'000;
  timespec time{};
  clock_gettime(CLOCK_MONOTONIC, &time);
  time.tv_sec += milliseconds / 1000;
  time.tv_nsec += static_cast<long>(milliseconds % 1000) * 1'000'000;
  if (time.tv_nsec >= kNanosecondsPerSecond) {
    time.tv_sec += 1;
    time.tv_nsec -= kNanosecondsPerSecond;
  }
  return time;
}

void InitTimedCondition(pthread_cond_t& condition) {
  pthread_condattr_t attributes;
  pthread_condattr_init(&attributes);
  pthread_condattr_setclock(&attributes, CLOCK_MONOTONIC);
  pthread_cond_init(&condition, &attributes);
  pthread_condattr_destroy(&attributes);
}

void FailAssertion(const char* expression) {
  std::fprintf(stderr, "ASSERTION FAILED:  %s\n", expression);
  OutputFormattedDebugString("ASSERTION FAILED:  %s", expression);
  std::abort();
}

}  // namespace GUtils
