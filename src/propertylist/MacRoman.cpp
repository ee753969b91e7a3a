#include "propertylist/MacRoman.h"

#include <array>
#include <map>

#include "foundation/GString.h"
#include "foundation/iconv_string.h"

namespace {

struct MacRomanRow {
  unsigned char byte;
  char32_t character;
};

// Where the C library's table differs from the one that host applications write by.
constexpr MacRomanRow kMacRomanCorrections[] = {
    {0xBD, 0x03A9},  // Greek capital omega
    {0xC6, 0x2206},  // increment
    {0xDB, 0x20AC},  // euro sign
    {0xF0, 0xF8FF},  // the maker's sign, private use
};

struct MacRomanTable {
  std::array<std::string, 256> utf8;
  std::map<char32_t, char> bytes;
};

const MacRomanTable& GetMacRomanTable() {
  static const MacRomanTable& table = *[] {
    auto* made = new MacRomanTable;
    std::string all(256, '\0');
    for (std::size_t i = 0; i < all.size(); ++i) all[i] = static_cast<char>(i);
    std::u32string characters = GString::OSUtf8ToUnicode(iconv_string(all, "UTF-8", "MACINTOSH"));
    for (const MacRomanRow& row : kMacRomanCorrections) characters[row.byte] = row.character;
    for (std::size_t i = 0; i < all.size(); ++i) {
      made->utf8[i] = GString::OSUnicodeToUtf8(characters.substr(i, 1));
      made->bytes.emplace(characters[i], all[i]);
    }
    return made;
  }();
  return table;
}

}  // namespace

std::optional<std::string> Utf8ToMacRoman(std::string_view text) {
  const std::u32string characters = GString::OSUtf8ToUnicode(text);
  if (characters.empty() && !text.empty()) return std::nullopt;
  const MacRomanTable& table = GetMacRomanTable();
  std::string bytes;
  bytes.reserve(characters.size());
  for (const char32_t character : characters) {
    const auto found = table.bytes.find(character);
    if (found == table.bytes.end()) return std::nullopt;
    bytes.push_back(found->second);
  }
  return bytes;
}

std::string MacRomanToUtf8(std::string_view bytes) {
  const MacRomanTable& table = GetMacRomanTable();
  std::string utf8;
  utf8.reserve(bytes.size());
  for (const char byte : bytes) utf8 += table.utf8[static_cast<unsigned char>(byte)];
  return utf8;
}
