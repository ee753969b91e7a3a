#include "documents/PatternSearch.h"

#include <cstring>

#include "documents/BytePairSearch.h"

std::optional<std::uint64_t> PatternSearch::Find(std::uint64_t origin, std::uint64_t limit) {
  for (std::uint64_t at = origin; at < origin + 2; ++at) {
    if (at + Length() > limit) return std::nullopt;
    if (mBytes.Matches(at, mPattern)) return at;
  }
  return NextUnescaped(origin + 2, limit, origin);
}

void PatternSearch::AssumeNoneBefore(std::uint64_t offset) {
  mFrom = 0;
  mTo = offset;
  mFound = false;
}

std::optional<std::uint64_t> PatternSearch::NextUnescaped(std::uint64_t from, std::uint64_t limit,
                                                          std::uint64_t origin) {
  if (from < mFrom || from > mTo) {
    mFrom = mTo = from;
    mFound = false;
  }
  while (!mFound) {
    if (mTo + Length() > limit || mBytes.Failed()) return std::nullopt;
    if (!MoveToCandidate()) continue;
    if (!mBytes.Matches(mTo, mPattern) || IsEscaped(mTo, origin)) {
      ++mTo;
    } else {
      mFound = true;
    }
  }
  if (mTo + Length() > limit) return std::nullopt;
  return mTo;
}

bool PatternSearch::MoveToCandidate() {
  const std::string_view page = mBytes.From(mTo);
  if (page.empty()) return false;  // a failed read ends the search
  if (mPattern.size() == 1) {
    const void* found = std::memchr(page.data(), mPattern.front(), page.size());
    const auto skipped = found ? static_cast<const char*>(found) - page.data() : std::ssize(page);
    mTo += static_cast<std::uint64_t>(skipped);
    return found != nullptr;
  }
  const std::size_t pair = FindBytePair(page, mPattern[0], mPattern[1]);
  if (pair != kNoBytePair) {
    mTo += pair;
    return true;
  }
  // The last byte of a page may begin a pair whose other half stands on the next one.
  const bool beginsHere = page.back() == mPattern.front();
  if (mIsHindmost && !beginsHere) mBytes.LetGo(mTo);
  mTo += page.size() - (beginsHere ? 1 : 0);
  return beginsHere;
}

bool PatternSearch::IsEscaped(std::uint64_t offset, std::uint64_t origin) {
  const std::string_view before = mBytes.From(offset - 1);
  if (before.empty() || before.front() != '\\') return false;
  if (mIgnored != nullptr && *mIgnored) (*mIgnored)(offset - origin, before.front());
  return true;
}
