#include "foundation/GFile.h"

#include <algorithm>
#include <cerrno>
#include <limits>
#include <new>
#include <stdexcept>

#include "foundation/ErrorChecks.h"
#include "foundation/GFileSystem.h"

// Positions pass through fseek and ftell.
static_assert(std::numeric_limits<long>::digits >= 63, "large files need a 64-bit long");

namespace {

constexpr std::uint64_t kWholeRest = std::numeric_limits<std::uint64_t>::max();
constexpr unsigned long long kLargestPosition = std::numeric_limits<long>::max();
constexpr std::size_t kFirstChunk = std::size_t{64} << 10;
constexpr unsigned long long kMagicNumberSize = 4;
constexpr int kUnknownOrigin = -1;

// Appends up to `count` bytes. Memory grows with what the file really holds, never with `count`
// alone.
template <typename Container>
void AppendFrom(std::FILE* file, std::uint64_t count, Container& out) {
  for (std::size_t chunk = kFirstChunk; out.size() < count; chunk = out.size()) {
    const std::size_t start = out.size();
    const auto wanted = static_cast<std::size_t>(std::min<std::uint64_t>(count - start, chunk));
    out.resize(start + wanted);
    const std::size_t got = std::fread(out.data() + start, 1, wanted, file);
    out.resize(start + got);
    if (got < wanted) return;
  }
}

int OriginForSeek(GFile::EPosition origin) {
  switch (origin) {
    case GFile::eFromStart:
      return SEEK_SET;
    case GFile::eFromCurrent:
      return SEEK_CUR;
    case GFile::eFromEnd:
      return SEEK_END;
  }
  return kUnknownOrigin;
}

std::string PlainModeString(int mode) {
  if ((mode & GFile::eRead) == 0) {
    if ((mode & GFile::eWrite) == 0) return {};
    return (mode & GFile::eTruncate) != 0 ? "w" : "a";
  }
  if ((mode & GFile::eWrite) == 0) return "r";
  if ((mode & GFile::eTruncate) != 0) return "w+";
  return (mode & GFile::eAppend) != 0 ? "a+" : "r+";
}

}  // namespace

#define G_CHECK_OPEN() G_CHECK_CONDITION(!IsOpen(), kFileNotOpen)

GFile::~GFile() {
  if (IsOpen()) Close();
}

std::string GFile::GetModeString(int mode) { return OSGetModeString(PlainModeString(mode)); }

TModuleErrorCode GFile::Open(const GFileSystemSpec& spec, int mode) {
  if (IsOpen()) G_CHECK_CALL(Close());
  mSpec = spec;
  mLastTransfer = ELastTransfer::eNone;
  mpFile = OSOpen(spec.GetPath(), GetModeString(mode));
  G_CHECK_CONDITION(mpFile == nullptr, errno == ENOENT && (mode & eRead) != 0
                                           ? GFileSystem::kFileNotFound
                                           : kOpenFailed);
  return 0;
}

TModuleErrorCode GFile::OpenResourceFork(const GFileSystemSpec& spec, int mode) {
  const std::string suffix = OSGetResourceForkSuffix();
  if (IsOpen()) G_CHECK_CALL(Close());
  mSpec = spec;
  G_CHECK_CONDITION(suffix.empty(), (mode & eRead) != 0 ? GFileSystem::kFileNotFound : kOpenFailed);
  return Open(spec.GetPath() + suffix, mode);
}

TModuleErrorCode GFile::Close() {
  G_CHECK_OPEN();
  const int result = std::fclose(mpFile);
  mpFile = nullptr;  // gone, whatever came of it
  if (result != 0) {
    const TModuleErrorCode code = OSGetCodeOfFailedWrite();
    WriteErrorRecord(1, __FILE__, __LINE__, "0 != fclose(mpFile)", code);
    return code;
  }
  return 0;
}

TModuleErrorCode GFile::GetFileSize(unsigned long long& size) {
  G_CHECK_OPEN();
  unsigned long long position = 0;
  G_CHECK_CALL(GetFilePosition(position));
  G_CHECK_CONDITION(0 != fseek(mpFile, 0, SEEK_END), OSGetCodeOfFailedWrite());
  G_CHECK_CALL(GetFilePosition(size));
  G_CHECK_CALL(SetFilePosition(eFromStart, position));
  return 0;
}

TModuleErrorCode GFile::SetFileSize(const unsigned long long& size) {
  G_CHECK_OPEN();
  G_CHECK_CONDITION(size > kLargestPosition, CoreErrorCodes::kInvalidParam);
  G_CHECK_CALL(Flush());
  G_CHECK_CALL(OSSetFileSize(size));
  return 0;
}

TModuleErrorCode GFile::SetFilePosition(EPosition origin, unsigned long long offset) {
  G_CHECK_OPEN();
  const int whence = OriginForSeek(origin);
  G_CHECK_CONDITION(whence == kUnknownOrigin, CoreErrorCodes::kInvalidParam);
  G_CHECK_CONDITION(origin == eFromStart && offset > kLargestPosition,
                    CoreErrorCodes::kInvalidParam);
  // Seeking writes what is still in the buffer.
  G_CHECK_CONDITION(0 != fseek(mpFile, static_cast<long>(offset), whence),
                    errno == EINVAL || errno == EOVERFLOW ? CoreErrorCodes::kInvalidParam
                                                          : OSGetCodeOfFailedWrite());
  mLastTransfer = ELastTransfer::eNone;
  return 0;
}

