// A font manager that is a table: the test fills in fonts, states and failures, and reads back
// which calls were made. Making one puts it in place of the live one; its end puts the old one
// back.
//
//   FakeFontManager manager;
//   manager.Add(7, "Foo-Bold", {{kFP_FoundryKey, "Adobe"}});
//   manager.FailAt("CountNamedFonts", 2, kErrorKestraneNotRunning);
//   manager.FailAt("CountNamedFonts(F:Foo)", 0, kErrorGeneral);
//
// A call that fails has no effect: it changes no font, fills in nothing and gives an empty map.
#pragma once

#include <initializer_list>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "fontmanager/FontManagerInterface.h"

class FakeFontManager : public FontManagerInterface {
 public:
  struct Font {
    std::uint32_t id = 0;
    std::uint16_t state = kActivationStateInactive;
    FontRecord info;
    std::string slug;  // what GetFaceprintInfo answers, if not the record's own text
  };

  FakeFontManager() : mOld(ExchangeFontManager(this)) {}
  ~FakeFontManager() override { ExchangeFontManager(mOld); }
  FakeFontManager(const FakeFontManager&) = delete;
  FakeFontManager& operator=(const FakeFontManager&) = delete;

  // `state` 2 or 3 is active. The record gets name and ID.
  Font& Add(std::uint32_t id, const std::string& name,
            std::initializer_list<std::pair<const char*, const char*>> entries = {},
            std::uint16_t state = kActivationStateInactive);
  Font* Find(std::uint32_t id);
  // Answers `code` at the nth call of the operation, 1 being the first; 0 means at every call. An
  // operation with its arguments in brackets, as it is recorded, fails at every such call.
  void FailAt(const std::string& operation, int nth, int code);
  // A question answers false where it is to fail; it is counted, but not recorded in `calls`.
  // Throws at the nth call instead.
  void ThrowAt(const std::string& operation, int nth) { FailAt(operation, nth, kThrow); }
  // Takes back every failure asked for.
  void StopFailing() { mFailures.clear(); }
  int CountOfCalls(const std::string& operation) const;
  // The recorded calls of one operation, with their arguments in brackets.
  std::vector<std::string> CallsOf(const std::string& operation) const;
  // Of CountNamedFonts: "P:" or "F:" and the name, divided by ", ".
  std::string NamesAsked() const;

  std::vector<Font> fonts;
  std::map<std::string, std::string> workgroups;  // ID, name
  std::set<std::string> specialWorkgroupIDs;      // told only when special ones are asked for
  std::set<std::string> remoteWorkgroupIDs;       // RemoveRemoteFonts takes these out
  std::set<std::uint32_t> refused;                // noncompliant
  std::set<std::uint32_t> unable;                 // can't be activated
  std::map<std::uint32_t, bool> clientStates;     // a font that is not here counts as ours
  bool connected = true;
  bool coreAgent = true;
  bool online = true;
  bool running = true;
  bool loggedIn = true;
  bool standalone = true;
  bool hasWorkgroups = true;         // CheckForWorkgroups
  bool canActivateFromAll = false;   // workgroups
  long disabledWorkgroupType = -1;   // of remote ones
  std::optional<long> countOfNamed;  // what CountNamedFonts answers, if not the truth
  std::vector<std::string> calls;    // "DeactivateFonts(3,4)", in order

