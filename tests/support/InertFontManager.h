// A font manager of no more than what has to be there: the interface's own defaults, and calls that
// do nothing.
#pragma once

#include "fontmanager/FontManagerInterface.h"

class InertFontManager : public FontManagerInterface {
 public:
  std::map<std::uint32_t, bool> GetFontIsActivated(const FontRecordArray&) override { return {}; }
  int ActivateFontByID(const FontRecord&, const std::string&, void*) override { return 0; }
  int ActivateFontsByID(const FontRecordArray&, const std::string&, void*, const FontRecordArray&,
                        const FontRecordArray&, FontProgressCallback, void*) override {
    return 0;
  }
  int DeactivateFont(const FontRecord&, void*) override { return 0; }
  int DeactivateFonts(const FontRecordArray&, void*, const FontRecordArray&, FontProgressCallback,
                      void*) override {
    return 0;
  }
  int GetAllWorkgroupsForUser(PropertyList::ArrayRef&, bool, bool, bool) override { return -1; }
  int RemoveRemoteFonts(const FontRecordArray&) override { return 0; }
};
