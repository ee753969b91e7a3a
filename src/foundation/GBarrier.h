// A place where so many threads meet: none goes on before all have come. Then it serves again.
#pragma once

#include <pthread.h>

#include "foundation/ErrorCodes.h"

class GBarrier {
 public:
  // A count of 0 is a programming error and ends the process, in release builds too.
  explicit GBarrier(unsigned int threadCount);
  // May be destroyed by any of those that met, as soon as its own Wait has returned.
  ~GBarrier();
  GBarrier(const GBarrier&) = delete;
  GBarrier& operator=(const GBarrier&) = delete;

  // 0 to each of them; CoreErrorCodes::kError if the system refuses. [any-thread]
  TModuleErrorCode Wait();

 private:
  pthread_barrier_t mBarrier;
};
