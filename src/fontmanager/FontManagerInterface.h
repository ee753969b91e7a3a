// The one door through which the plug-in talks to a font manager. Abstract, with inert defaults and
// exactly one live instance. Definitions stand by topic in the rooms where what they need is known:
// the inert defaults here, selection and queries in `manager`, birth and end in `coreagent`.
//
// Results are 0, -1 (general failure), -50 (bad argument), 1000 (the font manager has gone, which
// stops every loop over fonts at once) or, where an operation says so, the facade's code. Threads:
// [main-thread], but for GetFontManager: the facade's callback asks for it on a thread of its own.
#pragma once

#include <atomic>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "foundation/GMutex.h"
#include "propertylist/FontRecord.h"
#include "propertylist/PlatformString.h"

enum TypeOfFontName : int { kPostScriptFontName = 0, kFamilyFontName = 1 };

inline constexpr int kErrorKestraneNotRunning = 1000;
inline constexpr int kErrorGeneral = -1;
inline constexpr int kErrorBadArgument = -50;
inline constexpr int kAllWorkgroupsID = -2;

// Converted activation states.
enum : std::uint16_t {
  kActivationStateUnknown = 0,
  kActivationStateInactive = 1,
  kActivationStateActive = 2,
  kActivationStateTemporary = 3
};

// Of a converted state.
constexpr bool IsActiveState(std::int64_t state) {
  return state == kActivationStateActive || state == kActivationStateTemporary;
}

// Progress of a batch: current, total, the font's name, the caller's context.
using FontProgressCallback = void (*)(int current, int total, const std::string& name,
                                      void* context);

class FontManagerInterface {
 public:
  // One font as the facade delivers it.
  struct FontOrSetInfoRec {
    int kind = 0;  // 1 for a font
    std::uint32_t databaseID = 0;
    std::uint16_t activationState = kActivationStateUnknown;  // converted
    FontRecord info;
  };
  using FontIDs = std::vector<std::uint32_t>;

  virtual ~FontManagerInterface() = default;

