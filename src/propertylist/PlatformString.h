// Platform strings: a length byte and at most 255 bytes, in MacRoman, as the host's SDK uses them.
// A `const unsigned char*` lends a length byte and as many bytes as it says; null is legal. Nothing
// is ever written beyond the end of a buffer. [any-thread]
#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>

// Holds every platform string.
using PlatformString = std::array<unsigned char, 256>;

// The length byte; 0 for null.
std::size_t GetPlatformStringLength(const unsigned char* text);

// UTF-8 of the bytes, read as MacRoman; null gives nothing.
std::optional<std::string> XCFStringCreateWithPlatformString(const unsigned char* text);

// Writes UTF-8 as a platform string, in the system encoding or else in MacRoman, which are one here
// (StringEncodings.h); both failures are logged. A zero byte comes behind the text if there is room
// for one. False for null, for bad UTF-8, for a character without a place and for text that does
// not fit; the buffer then holds the empty string.
[[nodiscard]] bool XCFStringGetPlatformString(const std::string* string,
                                              std::span<unsigned char> buffer);

// The bytes as they are, up to the first zero byte; empty for null.
std::string STLStringFromPlatformString(const unsigned char* text);
std::string STLStringFromPascalString(const unsigned char* text);

// The bytes as they are and a zero byte. False, with nothing written, for null or no room.
[[nodiscard]] bool CopyPascalStringToCString(std::span<char> out, const unsigned char* text);

// The reverse. The length is not limited to 255: the length byte wraps while all the bytes are
// copied, so 300 bytes of text need a buffer of 301 and read back as 44. False, with nothing
// written, for null or no room.
[[nodiscard]] bool CopyCStringToPascalString(std::span<unsigned char> out, const char* text);

// Copies the length byte and the text; what stands behind stays. Null copies as the empty string.
void PlatformStringCopy(PlatformString& out, const unsigned char* text);

// Appends, cutting the appended text so that the total stays at 255. Null appends nothing.
void PlatformStringConcat(PlatformString& out, const unsigned char* text);

// Clears the buffer and converts UTF-8 to MacRoman, at most 255 bytes. False, and an empty string,
// if it does not fit or convert.
[[nodiscard]] bool CopyUTF8CStringToMacRomanPascalString(std::span<unsigned char> out,
                                                         std::string_view text);
