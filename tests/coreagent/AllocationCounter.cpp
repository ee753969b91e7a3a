#include "coreagent/AllocationCounter.h"

#include <cstdlib>
#include <new>

namespace {

thread_local long sAllocations = 0;

}  // namespace

long CountOfAllocations() { return sAllocations; }

void* operator new(std::size_t size) {
  ++sAllocations;
  if (void* memory = std::malloc(size == 0 ? 1 : size)) return memory;
  throw std::bad_alloc();
}
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }
