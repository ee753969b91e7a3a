#include "foundation/GString.h"

#include <optional>

namespace {

constexpr char32_t kLastCodePoint = 0x10FFFF;

bool IsSurrogate(char32_t character) { return character >= 0xD800 && character <= 0xDFFF; }

bool IsHighSurrogate(char32_t unit) { return unit >= 0xD800 && unit <= 0xDBFF; }

bool IsLowSurrogate(char32_t unit) { return unit >= 0xDC00 && unit <= 0xDFFF; }

// `character` is a code point and no surrogate.
void AppendUtf8(std::string& out, char32_t character) {
  const auto append = [&out](char32_t byte) { out.push_back(static_cast<char>(byte)); };
  if (character < 0x80) {
    append(character);
  } else if (character < 0x800) {
    append(0xC0 | (character >> 6));
    append(0x80 | (character & 0x3F));
  } else if (character < 0x10000) {
    append(0xE0 | (character >> 12));
    append(0x80 | ((character >> 6) & 0x3F));
    append(0x80 | (character & 0x3F));
  } else {
    append(0xF0 | (character >> 18));
    append(0x80 | ((character >> 12) & 0x3F));
    append(0x80 | ((character >> 6) & 0x3F));
    append(0x80 | (character & 0x3F));
  }
}

struct LeadByte {
  std::size_t trailing;
  char32_t bits;
  char32_t smallest;  // what is below has a shorter form
};

std::optional<LeadByte> ReadLeadByte(unsigned char byte) {
  if (byte < 0x80) return LeadByte{0, byte, 0};
  if (byte < 0xC0) return std::nullopt;
  if (byte < 0xE0) return LeadByte{1, byte & 0x1FU, 0x80};
  if (byte < 0xF0) return LeadByte{2, byte & 0x0FU, 0x800};
  if (byte < 0xF8) return LeadByte{3, byte & 0x07U, 0x10000};
  return std::nullopt;
}

// Takes one character off the front of `text`; nothing if it is malformed.
std::optional<char32_t> TakeCharacter(std::string_view& text) {
  const std::optional<LeadByte> lead = ReadLeadByte(static_cast<unsigned char>(text.front()));
  if (!lead || text.size() <= lead->trailing) return std::nullopt;
  char32_t character = lead->bits;
  for (std::size_t i = 1; i <= lead->trailing; ++i) {
    const auto byte = static_cast<unsigned char>(text[i]);
    if ((byte & 0xC0) != 0x80) return std::nullopt;
    character = (character << 6) | (byte & 0x3FU);
  }
  if (character < lead->smallest || character > kLastCodePoint || IsSurrogate(character)) {
    return std::nullopt;
  }
  text.remove_prefix(lead->trailing + 1);
  return character;
}

}  // namespace

namespace GString {

std::string OSUnicodeToUtf8(std::u32string_view text) {
  std::string utf8;
  utf8.reserve(text.size());
  for (const char32_t character : text) {
    if (character > kLastCodePoint || IsSurrogate(character)) return {};
    AppendUtf8(utf8, character);
  }
  return utf8;
}

std::string OSUtf16BigEndianToUtf8(std::string_view bytes) {
  if (bytes.size() % 2 != 0) return {};
  const auto unitAt = [bytes](std::size_t index) {
    return static_cast<char32_t>(static_cast<unsigned char>(bytes[index]) << 8 |
                                 static_cast<unsigned char>(bytes[index + 1]));
  };
  std::string utf8;
  utf8.reserve(bytes.size());
  for (std::size_t i = 0; i < bytes.size(); i += 2) {
    char32_t character = unitAt(i);
    if (IsHighSurrogate(character)) {
      i += 2;
      if (i == bytes.size() || !IsLowSurrogate(unitAt(i))) return {};
      character = 0x10000 + ((character - 0xD800) << 10) + (unitAt(i) - 0xDC00);
    } else if (IsLowSurrogate(character)) {
      return {};
    }
    AppendUtf8(utf8, character);
  }
  return utf8;
}

std::u32string OSUtf8ToUnicode(std::string_view utf8) {
  std::u32string text;
  text.reserve(utf8.size());
  while (!utf8.empty()) {
    const std::optional<char32_t> character = TakeCharacter(utf8);
    if (!character) return {};
    text.push_back(*character);
  }
  return text;
}

bool IsValidUtf8(std::string_view text) {
  while (!text.empty()) {
    if (!TakeCharacter(text)) return false;
  }
  return true;
}

}  // namespace GString
