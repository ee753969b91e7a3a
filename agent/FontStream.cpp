#include "agent/FontStream.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

namespace Nodrix {
namespace {

constexpr std::uint64_t kMaxFileSize = 256ull << 20;
constexpr std::size_t kWindowCapacity = 64 << 10;
// What may be read of a file in all: every table several times over, and a small file's tables for
// each of its many faces.
constexpr std::uint64_t kBudgetFactor = 8, kBudgetBase = 64ull << 20;

}  // namespace

FontStream::FontStream(int file, std::uint64_t size)
    : mFile(file), mSize(size), mBudget(kBudgetFactor * size + kBudgetBase) {
  mStream.size = size;
  mStream.descriptor.pointer = this;
  mStream.read = Read;
}

FontStream::~FontStream() { close(mFile); }

std::unique_ptr<FontStream> FontStream::Open(const std::string& path, std::string& error) {
  // Not blocking: a pipe with a font's name must not hold the scan.
  const int file = open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY);
  struct stat info {};
  if (file < 0 || fstat(file, &info) != 0) {
    error = std::strerror(errno);
    if (file >= 0) close(file);
    return nullptr;
  }
  const auto size = static_cast<std::uint64_t>(info.st_size);
  if (!S_ISREG(info.st_mode) || size > kMaxFileSize) {
    error = S_ISREG(info.st_mode) ? "larger than 256 MB" : "not a regular file";
    close(file);
    return nullptr;
  }
  return std::unique_ptr<FontStream>(new FontStream(file, size));
}

std::size_t FontStream::ReadAt(std::uint64_t offset, unsigned char* buffer, std::size_t count) {
  std::size_t done = 0;
  while (done < count) {
    const std::uint64_t at = offset + done;
    if (at >= mWindowStart && at < mWindowStart + mWindowSize) {
      const auto inWindow = static_cast<std::size_t>(at - mWindowStart);
      const std::size_t part = std::min(count - done, mWindowSize - inWindow);
      std::memcpy(buffer + done, mWindow.data() + inWindow, part);
      done += part;
      continue;
    }
    // Big pieces go straight to where they are wanted.
    const bool direct = count - done >= kWindowCapacity;
    if (!direct) mWindow.resize(kWindowCapacity);
    unsigned char* target = direct ? buffer + done : mWindow.data();
    const ssize_t got =
        pread(mFile, target, direct ? count - done : kWindowCapacity, static_cast<off_t>(at));
    if (got < 0 && errno == EINTR) continue;
    if (got <= 0) break;
    if (direct) {
      done += static_cast<std::size_t>(got);
    } else {
      mWindowStart = at;
      mWindowSize = static_cast<std::size_t>(got);
    }
  }
  return done;
}

std::vector<std::uint8_t> FontStream::Head(std::size_t count) {
  std::vector<std::uint8_t> bytes(count);
  bytes.resize(ReadAt(0, bytes.data(), count));
  return bytes;
}

unsigned long FontStream::Read(FT_Stream stream, unsigned long offset, unsigned char* buffer,
                               unsigned long count) {
  auto& self = *static_cast<FontStream*>(stream->descriptor.pointer);
  // A count of 0 is a seek: 0 says that it went well.
  if (count == 0) return offset > stream->size ? 1 : 0;
  if (count > self.mBudget) {
    self.mBudget = 0;
    return 0;
  }
  self.mBudget -= count;
  return self.ReadAt(offset, buffer, count);
}

}  // namespace Nodrix
