// Text of uncertain encoding, and the text of a string. A `const std::string*` lends a string of a
// property list; null is legal. [any-thread]
#pragma once

#include <optional>
#include <string>
#include <string_view>

// Tries UTF-8, MacRoman, Windows Latin 1, ISO Latin 1, ASCII and non-lossy ASCII in this order and
// gives UTF-8. Text ends at the first zero byte; null gives nothing. MacRoman takes every byte, so
// what follows it stands for the order alone; that all fail would be logged.
std::optional<std::string> CFStringCreateWithUncertainEncoding(const char* text);

// The same; empty on failure.
std::string CreateUTF8StringFromUncertainEncoding(const char* text);

// The UTF-8 text of a string; empty for null, for an empty string and for one that is no UTF-8.
std::string GetStdString(const std::string* string);
void GetUTF8String(const std::string* string, std::string& out);

// Replaces every occurrence, left to right, going on behind each replacement. An empty `from`
// changes nothing.
std::string replaceAll(std::string_view text, std::string_view from, std::string_view to);
