// The font manager of this build: it speaks to the agent process through the facade's table. One
// code for two editions: standalone (one local library) and server (workgroups, log-in, online
// state). Definitions stand by topic: CoreAgentConnection, -Relaunch, -Workgroups, -Queries,
// -Activation.
//
// Threads: [main-thread], but for EnqueueNotification.
#pragma once

#include <ctime>
#include <memory>
#include <string>

#include "coreagent/CoreAgentPluginNotification.h"
#include "fontmanager/FontManagerInterface.h"

// The facade's value for every workgroup.
inline constexpr std::uint32_t kCoreAgentAllWorkgroups = 0;

// The converted state of a raw one; anything unheard of is unknown.
std::uint16_t ComputePluginActivationState(std::int64_t rawState);
// Converts the raw state in a record and writes the three flags that follow from it; an absent
// state reads as raw 0. A second call converts a second time: each database record passes once. 0,
// or -1 for null.
int ConvertActivationStateValues(const FontRecord& record);

class CoreAgentInterface final : public FontManagerInterface {
 public:
  // Connects and chooses a workgroup. A failure leaves the object alive and the plug-in's services
  // off.
  CoreAgentInterface();
  ~CoreAgentInterface() override;
  CoreAgentInterface(const CoreAgentInterface&) = delete;
  CoreAgentInterface& operator=(const CoreAgentInterface&) = delete;

  // Connection.
  bool ConnectedToCoreAgent() override { return true; }
  bool RunningStandalone() override;
  int DisconnectFromFontManager() override;
  int ProcessNotifications() override;
  bool AreSchemaVersionsInSync() override;
  bool IsRunning() override;
  bool IsLoggedIn() override;
  bool IsWindows() override { return false; }
  void DoOnlineOffline() override;
  void DeleteCoreAgent();
  // [any-thread]
  void EnqueueNotification(std::unique_ptr<CoreAgentPluginNotification> notification);
  // Turns the plug-in's services off and marks the agent as not connected.
  static void Disable();

  // Relaunch. Whether a launch worked is not told here: a failed one shows up as the next command
  // failing.
  // 2 if the launcher reports that the agent is missing, else 0.
  static int LaunchLarkspurAgentIfNeeded();
  static int RelaunchLarkspurAgent();
  // True to send the command again; false once the user gives up.
  static bool AttemptRelaunchTryAgain();
  // The dialog's value, 1 also with dialogs suppressed; 0 without a dialog interface.
  static int AskUserToRelaunchAgent();
  static bool WarnUserAgentRelaunchFailed();
  // Did the last launch find nothing to start?
  static bool HasLastLaunchFailed() { return sLastLaunchFailed; }

  // Workgroups.
  int GetAllWorkgroupsForUser(PropertyList::ArrayRef& outWorkgroups, bool addAllWorkgroupsEntry,
                              bool includeSpecialWorkgroups, bool includeTypekitWorkgroup) override;
  bool CheckForWorkgroups() override;
  int RemoveRemoteFonts(const FontRecordArray& fonts) override;
  bool IsSelectedWorkgroupLocal() override;
  bool IsRemoteWorkgroupTypeDisabled(long type) override;
  bool CanActivateFromAllWorkgroups() override;
  bool CanExportFromWorkgroup(const FontRecordArray& fonts) override;
  virtual bool IsGoogleWebFontsEnabled();
  virtual int GetGoogleWebFontsLibraryID();
  // Appends what the facade is to be asked for: the workgroup, and the web fonts' library where it
  // is enabled and there is one; kCoreAgentAllWorkgroups alone for all.
  virtual void PopulateWorkgroupArray(long id, FontIDs& workgroupIDs);

