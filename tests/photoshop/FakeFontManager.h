// A font manager for tests of the shell: a table of fonts by name, and a record of what it was
// asked to do.
#pragma once

#include <cstring>
#include <map>
#include <string>
#include <vector>

#include "fontmanager/FontManagerInterface.h"
#include "fonts/FontRecordOperations.h"
#include "sdk/FontRecordKeys.h"

class FakeFontManager : public FontManagerInterface {
 public:
  struct Font {
    std::uint32_t id = 0;
    bool active = false;
    bool refused = false;
  };

  bool running = true;
  bool loggedIn = true;
  bool standalone = true;
  bool hasWorkgroups = true;
  bool allWorkgroups = true;
  std::map<std::string, Font> fonts;
  std::vector<std::string> calls;
  int ticks = 0;
  int deactivatedFonts = 0;
  std::vector<std::string> finishedIdentifiers;  // documents whose fonts were opened

  bool IsRunning() override { return running; }
  bool IsLoggedIn() override { return loggedIn; }
  bool RunningStandalone() override { return standalone; }
  bool ConnectedToCoreAgent() override { return true; }
  bool CheckForWorkgroups() override {
    calls.push_back("CheckForWorkgroups");
    return hasWorkgroups;
  }
  bool CanActivateFromAllWorkgroups() override { return allWorkgroups; }
  bool CanExportFromWorkgroup(const FontRecordArray&) override { return true; }
  int SetFontAutoActivationStatus(bool enabled) override {
    calls.push_back(enabled ? "SetFontAutoActivationStatus(true)"
                            : "SetFontAutoActivationStatus(false)");
    return 0;
  }
  int ProcessNotifications() override { return ++ticks, 0; }
  void FinishOpeningFontsForDocument(const std::string& identifier) override {
    finishedIdentifiers.push_back(identifier);
  }
  int GetAllWorkgroupsForUser(PropertyList::ArrayRef& out, bool, bool, bool) override {
    FontRecord workgroup = MakeFontRecord();
    workgroup->Set(kFP_WorkgroupIDKey, "1");
    workgroup->Set(kFP_WorkgroupNameKey, "Mine");
    workgroup->Set(kFP_WorkgroupTypeKey, "3");
    out = MakeFontRecordArray();
    out->Append(workgroup);
    return 0;
  }
  int RemoveRemoteFonts(const FontRecordArray&) override { return 0; }

  int CountNamedFonts(const std::string& name, TypeOfFontName type, long, long& outCount,
                      const std::string&) override {
    outCount = type == kPostScriptFontName && fonts.contains(name) ? 1 : 0;
    return 0;
  }
  int GetNamedFontInfo(const std::string& name, TypeOfFontName, long, long, const std::string&,
                       FontOrSetInfoRec& outRec) override {
    const Font& font = fonts.at(name);
    outRec.kind = 1;
    outRec.databaseID = font.id;
    outRec.activationState = font.active ? kActivationStateActive : kActivationStateInactive;
    outRec.info = MakeFontRecord();
    outRec.info->Set(kFP_PostScriptNameKey, name);
    return 0;
  }
  int GetFaceprintInfo(std::uint32_t, const FontRecord& font, char* buffer,
                       std::size_t& ioSize) override {
    FontRecordArray one = MakeFontRecordArray();
    one->Append(font);
    std::string xml;
    FaceprintSupport::CreateXMLFaceprintSlug(one, &xml);
    if (xml.size() >= ioSize) return -1;
    std::memcpy(buffer, xml.c_str(), xml.size() + 1);
    ioSize = xml.size();
    return 0;
  }

  std::map<std::uint32_t, bool> GetFontIsActivated(const FontRecordArray& asked) override {
    std::map<std::uint32_t, bool> states;
    for (std::size_t i = 0; i < CountOf(asked); ++i) {
      const FontRecord font = asked->DictionaryAt(i);
      states[RecordDatabaseID(font)] = fonts[RecordString(font, kFP_PostScriptNameKey)].active;
    }
    return states;
  }
  int ActivateFontByID(const FontRecord&, const std::string&, void*) override { return 0; }
  int ActivateFontsByID(const FontRecordArray& asked, const std::string&, void*,
                        const FontRecordArray& outActivated, const FontRecordArray& outSecond,
                        FontProgressCallback, void*) override {
    for (std::size_t i = 0; i < CountOf(asked); ++i) {
      const FontRecord font = asked->DictionaryAt(i);
      const std::string name = RecordString(font, kFP_PostScriptNameKey);
      calls.push_back("activate " + name);
      Font& known = fonts[name];
      if (!known.refused) known.active = true;
      (known.refused ? outSecond : outActivated)->Append(font);
    }
    return 0;
  }
  int DeactivateFont(const FontRecord&, void*) override { return 0; }
  int DeactivateFonts(const FontRecordArray& asked, void*, const FontRecordArray&,
                      FontProgressCallback, void*) override {
    deactivatedFonts += static_cast<int>(CountOf(asked));
    return 0;
  }
};
