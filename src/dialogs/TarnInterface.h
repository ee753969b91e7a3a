// Dialogs, preferences and localised texts, through the dialog framework that is found at run time.
// Every operation works without it and falls to a neutral default: false or 0 for preferences,
// nothing for strings, the key itself for a localised text, 1 ("yes") for a message box, -1 for a
// question.
//
// Threads: [main-thread].
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "dialogs/TarnDictionary.h"
#include "propertylist/FontRecord.h"

struct TarnFunctionTable;

// Preference keys.
inline constexpr const char* kEnablePluginPrefKey = "EnablePlugin";
inline constexpr const char* kEnableFaceprintPrefKey = "EnableFaceprint";
inline constexpr const char* kSuppressHostAppDialogsPrefKey = "SuppressHostAppDialogs";
inline constexpr const char* kSuppressPluginCoreDialogsPrefKey = "SuppressPluginCoreDialogs";
inline constexpr const char* kPickBestMatchPrefKey = "PickBestMatch";
inline constexpr const char* kSupportEmbeddedObjectsPrefKey = "SupportEmbeddedObjects";
inline constexpr const char* kCloseFontsOnHostAppQuitPrefKey = "CloseFontsOnHostAppQuit";
inline constexpr const char* kCloseFontsOnDocClosePrefKey = "CloseFontsOnDocClose";
inline constexpr const char* kActivateEntireFamiliesPrefKey = "ActivateEntireFamilies";
inline constexpr const char* kActivateGloballyPrefKey = "ActivateGlobally";
inline constexpr const char* kActivateLocallyPrefKey = "ActivateLocally";
inline constexpr const char* kEnableLoggingPrefKey = "EnableLogging";
inline constexpr const char* kCurrentWorkgroupPrefKey = "CurrentWorkgroup";
inline constexpr const char* kSuppressPanelLaunchPrefKey = "SuppressPanelLaunch";

class TarnInterface {
 public:
  enum EStatus : int {
    eLoaded = 0,
    eInitializeFailed = 1,
    eNotFound = 2,
    eIncompatible = 3,
    eNotSearched = 5
  };

  // Missing arguments are left out of the host details.
  TarnInterface(const std::optional<std::string>& hostApp,
                const std::optional<std::string>& pluginVersion,
                const std::optional<std::string>& pluginBundleIdentifier,
                const std::optional<std::string>& pluginInterfaceVersion);
  ~TarnInterface();
  TarnInterface(const TarnInterface&) = delete;
  TarnInterface& operator=(const TarnInterface&) = delete;

  int GetStatus() const { return mStatus; }
  bool IsValid() const;
  bool IsShared() const;

  std::string LocalizedString(const char* key) const;
  bool GetPreferenceForKey(const char* key) const;
  void SetPreferenceForKey(const char* key, bool value);
  long GetLongPreferenceForKey(const char* key) const;
  void SetLongPreferenceForKey(const char* key, long value);
  std::optional<std::string> GetStringPreferenceForKey(const char* key) const;
  void SetStringPreferenceForKey(const char* key, const char* value);
  bool DoPreferencesExist() const;
  void ShowAboutBox();
  // The button pressed. `title` may be null.
  int ShowMessageBox(const char* titleKey, const char* message, unsigned style);
  int AskForOneString(const char* prompt, const char* label, const char* defaultValue,
                      std::string& outValue);
  void ShowPreferences();
  void ShowResolveFonts(const FontRecordArray& fonts);
  void ShowRestrictedFonts(const FontRecordArray& fonts);
  int ShowSelectWorkgroup(const PropertyList::ArrayRef& workgroups);
  int ShowCommandBox(const TarnDictionary& details, int* outCommand);
  void ShowMissingFonts(const TarnDictionary& details);
  void ForceSelectWorkgroupWindowToFront();
  void ShowProgress(const TarnDictionary& progress);
  void UpdateProgress(const TarnDictionary& progress);
  void HideProgress();
  void SetIsOnline(bool isOnline);
  void SetFontManagerBundleName(const char* name);
  // Parts of the interface that have nothing to do on any host of this build.
  void UpdatePluginDetails(const TarnDictionary&) {}
  void SetOsSpecificUiData(void*) {}
  // The one dialog that works without the framework.
  void ShowTarnNotFoundMessageBox();

  bool GetEnabledAutoActivationPref() const;
  bool GetEnabledFaceprint() const;
  bool GetSuppressHostAppDialogs() const;
  bool GetSuppressPluginCoreDialogs() const;
  bool GetPickBestMatch() const;
  bool GetSupportEmbeddedObjects() const;
  bool GetCloseFontsOnHostAppQuit() const;
  bool GetCloseFontsOnDocClose() const;
  bool GetActivateEntireFamily() const;
  bool GetActivateGlobally() const;
  bool GetActivateLocally() const;
  bool GetEnabledLoggingPref() const;
  // Is the next-generation plug-in loaded in this process? This one then gives way.
  bool isHostAppUsingNextGenPlugin() const;
  void SetCurrentWorkgroupID(int id);
  int GetCurrentWorkgroupID() const;

  // Message boxes; a bool is true when the first of two buttons was pressed.
  void ShowFontManagerNotFoundMessageBox();
  void ShowKestraneOldVersionMessageBox();
  void ShowConnectionLostMessageBox();
  bool ShowNotLoggedInMessageBox(bool offerLogin);
  bool ShowLoggedOffMessageBox(bool offerLogin);
  bool ShowCoreAgentMissingMessageBox();
  void ShowGoOnlineErrorMessageBox();
  void ShowMustBeOnlineMessageBox();
  bool ShowSomeFontsOfflineMessageBox();
  void ShowNoWorkgroupsMessageBox();
  void ShowCannotExportMessageBox();
  bool ShowFontsMissingForExportMessageBox(bool offline);
  void ShowSetNameTooLongMessageBox();
  void ShowCoreAgentOutOfSyncMessageBox();
  void ShowVaultClosedMessage();
  void ShowVaultInUseMessage(const std::string& name);
  void ShowVaultNotAvailableMessage(const std::string& name);
  void ShowVaultNeedsUpgradeMessage();
  void ShowSomeLayersMissingFontsMessage();

 private:
  void InitializeFramework(const std::optional<std::string>& bundleIdentifier);
  void DestroyFramework();

  std::optional<std::string> mPluginBundleIdentifier;
  int mStatus = eNotSearched;
  bool mInitialized = false;
  TarnDictionary mHostDetails;
  std::unique_ptr<TarnFunctionTable> mTable;
};
