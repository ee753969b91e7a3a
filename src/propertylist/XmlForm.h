// The XML form of a property list, version 1.0, UTF-8, as libplist writes it. Nesting is bounded by
// kMaxXmlDepth and size by kMaxXmlBytes in both directions; text that XML can't hold is refused.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "propertylist/Value.h"

namespace PropertyList {

inline constexpr int kMaxXmlDepth = 64;
inline constexpr std::size_t kMaxXmlBytes = std::size_t{64} << 20;

// Empty if the value holds malformed UTF-8, control characters that XML has no form for, or nests
// too deep.
std::optional<std::string> WriteXml(const Value& value);
// Empty if the text is no property list. A byte order mark is accepted.
std::optional<Value> ReadXml(std::string_view text);

}  // namespace PropertyList
