// PostScript names of the fonts that fontconfig lists, from a configuration of our own: the host's
// fontconfig state is neither read nor touched. Fonts that the host adds for itself alone are thus
// not seen.
//
// Every question first looks at the modification times of the font folders, their parents and the
// configuration files, so that a file that another process put there is seen at once.
#pragma once

#include <ctime>
#include <memory>
#include <string>
#include <unordered_set>
#include <vector>

#include "platform/FontLookup.h"

struct _FcConfig;

class FontconfigFontLookup : public FontLookup {
 public:
  bool IsVisible(const std::string& postScriptName) override;

 private:
  // A path and its modification time; zero if it is not there.
  struct WatchedPath {
    std::string path;
    timespec modified;
  };

  bool IsUpToDate() const;
  void Rebuild();
  void Watch(_FcConfig* config);

  bool mBuilt = false;
  // False if a watched path was changed during the last listing or so shortly before it that a
  // second change could carry the same time; the next question then lists again.
  bool mSettled = false;
  std::vector<WatchedPath> mWatched;
  std::unordered_set<std::string> mNames;
};
