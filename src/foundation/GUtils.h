// Small helpers of the locks and waits, which all sleep on POSIX conditions.
#pragma once

#include <pthread.h>

#include <ctime>

namespace GUtils {

// The time in so many milliseconds on the monotonic clock, so that setting the wall clock moves no
// deadline. For conditions made by InitTimedCondition. [any-thread]
timespec FutureMillisecondsToAbsTime(unsigned int milliseconds);

// Makes a condition whose timed waits run on the monotonic clock; the caller destroys it.
void InitTimedCondition(pthread_cond_t& condition);

// Holds a POSIX mutex for a scope.
class Guard {
 public:
  explicit Guard(pthread_mutex_t& mutex) : mMutex(mutex) { pthread_mutex_lock(&mMutex); }
  ~Guard() { pthread_mutex_unlock(&mMutex); }
  Guard(const Guard&) = delete;
  Guard& operator=(const Guard&) = delete;

 private:
  pthread_mutex_t& mMutex;
};

// An assertion that also stands in release builds: prints `expression` to standard error and aborts
// the process.
[[noreturn]] void FailAssertion(const char* expression);

}  // namespace GUtils
