#include "documents/FontNameScanner.h"

#include <algorithm>

#include "documents/BytePairSearch.h"

const std::array<FontNamePatterns, kRowCount> kFontNameRows = {{
    {"<<", "/FontName/", "+", "/", ">>"},
    {"<<", "/FontName /", "+", "/", ">>"},
    {"/FontSet [", "/Name (", "\xFE\xFF", ")", "]"},
    {"<< /99 /CoolTypeFont /0", "(", "\xFE\xFF", ") /", ">>"},
}};

namespace {

// The text without which a row finds nothing, and where in it the anchor stands that all of them
// have: what the survey of the file looks for.
constexpr std::string_view kAnchor = "Fo";
struct Landmark {
  std::string_view text;
  std::uint64_t anchor;
};
constexpr std::array<Landmark, kRowCount> kLandmarks = {{
    {"/FontName/", 1},
    {"/FontName /", 1},
    {"/FontSet [", 1},
    {"<< /99 /CoolTypeFont /0", 16},
}};

}  // namespace

struct FontNameScanner::Walk {
  const FontNamePatterns& patterns;
  Decoding decoding;
  PatternSearch sectionBegin;
  PatternSearch sectionEnd;
  PatternSearch nameBegin;
  PatternSearch nameEnd;

  Walk(PagedBytes& bytes, const FontNamePatterns& rowPatterns, Decoding rowDecoding,
       const PatternSearch::Ignored& ignored)
      : patterns(rowPatterns),
        decoding(rowDecoding),
        sectionBegin(bytes, rowPatterns.sectionBegin, &ignored),
        sectionEnd(bytes, rowPatterns.sectionEnd, &ignored),
        nameBegin(bytes, rowPatterns.nameBegin, &ignored),
        nameEnd(bytes, rowPatterns.nameEnd, &ignored) {
    sectionBegin.SetHindmost();
  }
};

FontNameScanner::FontNameScanner(ByteSource& source, FontNameListener& listener,
                                 const FontNameLimits& limits, unsigned pageBits)
    : mBytes(source, pageBits),
      mListener(listener),
      mIgnored([this](std::uint64_t offset, char previous) {
        mListener.MatchIgnored(offset, previous);
      }),
      mLimits(limits) {}

void FontNameScanner::ScanRows(std::span<const FontNameRow> rows) {
  for (const FontNameRow row : rows) {
    if (mScanned[row] || mAtEnd || Failed()) continue;
    mScanned[row] = true;
    if (FirstOccurrence(row)) Scan(kFontNameRows[row], true, Decoding::kBytes, row);
  }
}

void FontNameScanner::ScanFontSets() {
  Scan(kFontNameRows[kRowFontSet], false, Decoding::kPhotoshop, kRowFontSet);
}

void FontNameScanner::Scan(const FontNamePatterns& patterns, bool mustHoldName, Decoding decoding,
                           FontNameRow row) {
  Walk walk(mBytes, patterns, decoding, mIgnored);
  if (const auto landmark = mLandmarks[row]) {
    const bool isName = kLandmarks[row].text == patterns.nameBegin;
    (isName ? walk.nameBegin : walk.sectionBegin).AssumeNoneBefore(*landmark);
  }
  std::uint64_t position = 0;
  while (position < mBytes.Size() && !mAtEnd) {
    const auto begin = walk.sectionBegin.Find(position);
    if (!begin) return;
    const auto end = walk.sectionEnd.Find(*begin + walk.sectionBegin.Length());
    if (!end) return;
    position = *end + walk.sectionEnd.Length();
    const auto start = mustHoldName ? walk.nameBegin.Find(*begin, *end) : begin;
    // The names of a section are looked for at once: they come in the order of the sections, and no
    // list of sections has to be kept.
    if (start) ScanNames(walk, *start, *end);
  }
}

void FontNameScanner::ScanNames(Walk& walk, std::uint64_t start, std::uint64_t limit) {
  const std::uint64_t size = mBytes.Size();
  std::uint64_t position = start;
  while (position < limit) {
    // A name begins in its section but may end behind it. One that ends behind it and is too long
    // is neither added nor followed by another, so nothing is lost by not looking that far.
    const auto begin =
        walk.nameBegin.Find(position, std::min(size, limit + walk.nameBegin.Length() - 1));
    if (!begin) return;
    const std::uint64_t nameStart = *begin + walk.nameBegin.Length();
    const std::uint64_t farthest = std::max(limit, nameStart + mLimits.nameBytes);
    const auto end = walk.nameEnd.Find(nameStart, std::min(size, farthest + walk.nameEnd.Length()));
    if (!end || !AddName(walk, nameStart, *end)) return;
    position = *end + walk.nameEnd.Length();
  }
}

bool FontNameScanner::AddName(const Walk& walk, std::uint64_t start, std::uint64_t end) {
  if (end - start > mLimits.nameBytes) return true;
  const auto length = static_cast<std::size_t>(end - start);
  if (mNames.size() == mLimits.names || length > mLimits.allNamesBytes - mNamesBytes) {
    mAtEnd = true;
    return false;
  }
  const bool isPhotoshop = walk.decoding == Decoding::kPhotoshop;
  if (!mBytes.Copy(start, isPhotoshop ? length : length + 1, mBuffer)) return false;
  mNamesBytes += length;
  mNames.push_back(isPhotoshop ? DecodePhotoshopFontName(mBuffer)
                               : DecodeFontName(mBuffer, walk.patterns.skip));
  mListener.NameFound(mNames.back());
  return true;
}

std::optional<std::uint64_t> FontNameScanner::FirstOccurrence(FontNameRow row) {
  while (!mLandmarks[row] && mSurveyed < mBytes.Size()) {
    const std::string_view page = mBytes.From(mSurveyed);
    if (page.empty()) return std::nullopt;
    std::size_t at = FindBytePair(page, kAnchor[0], kAnchor[1]);
    // A pair may stand across the border of two pages.
    if (at == kNoBytePair && page.back() == kAnchor[0]) at = page.size() - 1;
    if (at == kNoBytePair) {
      mBytes.LetGo(mSurveyed);
      mSurveyed += page.size();
    } else {
      const std::uint64_t anchor = mSurveyed + at;
      NoteLandmarks(anchor);
      mSurveyed = anchor + 1;
    }
  }
  return mLandmarks[row];
}

void FontNameScanner::NoteLandmarks(std::uint64_t anchor) {
  for (std::size_t row = 0; row < kRowCount; ++row) {
    const Landmark& landmark = kLandmarks[row];
    if (mLandmarks[row] || anchor < landmark.anchor) continue;
    if (!mBytes.Matches(anchor, landmark.text.substr(landmark.anchor))) continue;
    if (!mBytes.Matches(anchor - landmark.anchor, landmark.text)) continue;
    mLandmarks[row] = anchor - landmark.anchor;
  }
}
