// Borrowed text of a record, where absent and empty are not the same, and how texts of records are
// compared.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "propertylist/FontRecord.h"

namespace FaceprintSupport {

// Null for a null record, an absent key or another kind. Lent until the record changes.
inline const std::string* FindString(const FontRecord& record, std::string_view key) {
  return record ? record->GetString(key) : nullptr;
}

// As many characters and equal by case folding: "Café" is "CAFÉ", but "straße" is not "STRASSE".
bool SameIgnoringCase(std::string_view a, std::string_view b);
// The number in a checksum's text, cut to 32 bits. One beyond 64 bits, of either sign, is all ones:
// it is unusable, and must not look like 0, which stands for an unknown checksum.
std::uint32_t ChecksumBits(const FontRecord& record, std::string_view key);

}  // namespace FaceprintSupport
