// Font names between patterns, as a search over the whole of a file in memory would find them, but
// forwards through pages. The tests hold a slow twin of this.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "documents/AdobeByteScan.h"
#include "documents/PagedBytes.h"
#include "documents/PatternSearch.h"

// One way in which applications leave font names: a section from `sectionBegin` to `sectionEnd`
// that holds `nameBegin`; in it names from `nameBegin` to `nameEnd`, without what stands up to the
// first `skip`.
struct FontNamePatterns {
  std::string_view sectionBegin;
  std::string_view nameBegin;
  std::string_view skip;
  std::string_view nameEnd;
  std::string_view sectionEnd;
};

enum FontNameRow : std::size_t {
  kRowFontName,        // .ai, .ait
  kRowFontNameSpaced,  // .ai, .ait
  kRowFontSet,         // .psd, .psb
  kRowCoolTypeFont,    // .aep
  kRowCount
};
extern const std::array<FontNamePatterns, kRowCount> kFontNameRows;

// A scan ends where one of the last two is reached.
struct FontNameLimits {
  std::size_t nameBytes = kMaxScannedNameBytes;
  std::size_t names = kMaxScannedNames;
  std::size_t allNamesBytes = kMaxScannedNamesBytes;
};

// Is told what a scan does. The bases do nothing.
class FontNameListener {
 public:
  virtual ~FontNameListener() = default;
  virtual void NameFound(const std::string&) {}
  virtual void MatchIgnored(std::uint64_t /*offset*/, char /*previous*/) {}
};

class FontNameScanner {
 public:
  // The references are lent. A page holds 1 << pageBits bytes.
  FontNameScanner(ByteSource& source, FontNameListener& listener, const FontNameLimits& limits = {},
                  unsigned pageBits = PagedBytes::kPageBits);

  // The rows in their order. A row that was scanned before is not scanned again: it has nothing to
  // add when it found nothing, which is the only reason to ask again.
  void ScanRows(std::span<const FontNameRow> rows);
  // Every "/FontSet [", also one without names, with the Photoshop decoding.
  void ScanFontSets();

  // After a failed read nothing that was found counts.
  bool Failed() const { return mBytes.Failed(); }
  std::vector<std::string>& Names() { return mNames; }
  std::uint64_t GetPagesRead() const { return mBytes.GetPagesRead(); }

 private:
  enum class Decoding { kBytes, kPhotoshop };
  struct Walk;

  void Scan(const FontNamePatterns& patterns, bool mustHoldName, Decoding decoding,
            FontNameRow row);
  void ScanNames(Walk& walk, std::uint64_t start, std::uint64_t limit);
  // False if the scan is at its end.
  bool AddName(const Walk& walk, std::uint64_t start, std::uint64_t end);
  // Where the row's telling text first stands, escaped or not; nothing if the file does not have
  // it.
  std::optional<std::uint64_t> FirstOccurrence(FontNameRow row);
  void NoteLandmarks(std::uint64_t anchor);

  PagedBytes mBytes;
  FontNameListener& mListener;
  PatternSearch::Ignored mIgnored;
  FontNameLimits mLimits;
  std::vector<std::string> mNames;
  std::size_t mNamesBytes = 0;
  bool mAtEnd = false;
  std::string mBuffer;
  std::array<bool, kRowCount> mScanned{};
  // Landmarks: the text of each row without which it finds nothing, all looked for in one pass.
  std::uint64_t mSurveyed = 0;
  std::array<std::optional<std::uint64_t>, kRowCount> mLandmarks;
};

// `bytes` goes from the first byte of the name to the first byte of its end pattern, included,
// which is no ASCII letter or digit.
std::string DecodeFontName(std::string_view bytes, std::string_view skip);
// `bytes` goes from the byte order mark to the last byte before the end pattern.
std::string DecodePhotoshopFontName(std::string_view bytes);