  virtual bool ConnectedToKestrane() { return false; }
  virtual bool ConnectedToKestraneDuora() { return false; }
  virtual bool ConnectedToCoreAgent() { return false; }
  virtual bool RunningStandalone() { return true; }
  virtual bool GoogleWebFontsEnabled() { return false; }
  virtual int DisconnectFromFontManager() { return 0; }
  virtual void OnServerConnectionLost() {}
  virtual bool IsFontManagerConnected() { return true; }
  virtual void SetFontManagerConnected(bool) {}
  virtual void DoEnableFRConnection() {}
  virtual bool FontManagerIsClientServer() { return true; }
  virtual int SetFontAutoActivationStatus(bool) { return 0; }
  virtual int FontIDsForPostScriptName(const std::string& name, long workgroupID, FontIDs& outIDs);
  virtual int FontIDsForFamilyName(const std::string& name, long workgroupID, FontIDs& outIDs);
  // Base: every non-zero ID maps to true.
  virtual std::map<std::uint32_t, bool> GetClientFontActivationStates(const FontIDs& ids);
  virtual std::map<std::uint32_t, bool> GetFontIsActivated(const FontRecordArray& fonts) = 0;
  virtual std::map<std::uint32_t, std::uint32_t> GetFontConflicts(const FontIDs& ids);
  virtual int ActivateFontByName(const std::string& name, long workgroupID,
                                 const std::string& documentIdentifier, std::uint32_t& outFontID);
  virtual int ActivateFontByID(const FontRecord& font, const std::string& documentIdentifier,
                               void* outContext) = 0;
  // Fills `outActivated` and `outSecond` (fonts refused for this user); either may be null.
  virtual int ActivateFontsByID(const FontRecordArray& fonts, const std::string& documentIdentifier,
                                void* outContext, const FontRecordArray& outActivated,
                                const FontRecordArray& outSecond, FontProgressCallback progress,
                                void* progressContext) = 0;
  virtual int DeactivateFont(const FontRecord& font, void* context) = 0;
  virtual int DeactivateFonts(const FontRecordArray& fonts, void* context,
                              const FontRecordArray& outDeactivated, FontProgressCallback progress,
                              void* progressContext) = 0;
  virtual int EndActivationChange() { return 0; }
  virtual void BeginOpeningFontsForDocument(const std::string&) {}
  virtual void FinishOpeningFontsForDocument(const std::string&) {}
  virtual void FinishClosingFontsForDocument(const std::string&, bool) {}
  virtual int CountNamedFonts(const std::string& name, TypeOfFontName type, long workgroupID,
                              long& outCount, const std::string& unused);
  // `index` is 1-based.
  virtual int GetNamedFontInfo(const std::string& name, TypeOfFontName type, long workgroupID,
                               long index, const std::string& unused, FontOrSetInfoRec& outRec);
  virtual int GetFontInfoByID(const FontRecord& font, FontOrSetInfoRec& outRec);
  virtual int GetPostscriptNameByID(std::string& outName, long workgroupID, std::uint32_t fontID);
  // The record as XML text; `ioSize` is the buffer's size in and the text's length out.
  virtual int GetFaceprintInfo(std::uint32_t databaseID, const FontRecord& font, char* buffer,
                               std::size_t& ioSize);
  virtual int EndGetFaceprintInfo(const std::string&) { return 0; }
  virtual int FindFontsInSameFamilyForActivation(const FontRecord& font,
                                                 const FontRecordArray& excluded, long workgroupID,
                                                 const FontRecordArray& outFonts);
  virtual int MakeSetForDocumentFonts(const std::string& suggestedName,
                                      const FontRecordArray& fonts);
  virtual int CollectFontsUsedByCurrentDocument(const std::string& documentName,
                                                const std::string& documentPath,
                                                const FontRecordArray& fonts);
  virtual int ProcessNotifications() { return 0; }
  virtual bool AreSchemaVersionsInSync() { return true; }
  // Entries hold kFP_WorkgroupIDKey, kFP_WorkgroupNameKey, kFP_WorkgroupTypeKey. Null is legal. The
  // facade's code.
  virtual int GetAllWorkgroupsForUser(PropertyList::ArrayRef& outWorkgroups,
                                      bool addAllWorkgroupsEntry, bool includeSpecialWorkgroups,
                                      bool includeTypekitWorkgroup) = 0;
  virtual bool CheckForWorkgroups() { return true; }
  virtual int SetDefaultWorkgroupID(int id);
  virtual int SetDefaultWorkgroupName(const std::optional<std::string>& name);
  virtual std::optional<std::string> GetDefaultWorkgroupName();
  // By name, with case; -2 for the localised name of all workgroups where the user may activate
  // from all. -1 without such a name.
  virtual int GetWorkgroupID(const std::optional<std::string>& name, int* outID);
  virtual std::optional<std::string> GetWorkgroupNameFromID(long id);
  virtual int RemoveRemoteFonts(const FontRecordArray& fonts) = 0;
  // 0 if at least one font got its name, else -1.
  virtual int AddWorkgroupNamesToFonts(const FontRecordArray& fonts);
  virtual std::optional<std::string> FindWorkgroupIDGetName(
      long id, const PropertyList::ArrayRef& workgroups);
  virtual bool IsAllWorkgroups(int id) { return id == kAllWorkgroupsID; }
  virtual bool IsSelectedWorkgroupLocal() { return false; }
  virtual bool IsRemoteWorkgroupTypeDisabled(long) { return false; }
  virtual bool CanActivateFromAllWorkgroups() { return false; }
  virtual bool CanExportFromWorkgroup(const FontRecordArray&) { return false; }
  virtual bool CannotExportFromSomeWorkgroup() { return false; }
  virtual bool IsRunning() { return false; }
  virtual bool IsLoggedIn() { return true; }
  virtual bool IsOnline() { return true; }
  virtual int GoOnline() { return kErrorGeneral; }
  virtual int GoOffline() { return kErrorGeneral; }
  virtual bool IsWindows() { return false; }
  virtual void DoOnlineOffline() {}
  virtual void SetCountForLongOperations(int) {}

