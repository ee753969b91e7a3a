// After Effects projects with text layers.
#pragma once

#include <string>
#include <vector>

namespace DocumentBuilders {

// A RIFX file with one text block that names the fonts.
std::string BuildAep(const std::vector<std::string>& fonts);

}  // namespace DocumentBuilders
