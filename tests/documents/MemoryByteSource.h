// Bytes in memory as a source, also one that ends before its time.
#pragma once

#include <algorithm>
#include <cstdint>
#include <string_view>

#include "documents/ByteSource.h"

class MemoryByteSource final : public ByteSource {
 public:
  explicit MemoryByteSource(std::string_view bytes) : mBytes(bytes), mEnd(bytes.size()) {}

  std::uint64_t Size() const override { return mBytes.size(); }
  bool ReadAt(std::uint64_t offset, char* buffer, std::size_t count) override {
    if (offset + count > mEnd) return false;
    const std::string_view part = mBytes.substr(static_cast<std::size_t>(offset), count);
    std::copy(part.begin(), part.end(), buffer);
    return true;
  }
  // As if the file had been cut there after it was opened.
  void CutAt(std::uint64_t end) { mEnd = end; }

 private:
  std::string_view mBytes;
  std::uint64_t mEnd;
};
