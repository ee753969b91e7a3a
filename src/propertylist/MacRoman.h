// MacRoman, the encoding of the host SDK's byte strings. Every byte has a character of its own:
// 0xBD is U+03A9, 0xC6 U+2206, 0xDB the euro sign, 0xF0 U+F8FF. [any-thread]
#pragma once

#include <optional>
#include <string>
#include <string_view>

// Nothing if the text is no UTF-8 or a character has no place in MacRoman.
std::optional<std::string> Utf8ToMacRoman(std::string_view text);
std::string MacRomanToUtf8(std::string_view bytes);
