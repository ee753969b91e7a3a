#include <unicase.h>
#include <unistr.h>

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <new>
#include <stdexcept>

#include "foundation/GString.h"
#include "foundation/GStringUtils.h"
#include "foundation/iconv_string.h"

namespace {

using GStringUtils::npos;

bool IsAscii(char byte) { return static_cast<unsigned char>(byte) < 0x80; }

char AsciiToLower(char byte) {
  return byte >= 'A' && byte <= 'Z' ? static_cast<char>(byte - 'A' + 'a') : byte;
}

char AsciiToUpper(char byte) {
  return byte >= 'a' && byte <= 'z' ? static_cast<char>(byte - 'a' + 'A') : byte;
}

int SignOf(int order) { return (order > 0) - (order < 0); }

const std::uint8_t* BytesOf(std::string_view text) {
  return reinterpret_cast<const std::uint8_t*>(text.data());
}

struct Free {
  void operator()(std::uint8_t* bytes) const { std::free(bytes); }
};
using Mapping = decltype(&u8_tolower);

// `text` is UTF-8.
std::string MapCharacters(std::string_view text, Mapping mapping) {
  std::size_t length = 0;
  const std::unique_ptr<std::uint8_t, Free> mapped(
      mapping(BytesOf(text), text.size(), nullptr, nullptr, nullptr, &length));
  if (mapped == nullptr) throw std::bad_alloc();
  return {reinterpret_cast<const char*>(mapped.get()), length};
}

std::string MapText(std::string_view text, Mapping mapping, char (*asciiMapping)(char)) {
  if (!std::all_of(text.begin(), text.end(), IsAscii) && GString::IsValidUtf8(text)) {
    return MapCharacters(text, mapping);
  }
  std::string mapped(text);
  std::transform(mapped.begin(), mapped.end(), mapped.begin(), asciiMapping);
  return mapped;
}

// Folding looks at no neighbours, so that a text may be folded in pieces.
std::string Fold(std::string_view text) { return MapText(text, &u8_casefold, AsciiToLower); }

// A folded text that knows where its characters stand in its source.
struct FoldedText {
  std::string bytes;
  // For each folded byte, and for the end: the position of the character that begins here; npos
  // within a character or its expansion.
  std::vector<std::size_t> positions;
};

// Characters if `text` is UTF-8, else bytes.
FoldedText FoldWithPositions(std::string_view text, bool byCharacters) {
  FoldedText folded;
  folded.bytes.reserve(text.size());
  folded.positions.reserve(text.size() + 1);
  for (std::size_t at = 0; at < text.size();) {
    std::size_t length = 1;
    if (byCharacters && !IsAscii(text[at])) {
      const std::string_view rest = text.substr(at);
      length = static_cast<std::size_t>(u8_mblen(BytesOf(rest), rest.size()));
      folded.bytes += MapCharacters(rest.substr(0, length), &u8_casefold);
    } else {
      folded.bytes.push_back(AsciiToLower(text[at]));
    }
    folded.positions.push_back(at);
    folded.positions.resize(folded.bytes.size(), npos);
    at += length;
  }
  folded.positions.push_back(text.size());
  return folded;
}

// For each length of a beginning of `part`: how much of `part` stands at that beginning's end,
// shorter than it.
std::vector<std::size_t> OverlapsOf(std::string_view part) {
  std::vector<std::size_t> overlaps(part.size() + 1, 0);
  for (std::size_t end = 1, matched = 0; end < part.size(); ++end) {
    while (matched > 0 && part[end] != part[matched]) matched = overlaps[matched];
    if (part[end] == part[matched]) ++matched;
    overlaps[end + 1] = matched;
  }
  return overlaps;
}

// By Knuth, Morris and Pratt, for the time is linear also where many matches end within a
// character.
std::size_t FindAtCharacters(const FoldedText& text, std::string_view part) {
  const std::vector<std::size_t> overlaps = OverlapsOf(part);
  for (std::size_t end = 1, matched = 0; end <= text.bytes.size(); ++end) {
    const char byte = text.bytes[end - 1];
    while (matched > 0 && byte != part[matched]) matched = overlaps[matched];
    if (byte == part[matched]) ++matched;
    if (matched < part.size()) continue;
    const std::size_t found = text.positions[end - part.size()];
    if (found != npos && text.positions[end] != npos) return found;
    matched = overlaps[matched];
  }
  return npos;
}

}  // namespace

namespace GStringUtils {

int CompareStringsNoCase(std::string_view a, std::string_view b) {
  // Most names are ASCII and differ early.
  std::size_t same = 0;
  while (same < a.size() && same < b.size() && IsAscii(a[same]) &&
         AsciiToLower(a[same]) == AsciiToLower(b[same])) {
    ++same;
  }
  a.remove_prefix(same);
  b.remove_prefix(same);
  if (a.empty() || b.empty()) return static_cast<int>(b.empty()) - static_cast<int>(a.empty());
  if (IsAscii(a[0]) && IsAscii(b[0])) return AsciiToLower(a[0]) < AsciiToLower(b[0]) ? -1 : 1;
  return SignOf(Fold(a).compare(Fold(b)));
}

int OSCompareStringsNoCase(const char* encoding, std::string_view a, std::string_view b) {
  std::string utf8A;
  std::string utf8B;
  try {
    utf8A = iconv_string(a, "UTF-8", encoding);
    utf8B = iconv_string(b, "UTF-8", encoding);
  } catch (const std::runtime_error&) {
    return SignOf(AsciiToLowerCase(a).compare(AsciiToLowerCase(b)));
  }
  return CompareStringsNoCase(utf8A, utf8B);
}

bool ISUTF8StringLessThanNoCase(std::string_view a, std::string_view b) {
  return CompareStringsNoCase(a, b) < 0;
}

std::size_t StringFindNoCase(std::string_view text, std::string_view part) {
  if (part.empty()) return 0;
  const bool byCharacters = GString::IsValidUtf8(text) && GString::IsValidUtf8(part);
  return FindAtCharacters(FoldWithPositions(text, byCharacters),
                          byCharacters ? Fold(part) : AsciiToLowerCase(part));
}

std::string OSToLowerCase(std::string_view text) {
  return MapText(text, &u8_tolower, AsciiToLower);
}

std::string OSToUpperCase(std::string_view text) {
  return MapText(text, &u8_toupper, AsciiToUpper);
}

std::string OSToTitleCase(std::string_view text) {
  if (text.empty() || !GString::IsValidUtf8(text)) return std::string(text);
  return MapCharacters(text, &u8_totitle);
}

std::string AsciiToLowerCase(std::string_view text) {
  std::string lower(text);
  std::transform(lower.begin(), lower.end(), lower.begin(), AsciiToLower);
  return lower;
}

bool AsciiEqualsNoCase(std::string_view a, std::string_view b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                    [](char x, char y) { return AsciiToLower(x) == AsciiToLower(y); });
}

}  // namespace GStringUtils
