// Owns a file descriptor; -1 is none. Closing keeps errno.
#pragma once

#include <unistd.h>

#include <cerrno>
#include <utility>

class FileDescriptor {
 public:
  FileDescriptor() = default;
  explicit FileDescriptor(int descriptor) : mDescriptor(descriptor) {}
  FileDescriptor(FileDescriptor&& other) noexcept
      : mDescriptor(std::exchange(other.mDescriptor, -1)) {}
  FileDescriptor& operator=(FileDescriptor&& other) noexcept {
    std::swap(mDescriptor, other.mDescriptor);
    return *this;
  }
  ~FileDescriptor() {
    const int error = errno;
    if (IsOpen()) close(mDescriptor);
    errno = error;
  }

  bool IsOpen() const { return mDescriptor >= 0; }
  int Get() const { return mDescriptor; }
  int Release() { return std::exchange(mDescriptor, -1); }

 private:
  int mDescriptor = -1;
};
