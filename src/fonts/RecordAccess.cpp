#include "fonts/RecordAccess.h"

#include <algorithm>
#include <limits>

#include "foundation/GStringUtils.h"

namespace FaceprintSupport {
namespace {

// Bytes that begin a character.
auto CountCharacters(std::string_view text) {
  return std::count_if(text.begin(), text.end(),
                       [](char c) { return (static_cast<unsigned char>(c) & 0xC0) != 0x80; });
}

}  // namespace

bool SameIgnoringCase(std::string_view a, std::string_view b) {
  return GStringUtils::CompareStringsNoCase(a, b) == 0 && CountCharacters(a) == CountCharacters(b);
}

std::uint32_t ChecksumBits(const FontRecord& record, std::string_view key) {
  const std::int64_t number = RecordInteger(record, key);
  if (number == std::numeric_limits<std::int64_t>::min()) return ~std::uint32_t{0};
  return static_cast<std::uint32_t>(number);
}

}  // namespace FaceprintSupport
