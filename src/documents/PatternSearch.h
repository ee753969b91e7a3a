// Searches one pattern, going forwards. An occurrence directly behind a backslash does not count,
// except at the origin of a search and one byte behind it, where the byte before is not looked at.
//
// What was searched once is not searched again: whether an occurrence farther than one byte from
// the origin counts does not depend on the origin, so the next one is kept. Searches whose origins
// do not go back cost time linear in the file, however many they are.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string_view>

#include "documents/PagedBytes.h"

class PatternSearch {
 public:
  // Told of an occurrence that does not count: its offset from the origin of the search, and the
  // byte before it.
  using Ignored = std::function<void(std::uint64_t offset, char previous)>;

  // `bytes`, the text of `pattern` (not empty) and `ignored` (may be null) are lent.
  PatternSearch(PagedBytes& bytes, std::string_view pattern, const Ignored* ignored)
      : mBytes(bytes), mPattern(pattern), mIgnored(ignored) {}

  // The first occurrence that counts, begins at or behind `origin` and ends at or before `limit`.
  std::optional<std::uint64_t> Find(std::uint64_t origin, std::uint64_t limit);
  std::optional<std::uint64_t> Find(std::uint64_t origin) { return Find(origin, mBytes.Size()); }
  // The caller knows that the pattern nowhere begins before `offset`.
  void AssumeNoneBefore(std::uint64_t offset);
  // Of several searches this one is the hindmost: a page that it has passed is read no more.
  void SetHindmost() { mIsHindmost = true; }
  std::uint64_t Length() const { return mPattern.size(); }

 private:
  std::optional<std::uint64_t> NextUnescaped(std::uint64_t from, std::uint64_t limit,
                                             std::uint64_t origin);
  // Moves mTo to the next place in its page where the pattern may begin, or to the page's end.
  // False if there is none in the page.
  bool MoveToCandidate();
  bool IsEscaped(std::uint64_t offset, std::uint64_t origin);

  PagedBytes& mBytes;
  std::string_view mPattern;
  const Ignored* mIgnored;
  // No unescaped occurrence begins in [mFrom, mTo); if mFound, one begins at mTo.
  std::uint64_t mFrom = 0;
  std::uint64_t mTo = 0;
  bool mFound = false;
  bool mIsHindmost = false;
};
