#include "agent/BoundedFontMemory.h"

#include <algorithm>
#include <cstdlib>

namespace Nodrix {

namespace {

constexpr std::uint64_t kAlwaysAllowed = std::uint64_t{16} << 20;

}  // namespace

BoundedFontMemory::BoundedFontMemory() : mLargestBlock(kAlwaysAllowed) {
  mMemory.user = this;
  mMemory.alloc = &Allocate;
  mMemory.realloc = &Reallocate;
  mMemory.free = &Free;
}

void BoundedFontMemory::SetFileSize(std::uint64_t bytes) {
  mLargestBlock = std::max(bytes, kAlwaysAllowed);
}

bool BoundedFontMemory::IsTooLarge(FT_Memory memory, long size) {
  const auto* self = static_cast<const BoundedFontMemory*>(memory->user);
  return size < 0 || static_cast<std::uint64_t>(size) > self->mLargestBlock;
}

void* BoundedFontMemory::Allocate(FT_Memory memory, long size) {
  return IsTooLarge(memory, size) ? nullptr : std::malloc(static_cast<std::size_t>(size));
}

void* BoundedFontMemory::Reallocate(FT_Memory memory, long, long newSize, void* block) {
  if (IsTooLarge(memory, newSize)) return nullptr;
  return std::realloc(block, static_cast<std::size_t>(newSize));
}

void BoundedFontMemory::Free(FT_Memory, void* block) { std::free(block); }

}  // namespace Nodrix
