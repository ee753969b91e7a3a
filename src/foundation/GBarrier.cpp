#include "foundation/GBarrier.h"

#include "foundation/GUtils.h"

GBarrier::GBarrier(unsigned int threadCount) {
  if (threadCount == 0) GUtils::FailAssertion("threadCount != 0");
  // What else the system refuses is a count beyond its limit.
  if (pthread_barrier_init(&mBarrier, nullptr, threadCount) != 0) {
    GUtils::FailAssertion("pthread_barrier_init(&mBarrier, nullptr, threadCount) == 0");
  }
}

GBarrier::~GBarrier() { pthread_barrier_destroy(&mBarrier); }

TModuleErrorCode GBarrier::Wait() {
  const int result = pthread_barrier_wait(&mBarrier);
  return result == 0 || result == PTHREAD_BARRIER_SERIAL_THREAD ? 0 : CoreErrorCodes::kError;
}
