// The texts of the plug-in in English, by their keys. The table is Texts.def.
#pragma once

#include <string>
#include <string_view>

// The text of a key, or the key itself if there is none. The placeholders
// "[FONT_MANAGER_MODIFIER]" and "[host app]" are filled in from the host details.
std::string LocalizedText(std::string_view key);
