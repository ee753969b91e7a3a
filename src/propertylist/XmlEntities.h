// References to characters in the text of XML.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace PropertyList {

// The text with "&amp;", "&lt;", "&gt;", "&apos;", "&quot;" and references by number, such as
// "&#10;" and "&#x20AC;", replaced by what they stand for. Nothing for any other "&", and for a
// character that XML can't hold. Time is linear in the text.
std::optional<std::string> DecodeEntities(std::string_view text);

}  // namespace PropertyList
