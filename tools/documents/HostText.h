// Text as Adobe hosts write it between brackets in their own structures.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace DocumentBuilders {

// Big-endian; text that is no UTF-8 throws std::invalid_argument.
std::string Utf16BigEndian(std::string_view utf8);
// With the byte order mark, and a backslash in front of each byte that is a bracket or a backslash.
std::string HostText(std::string_view utf8);
// "<< /0 << /99 /CoolTypeFont /0 << /0 (...) /2 1 >> >> >>" for each font.
std::string CoolTypeFonts(const std::vector<std::string>& fonts);

}  // namespace DocumentBuilders