TModuleErrorCode GFile::GetFilePosition(unsigned long long& position) {
  G_CHECK_OPEN();
  long told = 0;
  G_CHECK_CONDITION((told = ftell(mpFile)) < 0, CoreErrorCodes::kError);
  position = static_cast<unsigned long long>(told);
  return 0;
}

// C wants a flush or a seek between the two directions of one stream.
TModuleErrorCode GFile::PrepareTransfer(ELastTransfer transfer) {
  if (mLastTransfer != transfer && mLastTransfer != ELastTransfer::eNone) {
    G_CHECK_CONDITION(0 != fseek(mpFile, 0, SEEK_CUR), OSGetCodeOfFailedWrite());
  }
  mLastTransfer = transfer;
  clearerr(mpFile);  // an earlier failure was told, and the file may have grown since its end
  return 0;
}

template <typename Container>
TModuleErrorCode GFile::ReadUpTo(std::uint64_t count, Container& out) {
  out.clear();
  G_CHECK_OPEN();
  G_CHECK_CALL(PrepareTransfer(ELastTransfer::eRead));
  bool isTooMuch = false;
  try {
    AppendFrom(mpFile, count, out);
  } catch (const std::bad_alloc&) {
    isTooMuch = true;
  } catch (const std::length_error&) {
    isTooMuch = true;
  }
  G_CHECK_CONDITION(isTooMuch, CoreErrorCodes::kOutOfMemory);
  G_CHECK_CONDITION(0 != ferror(mpFile), CoreErrorCodes::kError);
  return 0;
}

template <typename Number>
TModuleErrorCode GFile::ReadNumber(Number& out) {
  G_CHECK_OPEN();
  G_CHECK_CALL(PrepareTransfer(ELastTransfer::eRead));
  Number number = 0;
  G_CHECK_CONDITION(1 != fread(&number, sizeof(number), 1, mpFile), CoreErrorCodes::kError);
  out = number;
  return 0;
}

TModuleErrorCode GFile::Read(std::uint64_t count, std::vector<char>& out) {
  if (const TModuleErrorCode code = ReadUpTo(count, out)) return code;
  G_CHECK_CONDITION(out.size() != count, CoreErrorCodes::kError);
  return 0;
}

TModuleErrorCode GFile::ReadSome(char* buffer, std::size_t count, std::size_t& outCount) {
  outCount = 0;
  G_CHECK_OPEN();
  G_CHECK_CALL(PrepareTransfer(ELastTransfer::eRead));
  outCount = std::fread(buffer, 1, count, mpFile);
  G_CHECK_CONDITION(0 != ferror(mpFile), CoreErrorCodes::kError);
  return 0;
}

TModuleErrorCode GFile::Read(std::vector<char>& out) { return ReadUpTo(kWholeRest, out); }

TModuleErrorCode GFile::Read(std::string& out) { return ReadUpTo(kWholeRest, out); }

TModuleErrorCode GFile::Read(unsigned short& out) { return ReadNumber(out); }

TModuleErrorCode GFile::Read(unsigned int& out) { return ReadNumber(out); }

TModuleErrorCode GFile::Write(const char* bytes, unsigned long long count) {
  G_CHECK_OPEN();
  if (count == 0) return 0;
  G_CHECK_NULL(bytes);
  G_CHECK_CALL(PrepareTransfer(ELastTransfer::eWrite));
  G_CHECK_CONDITION(count != fwrite(bytes, 1, count, mpFile), OSGetCodeOfFailedWrite());
  return 0;
}

TModuleErrorCode GFile::Write(const std::vector<char>& bytes) {
  return Write(bytes.data(), bytes.size());
}

TModuleErrorCode GFile::Write(const std::string& bytes) {
  return Write(bytes.data(), bytes.size());
}

TModuleErrorCode GFile::Write(unsigned short number) {
  return Write(reinterpret_cast<const char*>(&number), sizeof(number));
}

TModuleErrorCode GFile::Write(unsigned int number) {
  return Write(reinterpret_cast<const char*>(&number), sizeof(number));
}

TModuleErrorCode GFile::Flush() {
  G_CHECK_OPEN();
  G_CHECK_CONDITION(fflush(mpFile) != 0, OSGetCodeOfFailedWrite());
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

TModuleErrorCode GFile::IsZipFile(const GFileSystemSpec& spec, bool& result) {
  return FileHasMagicNumber(spec, 0x50, 0x4B, 0x03, 0x04, result);
}

TModuleErrorCode GFile::IsAppleSingleFile(const GFileSystemSpec& spec, bool& result) {
  return FileHasMagicNumber(spec, 0x00, 0x05, 0x16, 0x00, result);
}
