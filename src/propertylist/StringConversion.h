// Platform strings (a length byte and at most 255 bytes) and text of uncertain encoding.
#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

// A length-prefixed byte string, as the host's SDK uses them.
using PlatformString = std::array<unsigned char, 256>;

std::size_t GetPlatformStringLength(const unsigned char* text);

// UTF-8 to MacRoman, at most 255 bytes. False, and an empty string, if it does not fit or convert.
bool CopyUTF8CStringToMacRomanPascalString(PlatformString& out, std::string_view text);

// Reads the bytes as MacRoman; null gives nothing.
std::optional<std::string> XCFStringCreateWithPlatformString(const unsigned char* text);

// Tries UTF-8, MacRoman, Windows Latin 1, ISO Latin 1, ASCII in this order and gives UTF-8; nothing
// if all fail, which is logged. Text ends at the first zero byte.
std::optional<std::string> CFStringCreateWithUncertainEncoding(const char* text);

// The same; empty on failure.
std::string CreateUTF8StringFromUncertainEncoding(const char* text);

// UTF-8 to MacRoman without a length byte; nothing if a character has no place in it.
std::optional<std::string> Utf8ToMacRoman(std::string_view text);
std::string MacRomanToUtf8(std::string_view bytes);

// Replaces every occurrence, left to right, going on behind each replacement.
std::string replaceAll(std::string_view text, std::string_view from, std::string_view to);
