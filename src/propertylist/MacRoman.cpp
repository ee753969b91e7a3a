#include "propertylist/MacRoman.h"

#include <algorithm>
#include <array>

#include "foundation/GString.h"

namespace {

// The characters of the bytes 0x80 to 0xFF, eight a row, by the name of the first. The C library's
// table has an older one for 0xBD, 0xC6, 0xDB and 0xF0.
constexpr std::array<char16_t, 128> kUpperHalf = {
    // clang-format off
    0x00C4, 0x00C5, 0x00C7, 0x00C9, 0x00D1, 0x00D6, 0x00DC, 0x00E1,  // 80
    0x00E0, 0x00E2, 0x00E4, 0x00E3, 0x00E5, 0x00E7, 0x00E9, 0x00E8,  // 88
    0x00EA, 0x00EB, 0x00ED, 0x00EC, 0x00EE, 0x00EF, 0x00F1, 0x00F3,  // 90
    0x00F2, 0x00F4, 0x00F6, 0x00F5, 0x00FA, 0x00F9, 0x00FB, 0x00FC,  // 98
    0x2020, 0x00B0, 0x00A2, 0x00A3, 0x00A7, 0x2022, 0x00B6, 0x00DF,  // A0
    0x00AE, 0x00A9, 0x2122, 0x00B4, 0x00A8, 0x2260, 0x00C6, 0x00D8,  // A8
    0x221E, 0x00B1, 0x2264, 0x2265, 0x00A5, 0x00B5, 0x2202, 0x2211,  // B0
    0x220F, 0x03C0, 0x222B, 0x00AA, 0x00BA, 0x03A9, 0x00E6, 0x00F8,  // B8
    0x00BF, 0x00A1, 0x00AC, 0x221A, 0x0192, 0x2248, 0x2206, 0x00AB,  // C0
    0x00BB, 0x2026, 0x00A0, 0x00C0, 0x00C3, 0x00D5, 0x0152, 0x0153,  // C8
    0x2013, 0x2014, 0x201C, 0x201D, 0x2018, 0x2019, 0x00F7, 0x25CA,  // D0
    0x00FF, 0x0178, 0x2044, 0x20AC, 0x2039, 0x203A, 0xFB01, 0xFB02,  // D8
    0x2021, 0x00B7, 0x201A, 0x201E, 0x2030, 0x00C2, 0x00CA, 0x00C1,  // E0
    0x00CB, 0x00C8, 0x00CD, 0x00CE, 0x00CF, 0x00CC, 0x00D3, 0x00D4,  // E8
    0xF8FF, 0x00D2, 0x00DA, 0x00DB, 0x00D9, 0x0131, 0x02C6, 0x02DC,  // F0
    0x00AF, 0x02D8, 0x02D9, 0x02DA, 0x00B8, 0x02DD, 0x02DB, 0x02C7,  // F8
    // clang-format on
};

constexpr std::size_t kLowerHalf = 128;

char32_t CharacterOf(char byte) {
  const auto value = static_cast<unsigned char>(byte);
  return value < kLowerHalf ? value : kUpperHalf[value - kLowerHalf];
}

}  // namespace

std::optional<std::string> Utf8ToMacRoman(std::string_view text) {
  const std::u32string characters = GString::OSUtf8ToUnicode(text);
  if (characters.empty() && !text.empty()) return std::nullopt;
  std::string bytes;
  bytes.reserve(characters.size());
  for (const char32_t character : characters) {
    if (character < kLowerHalf) {
      bytes.push_back(static_cast<char>(character));
      continue;
    }
    const auto* found = std::find(kUpperHalf.begin(), kUpperHalf.end(), character);
    if (found == kUpperHalf.end()) return std::nullopt;
    bytes.push_back(
        static_cast<char>(static_cast<std::size_t>(found - kUpperHalf.begin()) + kLowerHalf));
  }
  return bytes;
}

std::string MacRomanToUtf8(std::string_view bytes) {
  std::u32string characters;
  characters.reserve(bytes.size());
  for (const char byte : bytes) characters.push_back(CharacterOf(byte));
  return GString::OSUnicodeToUtf8(characters);
}
