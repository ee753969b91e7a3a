#include "foundation/linux/FileCopy.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <climits>
#include <vector>

#include "foundation/ErrorChecks.h"
#include "foundation/GFileSystem.h"
#include "foundation/GStopCallback.h"
#include "foundation/linux/OpenFile.h"
#include "foundation/linux/PendingEntry.h"
#include "foundation/linux/SystemErrors.h"

namespace {

// Between two questions whether to stop.
constexpr std::size_t kKernelChunk = std::size_t{8} << 20;
constexpr std::size_t kBufferChunk = std::size_t{256} << 10;

TModuleErrorCode CodeOfCopy(int error) {
  return CodeOfSystemError(error, GFileSystem::kFileNotFound);
}

ssize_t CopyInKernel(int from, int to) {
  return copy_file_range(from, nullptr, to, nullptr, kKernelChunk, 0);
}

ssize_t CopyByBuffer(int from, int to, std::vector<char>& buffer) {
  buffer.resize(kBufferChunk);
  const ssize_t got = read(from, buffer.data(), buffer.size());
  if (got <= 0) return got;
  return WriteAll(to, buffer.data(), static_cast<std::size_t>(got)) ? got : -1;
}

// The kernel's copy refuses some pairs of file systems, and finds nothing in files that have
// contents but no size; what it leaves is copied by hand.
TModuleErrorCode CopyBytes(int from, int to, const CopyOptions& options) {
  std::vector<char> buffer;
  for (bool byKernel = true;;) {
    if (IsStopped(options)) return CoreErrorCodes::kStopped;
    const ssize_t copied = byKernel ? CopyInKernel(from, to) : CopyByBuffer(from, to, buffer);
    if (copied > 0 || (copied < 0 && errno == EINTR)) continue;
    if (!byKernel) {
      G_CHECK_CONDITION(copied < 0, CodeOfCopy(errno));
      return 0;
    }
    G_CHECK_CONDITION(copied < 0 && IsOutOfRoom(errno), GFileSystem::kDiskFull);
    byKernel = false;
  }
}

}  // namespace

bool IsStopped(const CopyOptions& options) {
  return options.stop != nullptr && options.stop->ShouldStop();
}

TModuleErrorCode OpenCopySource(int folder, const std::string& name, int flags,
                                FileDescriptor& outFile) {
  outFile = OpenWithoutWaiting(folder, name.c_str(), O_RDONLY | flags);
  // ENXIO: a socket.
  G_CHECK_CONDITION(!outFile.IsOpen(),
                    errno == ENXIO ? CoreErrorCodes::kNotSupported : CodeOfCopy(errno));
  struct stat status {};
  G_CHECK_CONDITION(fstat(outFile.Get(), &status) != 0, CodeOfCopy(errno));
  G_CHECK_CONDITION(S_ISDIR(status.st_mode), GFileSystem::kFileNotFound);
  G_CHECK_CONDITION(!S_ISREG(status.st_mode), CoreErrorCodes::kNotSupported);
  return 0;
}

TModuleErrorCode CopyOpenFile(int from, int to, const CopyOptions& options) {
  struct stat status {};
  G_CHECK_CONDITION(fstat(from, &status) != 0, CodeOfCopy(errno));
  if (const TModuleErrorCode code = CopyBytes(from, to, options)) return code;
  G_CHECK_CONDITION(!SetPermissions(to, status.st_mode & kCopiedBits), CodeOfCopy(errno));
  G_CHECK_CONDITION(options.waitsForDisk && fsync(to) != 0, CodeOfCopy(errno));
  return 0;
}

bool WriteAll(int to, const char* bytes, std::size_t count) {
  while (count > 0) {
    const ssize_t written = write(to, bytes, count);
    if (written < 0 && errno == EINTR) continue;
    if (written < 0) return false;
    bytes += written;
    count -= static_cast<std::size_t>(written);
  }
  return true;
}

bool SetPermissions(int file, mode_t bits) {
  return fchmod(file, bits) == 0 || errno == EOPNOTSUPP || errno == ENOSYS || errno == EPERM;
}

bool ReadLink(int folder, const std::string& name, std::string& outTarget) {
  std::array<char, PATH_MAX> target;
  const ssize_t length = readlinkat(folder, name.c_str(), target.data(), target.size());
  if (length < 0) return false;
  outTarget.assign(target.data(), static_cast<std::size_t>(length));
  return true;
}

void WaitForDisk(const Place& place) {
  const FileDescriptor folder(openat(place.folder.Get(), ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (folder.IsOpen()) fsync(folder.Get());
}

TModuleErrorCode CopyFileTo(int from, const Place& to, const CopyOptions& options) {
  PendingEntry copy(to);
  FileDescriptor file = copy.MakeFile();
  G_CHECK_CONDITION(!file.IsOpen(), CodeOfCopy(errno));
  if (const TModuleErrorCode code = CopyOpenFile(from, file.Get(), options)) return code;
  // Some file systems tell only now that there was no room.
  G_CHECK_CONDITION(close(file.Release()) != 0, CodeOfCopy(errno));
  G_CHECK_CONDITION(!copy.Publish(), CodeOfCopy(errno));
  if (options.waitsForDisk) WaitForDisk(to);
  return 0;
}

TModuleErrorCode CopyLinkTo(const Place& from, const Place& to, const CopyOptions& options) {
  std::string target;
  G_CHECK_CONDITION(!ReadLink(from.folder.Get(), from.name, target), CodeOfCopy(errno));
  PendingEntry copy(to);
  G_CHECK_CONDITION(!copy.MakeLink(target), CodeOfCopy(errno));
  G_CHECK_CONDITION(!copy.Publish(), CodeOfCopy(errno));
  if (options.waitsForDisk) WaitForDisk(to);
  return 0;
}

TModuleErrorCode GFileSystem::OSCopyFile(const GFileSystemSpec& source,
                                         const GFileSystemSpec& destination, GStopCallback* stop) {
  FileDescriptor from;
  Place to;
  G_CHECK_CALL(OpenCopySource(AT_FDCWD, source.GetPath(), 0, from));
  G_CHECK_CALL(OpenFreePlace(destination, to));
  return CopyFileTo(from.Get(), to, {stop, false});
}
