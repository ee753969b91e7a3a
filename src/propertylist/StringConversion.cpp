#include "propertylist/StringConversion.h"

#include <algorithm>
#include <map>
#include <stdexcept>

#include "foundation/GString.h"
#include "foundation/GStringUtils.h"
#include "foundation/PluginLog.h"
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

std::optional<std::string> ToUtf8(std::string_view bytes, const char* encoding) {
  try {
    return iconv_string(bytes, "UTF-8", encoding);
  } catch (const std::runtime_error&) {
    return std::nullopt;
  }
}

}  // namespace

std::size_t GetPlatformStringLength(const unsigned char* text) {
  return text == nullptr ? 0 : text[0];
}

bool CopyUTF8CStringToMacRomanPascalString(PlatformString& out, std::string_view text) {
  out.fill(0);
  const std::optional<std::string> bytes = Utf8ToMacRoman(text);
  if (!bytes || bytes->size() >= out.size()) return false;
  out[0] = static_cast<unsigned char>(bytes->size());
  std::copy(bytes->begin(), bytes->end(), out.begin() + 1);
  return true;
}

std::optional<std::string> XCFStringCreateWithPlatformString(const unsigned char* text) {
  if (text == nullptr) return std::nullopt;
  return MacRomanToUtf8({reinterpret_cast<const char*>(text + 1), GetPlatformStringLength(text)});
}

std::optional<std::string> CFStringCreateWithUncertainEncoding(const char* text) {
  if (text == nullptr) return std::nullopt;
  using Decoder = std::optional<std::string> (*)(std::string_view);
  constexpr Decoder kDecoders[] = {
      [](std::string_view bytes) {
        return GString::IsValidUtf8(bytes) ? std::optional<std::string>(bytes) : std::nullopt;
      },
      [](std::string_view bytes) { return std::optional<std::string>(MacRomanToUtf8(bytes)); },
      [](std::string_view bytes) { return ToUtf8(bytes, "CP1252"); },
      [](std::string_view bytes) { return ToUtf8(bytes, "ISO-8859-1"); },
      [](std::string_view bytes) { return ToUtf8(bytes, "ASCII"); },
  };
  for (const Decoder decode : kDecoders) {
    if (std::optional<std::string> utf8 = decode(text)) return utf8;
  }
  OutputFormattedDebugString(
      "CFStringCreateWithCString failed on '%s' for all encoding types. %s() returning NULL.", text,
      __func__);
  return std::nullopt;
}

std::string CreateUTF8StringFromUncertainEncoding(const char* text) {
  return CFStringCreateWithUncertainEncoding(text).value_or(std::string());
}

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

std::string replaceAll(std::string_view text, std::string_view from, std::string_view to) {
  return GStringUtils::StringReplace(text, from, to);
}
