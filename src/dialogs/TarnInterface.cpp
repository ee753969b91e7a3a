#include "dialogs/TarnInterface.h"

#include <cctype>

#include "dialogs/TarnFunctionTable.h"
#include "facade/AgentLauncher.h"
#include "foundation/PluginLog.h"
#include "platform/Bundle.h"
#include "platform/MessageBox.h"
#include "platform/Platform.h"
#include "platform/Process.h"

namespace {

constexpr const char* kFrameworkName = "VendrelPlugins.framework";
constexpr const char* kPluginFilesFolder = "PluginFiles/";
// The next-generation plug-in: where it is loaded, this one gives way.
constexpr const char* kNextGenBundleID = "com.vendrel.PluginCore";
constexpr const char* kNonLocalizedTable = "NonLocalized";
constexpr const char* kTarnNotFoundKey =
    "The Vendrel plug-in could not locate a running copy of the Nodrix application. "
    "Auto-activation plug-in functionality will be disabled.";

void SetIfPresent(TarnDictionary& details, const char* key,
                  const std::optional<std::string>& value) {
  if (value) details.SetStringForKey(key, value->c_str());
}

// The URL of a folder.
std::string FileURL(const std::string& path) {
  constexpr std::string_view kHex = "0123456789ABCDEF";
  constexpr std::string_view kPlain = "-._~/";
  std::string url = "file://";
  for (const char c : path) {
    const auto byte = static_cast<unsigned char>(c);
    if (byte < 0x80 && (std::isalnum(byte) != 0 || kPlain.find(c) != std::string_view::npos)) {
      url += c;
    } else {
      url += {'%', kHex[byte >> 4], kHex[byte & 15]};
    }
  }
  return url + "/";
}

// The framework in the agent's folder; null if there is no agent.
std::shared_ptr<Bundle> OpenBesideAgent() {
  Platform& platform = Platform::Current();
  Process& process = platform.GetProcess();
  std::string folder;
  if (!process.GetPathToRunningProcessExe(kNodrixProcessName, folder) &&
      (FindAndLaunchNodrix(nullptr) != 0 ||
       !process.GetPathToRunningProcessExe(kNodrixProcessName, folder))) {
    return nullptr;
  }
  const std::string path = folder + kPluginFilesFolder + kFrameworkName;
  std::shared_ptr<Bundle> bundle = platform.GetBundles().Open(path);
  OutputFormattedDebugString(
      "CFBundleCreate() returned 0x%08x on attempt to load plug-in UI from '%s'",
      static_cast<unsigned>(reinterpret_cast<std::uintptr_t>(bundle.get())), path.c_str());
  return bundle;
}

// Own bundle, beside the running agent, system-wide. False if the framework is nowhere.
bool FindFramework(const std::optional<std::string>& bundleIdentifier, TarnFunctionTable& table) {
  if (bundleIdentifier) table.bundle = LoadPrivateFramework(*bundleIdentifier, kFrameworkName);
  if (!table.bundle) table.bundle = OpenBesideAgent();
  if (table.bundle) return true;
  BundleLayer& bundles = Platform::Current().GetBundles();
  table.bundle = bundles.Open(bundles.SystemFrameworksPath() + "/" + kFrameworkName);
  table.shared = table.bundle != nullptr;
  return table.shared;
}

void ResolveEntryPoints(TarnFunctionTable& table) {
#define TARN_RESOLVE(result, name, arguments) \
  table.name = reinterpret_cast<decltype(table.name)>(table.bundle->LookUpSymbol(#name));
  TARN_ENTRY_POINTS(TARN_RESOLVE)
#undef TARN_RESOLVE
}

bool IsNextGenPluginLoaded() { return Platform::Current().GetBundles().IsLoaded(kNextGenBundleID); }

}  // namespace

TarnInterface::TarnInterface(const std::optional<std::string>& hostApp,
                             const std::optional<std::string>& pluginVersion,
                             const std::optional<std::string>& pluginBundleIdentifier,
                             const std::optional<std::string>& pluginInterfaceVersion)
    : mPluginBundleIdentifier(pluginBundleIdentifier) {
  SetIfPresent(mHostDetails, kTarnHostApp, hostApp);
  SetIfPresent(mHostDetails, kTarnPluginVersion, pluginVersion);
  SetIfPresent(mHostDetails, kTarnPluginInterfaceVersion, pluginInterfaceVersion);
  InitializeFramework(pluginBundleIdentifier);
}

TarnInterface::~TarnInterface() { DestroyFramework(); }

void TarnInterface::InitializeFramework(const std::optional<std::string>& bundleIdentifier) {
  const OperationTrace trace(__func__);
  if (mInitialized) return;
  mStatus = eNotSearched;
  mTable = std::make_unique<TarnFunctionTable>();
  if (!FindFramework(bundleIdentifier, *mTable)) {
    mStatus = eNotFound;
    DestroyFramework();
    return;
  }
  mStatus = eLoaded;
  ResolveEntryPoints(*mTable);
  if (!mTable->TarnIsVersionCompatible || !mTable->TarnIsVersionCompatible(kTarnVersion)) {
    mStatus = eIncompatible;
    DestroyFramework();
    return;
  }
  mHostDetails.SetStringForKey(kTarnFrameworkURL, FileURL(mTable->bundle->Path()).c_str());
  if (!mTable->TarnInitializeFramework ||
      mTable->TarnInitializeFramework(mHostDetails.Handle()) != 0) {
    mStatus = eInitializeFailed;
    DestroyFramework();
    return;
  }
  mInitialized = true;
}

void TarnInterface::DestroyFramework() {
  const OperationTrace trace(__func__);
  mTable.reset();
  mInitialized = false;
}

bool TarnInterface::IsValid() const { return mTable && mTable->bundle; }

bool TarnInterface::IsShared() const { return mTable && mTable->shared; }

std::string TarnInterface::LocalizedString(const char* key) const {
  if (key == nullptr) return {};
  if (!mTable || !mTable->TarnLocalizedString) return key;
  PLStringRef text = mTable->TarnLocalizedString(key);
  return text ? PropertyList::AdoptString(text) : key;
}

bool TarnInterface::GetPreferenceForKey(const char* key) const {
  return mTable && mTable->TarnGetPreferenceForKey && mTable->TarnGetPreferenceForKey(key) != 0;
}

void TarnInterface::SetPreferenceForKey(const char* key, bool value) {
  if (mTable && mTable->TarnSetPreferenceForKey)
    mTable->TarnSetPreferenceForKey(key, value ? 1 : 0);
}

long TarnInterface::GetLongPreferenceForKey(const char* key) const {
  return mTable && mTable->TarnGetLongPreferenceForKey ? mTable->TarnGetLongPreferenceForKey(key)
                                                       : 0;
}

void TarnInterface::SetLongPreferenceForKey(const char* key, long value) {
  if (!mTable || !mTable->TarnSetLongPreferenceForKey) return;
  mTable->TarnSetLongPreferenceForKey(key, static_cast<std::int32_t>(value));
}

std::optional<std::string> TarnInterface::GetStringPreferenceForKey(const char* key) const {
  if (!mTable || !mTable->TarnGetStringPreferenceForKey) return std::nullopt;
  PLStringRef text = mTable->TarnGetStringPreferenceForKey(key);
  if (text == nullptr) return std::nullopt;
  return PropertyList::AdoptString(text);
}

void TarnInterface::SetStringPreferenceForKey(const char* key, const char* value) {
  if (!mTable || !mTable->TarnSetStringPreferenceForKey) return;
  mTable->TarnSetStringPreferenceForKey(key, value);
}

bool TarnInterface::DoPreferencesExist() const {
  return mTable && mTable->TarnDoPreferencesExist && mTable->TarnDoPreferencesExist();
}

void TarnInterface::ShowAboutBox() {
  if (mTable && mTable->TarnShowAboutBox) mTable->TarnShowAboutBox();
}

int TarnInterface::ShowMessageBox(const char* titleKey, const char* message, unsigned style) {
  if (!mTable || !mTable->TarnShowMessageBox) return 1;
  return mTable->TarnShowMessageBox(titleKey, message, style);
}

int TarnInterface::AskForOneString(const char* prompt, const char* label, const char* defaultValue,
                                   std::string& outValue) {
  if (!mTable || !mTable->TarnAskForOneString) return -1;
  PLStringRef text = nullptr;
  const int button = mTable->TarnAskForOneString(prompt, label, defaultValue, &text);
  if (text) outValue = PropertyList::AdoptString(text);
  return button;
}

void TarnInterface::ShowPreferences() {
  if (mTable && mTable->TarnShowPreferences) mTable->TarnShowPreferences();
}

void TarnInterface::ShowResolveFonts(const FontRecordArray& fonts) {
  if (!mTable || !mTable->TarnShowResolveFonts) return;
  mTable->TarnShowResolveFonts(PropertyList::AsHandle(fonts));
}

void TarnInterface::ShowRestrictedFonts(const FontRecordArray& fonts) {
  if (!mTable || !mTable->TarnShowRestrictedFonts) return;
  mTable->TarnShowRestrictedFonts(PropertyList::AsHandle(fonts));
}

int TarnInterface::ShowSelectWorkgroup(const PropertyList::ArrayRef& workgroups) {
  if (!mTable || !mTable->TarnShowSelectWorkgroup) return 0;
  return mTable->TarnShowSelectWorkgroup(PropertyList::AsHandle(workgroups));
}

int TarnInterface::ShowCommandBox(const TarnDictionary& details, int* outCommand) {
  if (!mTable || !mTable->TarnShowCommandBox) return 0;
  std::int32_t command = outCommand ? *outCommand : 0;
  const int choice = mTable->TarnShowCommandBox(details.Handle(), &command);
  if (outCommand) *outCommand = command;
  return choice;
}

void TarnInterface::ShowMissingFonts(const TarnDictionary& details) {
  if (mTable && mTable->TarnShowMissingFonts) mTable->TarnShowMissingFonts(details.Handle());
}

void TarnInterface::ForceSelectWorkgroupWindowToFront() {
  if (!mTable || !mTable->TarnForceSelectWorkgroupWindowToFront) return;
  mTable->TarnForceSelectWorkgroupWindowToFront();
}

void TarnInterface::ShowProgress(const TarnDictionary& progress) {
  if (mTable && mTable->TarnShowProgress) mTable->TarnShowProgress(progress.Handle());
}

void TarnInterface::UpdateProgress(const TarnDictionary& progress) {
  if (mTable && mTable->TarnUpdateProgress) mTable->TarnUpdateProgress(progress.Handle());
}

void TarnInterface::HideProgress() {
  if (mTable && mTable->TarnHideProgress) mTable->TarnHideProgress();
}

void TarnInterface::SetIsOnline(bool isOnline) {
  if (mTable && mTable->TarnSetIsOnline) mTable->TarnSetIsOnline(isOnline);
}

void TarnInterface::SetFontManagerBundleName(const char* name) {
  TarnDictionary details;
  details.SetStringForKey(kTarnFontManager, name);
  if (mTable && mTable->TarnSetHostDetails) mTable->TarnSetHostDetails(details.Handle());
}

// A table without the text shows the short default and not the sentence.
void TarnInterface::ShowTarnNotFoundMessageBox() {
  if (!mPluginBundleIdentifier) return;
  const auto bundle = GetBundleWithIdentifierReliably(*mPluginBundleIdentifier);
  if (!bundle) return;
  Platform::Current().GetMessageBox().ShowMessage(
      bundle->LocalizedString(kNonLocalizedTable, kTarnNotFoundKey, "Tarn not found"));
}

bool TarnInterface::GetEnabledAutoActivationPref() const {
  return GetPreferenceForKey(kEnablePluginPrefKey);
}

bool TarnInterface::GetEnabledFaceprint() const {
  return IsNextGenPluginLoaded() || GetPreferenceForKey(kEnableFaceprintPrefKey);
}

bool TarnInterface::GetSuppressHostAppDialogs() const {
  return GetPreferenceForKey(kSuppressHostAppDialogsPrefKey);
}

bool TarnInterface::GetSuppressPluginCoreDialogs() const {
  return GetPreferenceForKey(kSuppressPluginCoreDialogsPrefKey);
}

bool TarnInterface::GetPickBestMatch() const {
  return !IsNextGenPluginLoaded() && GetPreferenceForKey(kPickBestMatchPrefKey);
}

bool TarnInterface::GetSupportEmbeddedObjects() const {
  return GetPreferenceForKey(kSupportEmbeddedObjectsPrefKey);
}

bool TarnInterface::GetCloseFontsOnHostAppQuit() const {
  return GetPreferenceForKey(kCloseFontsOnHostAppQuitPrefKey);
}

bool TarnInterface::GetCloseFontsOnDocClose() const {
  return GetPreferenceForKey(kCloseFontsOnDocClosePrefKey);
}

bool TarnInterface::GetActivateEntireFamily() const {
  return GetPreferenceForKey(kActivateEntireFamiliesPrefKey);
}

bool TarnInterface::GetActivateGlobally() const {
  return GetPreferenceForKey(kActivateGloballyPrefKey);
}

bool TarnInterface::GetActivateLocally() const {
  return GetPreferenceForKey(kActivateLocallyPrefKey);
}

bool TarnInterface::GetEnabledLoggingPref() const {
  return GetPreferenceForKey(kEnableLoggingPrefKey);
}

bool TarnInterface::isHostAppUsingNextGenPlugin() const { return IsNextGenPluginLoaded(); }

void TarnInterface::SetCurrentWorkgroupID(int id) {
  OutputFormattedDebugString("Calling TarnInterface::SetCurrentWorkgroupID(%d)", id);
  SetLongPreferenceForKey(kCurrentWorkgroupPrefKey, id);
}

int TarnInterface::GetCurrentWorkgroupID() const {
  return static_cast<int>(GetLongPreferenceForKey(kCurrentWorkgroupPrefKey));
}
