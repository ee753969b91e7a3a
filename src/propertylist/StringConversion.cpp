#include "propertylist/StringConversion.h"

#include "foundation/GString.h"
#include "foundation/GStringUtils.h"
#include "foundation/PluginLog.h"
#include "propertylist/StringEncodings.h"

namespace {

constexpr CFStringEncoding kUncertainEncodings[] = {
    kCFStringEncodingUTF8,      kCFStringEncodingMacRoman, kCFStringEncodingWindowsLatin1,
    kCFStringEncodingISOLatin1, kCFStringEncodingASCII,    kCFStringEncodingNonLossyASCII,
};

}  // namespace

std::optional<std::string> CFStringCreateWithUncertainEncoding(const char* text) {
  if (text == nullptr) return std::nullopt;
  for (const CFStringEncoding encoding : kUncertainEncodings) {
    if (std::optional<std::string> utf8 = DecodeText(text, encoding)) return utf8;
  }
  OutputFormattedDebugString(
      "CFStringCreateWithCString failed on '%s' for all encoding types. %s() returning NULL.", text,
      __func__);
  return std::nullopt;
}

std::string CreateUTF8StringFromUncertainEncoding(const char* text) {
  return CFStringCreateWithUncertainEncoding(text).value_or(std::string());
}

std::string GetStdString(const std::string* string) {
  return string != nullptr && GString::IsValidUtf8(*string) ? *string : std::string();
}

void GetUTF8String(const std::string* string, std::string& out) { out = GetStdString(string); }

std::string replaceAll(std::string_view text, std::string_view from, std::string_view to) {
  return GStringUtils::StringReplace(text, from, to);
}
