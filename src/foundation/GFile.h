// A buffered file with codes in place of errno. Every failed library call is recorded. One thread
// at a time.
//
// Only regular files open: a folder, FIFO, socket or device gives kOpenFailed, and opening one
// never waits. A file whose size is told as 0 though it has contents (below /proc) is read whole
// all the same. The programs that this process starts do not inherit the file.
#pragma once

#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

#include "foundation/ErrorCodes.h"
#include "foundation/GFileSystemSpec.h"

class GFile {
 public:
  static constexpr TModuleErrorCode kFileNotOpen = MakeErrorCode(0x001004, 1);
  static constexpr TModuleErrorCode kOpenFailed = MakeErrorCode(0x001004, 2);

  enum EMode : int { eRead = 1, eWrite = 2, eAppend = 4, eTruncate = 8, eBinary = 32 };
  enum EPosition { eFromStart, eFromCurrent, eFromEnd };

  GFile() = default;
  virtual ~GFile();
  GFile(const GFile&) = delete;
  GFile& operator=(const GFile&) = delete;

  // The fopen mode of a set of EMode bits, always binary here: "rb", "wb", "ab", "w+b", "a+b" or
  // "r+b"; empty if it neither reads nor writes. Write without eTruncate appends, and eTruncate
  // wins over eAppend.
  static std::string GetModeString(int mode);

  // Closes what was open before. With eRead, GFileSystem::kFileNotFound if the file, or a folder of
  // its path, is missing; kOpenFailed for any other failure.
  [[nodiscard]] TModuleErrorCode Open(const GFileSystemSpec& spec, int mode);
  // The same for the file's second data stream. This system has none: with eRead
  // GFileSystem::kFileNotFound, else kOpenFailed; the file itself is not touched.
  [[nodiscard]] TModuleErrorCode OpenResourceFork(const GFileSystemSpec& spec, int mode);
  // The file is closed afterwards, whatever the code; GFileSystem::kDiskFull as for Write.
  TModuleErrorCode Close();
  bool IsOpen() const { return mpFile != nullptr; }
  // Of the last Open, also after Close.
  const GFileSystemSpec& GetFileSpec() const { return mSpec; }

  // All positions and sizes are bytes, up to 2^63 - 1; a larger one gives
  // CoreErrorCodes::kInvalidParam.

  [[nodiscard]] TModuleErrorCode GetFileSize(unsigned long long& size);
  // Cuts, or fills with zeros. The position stays.
  [[nodiscard]] TModuleErrorCode SetFileSize(const unsigned long long& size);
  // From the present position and from the end a negative offset, as it converts, counts backwards.
  // CoreErrorCodes::kInvalidParam for an unknown origin and for a place before the start.
  [[nodiscard]] TModuleErrorCode SetFilePosition(EPosition origin, unsigned long long offset);
  [[nodiscard]] TModuleErrorCode GetFilePosition(unsigned long long& position);

  // Reads and writes may follow each other as they like.

  // Reads exactly `count` bytes; fewer are an error, and `out` then holds those.
  [[nodiscard]] TModuleErrorCode Read(std::uint64_t count, std::vector<char>& out);
  // Reads up to `count` bytes into `buffer`; `outCount` is 0 at the end.
  [[nodiscard]] TModuleErrorCode ReadSome(char* buffer, std::size_t count, std::size_t& outCount);
  // The whole rest of the file. CoreErrorCodes::kOutOfMemory if it is too much.
  [[nodiscard]] TModuleErrorCode Read(std::vector<char>& out);
  [[nodiscard]] TModuleErrorCode Read(std::string& out);
  // Native byte order. `out` stays if the file ends before.
  [[nodiscard]] TModuleErrorCode Read(unsigned short& out);
  [[nodiscard]] TModuleErrorCode Read(unsigned int& out);

  // GFileSystem::kDiskFull when there is no room: on the disk, in the user's quota or in a file of
  // the largest size. Since writes are buffered, Flush and Close give it too.
  [[nodiscard]] TModuleErrorCode Write(const char* bytes, unsigned long long count);
  [[nodiscard]] TModuleErrorCode Write(const std::vector<char>& bytes);
  [[nodiscard]] TModuleErrorCode Write(const std::string& bytes);
  // Native byte order.
  [[nodiscard]] TModuleErrorCode Write(unsigned short number);
  [[nodiscard]] TModuleErrorCode Write(unsigned int number);
  [[nodiscard]] TModuleErrorCode Flush();

  // Do the first four bytes equal these? A shorter file: false, no error.
  [[nodiscard]] static TModuleErrorCode FileHasMagicNumber(const GFileSystemSpec& spec,
                                                           unsigned char a, unsigned char b,
                                                           unsigned char c, unsigned char d,
                                                           bool& result);
  [[nodiscard]] static TModuleErrorCode IsZipFile(const GFileSystemSpec& spec, bool& result);
  [[nodiscard]] static TModuleErrorCode IsAppleSingleFile(const GFileSystemSpec& spec,
                                                          bool& result);

 private:
  enum class ELastTransfer { eNone, eRead, eWrite };

  static std::string OSGetModeString(const std::string& modeString);
  // Null with errno set.
  static std::FILE* OSOpen(const std::string& path, const std::string& modeString);
  // Empty if this system has no second data streams.
  static std::string OSGetResourceForkSuffix();
  TModuleErrorCode OSSetFileSize(unsigned long long size);
  // The code of errno after a write.
  static TModuleErrorCode OSGetCodeOfFailedWrite();

  TModuleErrorCode PrepareTransfer(ELastTransfer transfer);
  template <typename Container>
  TModuleErrorCode ReadUpTo(std::uint64_t count, Container& out);
  template <typename Number>
  TModuleErrorCode ReadNumber(Number& out);

  std::FILE* mpFile = nullptr;
  GFileSystemSpec mSpec;
  ELastTransfer mLastTransfer = ELastTransfer::eNone;
};
