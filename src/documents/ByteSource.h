// Bytes of a known size, read at any offset: a file, or what a test puts in its place.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "foundation/GFile.h"

class ByteSource {
 public:
  virtual ~ByteSource() = default;
  // As it was when the source was made.
  virtual std::uint64_t Size() const = 0;
  // Exactly `count` bytes; false if they can't be had.
  [[nodiscard]] virtual bool ReadAt(std::uint64_t offset, char* buffer, std::size_t count) = 0;
};

// A regular file. Anything else (folder, FIFO, device) does not open, and opening never waits.
class FileByteSource final : public ByteSource {
 public:
  // `path` is absolute.
  [[nodiscard]] bool Open(const std::string& path);
  std::uint64_t Size() const override { return mSize; }
  [[nodiscard]] bool ReadAt(std::uint64_t offset, char* buffer, std::size_t count) override;

 private:
  GFile mFile;
  std::uint64_t mSize = 0;
  std::uint64_t mPosition = 0;
};