  // Queries.
  int FontIDsForPostScriptName(const std::string& name, long workgroupID, FontIDs& outIDs) override;
  int FontIDsForFamilyName(const std::string& name, long workgroupID, FontIDs& outIDs) override;
  std::map<std::uint32_t, bool> GetClientFontActivationStates(const FontIDs& ids) override;
  std::map<std::uint32_t, bool> GetFontIsActivated(const FontRecordArray& fonts) override;
  std::map<std::uint32_t, std::uint32_t> GetFontConflicts(const FontIDs& ids) override;
  int CountNamedFonts(const std::string& name, TypeOfFontName type, long workgroupID,
                      long& outCount, const std::string& unused) override;
  int GetNamedFontInfo(const std::string& name, TypeOfFontName type, long workgroupID, long index,
                       const std::string& unused, FontOrSetInfoRec& outRec) override;
  int GetFontInfoByID(const FontRecord& font, FontOrSetInfoRec& outRec) override;
  int GetPostscriptNameByID(std::string& outName, long workgroupID, std::uint32_t fontID) override;
  // A text that does not fit the buffer gives length 0.
  int GetFaceprintInfo(std::uint32_t databaseID, const FontRecord& font, char* buffer,
                       std::size_t& ioSize) override;
  int EndGetFaceprintInfo(const std::string&) override { return 0; }
  // Replaces what `outFonts` holds.
  int FindFontsInSameFamilyForActivation(const FontRecord& font, const FontRecordArray& excluded,
                                         long workgroupID,
                                         const FontRecordArray& outFonts) override;

  // Activation. Progress and context are accepted and not used.
  int ActivateFontByName(const std::string& name, long workgroupID,
                         const std::string& documentIdentifier, std::uint32_t& outFontID) override;
  int ActivateFontByID(const FontRecord& font, const std::string& documentIdentifier,
                       void* outContext) override;
  int ActivateFontsByID(const FontRecordArray& fonts, const std::string& documentIdentifier,
                        void* outContext, const FontRecordArray& outActivated,
                        const FontRecordArray& outSecond, FontProgressCallback progress,
                        void* progressContext) override;
  int DeactivateFont(const FontRecord& font, void* context) override;
  int DeactivateFonts(const FontRecordArray& fonts, void* context,
                      const FontRecordArray& outDeactivated, FontProgressCallback progress,
                      void* progressContext) override;

  // The database IDs of the records that have one; system fonts are left out if asked to.
  static FontIDs GetFontIDsFromFontInfoArray(const FontRecordArray& fonts, bool excludeSystemFonts);

 private:
  struct Activation;

  void InitializeCoreAgent(const std::string& hostApp);
  bool CheckSchema(const std::string& hostApp);
  bool CheckAgentIsRunning();
  void ReportVerdict(std::uint32_t verdict);
  void ReportVaultError(std::uint32_t verdict);
  void CheckAgentIsAlive();

  int GetSpecialWorkgroupID(long type);
  int GetSystemWorkgroupID();
  bool GetPermission(bool flag, std::uint32_t (*getColumnName)(char*, std::uint32_t),
                     long workgroupID);
  std::optional<std::string> CreateLocalizedWorkgroupName(long type,
                                                          const std::string* currentName);
  void LocalizeWorkgroup(const PropertyList::ArrayRef& workgroups, std::size_t index);
  void AppendAllWorkgroupsEntry(const PropertyList::ArrayRef& workgroups);

  template <typename EntryPoint>
  int FindFontIDs(EntryPoint entryPoint, const std::string& name, long workgroupID,
                  FontIDs& outIDs);
  int FontIDsForName(const std::string& name, TypeOfFontName type, long workgroupID,
                     FontIDs& outIDs);
  std::uint32_t FetchFontRecord(long workgroupID, const FontRecord& font, std::uint32_t& ioID,
                                FontRecord& outRecord);

  static std::uint32_t SendActivation(const FontIDs& ids, Activation& outcome);

  CoreAgentPluginNotificationQueue mNotificationQueue;
  bool mProcessingNotifications = false;
  int mSystemWorkgroupID = -1;    // -1: not asked for yet, or there is none
  int mGoogleWebFontsLibID = -1;  // the same
  std::time_t mLastCoreAgentCheckTime = 0;

  static bool sLastLaunchFailed;
};
