// PostScript names of the fonts that fontconfig lists, from a configuration of our own: the host's
// fontconfig state is neither read nor touched. Fonts that the host adds for itself alone are thus
// not seen.
//
// Every question first looks whether the font folders or the configuration files changed, so that a
// file that another process put there is seen at once.
#pragma once

#include <set>
#include <string>
#include <unordered_set>

#include "platform/FontLookup.h"
#include "platform/linux/PathWatch.h"

class FontconfigFontLookup : public FontLookup {
 public:
  bool IsVisible(const std::string& postScriptName) override;

 private:
  void Rebuild();

  PathWatch mWatch;
  std::unordered_set<std::string> mNames;
  std::set<std::string> mFontFolders;  // with all folders below them
  std::set<std::string> mWritten;      // not yet read anew
};
