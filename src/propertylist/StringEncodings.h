// The encodings that byte strings are read and written in. [any-thread]
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

// By the numbers that logs show.
enum CFStringEncoding : std::uint32_t {
  kCFStringEncodingMacRoman = 0,
  kCFStringEncodingISOLatin1 = 0x0201,
  kCFStringEncodingWindowsLatin1 = 0x0500,
  kCFStringEncodingASCII = 0x0600,
  kCFStringEncodingNonLossyASCII = 0x0BFF,
  kCFStringEncodingUTF8 = 0x08000100,
};

// What platform strings are written in: MacRoman on every system, since the host SDK's strings are
// MacRoman and are read back as such. The user's locale has no part in it.
constexpr CFStringEncoding CFStringGetSystemEncoding() { return kCFStringEncodingMacRoman; }

// UTF-8 of bytes in an encoding; nothing if they are not in it. Non-lossy ASCII has no converter:
// nothing. It stands at the end of a list that MacRoman, which takes every byte, ends before.
std::optional<std::string> DecodeText(std::string_view bytes, CFStringEncoding encoding);

// The reverse; nothing for bad UTF-8 or a character that the encoding has no place for.
std::optional<std::string> EncodeText(std::string_view utf8, CFStringEncoding encoding);

// UTF-16 in host order. Nothing for bad UTF-8, or for a lone surrogate.
std::optional<std::u16string> Utf8ToUtf16(std::string_view utf8);
std::optional<std::string> Utf16ToUtf8(std::u16string_view text);
