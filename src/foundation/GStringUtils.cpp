#include "foundation/GStringUtils.h"

#include <algorithm>
#include <cstdio>

#include "foundation/ErrorChecks.h"
#include "foundation/GString.h"

namespace {

constexpr std::string_view kWhitespace = " \t\n\v\f\r";

bool IsTrailingByte(char byte) { return (static_cast<unsigned char>(byte) & 0xC0) == 0x80; }

}  // namespace

namespace GStringUtils {

bool BeginsWith(std::string_view text, std::string_view prefix) { return text.starts_with(prefix); }

bool EndsWith(std::string_view text, std::string_view suffix) { return text.ends_with(suffix); }

bool Contains(std::string_view text, std::string_view part) { return text.find(part) != npos; }

void EnsureEndsWith(std::string& text, std::string_view suffix) {
  if (!EndsWith(text, suffix)) text.append(suffix);
}

TModuleErrorCode OSTruncateUTF8String(std::string& text, unsigned int maxBytes) {
  const char* nativeString = GString::IsValidUtf8(text) ? text.c_str() : nullptr;
  G_CHECK_NULL(nativeString);
  if (text.size() <= maxBytes) return 0;
  std::size_t size = maxBytes;
  while (IsTrailingByte(text[size])) --size;
  text.resize(size);
  return 0;
}

std::vector<std::string> OSTokenizeString(std::string_view text, std::string_view delimiters) {
  std::vector<std::string> tokens;
  std::size_t start = text.find_first_not_of(delimiters);
  while (start != npos) {
    const std::size_t end = std::min(text.find_first_of(delimiters, start), text.size());
    tokens.emplace_back(text.substr(start, end - start));
    start = text.find_first_not_of(delimiters, end);
  }
  return tokens;
}

std::vector<std::string> Split(std::string_view text, std::string_view separator) {
  std::vector<std::string> parts;
  std::size_t start = 0;
  for (std::size_t end = 0; !separator.empty() && (end = text.find(separator, start)) != npos;) {
    parts.emplace_back(text.substr(start, end - start));
    start = end + separator.size();
  }
  parts.emplace_back(text.substr(start));
  return parts;
}

std::vector<std::string> TokenizeString(std::string_view text, std::string_view separator) {
  std::vector<std::string> parts = Split(text, separator);
  std::erase(parts, std::string());
  return parts;
}

std::string Join(const std::vector<std::string>& parts, std::string_view separator) {
  std::string joined;
  for (const std::string& part : parts) {
    if (&part != &parts.front()) joined.append(separator);
    joined.append(part);
  }
  return joined;
}

std::string StringReplace(std::string_view text, std::string_view from, std::string_view to,
                          int count) {
  if (from.empty()) return std::string(text);
  std::string replaced;
  std::size_t done = 0;
  for (; count != 0; count -= count > 0 ? 1 : 0) {
    const std::size_t found = text.find(from, done);
    if (found == npos) break;
    replaced.append(text.substr(done, found - done)).append(to);
    done = found + from.size();
  }
  return replaced.append(text.substr(done));
}

std::string StripWhitespace(std::string_view text) {
  return StripPrecedingWhitespace(StripTrailingWhitespace(text));
}

std::string StripPrecedingWhitespace(std::string_view text) {
  return std::string(text.substr(std::min(FirstNonWhiteSpaceCharacterLoc(text), text.size())));
}

std::string StripTrailingWhitespace(std::string_view text) {
  return std::string(text.substr(0, text.find_last_not_of(kWhitespace) + 1));  // npos + 1 is 0
}

std::size_t FirstNonWhiteSpaceCharacterLoc(std::string_view text) {
  return text.find_first_not_of(kWhitespace);
}

std::string StripPrecedingString(std::string_view text, std::string_view part) {
  if (BeginsWith(text, part)) text.remove_prefix(part.size());
  return std::string(text);
}

std::string StripTrailingString(std::string_view text, std::string_view part) {
  if (EndsWith(text, part)) text.remove_suffix(part.size());
  return std::string(text);
}

std::vector<char> StringToByteVector(std::string_view text) { return {text.begin(), text.end()}; }

std::vector<unsigned char> StringToUByteVector(std::string_view text) {
  return {text.begin(), text.end()};
}

int OSvsnprintf(char* buffer, std::size_t size, const char* format, std::va_list arguments) {
  return std::vsnprintf(buffer, size, format, arguments);
}

}  // namespace GStringUtils
