// The slow, obvious twin of the font name scan: every step over the whole file in memory.
#pragma once

#include <string>
#include <vector>

#include "documents/FontNameScanner.h"

struct NaiveScan {
  std::vector<char> bytes;
  FontNameLimits limits;
  std::vector<std::string> names;
  std::size_t namesBytes = 0;
  bool ended = false;

  explicit NaiveScan(std::string_view text, const FontNameLimits& scanLimits = {})
      : bytes(text.begin(), text.end()), limits(scanLimits) {}

  // One row of patterns.
  void ScanRow(const FontNamePatterns& row);
  // The rows of the file's type, and all of them if nothing was found.
  void ScanDocument(const std::vector<FontNameRow>& rowsOfType);
  // The Photoshop form.
  void ScanFontSets();
};
