#include "tests/documents/NaiveByteScan.h"

#include <cstring>

#include "foundation/GString.h"

namespace {

using Bytes = std::vector<char>;
using Spans = std::vector<unsigned long>;

const char* Memmem(const char* haystack, unsigned long haystackLength, const std::string& needle,
                   char previousCharToIgnore) {
  if (needle.empty() || haystackLength < needle.size()) return nullptr;
  for (unsigned long i = 0; i + needle.size() <= haystackLength; ++i) {
    if (std::memcmp(haystack + i, needle.data(), needle.size()) != 0) continue;
    if (previousCharToIgnore == 0 || i < 2 || haystack[i - 1] != previousCharToIgnore) {
      return haystack + i;
    }
  }
  return nullptr;
}

bool FindPatternInRange(const Bytes& bytes, unsigned long& ioOffset, unsigned long length,
                        const std::string& pattern) {
  if (ioOffset >= bytes.size()) return false;
  const char* found = Memmem(bytes.data() + ioOffset, length, pattern, '\\');
  if (found == nullptr) return false;
  ioOffset = static_cast<unsigned long>(found - bytes.data());
  return true;
}

bool FindPattern(const Bytes& bytes, unsigned long& ioOffset, const std::string& pattern) {
  if (ioOffset >= bytes.size()) return false;
  return FindPatternInRange(bytes, ioOffset, bytes.size() - ioOffset, pattern);
}

bool FindBeginAndEnd(const Bytes& bytes, unsigned long start, const std::string& begin,
                     const std::string& end, unsigned long& outBegin, unsigned long& outEnd) {
  unsigned long offset = start;
  if (!FindPattern(bytes, offset, begin)) return false;
  outBegin = offset;
  offset += begin.size();
  if (!FindPattern(bytes, offset, end)) return false;
  outEnd = offset;
  return true;
}

// `inner` may be empty: then every span counts.
void FindBetween(const Bytes& bytes, unsigned long start, unsigned long limit,
                 const std::string& begin, const std::string& inner, const std::string& end,
                 Spans& spans) {
  unsigned long position = start;
  while (position < limit) {
    unsigned long from = 0;
    unsigned long to = 0;
    if (!FindBeginAndEnd(bytes, position, begin, end, from, to)) return;
    position = to + end.size();
    if (from >= limit) continue;
    if (!inner.empty() && !FindPatternInRange(bytes, from, to - from, inner)) continue;
    spans.push_back(from);
    spans.push_back(to);
  }
}

bool IsLetterOrDigit(char c) {
  return std::strchr("abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789", c) !=
             nullptr &&
         c != 0;
}

std::string DecodeSpan(const Bytes& bytes, unsigned long begin, unsigned long end,
                       const FontNamePatterns& row) {
  unsigned long start = begin + row.nameBegin.size();
  const std::string skip(row.skip);
  if (end != 0 && start < end - 1) {
    for (unsigned long i = start; i <= end - 2; ++i) {
      // A zero byte in the file would end this comparison, as unequal: no skip text has one.
      if (std::strncmp(bytes.data() + i, skip.c_str(), skip.size()) == 0) {
        start = i + skip.size();
        break;
      }
    }
  }
  for (unsigned long i = end; i >= start + 1; --i) {
    if (IsLetterOrDigit(bytes[i])) {
      end = i + 1;
      break;
    }
  }
  std::u32string wide;
  for (unsigned long i = start; i < end; ++i) {
    char c = bytes[i];
    if (c == 0) c = bytes[++i];
    wide.push_back(static_cast<char32_t>(static_cast<int>(static_cast<signed char>(c))));
  }
  return GString::OSUnicodeToUtf8(wide);
}

std::string DecodePhotoshopSpan(const Bytes& bytes, unsigned long begin, unsigned long end) {
  std::string collected;
  unsigned long position = begin + 9;
  while (position < end - 1) {
    const char c1 = bytes[position];
    const char c2 = bytes[position + 1];
    position += 2;
    if (c2 == '\\') {
      collected += '\0';
    } else if (c1 == '\\') {
      collected += c2;
    } else {
      collected += c1;
      collected += c2;
    }
  }
  return GString::OSUtf16BigEndianToUtf8(collected);
}

// True if the name is to be taken in.
bool IsWithinLimits(NaiveScan& scan, unsigned long length) {
  if (scan.ended || length > scan.limits.nameBytes) return false;
  if (scan.names.size() == scan.limits.names ||
      scan.namesBytes + length > scan.limits.allNamesBytes) {
    scan.ended = true;
    return false;
  }
  scan.namesBytes += length;
  return true;
}

}  // namespace

void NaiveScan::ScanRow(const FontNamePatterns& row) {
  const std::string nameBegin(row.nameBegin);
  Spans sections;
  FindBetween(bytes, 0, bytes.size(), std::string(row.sectionBegin), nameBegin,
              std::string(row.sectionEnd), sections);
  Spans spans;
  for (std::size_t i = 0; i < sections.size(); i += 2) {
    FindBetween(bytes, sections[i], sections[i + 1], nameBegin, "", std::string(row.nameEnd),
                spans);
  }
  for (std::size_t i = 0; i < spans.size(); i += 2) {
    if (!IsWithinLimits(*this, spans[i + 1] - spans[i] - nameBegin.size())) continue;
    names.push_back(DecodeSpan(bytes, spans[i], spans[i + 1], row));
  }
}

void NaiveScan::ScanDocument(const std::vector<FontNameRow>& rowsOfType) {
  for (const FontNameRow row : rowsOfType) ScanRow(kFontNameRows[row]);
  if (!names.empty()) return;
  for (const FontNamePatterns& row : kFontNameRows) ScanRow(row);
}

void NaiveScan::ScanFontSets() {
  Spans sections;
  FindBetween(bytes, 0, bytes.size(), "/FontSet [", "", "]", sections);
  Spans spans;
  for (std::size_t i = 0; i < sections.size(); i += 2) {
    FindBetween(bytes, sections[i], sections[i + 1], "/Name (", "", ")", spans);
  }
  for (std::size_t i = 0; i < spans.size(); i += 2) {
    if (!IsWithinLimits(*this, spans[i + 1] - spans[i] - 7)) continue;
    names.push_back(DecodePhotoshopSpan(bytes, spans[i], spans[i + 1]));
  }
}
