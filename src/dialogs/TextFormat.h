// Formats that come as localised text: they are data, so the C library's printf never sees them.
#pragma once

#include <string>
#include <string_view>

// Puts `value` in place of the first conversion of `format` whose letter is one of `letters`, such
// as "%s" or "%2$s"; "%%" is one percent sign, everything else stays.
std::string FormatOneValue(std::string_view format, std::string_view letters,
                           std::string_view value);
