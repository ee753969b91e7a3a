// Texts and codes of the host in plain C++ form.
#pragma once

#include <cstdint>
#include <string>

#include "sdk/HostActions.h"

// Errors of the host cut to 16 bits. A code whose low half is zero stays an error, as -1.
std::int16_t ShortError(SPErr error);

// The code's four characters in reading order.
std::string FourCharTypeToStdString(std::uint32_t code);

// The text of a "TEXT" value, as far as its first zero byte; 0 or the host's error. A text of more
// than kMaxHostTextBytes is refused. [main-thread]
inline constexpr std::uint32_t kMaxHostTextBytes = std::uint32_t{16} << 20;
SPErr ReadDescriptorText(PIActionDescriptor descriptor, DescriptorKeyID key, std::string& text);
SPErr ReadListText(PIActionList list, std::uint32_t index, std::string& text);
