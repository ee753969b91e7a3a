#include "foundation/GString.h"

#include <unistr.h>

#include <vector>

namespace {

const std::uint8_t* BytesOf(std::string_view text) {
  return reinterpret_cast<const std::uint8_t*>(text.data());
}

}  // namespace

namespace GString {

std::string OSUnicodeToUtf8(std::u32string_view text) {
  std::string utf8;
  utf8.reserve(text.size());
  for (const char32_t character : text) {
    std::uint8_t bytes[6];
    const int length = u8_uctomb(bytes, character, sizeof bytes);
    if (length < 0) return {};
    utf8.append(reinterpret_cast<const char*>(bytes), static_cast<std::size_t>(length));
  }
  return utf8;
}

std::string OSUtf16BigEndianToUtf8(std::string_view bytes) {
  if (bytes.size() % 2 != 0) return {};
  std::vector<std::uint16_t> units(bytes.size() / 2);
  for (std::size_t i = 0; i < units.size(); ++i) {
    units[i] = static_cast<std::uint16_t>(static_cast<unsigned char>(bytes[2 * i]) << 8 |
                                          static_cast<unsigned char>(bytes[2 * i + 1]));
  }
  std::string utf8(units.size() * 3, '\0');
  std::size_t length = utf8.size();
  auto* out = reinterpret_cast<std::uint8_t*>(utf8.data());
  if (u16_to_u8(units.data(), units.size(), out, &length) != out) return {};
  utf8.resize(length);
  return utf8;
}

std::u32string OSUtf8ToUnicode(std::string_view utf8) {
  std::u32string text;
  text.reserve(utf8.size());
  while (!utf8.empty()) {
    ucs4_t character = 0;
    const int length = u8_mbtoucr(&character, BytesOf(utf8), utf8.size());
    if (length < 0) return {};
    text.push_back(character);
    utf8.remove_prefix(static_cast<std::size_t>(length));
  }
  return text;
}

bool IsValidUtf8(std::string_view text) { return u8_check(BytesOf(text), text.size()) == nullptr; }

}  // namespace GString
