// The XML form of a property list, version 1.0, UTF-8, as libplist writes it. Nesting, size and the
// number of values are bounded in both directions; text that XML can't hold is refused.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "propertylist/Value.h"

namespace PropertyList {

inline constexpr int kMaxXmlDepth = 64;
inline constexpr std::size_t kMaxXmlBytes = std::size_t{64} << 20;
inline constexpr std::size_t kMaxXmlValues = std::size_t{1} << 20;
// In one dictionary: the library's time grows with the square of it.
inline constexpr std::size_t kMaxXmlKeys = std::size_t{1} << 16;

// Empty if the value holds malformed UTF-8, characters that XML has no form for, a real that is not
// finite or a null value, which a property list has none for either, or is beyond the bounds. All
// else comes back exactly, order, blanks and carriage returns included, and is written again in the
// same bytes; only the sign of -0.0 is lost.
std::optional<std::string> WriteXml(const Value& value);
// Empty if the text is no property list, as XmlCheck.h tells. A byte order mark is accepted; a key
// that comes twice has its last value. Kinds without a value here (dates), reals that are not
// finite and integers outside of 64 bits with sign are refused.
std::optional<Value> ReadXml(std::string_view text);

}  // namespace PropertyList
