// A font manager that is a table of fonts by name, for the queries and the workgroup selection. It
// stands in place of the live one.
#pragma once

#include <cstring>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "fontmanager/FontManagerInterface.h"
#include "fonts/FontRecordOperations.h"

class TableFontManager : public FontManagerInterface {
 public:
  struct Font {
    FontOrSetInfoRec rec;
    int infoError = 0;  // GetNamedFontInfo
    int slugError = 0;  // GetFaceprintInfo
    std::string slug;   // instead of the record's own text
  };
  // A question by name: the name and its type, "P" or "F".
  using Questions = std::vector<std::string>;

  TableFontManager() { ExchangeFontManager(this); }
  ~TableFontManager() override { ExchangeFontManager(nullptr); }

  Font& Add(const std::string& name, std::uint32_t id, std::uint16_t state = 1) {
    Font font;
    font.rec.kind = 1;
    font.rec.databaseID = id;
    font.rec.activationState = state;
    font.rec.info = MakeFontRecord();
    font.rec.info->Set(kFP_PostScriptNameKey, name);
    fonts[name].push_back(font);
    return fonts[name].back();
  }
  void AddWorkgroup(int id, const std::string& name) {
    const auto entry = PropertyList::Dictionary::Create();
    SetRecordNumber(entry, kFP_WorkgroupIDKey, id);
    entry->Set(kFP_WorkgroupNameKey, name);
    workgroups->Append(entry);
  }

  std::map<std::string, std::vector<Font>> fonts;  // by "P:name" or plain name
  std::map<std::string, int> countErrors;          // CountNamedFonts, by question
  Questions questions;
  int ended = 0;  // EndGetFaceprintInfo
  PropertyList::ArrayRef workgroups = PropertyList::Array::Create();
  int workgroupsError = 0;
  bool standalone = true;
  bool loggedIn = true;
  bool running = true;
  bool connected = true;
  bool canActivateFromAll = false;
  long disabledType = -1;

  int CountNamedFonts(const std::string& name, TypeOfFontName type, long, long& outCount,
                      const std::string&) override {
    questions.push_back((type == kFamilyFontName ? "F:" : "P:") + name);
    outCount = 0;
    const auto error = countErrors.find(questions.back());
    if (error != countErrors.end()) return error->second;
    outCount = static_cast<long>(Named(name, type).size());
    return 0;
  }
  int GetNamedFontInfo(const std::string& name, TypeOfFontName type, long, long index,
                       const std::string&, FontOrSetInfoRec& outRec) override {
    mCurrent = &Named(name, type)[static_cast<std::size_t>(index - 1)];
    if (mCurrent->infoError == 0) outRec = mCurrent->rec;
    return mCurrent->infoError;
  }
  int GetFaceprintInfo(std::uint32_t, const FontRecord& font, char* buffer,
                       std::size_t& ioSize) override {
    std::string text = mCurrent->slug;
    if (text.empty()) {
      const FontRecordArray slug = MakeFontRecordArray();
      slug->Append(font);
      FaceprintSupport::CreateXMLFaceprintSlug(slug, &text);
    }
    if (mCurrent->slugError != 0 || text.size() >= ioSize) text.clear();
    std::memcpy(buffer, text.c_str(), text.size() + 1);
    ioSize = text.size();
    return mCurrent->slugError;
  }
  int EndGetFaceprintInfo(const std::string&) override {
    ++ended;
    return 0;
  }
  int GetAllWorkgroupsForUser(PropertyList::ArrayRef& outWorkgroups, bool, bool, bool) override {
    outWorkgroups = workgroups;
    return workgroupsError;
  }
  bool RunningStandalone() override { return standalone; }
  bool IsLoggedIn() override { return loggedIn; }
  bool IsRunning() override { return running; }
  bool IsFontManagerConnected() override { return connected; }
  bool CanActivateFromAllWorkgroups() override { return canActivateFromAll; }
  bool IsRemoteWorkgroupTypeDisabled(long type) override { return type == disabledType; }

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
  int RemoveRemoteFonts(const FontRecordArray&) override { return 0; }

 private:
  // A plain name stands for both types; "P:name" and "F:name" for one.
  std::vector<Font>& Named(const std::string& name, TypeOfFontName type) {
    const auto found = fonts.find((type == kFamilyFontName ? "F:" : "P:") + name);
    return found == fonts.end() ? fonts[name] : found->second;
  }

  Font* mCurrent = nullptr;
};
