#include "propertylist/ReplaceFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>

#include "foundation/ErrorChecks.h"
#include "foundation/GFileSystem.h"

namespace {

TModuleErrorCode CodeOfFailure() {
  return errno == ENOSPC || errno == EDQUOT ? GFileSystem::kDiskFull : CoreErrorCodes::kError;
}

// Removed again unless it takes the place of another file.
class TemporaryFile {
 public:
  explicit TemporaryFile(const std::string& folder)
      : mPath(folder + "/.new-XXXXXX"), mNumber(mkostemp(mPath.data(), O_CLOEXEC)) {}
  ~TemporaryFile() {
    if (mNumber < 0) return;
    close(mNumber);
    if (!mIsPlaced) unlink(mPath.c_str());
  }
  TemporaryFile(const TemporaryFile&) = delete;
  TemporaryFile& operator=(const TemporaryFile&) = delete;

  bool IsOpen() const { return mNumber >= 0; }
  bool SetMode(mode_t mode) const { return fchmod(mNumber, mode) == 0; }

  bool Write(std::span<const unsigned char> bytes) const {
    while (!bytes.empty()) {
      const ssize_t count = write(mNumber, bytes.data(), bytes.size());
      if (count < 0 && errno != EINTR) return false;
      if (count > 0) bytes = bytes.subspan(static_cast<std::size_t>(count));
    }
    return fsync(mNumber) == 0;
  }

  bool Place(const std::string& path) {
    mIsPlaced = std::rename(mPath.c_str(), path.c_str()) == 0;
    return mIsPlaced;
  }

 private:
  std::string mPath;
  int mNumber;
  bool mIsPlaced = false;
};

}  // namespace

TModuleErrorCode OSReplaceFile(const GFileSystemSpec& spec, std::span<const unsigned char> bytes) {
  const std::unique_ptr<char, decltype(&std::free)> real(realpath(spec.GetPath().c_str(), nullptr),
                                                         &std::free);
  const std::string path = real ? real.get() : spec.GetPath();
  struct stat status {};
  const bool exists = stat(path.c_str(), &status) == 0;
  G_CHECK_CONDITION(path.empty() || (exists && !S_ISREG(status.st_mode)),
                    GFileSystem::kInvalidPath);
  TemporaryFile file(path.substr(0, path.rfind('/')));
  G_CHECK_CONDITION(!file.IsOpen(), CodeOfFailure());
  G_CHECK_CONDITION(exists && !file.SetMode(status.st_mode & 07777), CodeOfFailure());
  G_CHECK_CONDITION(!file.Write(bytes), CodeOfFailure());
  G_CHECK_CONDITION(!file.Place(path), CodeOfFailure());
  return 0;
}
