#include <iterator>

#include "foundation/GStringUtils.h"

namespace {

struct CharacterAndXmlEquivalent {
  std::string_view character;
  std::string_view equivalent;
};

// "&" comes first, so that the ampersands of the other entities are not escaped again.
constexpr CharacterAndXmlEquivalent GCharactersAndXmlEquivalents[] = {
    {"&", "&amp;"}, {">", "&gt;"}, {"<", "&lt;"}, {"'", "&apos;"}, {"\"", "&quot;"},
};

constexpr char kHexDigits[] = "0123456789abcdef";

void AppendHex(std::string& out, char byte) {
  const auto value = static_cast<unsigned char>(byte);
  out.push_back(kHexDigits[value >> 4]);
  out.push_back(kHexDigits[value & 0xF]);
}

bool StaysInUrl(char byte, bool component) {
  if (byte == '/' || byte == ':') return !component;
  return (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z') ||
         (byte >= '0' && byte <= '9') || byte == '-' || byte == '.';
}

constexpr std::string_view kEscapedInJson = "\b\t\n\f\r\"/\\";
constexpr std::string_view kJsonEscapes = "btnfr\"/\\";

}  // namespace

namespace GStringUtils {

std::string EscapeRequiredXMLEntities(std::string_view text) {
  std::string escaped(text);
  for (const CharacterAndXmlEquivalent& row : GCharactersAndXmlEquivalents) {
    escaped = StringReplace(escaped, row.character, row.equivalent);
  }
  return escaped;
}

std::string UnescapeRequiredXMLEntities(std::string_view text) {
  std::string plain(text);
  for (auto row = std::rbegin(GCharactersAndXmlEquivalents);
       row != std::rend(GCharactersAndXmlEquivalents); ++row) {
    plain = StringReplace(plain, row->equivalent, row->character);
  }
  return plain;
}

std::string EscapeURL(std::string_view text, bool component) {
  std::string escaped;
  escaped.reserve(text.size());
  for (const char byte : text) {
    if (StaysInUrl(byte, component)) {
      escaped.push_back(byte);
    } else {
      escaped.push_back('%');
      AppendHex(escaped, byte);
    }
  }
  return escaped;
}

std::string EscapeURLComponent(std::string_view text) { return EscapeURL(text, true); }

std::string EscapeJSON(std::string_view text) {
  std::string escaped;
  escaped.reserve(text.size());
  for (const char byte : text) {
    const std::size_t row = kEscapedInJson.find(byte);
    if (row != npos) escaped.push_back('\\');
    escaped.push_back(row == npos ? byte : kJsonEscapes[row]);
  }
  return escaped;
}

std::string HexadecimalString(const char* bytes, unsigned int count) {
  std::string digits;
  digits.reserve(std::size_t{count} * 2);
  for (const char byte : std::string_view(bytes, count)) AppendHex(digits, byte);
  return digits;
}

}  // namespace GStringUtils
