#include "documents/PagedBytes.h"

#include <algorithm>
#include <cstring>

PagedBytes::PagedBytes(ByteSource& source, unsigned pageBits)
    : mSource(source), mSize(source.Size()), mPageBits(pageBits) {
  mIndex.fill(kNoPage);
}

bool PagedBytes::MakeRecent(std::uint64_t page) {
  if (mFailed || page > (mSize >> mPageBits) || (page << mPageBits) >= mSize) return false;
  const auto found = std::find(mIndex.begin(), mIndex.end(), page);
  if (found != mIndex.end()) {
    mRecent = static_cast<std::size_t>(found - mIndex.begin());
  } else {
    const auto oldest = std::min_element(mLastUse.begin(), mLastUse.end());
    const auto slot = static_cast<std::size_t>(oldest - mLastUse.begin());
    if (!Load(slot, page)) return false;
    mRecent = slot;
  }
  mLastUse[mRecent] = ++mClock;
  return true;
}

bool PagedBytes::Load(std::size_t slot, std::uint64_t page) {
  const std::size_t pageBytes = std::size_t{1} << mPageBits;
  if (!mData[slot]) {
    const std::uint64_t largest = std::min<std::uint64_t>(pageBytes, mSize);
    mData[slot] = std::make_unique_for_overwrite<char[]>(static_cast<std::size_t>(largest));
  }
  const std::uint64_t offset = page << mPageBits;
  const auto length = static_cast<std::size_t>(std::min<std::uint64_t>(pageBytes, mSize - offset));
  mIndex[slot] = kNoPage;
  if (!mSource.ReadAt(offset, mData[slot].get(), length)) {
    mFailed = true;
    mIndex.fill(kNoPage);
    return false;
  }
  ++mPagesRead;
  mIndex[slot] = page;
  mLength[slot] = length;
  return true;
}

bool PagedBytes::Copy(std::uint64_t offset, std::size_t count, std::string& out) {
  out.clear();
  while (out.size() < count) {
    const std::string_view bytes = From(offset + out.size());
    if (bytes.empty()) return false;
    out.append(bytes.substr(0, count - out.size()));
  }
  return true;
}

bool PagedBytes::Matches(std::uint64_t offset, std::string_view text) {
  while (!text.empty()) {
    const std::string_view bytes = From(offset);
    if (bytes.empty() || bytes.front() != text.front()) return false;
    const std::size_t count = std::min(bytes.size(), text.size());
    if (std::memcmp(bytes.data(), text.data(), count) != 0) return false;
    offset += count;
    text.remove_prefix(count);
  }
  return true;
}
