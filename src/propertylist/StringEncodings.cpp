#include "propertylist/StringEncodings.h"

#include <stdexcept>

#include "foundation/GString.h"
#include "foundation/iconv_string.h"
#include "propertylist/MacRoman.h"

namespace {

constexpr const char* kUtf8Name = "UTF-8";

// The converter's name of an encoding; null for one that it does not have.
const char* ConverterName(CFStringEncoding encoding) {
  switch (encoding) {
    case kCFStringEncodingISOLatin1:
      return "ISO-8859-1";
    case kCFStringEncodingWindowsLatin1:
      return "CP1252";
    case kCFStringEncodingASCII:
      return "ASCII";
    default:
      return nullptr;
  }
}

std::optional<std::string> Convert(std::string_view text, const char* to, const char* from) {
  if (to == nullptr || from == nullptr) return std::nullopt;
  try {
    return iconv_string(text, to, from);
  } catch (const std::runtime_error&) {
    return std::nullopt;
  }
}

std::optional<std::string> IfUtf8(std::string_view text) {
  if (!GString::IsValidUtf8(text)) return std::nullopt;
  return std::string(text);
}

}  // namespace

std::optional<std::string> DecodeText(std::string_view bytes, CFStringEncoding encoding) {
  if (encoding == kCFStringEncodingUTF8) return IfUtf8(bytes);
  if (encoding == kCFStringEncodingMacRoman) return MacRomanToUtf8(bytes);
  return Convert(bytes, kUtf8Name, ConverterName(encoding));
}

std::optional<std::string> EncodeText(std::string_view utf8, CFStringEncoding encoding) {
  if (encoding == kCFStringEncodingUTF8) return IfUtf8(utf8);
  if (encoding == kCFStringEncodingMacRoman) return Utf8ToMacRoman(utf8);
  return Convert(utf8, ConverterName(encoding), kUtf8Name);
}

std::optional<std::u16string> Utf8ToUtf16(std::string_view utf8) {
  const std::u32string characters = GString::OSUtf8ToUnicode(utf8);
  if (characters.empty() && !utf8.empty()) return std::nullopt;
  std::u16string text;
  text.reserve(characters.size());
  for (const char32_t character : characters) {
    if (character < 0x10000) {
      text.push_back(static_cast<char16_t>(character));
      continue;
    }
    const char32_t offset = character - 0x10000;
    text.push_back(static_cast<char16_t>(0xD800 + (offset >> 10)));
    text.push_back(static_cast<char16_t>(0xDC00 + (offset & 0x3FF)));
  }
  return text;
}

std::optional<std::string> Utf16ToUtf8(std::u16string_view text) {
  std::string bytes;
  bytes.reserve(text.size() * 2);
  for (const char16_t unit : text) {
    bytes.push_back(static_cast<char>(unit >> 8));
    bytes.push_back(static_cast<char>(unit & 0xFF));
  }
  std::string utf8 = GString::OSUtf16BigEndianToUtf8(bytes);
  if (utf8.empty() && !text.empty()) return std::nullopt;
  return utf8;
}
