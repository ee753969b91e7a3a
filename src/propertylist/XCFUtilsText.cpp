// Strings of property lists as UTF-16, as UTF-8 and as something to search in.
#include <algorithm>

#include "foundation/GStringUtils.h"
#include "foundation/GUtils.h"
#include "propertylist/StringConversion.h"
#include "propertylist/XCFUtils.h"

namespace XCFUtils {

namespace {

bool Contains(std::string_view text, std::string_view part, CFStringCompareFlags options) {
  if ((options & kCFCompareCaseInsensitive) == 0) return text.find(part) != std::string_view::npos;
  return GStringUtils::StringFindNoCase(text, part) != GStringUtils::npos;
}

}  // namespace

std::ptrdiff_t XCFGetUniStringFromDictionary(const DictionaryRef& dict, std::string_view key,
                                             std::span<char16_t> buffer) {
  GUtils::Assert(static_cast<bool>(dict), "dict != NULL");
  GUtils::Assert(buffer.data() != nullptr, "buffer != NULL");
  const std::u16string text = CFStringGetAsNewUtf16Buffer(GetCFStringFromDict(dict, key));
  const auto length = static_cast<std::ptrdiff_t>(text.size());
  if (text.size() > buffer.size()) return -length;
  std::copy(text.begin(), text.end(), buffer.begin());
  return length;
}

std::ptrdiff_t XCFGetUniStringNullTermFromDictionary(const DictionaryRef& dict,
                                                     std::string_view key,
                                                     std::span<char16_t> buffer) {
  const std::ptrdiff_t length = XCFGetUniStringFromDictionary(dict, key, buffer);
  const auto end = static_cast<std::size_t>(length);  // a negative one is past every buffer
  if (end < buffer.size()) buffer[end] = u'\0';
  return length;
}

bool GetStringFromCFValue(const Value* value, std::u16string& out) {
  const std::string* string = value == nullptr ? nullptr : value->AsString();
  std::optional<std::u16string> text = string ? Utf8ToUtf16(*string) : std::nullopt;
  if (!text) return false;
  out = std::move(*text);
  return true;
}

std::u16string CFStringGetAsNewUtf16Buffer(const std::string* string) {
  if (string == nullptr) return {};
  return Utf8ToUtf16(*string).value_or(std::u16string());
}

std::optional<std::string> CFStringCreateFromUtf16CString(const char16_t* text) {
  if (text == nullptr) return std::nullopt;
  return Utf16ToUtf8(text);
}

std::string CFStringGetUTF8StdString(const std::string* string) { return GetStdString(string); }

bool CFDictionaryDoesStringValueContain(const DictionaryRef& dict, std::string_view key,
                                        std::string_view text, CFStringCompareFlags options) {
  GUtils::Assert(static_cast<bool>(dict), "dict != NULL");
  const std::string* string = GetCFStringFromDict(dict, key);
  return string != nullptr && Contains(*string, text, options);
}

}  // namespace XCFUtils
