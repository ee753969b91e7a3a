// A buffered file with codes in place of errno. Failed library calls are recorded.
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

  // The fopen mode of a set of EMode bits; empty if it neither reads nor writes. Write without
  // eTruncate appends.
  static std::string GetModeString(int mode);

  // GFileSystem::kFileNotFound if a file to read is missing, kOpenFailed for any other failure. A
  // folder does not open.
  [[nodiscard]] TModuleErrorCode Open(const GFileSystemSpec& spec, int mode);
  TModuleErrorCode Close();
  bool IsOpen() const { return mpFile != nullptr; }
  const GFileSystemSpec& GetFileSpec() const { return mSpec; }

  [[nodiscard]] TModuleErrorCode GetFileSize(unsigned long long& size);
  [[nodiscard]] TModuleErrorCode SetFileSize(const unsigned long long& size);
  [[nodiscard]] TModuleErrorCode SetFilePosition(EPosition origin, unsigned long long offset);
  [[nodiscard]] TModuleErrorCode GetFilePosition(unsigned long long& position);

  // Reads exactly `count` bytes; fewer are an error.
  [[nodiscard]] TModuleErrorCode Read(std::uint64_t count, std::vector<char>& out);
  // Reads up to `count` bytes into `buffer`; `outCount` is 0 at the end.
  [[nodiscard]] TModuleErrorCode ReadSome(char* buffer, std::size_t count, std::size_t& outCount);
  // The whole rest of the file.
  [[nodiscard]] TModuleErrorCode Read(std::vector<char>& out);
  [[nodiscard]] TModuleErrorCode Read(std::string& out);
  // Native byte order.
  [[nodiscard]] TModuleErrorCode Read(unsigned short& out);
  [[nodiscard]] TModuleErrorCode Read(unsigned int& out);

  // GFileSystem::kDiskFull when there is no room.
  [[nodiscard]] TModuleErrorCode Write(const char* bytes, unsigned long long count);
  [[nodiscard]] TModuleErrorCode Write(const std::vector<char>& bytes);
  [[nodiscard]] TModuleErrorCode Flush();

  // Do the first four bytes equal these? A shorter file: false, no error.
  [[nodiscard]] static TModuleErrorCode FileHasMagicNumber(const GFileSystemSpec& spec,
                                                           unsigned char a, unsigned char b,
                                                           unsigned char c, unsigned char d,
                                                           bool& result);

 private:
  static std::string OSGetModeString(int mode);
  TModuleErrorCode OSSetFileSize(unsigned long long size);

  std::FILE* mpFile = nullptr;
  GFileSystemSpec mSpec;
};
