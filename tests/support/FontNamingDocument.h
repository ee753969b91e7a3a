// A document that asks for fonts.
#pragma once

#include <string>
#include <vector>

// The bytes of a Photoshop document as far as its fonts go: the font set of a text layer, between
// what is no font set. Names are ASCII.
inline std::string DocumentNaming(const std::vector<std::string>& fonts) {
  std::string bytes = "8BPS layers /FontSet [";
  for (const std::string& font : fonts) {
    bytes += " << /Name (\xFE\xFF";
    for (const char character : font) bytes += {'\0', character};
    bytes += ") /Script 0 >>";
  }
  return bytes + " ] image";
}
