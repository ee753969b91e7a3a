#include "documents/ByteSource.h"

#include "foundation/GFileSystemSpec.h"

bool FileByteSource::Open(const std::string& path) {
  const GFileSystemSpec spec(path);
  if (spec.IsEmpty()) return false;
  if (mFile.Open(spec, GFile::eRead | GFile::eBinary) != CoreErrorCodes::kSuccess) return false;
  unsigned long long size = 0;
  if (mFile.GetFileSize(size) != CoreErrorCodes::kSuccess) return false;
  mSize = size;
  return true;
}

bool FileByteSource::ReadAt(std::uint64_t offset, char* buffer, std::size_t count) {
  // A position that is right already is not set again: that would cost the stream its buffer.
  if (offset != mPosition &&
      mFile.SetFilePosition(GFile::eFromStart, offset) != CoreErrorCodes::kSuccess) {
    return false;
  }
  mPosition = offset;
  while (count > 0) {
    std::size_t got = 0;
    if (mFile.ReadSome(buffer, count, got) != CoreErrorCodes::kSuccess || got == 0) return false;
    mPosition += got;
    buffer += got;
    count -= got;
  }
  return true;
}
