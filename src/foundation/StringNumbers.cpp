#include <algorithm>
#include <cstdlib>
#include <limits>
#include <locale>
#include <sstream>

#include "foundation/GStringUtils.h"

namespace {

// A host may have set a locale that groups digits.
template <typename Number>
Number Extract(const std::string& text) {
  std::istringstream stream(text);
  stream.imbue(std::locale::classic());
  Number number{};
  stream >> number;
  return number;
}

}  // namespace

namespace GStringUtils {

int NumberFromString(const std::string& text) {
  using Limits = std::numeric_limits<int>;
  return static_cast<int>(
      std::clamp<long>(std::strtol(text.c_str(), nullptr, 10), Limits::min(), Limits::max()));
}

bool IsNumber(const std::string& text) {
  if (text.empty()) return false;
  const int number = NumberFromString(text);
  if (number == 0) return text.starts_with("0") || text.starts_with("-0");
  return NumberFromString(text.substr(0, text.size() - 1)) != number;
}

bool UTF8StringToBool(std::string_view text) {
  const std::string stripped = StripWhitespace(text);
  if (AsciiEqualsNoCase(stripped, "true") || AsciiEqualsNoCase(stripped, "yes")) return true;
  return Extract<bool>(stripped);
}

std::int16_t UTF8StringToSInt16(const std::string& text) { return Extract<std::int16_t>(text); }

std::uint16_t UTF8StringToUInt16(const std::string& text) { return Extract<std::uint16_t>(text); }

std::int32_t UTF8StringToSInt32(const std::string& text) { return Extract<std::int32_t>(text); }

std::uint32_t UTF8StringToUInt32(const std::string& text) { return Extract<std::uint32_t>(text); }

std::int64_t UTF8StringToSInt64(const std::string& text) { return Extract<std::int64_t>(text); }

std::uint64_t UTF8StringToUInt64(const std::string& text) { return Extract<std::uint64_t>(text); }

double UTF8StringToTFloat64(const std::string& text) { return Extract<double>(text); }

bool IsValidHexChar(char character) {
  return (character >= '0' && character <= '9') || (character >= 'a' && character <= 'f') ||
         (character >= 'A' && character <= 'F');
}

std::string AsciiStringFromNumber(int number) { return std::to_string(number); }

std::string AsciiStringFromUnsignedNumber(unsigned int number) { return std::to_string(number); }

}  // namespace GStringUtils