  bool ConnectedToCoreAgent() override { return Ask("ConnectedToCoreAgent", coreAgent); }
  bool IsFontManagerConnected() override { return Ask("IsFontManagerConnected", connected); }
  bool IsOnline() override { return Ask("IsOnline", online); }
  bool IsRunning() override { return Ask("IsRunning", running); }
  bool IsLoggedIn() override { return Ask("IsLoggedIn", loggedIn); }
  bool RunningStandalone() override { return Ask("RunningStandalone", standalone); }
  bool CanActivateFromAllWorkgroups() override {
    return Ask("CanActivateFromAllWorkgroups", canActivateFromAll);
  }
  bool CanExportFromWorkgroup(const FontRecordArray&) override {
    return Ask("CanExportFromWorkgroup", true);
  }
  bool IsRemoteWorkgroupTypeDisabled(long type) override {
    return Ask("IsRemoteWorkgroupTypeDisabled", type == disabledWorkgroupType);
  }
  bool CheckForWorkgroups() override {
    return Call("CheckForWorkgroups", "") == 0 && hasWorkgroups;
  }
  int SetFontAutoActivationStatus(bool isOn) override {
    return Call("SetFontAutoActivationStatus", isOn ? "true" : "false");
  }
  int ProcessNotifications() override { return Call("ProcessNotifications", ""); }
  int GoOnline() override { return Call("GoOnline", ""); }
  int FontIDsForPostScriptName(const std::string& name, long workgroupID, FontIDs& outIDs) override;
  int FontIDsForFamilyName(const std::string& name, long workgroupID, FontIDs& outIDs) override;
  std::map<std::uint32_t, bool> GetClientFontActivationStates(const FontIDs& ids) override;
  std::map<std::uint32_t, bool> GetFontIsActivated(const FontRecordArray& asked) override;
  int ActivateFontByID(const FontRecord& font, const std::string& documentIdentifier,
                       void* outContext) override;
  int ActivateFontsByID(const FontRecordArray& asked, const std::string& documentIdentifier,
                        void* outContext, const FontRecordArray& outActivated,
                        const FontRecordArray& outSecond, FontProgressCallback progress,
                        void* progressContext) override;
  int DeactivateFont(const FontRecord& font, void* context) override;
  int DeactivateFonts(const FontRecordArray& asked, void* context,
                      const FontRecordArray& outDeactivated, FontProgressCallback progress,
                      void* progressContext) override;
  int EndActivationChange() override { return Call("EndActivationChange", ""); }
  void BeginOpeningFontsForDocument(const std::string& document) override;
  void FinishOpeningFontsForDocument(const std::string& document) override;
  void FinishClosingFontsForDocument(const std::string& document, bool allClosed) override;
  int CountNamedFonts(const std::string& name, TypeOfFontName type, long workgroupID,
                      long& outCount, const std::string& unused) override;
  int GetNamedFontInfo(const std::string& name, TypeOfFontName type, long workgroupID, long index,
                       const std::string& unused, FontOrSetInfoRec& outRec) override;
  int GetPostscriptNameByID(std::string& outName, long workgroupID, std::uint32_t fontID) override;
  int GetFaceprintInfo(std::uint32_t databaseID, const FontRecord& font, char* buffer,
                       std::size_t& ioSize) override;
  int EndGetFaceprintInfo(const std::string&) override { return Call("EndGetFaceprintInfo", ""); }
  int FindFontsInSameFamilyForActivation(const FontRecord& font, const FontRecordArray& excluded,
                                         long workgroupID,
                                         const FontRecordArray& outFonts) override;
  int GetAllWorkgroupsForUser(PropertyList::ArrayRef& outWorkgroups, bool addAllWorkgroupsEntry,
                              bool includeSpecialWorkgroups, bool includeTypekitWorkgroup) override;
  int RemoveRemoteFonts(const FontRecordArray& candidates) override;
  void SetCountForLongOperations(int count) override;

 private:
  static constexpr int kThrow = -9999;

  // Records the call; the code that it is to fail with, or 0.
  int Call(const std::string& operation, const std::string& arguments);
  // A question is asked too often to be of interest among the calls.
  bool Ask(const std::string& operation, bool answer);
  int Count(const std::string& operation, const std::string& call);
  std::vector<const Font*> Named(const std::string& name, TypeOfFontName type) const;

  FontManagerInterface* mOld;
  std::map<std::string, int> mCounts;
  std::map<std::pair<std::string, int>, int> mFailures;
};
