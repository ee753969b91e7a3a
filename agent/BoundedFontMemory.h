// Memory for FreeType that refuses a block larger than a font file can need: lengths in a file may
// say anything, and some are believed. One thread.
#pragma once

#include <ft2build.h>
#include FT_SYSTEM_H

#include <cstdint>

namespace Nodrix {

class BoundedFontMemory {
 public:
  BoundedFontMemory();
  BoundedFontMemory(const BoundedFontMemory&) = delete;
  BoundedFontMemory& operator=(const BoundedFontMemory&) = delete;

  // For one library, which must not outlive it.
  FT_Memory Get() { return &mMemory; }
  // From now on a block may have as many bytes as the file, and always 16 MiB.
  void SetFileSize(std::uint64_t bytes);

 private:
  static void* Allocate(FT_Memory memory, long size);
  static void* Reallocate(FT_Memory memory, long presentSize, long newSize, void* block);
  static void Free(FT_Memory memory, void* block);
  static bool IsTooLarge(FT_Memory memory, long size);

  FT_MemoryRec_ mMemory{};
  std::uint64_t mLargestBlock;
};

}  // namespace Nodrix
