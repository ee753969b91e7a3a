// Conversions between UTF-8 and wider forms. Pure functions, any thread.
#pragma once

#include <string>
#include <string_view>

namespace GString {

// UTF-32 in host order to UTF-8. A surrogate or a value above 0x10FFFF fails as a whole: empty
// text.
std::string OSUnicodeToUtf8(std::u32string_view text);
// UTF-16 big-endian bytes to UTF-8, without a byte order mark. An odd length or a lone surrogate
// fails as a whole: empty text.
std::string OSUtf16BigEndianToUtf8(std::string_view bytes);
// Empty for malformed UTF-8.
std::u32string OSUtf8ToUnicode(std::string_view utf8);
bool IsValidUtf8(std::string_view text);

}  // namespace GString
