// Static operations on UTF-8 text; positions and lengths are bytes.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace GStringUtils {

// Each character of `delimiters` separates; empty tokens are dropped.
std::vector<std::string> OSTokenizeString(std::string_view text, std::string_view delimiters);
std::string StripWhitespace(std::string_view text);
// ASCII letters only; for keys and extensions.
std::string AsciiToLowerCase(std::string_view text);
bool AsciiEqualsNoCase(std::string_view a, std::string_view b);
bool BeginsWith(std::string_view text, std::string_view prefix);
bool EndsWith(std::string_view text, std::string_view suffix);
// Replaced text is not scanned again; `count` -1 replaces every occurrence.
std::string StringReplace(std::string_view text, std::string_view from, std::string_view to,
                          int count = -1);

}  // namespace GStringUtils
