// A source seen through a few cached pages, so that several readers can go forwards at places of
// their own in bounded memory. After a failed read there are no bytes any more.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "documents/ByteSource.h"

class PagedBytes {
 public:
  // Reads of 1 MiB are the fastest, and the page is searched out of the processor's cache. Four
  // searches and the copying of a name stand at five places at most, and one may look over a
  // border.
  static constexpr unsigned kPageBits = 20;
  static constexpr std::size_t kPageCount = 6;

  // `source` is lent. A page holds 1 << pageBits bytes.
  explicit PagedBytes(ByteSource& source, unsigned pageBits = kPageBits);

  std::uint64_t Size() const { return mSize; }
  bool Failed() const { return mFailed; }
  // For tests of how much is read.
  std::uint64_t GetPagesRead() const { return mPagesRead; }

  // The bytes from `offset` to the end of its page; empty behind the end and after a failure. Lent
  // until the next call.
  std::string_view From(std::uint64_t offset) {
    const std::uint64_t page = offset >> mPageBits;
    if (mIndex[mRecent] != page && !MakeRecent(page)) return {};
    const std::string_view bytes(mData[mRecent].get(), mLength[mRecent]);
    const auto inPage = static_cast<std::size_t>(offset & ((std::uint64_t{1} << mPageBits) - 1));
    return inPage < bytes.size() ? bytes.substr(inPage) : std::string_view{};
  }
  // Nobody is expected to ask again for the page that `offset` stands in: the next page read takes
  // its place, in memory that is still in the processor's cache.
  void LetGo(std::uint64_t offset) {
    if (mIndex[mRecent] == offset >> mPageBits) mLastUse[mRecent] = 0;
  }
  // False if not all of them can be had.
  bool Copy(std::uint64_t offset, std::size_t count, std::string& out);
  // Does `text` stand at `offset`?
  bool Matches(std::uint64_t offset, std::string_view text);

 private:
  static constexpr std::uint64_t kNoPage = ~std::uint64_t{0};

  // Makes a page the recent one, reading it if it is not there.
  bool MakeRecent(std::uint64_t page);
  bool Load(std::size_t slot, std::uint64_t page);

  ByteSource& mSource;
  std::uint64_t mSize;
  unsigned mPageBits;
  bool mFailed = false;
  std::uint64_t mPagesRead = 0;
  std::uint64_t mClock = 0;
  std::size_t mRecent = 0;
  std::array<std::uint64_t, kPageCount> mIndex;
  std::array<std::uint64_t, kPageCount> mLastUse{};
  std::array<std::size_t, kPageCount> mLength{};
  std::array<std::unique_ptr<char[]>, kPageCount> mData;
};
