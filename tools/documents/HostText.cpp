#include "tools/documents/HostText.h"

#include <cstdint>
#include <stdexcept>

#include "tools/documents/BigEndianWriter.h"

namespace DocumentBuilders {

namespace {

// Takes one character off the front.
std::uint32_t NextCharacter(std::string_view& utf8) {
  const auto lead = static_cast<unsigned char>(utf8.front());
  const std::size_t length = lead < 0x80 ? 1 : lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
  const std::uint32_t leadBits = lead & (length == 1 ? 0x7Fu : 0xFFu >> (length + 1));
  if (length > utf8.size() || (lead >= 0x80 && lead < 0xC0) || lead >= 0xF8) {
    throw std::invalid_argument("no UTF-8");
  }
  std::uint32_t character = leadBits;
  for (std::size_t i = 1; i < length; ++i) {
    const auto byte = static_cast<unsigned char>(utf8[i]);
    if ((byte & 0xC0) != 0x80) throw std::invalid_argument("no UTF-8");
    character = character << 6 | (byte & 0x3Fu);
  }
  utf8.remove_prefix(length);
  return character;
}

}  // namespace

std::string Utf16BigEndian(std::string_view utf8) {
  BigEndianWriter out;
  while (!utf8.empty()) {
    const std::uint32_t character = NextCharacter(utf8);
    if (character < 0x10000) {
      out.U16(character);
    } else {
      out.U16(0xD800 + ((character - 0x10000) >> 10)).U16(0xDC00 + ((character - 0x10000) & 0x3FF));
    }
  }
  return out.Bytes();
}

std::string HostText(std::string_view utf8) {
  std::string text = "\xFE\xFF";
  for (const char c : Utf16BigEndian(utf8)) {
    if (c == '(' || c == ')' || c == '\\') text += '\\';
    text += c;
  }
  return text;
}

std::string CoolTypeFonts(const std::vector<std::string>& fonts) {
  std::string text;
  for (const std::string& font : fonts) {
    text += "<< /0 << /99 /CoolTypeFont /0 << /0 (" + HostText(font) + ") /2 1 >> >> >> ";
  }
  return text;
}

}  // namespace DocumentBuilders
