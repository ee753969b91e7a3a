// Promise: whatever the bytes, and wherever the borders of pages fall, the scan finds exactly what
// its slow twin finds, and stays in bounds; a file that is cut short while it is read gives a
// failure or ends as if the rest did not matter, and never reads beyond.
#include <cstdint>
#include <cstdlib>
#include <string>
#include <vector>

#include "documents/FontNameScanner.h"
// The twin is compiled in: a target is one source.
#include "tests/documents/MemoryByteSource.h"
#include "tests/documents/NaiveByteScan.cpp"  // NOLINT(bugprone-suspicious-include)

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size < 2) return 0;
  const unsigned pageBits = data[0] % 8;
  const unsigned choice = data[1];
  const std::string bytes(reinterpret_cast<const char*>(data) + 2, size - 2);
  FontNameLimits limits;
  if (choice & 4) limits = {choice >> 3, choice >> 4, choice >> 1};
  static const std::vector<FontNameRow> kTypes[] = {
      {}, {kRowFontName, kRowFontNameSpaced}, {kRowFontSet}, {kRowCoolTypeFont}};
  static constexpr FontNameRow kAllRows[] = {kRowFontName, kRowFontNameSpaced, kRowFontSet,
                                             kRowCoolTypeFont};
  const std::vector<FontNameRow>& type = kTypes[choice % 4];
  FontNameListener quiet;

  MemoryByteSource source(bytes);
  FontNameScanner scanner(source, quiet, limits, pageBits);
  scanner.ScanRows(type);
  if (scanner.Names().empty()) scanner.ScanRows(kAllRows);
  NaiveScan naive(bytes, limits);
  naive.ScanDocument(type);
  if (scanner.Failed() || scanner.Names() != naive.names) std::abort();

  FontNameScanner photoshop(source, quiet, limits, pageBits);
  photoshop.ScanFontSets();
  NaiveScan naivePhotoshop(bytes, limits);
  naivePhotoshop.ScanFontSets();
  if (photoshop.Failed() || photoshop.Names() != naivePhotoshop.names) std::abort();

  MemoryByteSource cut(bytes);
  cut.CutAt(bytes.size() / 2);
  FontNameScanner shrinking(cut, quiet, limits, pageBits);
  shrinking.ScanRows(kAllRows);
  shrinking.ScanFontSets();
  return 0;
}
