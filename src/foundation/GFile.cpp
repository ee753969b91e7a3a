#include "foundation/GFile.h"

#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <limits>

#include "foundation/ErrorChecks.h"
#include "foundation/GFileSystem.h"

// Positions pass through fseek and ftell.
static_assert(std::numeric_limits<long>::digits >= 63, "large files need a 64-bit long");

namespace {

constexpr std::uint64_t kWholeRest = std::numeric_limits<std::uint64_t>::max();
constexpr std::size_t kFirstChunk = std::size_t{64} << 10;
constexpr unsigned long long kMagicNumberSize = 4;

TModuleErrorCode CodeOfFailedWrite() {
  return errno == ENOSPC ? GFileSystem::kDiskFull : CoreErrorCodes::kError;
}

bool IsDirectory(std::FILE* file) {
  struct stat status {};
  return fstat(fileno(file), &status) == 0 && S_ISDIR(status.st_mode);
}

// Appends up to `count` bytes. Memory grows with what the file really holds, never with `count`
// alone.
template <typename Container>
void ReadUpTo(std::FILE* file, std::uint64_t count, Container& out) {
  out.clear();
  for (std::size_t chunk = kFirstChunk; out.size() < count; chunk = out.size()) {
    const std::size_t start = out.size();
    const auto wanted = static_cast<std::size_t>(std::min<std::uint64_t>(count - start, chunk));
    out.resize(start + wanted);
    const std::size_t got = std::fread(out.data() + start, 1, wanted, file);
    out.resize(start + got);
    if (got < wanted) return;
  }
}

}  // namespace

#define G_CHECK_OPEN() G_CHECK_CONDITION(!IsOpen(), kFileNotOpen)

GFile::~GFile() {
  if (IsOpen()) Close();
}

std::string GFile::GetModeString(int mode) {
  if ((mode & eRead) == 0) {
    if ((mode & eWrite) == 0) return {};
    return (mode & eTruncate) != 0 ? "w" : "a";
  }
  if ((mode & eWrite) == 0) return "r";
  if ((mode & eTruncate) != 0) return "w+";
  return (mode & eAppend) != 0 ? "a+" : "r+";
}

TModuleErrorCode GFile::Open(const GFileSystemSpec& spec, int mode) {
  if (IsOpen()) G_CHECK_CALL(Close());
  const std::string modeString = GetModeString(mode);
  mSpec = spec;
  errno = 0;
  mpFile = std::fopen(spec.GetPath().c_str(), OSGetModeString(mode).c_str());
  const bool isMissing = mpFile == nullptr && errno == ENOENT && modeString.starts_with('r');
  if (mpFile != nullptr && IsDirectory(mpFile)) {
    std::fclose(mpFile);
    mpFile = nullptr;
  }
  G_CHECK_CONDITION(mpFile == nullptr, isMissing ? GFileSystem::kFileNotFound : kOpenFailed);
  return 0;
}

TModuleErrorCode GFile::Close() {
  G_CHECK_OPEN();
  const int result = std::fclose(mpFile);
  mpFile = nullptr;  // gone, whatever came of it
  if (result != 0) {
    const TModuleErrorCode code = CodeOfFailedWrite();
    WriteErrorRecord(1, __FILE__, __LINE__, "0 != fclose(mpFile)", code);
    return code;
  }
  return 0;
}

TModuleErrorCode GFile::GetFileSize(unsigned long long& size) {
  G_CHECK_OPEN();
  unsigned long long position = 0;
  G_CHECK_CALL(GetFilePosition(position));
  G_CHECK_CONDITION(0 != fseek(mpFile, 0, SEEK_END), CoreErrorCodes::kError);
  G_CHECK_CALL(GetFilePosition(size));
  G_CHECK_CALL(SetFilePosition(eFromStart, position));
  return 0;
}

TModuleErrorCode GFile::SetFileSize(const unsigned long long& size) {
  G_CHECK_OPEN();
  G_CHECK_CALL(Flush());
  G_CHECK_CALL(OSSetFileSize(size));
  return 0;
}

TModuleErrorCode GFile::SetFilePosition(EPosition origin, unsigned long long offset) {
  G_CHECK_OPEN();
  const auto signedOffset = static_cast<long>(offset);
  switch (origin) {
    case eFromStart:
      G_CHECK_CONDITION(0 != fseek(mpFile, signedOffset, SEEK_SET), CoreErrorCodes::kError);
      return 0;
    case eFromCurrent:
      G_CHECK_CONDITION(0 != fseek(mpFile, signedOffset, SEEK_CUR), CoreErrorCodes::kError);
      return 0;
    case eFromEnd:
      G_CHECK_CONDITION(0 != fseek(mpFile, signedOffset, SEEK_END), CoreErrorCodes::kError);
      return 0;
    default:
      return CoreErrorCodes::kInvalidParam;
  }
}

