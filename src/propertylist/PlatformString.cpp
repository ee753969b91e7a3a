#include "propertylist/PlatformString.h"

#include <algorithm>
#include <cstring>

#include "foundation/PluginLog.h"
#include "propertylist/MacRoman.h"
#include "propertylist/StringEncodings.h"

namespace {

constexpr std::size_t kMaxLength = 255;

std::string_view BytesOf(const unsigned char* text) {
  if (text == nullptr) return {};
  return {reinterpret_cast<const char*>(text + 1), text[0]};
}

// Writes a length byte and the bytes.
bool Store(const std::optional<std::string>& bytes, std::span<unsigned char> out) {
  if (!bytes || bytes->size() > kMaxLength || bytes->size() >= out.size()) return false;
  out[0] = static_cast<unsigned char>(bytes->size());
  std::copy(bytes->begin(), bytes->end(), out.begin() + 1);
  return true;
}

}  // namespace

std::size_t GetPlatformStringLength(const unsigned char* text) { return BytesOf(text).size(); }

std::optional<std::string> XCFStringCreateWithPlatformString(const unsigned char* text) {
  if (text == nullptr) return std::nullopt;
  return MacRomanToUtf8(BytesOf(text));
}

bool XCFStringGetPlatformString(const std::string* string, std::span<unsigned char> buffer) {
  if (!buffer.empty()) buffer[0] = 0;
  if (string == nullptr) return false;
  const CFStringEncoding system = CFStringGetSystemEncoding();
  if (!Store(EncodeText(*string, system), buffer)) {
    OutputFormattedDebugString(
        "CFStringGetSystemEncoding() (%d) didn't work.  Trying kCFStringEncodingMacRoman",
        static_cast<int>(system));
    if (!Store(Utf8ToMacRoman(*string), buffer)) {
      OutputFormattedDebugString("Hmm.  kCFStringEncodingMacRoman (%d) didn't work either",
                                 static_cast<int>(kCFStringEncodingMacRoman));
      return false;
    }
  }
  const std::size_t end = std::size_t{1} + buffer[0];
  if (end < buffer.size()) buffer[end] = 0;
  return true;
}

std::string STLStringFromPlatformString(const unsigned char* text) {
  const std::string_view bytes = BytesOf(text);
  return std::string(bytes.substr(0, bytes.find('\0')));
}

std::string STLStringFromPascalString(const unsigned char* text) {
  return STLStringFromPlatformString(text);
}

bool CopyPascalStringToCString(std::span<char> out, const unsigned char* text) {
  const std::string_view bytes = BytesOf(text);
  if (text == nullptr || bytes.size() >= out.size()) return false;
  *std::copy(bytes.begin(), bytes.end(), out.begin()) = '\0';
  return true;
}

bool CopyCStringToPascalString(std::span<unsigned char> out, const char* text) {
  if (text == nullptr) return false;
  const std::size_t length = std::strlen(text);
  if (length >= out.size()) return false;
  out[0] = static_cast<unsigned char>(length & 0xFF);
  std::copy_n(text, length, out.begin() + 1);
  return true;
}

void PlatformStringCopy(PlatformString& out, const unsigned char* text) {
  if (text == out.data()) return;
  const std::string_view bytes = BytesOf(text);
  out[0] = static_cast<unsigned char>(bytes.size());
  std::copy(bytes.begin(), bytes.end(), out.begin() + 1);
}

void PlatformStringConcat(PlatformString& out, const unsigned char* text) {
  const std::size_t length = out[0];
  const std::string_view bytes = BytesOf(text).substr(0, kMaxLength - length);
  std::copy(bytes.begin(), bytes.end(), out.data() + 1 + length);
  out[0] = static_cast<unsigned char>(length + bytes.size());
}

bool CopyUTF8CStringToMacRomanPascalString(std::span<unsigned char> out, std::string_view text) {
  std::fill(out.begin(), out.end(), static_cast<unsigned char>(0));
  return Store(Utf8ToMacRoman(text), out);
}
