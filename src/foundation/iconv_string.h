// Conversions between encodings by iconv. Pure functions, any thread; texts may hold zero bytes.
// What fails throws std::runtime_error: "Unable to initialize iconv (error N)" for an encoding that
// iconv does not know, "Unable to convert string to ENCODING (error N): MESSAGE" for a text that
// does not convert or ends within a character; N is errno.
#pragma once

#include <string>
#include <string_view>

// MacRoman is named "MACINTOSH". If `to` ends in "//IGNORE", what does not convert is dropped.
std::string iconv_string(std::string_view text, const char* to, const char* from);

// The local encoding is that of the environment's locale (LC_ALL, LC_CTYPE, LANG), also in a host
// that never called setlocale; if that locale is not installed, the one the process has set.

// Drops what is no character of the local encoding.
std::string local_to_utf8(std::string_view text);
// Throws for a character that the local encoding does not have.
std::string utf8_to_local(std::string_view text);