TModuleErrorCode GFile::GetFilePosition(unsigned long long& position) {
  G_CHECK_OPEN();
  const long told = std::ftell(mpFile);
  G_CHECK_CONDITION(told < 0, CoreErrorCodes::kError);
  position = static_cast<unsigned long long>(told);
  return 0;
}

TModuleErrorCode GFile::Read(std::uint64_t count, std::vector<char>& out) {
  G_CHECK_OPEN();
  ReadUpTo(mpFile, count, out);
  G_CHECK_CONDITION(0 != ferror(mpFile), CoreErrorCodes::kError);
  G_CHECK_CONDITION(out.size() != count, CoreErrorCodes::kError);
  return 0;
}

TModuleErrorCode GFile::ReadSome(char* buffer, std::size_t count, std::size_t& outCount) {
  outCount = 0;
  G_CHECK_OPEN();
  outCount = std::fread(buffer, 1, count, mpFile);
  G_CHECK_CONDITION(0 != ferror(mpFile), CoreErrorCodes::kError);
  return 0;
}

TModuleErrorCode GFile::Read(std::vector<char>& out) {
  G_CHECK_OPEN();
  ReadUpTo(mpFile, kWholeRest, out);
  G_CHECK_CONDITION(0 != ferror(mpFile), CoreErrorCodes::kError);
  return 0;
}

TModuleErrorCode GFile::Read(std::string& out) {
  G_CHECK_OPEN();
  ReadUpTo(mpFile, kWholeRest, out);
  G_CHECK_CONDITION(0 != ferror(mpFile), CoreErrorCodes::kError);
  return 0;
}

TModuleErrorCode GFile::Read(unsigned short& out) {
  G_CHECK_OPEN();
  G_CHECK_CONDITION(1 != fread(&out, sizeof(out), 1, mpFile), CoreErrorCodes::kError);
  return 0;
}

TModuleErrorCode GFile::Read(unsigned int& out) {
  G_CHECK_OPEN();
  G_CHECK_CONDITION(1 != fread(&out, sizeof(out), 1, mpFile), CoreErrorCodes::kError);
  return 0;
}

TModuleErrorCode GFile::Write(const char* bytes, unsigned long long count) {
  G_CHECK_OPEN();
  if (count == 0) return 0;
  G_CHECK_CONDITION(count != fwrite(bytes, 1, count, mpFile), CodeOfFailedWrite());
  return 0;
}

TModuleErrorCode GFile::Write(const std::vector<char>& bytes) {
  return Write(bytes.data(), bytes.size());
}

TModuleErrorCode GFile::Flush() {
  G_CHECK_OPEN();
  G_CHECK_CONDITION(fflush(mpFile) != 0, CodeOfFailedWrite());
  return 0;
}

// Records a failed step of a look into a file.
#define G_CHECK_FILE_STEP(call)                                                   \
  do {                                                                            \
    const TModuleErrorCode gCheckedCode = (call);                                 \
    if (gCheckedCode != 0) {                                                      \
      WriteErrorRecord(1, __FILE__, __LINE__, #call, gCheckedCode, "FileSystem"); \
      return gCheckedCode;                                                        \
    }                                                                             \
  } while (false)

TModuleErrorCode GFile::FileHasMagicNumber(const GFileSystemSpec& fileSpec, unsigned char a,
                                           unsigned char b, unsigned char c, unsigned char d,
                                           bool& result) {
  result = false;
  GFile file;
  G_CHECK_FILE_STEP(file.Open(fileSpec, eRead | eBinary));
  unsigned long long fileSize = 0;
  G_CHECK_FILE_STEP(file.GetFileSize(fileSize));
  bool isMagic = false;
  if (fileSize >= kMagicNumberSize) {
    std::vector<char> header;
    G_CHECK_FILE_STEP(file.Read(4, header));
    const unsigned char magic[] = {a, b, c, d};
    isMagic =
        std::equal(header.begin(), header.end(), std::begin(magic), std::end(magic),
                   [](char x, unsigned char y) { return static_cast<unsigned char>(x) == y; });
  }
  G_CHECK_FILE_STEP(file.Close());
  result = isMagic;
  return 0;
}
