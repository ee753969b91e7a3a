// A font file as FreeType reads it: with pread, since a mapped file that its owner cuts short would
// end this process, and with a budget, since a hostile file can ask for the same bytes forever.
//
// Threads: one stream belongs to one thread.
#pragma once

#include <ft2build.h>
#include FT_FREETYPE_H

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace Nodrix {

class FontStream {
 public:
  // Null with a reason; also for what is no regular file and for files over 256 MB.
  static std::unique_ptr<FontStream> Open(const std::string& path, std::string& error);
  ~FontStream();
  FontStream(const FontStream&) = delete;
  FontStream& operator=(const FontStream&) = delete;

  // For FT_Open_Face; valid while this object lives.
  FT_Stream Stream() { return &mStream; }
  std::uint64_t Size() const { return mSize; }
  // The first bytes, as many as there are up to `count`.
  std::vector<std::uint8_t> Head(std::size_t count);
  bool IsBudgetSpent() const { return mBudget == 0; }

 private:
  FontStream(int file, std::uint64_t size);
  static unsigned long Read(FT_Stream stream, unsigned long offset, unsigned char* buffer,
                            unsigned long count);
  // Bytes read, through a window of one buffer.
  std::size_t ReadAt(std::uint64_t offset, unsigned char* buffer, std::size_t count);

  int mFile;
  std::uint64_t mSize;
  std::uint64_t mBudget;
  FT_StreamRec mStream{};
  std::vector<unsigned char> mWindow;
  std::uint64_t mWindowStart = 0;
  std::size_t mWindowSize = 0;
};

}  // namespace Nodrix