  // The live instance, or null. Owned by this class. [any-thread]: who uses it on another thread
  // has to be unregistered before the instance goes.
  static FontManagerInterface* GetFontManager() {
    return sm_pFontManager.load(std::memory_order_acquire);
  }
  // Puts an instance in place and gives the old one back; the caller owns what comes back.
  static FontManagerInterface* ExchangeFontManager(FontManagerInterface* fontManager);

  // The dialog interface is valid, the preference is on, services are enabled, there is a font
  // manager and it says that the user is logged in; asked in this order.
  static bool AutoActivationIsReady();
  // Makes the font manager at the first call, and keeps it even if the connection fails; a code of
  // the foundation. Both arguments may be null. `outRunning` tells more than the code: it is false
  // beside code 0 if the versions don't fit, and true beside the code of a user who is not logged
  // in. A call from within a call (a message box turned the run loop) makes nothing.
  // `coreagent` defines it.
  static std::uint32_t CompatibleFontManagerIsRunning(std::string* outBundleName, bool* outRunning);
  // Closes all fonts, disconnects and destroys the font manager; asked for while it is being made,
  // it is not kept. `coreagent` defines it.
  static void OnHostAppShuttingDown(bool showProgress);
  // Is a usable workgroup selected, or could one be selected now?
  static bool CheckSelectWorkgroup();
  // Is a font of this exact PostScript name visible to this process? The name is first turned into
  // a MacRoman platform string and read back; a name that has no such form (a character outside
  // MacRoman, or more than 255 bytes) is looked up as it is.
  static bool IsFontActive(const std::string& name);
  static bool IsFontActive(const PlatformString& name);
  static std::string GetStringFromDictionary(const PropertyList::DictionaryRef& dictionary,
                                             const std::string& key);

  // By name: is there a workgroup of the user's own that is called as this one is?
  bool IsValidWorkgroupForUser(int id);
  bool UserHasAtLeastOneWorkgroup();
  int GetCurrentWorkgroupID();
  // At the start: keeps the selected workgroup if it is valid; else selects all of them where the
  // user may activate from all, or the only one there is, or leaves the choice to
  // HandleSelectWorkgroup.
  void InitializeDefaultWorkgroup();
  bool IsAllWorkgroupsSelected();
  // Keeps the selected workgroup, else selects all of them or the first; 0 where there is none,
  // which in the server edition also ends the plug-in's services, with a message. Not within
  // itself.
  void HandleSelectWorkgroup();
  // The name ladder: candidates for a document font, best first. `ioCandidates` is not null, and is
  // another array afterwards if anything was found. `outExcludedRemote` may be null, and is only
  // ever set to true. -1 for names of 128 bytes and more.
  int GetFaceprintData(const FontRecord& sourceFont, int nameType, bool* outExcludedRemote,
                       long workgroupID, FontRecordArray& ioCandidates);
  int GetFaceprintDataForFontName(const std::optional<std::string>& name, TypeOfFontName nameType,
                                  bool* outExcludedRemote, long workgroupID,
                                  FontRecordArray& outCandidates);

  static void SetValidWorkgroupSelected(bool valid) { sValidWorkgroupSelected = valid ? 1 : 0; }
  static bool GetValidWorkgroupSelected() { return sValidWorkgroupSelected != 0; }

 private:
  void ChooseWorkgroup(const PropertyList::ArrayRef& workgroups, int firstID);
  void GiveUpWorkgroups(bool wasValid);
  int ClimbNameLadder(const std::string& name, TypeOfFontName nameType, bool* outExcludedRemote,
                      long workgroupID, FontRecordArray& ioCandidates);
  int AskShortenedNames(const std::string& name, bool* outExcludedRemote, long workgroupID,
                        FontRecordArray& ioCandidates);
  FontRecord ReadCandidate(const std::string& name, const FontOrSetInfoRec& rec,
                           std::vector<char>& buffer, int& outError);

 protected:
  // The localised name of the pseudo-entry that stands for all workgroups of this edition; the key
  // itself without a dialog interface.
  std::string AllWorkgroupsName();
  // Guards creation and destruction of the instance.
  static GMutex& FontManagerMutex();

  static std::atomic<FontManagerInterface*> sm_pFontManager;
  static std::int16_t sValidWorkgroupSelected;
  static std::int16_t sSelectWorkgroupInProgress;
};
