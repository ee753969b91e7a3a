// Small helpers, most of them of the locks and waits, which all sleep on POSIX conditions.
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

[[noreturn]] void FailAssertion(const char* expression);

// Ends the process for an error of the caller, in every kind of build; never for an error of data.
// `expression` is what should have held: standard error and the plug-in log get it first.
// [any-thread]
inline void Assert(bool holds, const char* expression) {
  if (!holds) FailAssertion(expression);
}

}  // namespace GUtils
