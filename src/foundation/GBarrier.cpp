#include "foundation/GBarrier.h"

#include "foundation/GUtils.h"

GBarrier::GBarrier(unsigned int threadCount) {
  GUtils::Assert(threadCount != 0, "threadCount != 0");
  // What else the system refuses is a count beyond its limit.
  const int error = pthread_barrier_init(&mBarrier, nullptr, threadCount);
  GUtils::Assert(error == 0, "pthread_barrier_init(&mBarrier, nullptr, threadCount) == 0");
}

GBarrier::~GBarrier() { pthread_barrier_destroy(&mBarrier); }

TModuleErrorCode GBarrier::Wait() {
  const int result = pthread_barrier_wait(&mBarrier);
  return result == 0 || result == PTHREAD_BARRIER_SERIAL_THREAD ? 0 : CoreErrorCodes::kError;
}
