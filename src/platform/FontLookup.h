// Which fonts does this process see?
#pragma once

#include <string>

class FontLookup {
 public:
  virtual ~FontLookup() = default;
  // Is a font of exactly this PostScript name visible? Answers from a set that is rebuilt when the
  // system's fonts change.
  virtual bool IsVisible(const std::string& postScriptName) = 0;
};
