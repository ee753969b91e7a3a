#include <algorithm>

#include "documents/FontNameScanner.h"
#include "foundation/GString.h"

namespace {

bool IsAsciiLetterOrDigit(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9');
}

}  // namespace

std::string DecodeFontName(std::string_view bytes, std::string_view skip) {
  std::size_t end = bytes.size() - 1;
  std::size_t start = 0;
  // The last byte before the end is not looked at.
  for (std::size_t i = 0; i + 1 < end; ++i) {
    if (bytes.substr(i).starts_with(skip)) {
      start = i + skip.size();
      break;
    }
  }
  // The first byte of the name is not looked at.
  for (std::size_t i = end; i > start; --i) {
    if (IsAsciiLetterOrDigit(bytes[i])) {
      end = i + 1;
      break;
    }
  }
  // Zero bytes are dropped, which makes plain bytes of UTF-16 that is ASCII. The byte behind one is
  // taken whatever it is, also at the end pattern.
  std::u32string characters;
  characters.reserve(end - start);
  for (std::size_t i = start; i < end; ++i) {
    if (bytes[i] == '\0') ++i;
    // Bytes are signed: from 128 on they are no characters, and the name comes out empty.
    characters.push_back(static_cast<char32_t>(static_cast<signed char>(bytes[i])));
  }
  return GString::OSUnicodeToUtf8(characters);
}

std::string DecodePhotoshopFontName(std::string_view bytes) {
  constexpr std::size_t kByteOrderMarkBytes = 2;  // taken for granted
  std::string utf16;
  for (std::size_t i = kByteOrderMarkBytes; i + 1 < bytes.size(); i += 2) {
    const char first = bytes[i];
    const char second = bytes[i + 1];
    if (second == '\\') {
      // The unit's second byte is the one behind the escape: its zero byte goes first, and the
      // pairs fall into step with the units again.
      utf16.push_back('\0');
    } else if (first == '\\') {
      utf16.push_back(second);
    } else {
      utf16.push_back(first);
      utf16.push_back(second);
    }
  }
  return GString::OSUtf16BigEndianToUtf8(utf16);
}
