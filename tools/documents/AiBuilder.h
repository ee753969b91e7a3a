// Illustrator documents in their PDF form: one page, whose fonts stand in font descriptors.
#pragma once

#include <string>
#include <vector>

namespace DocumentBuilders {

struct AiDocument {
  std::vector<std::string> fonts = {};  // PostScript names
  bool spaced = false;                  // "/FontName /X", as other producers write it
  bool subsets = true;                  // with a prefix "ABCDEF+"
};

std::string BuildAi(const AiDocument& document);

}  // namespace DocumentBuilders
