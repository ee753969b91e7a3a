// The blocks of a Photoshop document that hold text and its fonts.
#pragma once

#include <string>
#include <vector>

#include "tools/documents/PsdBuilder.h"

namespace DocumentBuilders {

// The type tool block of a layer ("TySh").
std::string TypeToolBlock(const PsdTextLayer& layer, bool damagedMarks);
// The document's text block ("Txt2").
std::string DocumentTextBlock(const std::vector<std::string>& fonts, bool longKeys);

}  // namespace DocumentBuilders
