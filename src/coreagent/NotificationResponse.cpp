// What the main thread does with each event.
#include "coreagent/CoreAgentPluginNotification.h"
#include "dialogs/TarnInterface.h"
#include "facade/SkerryLoader.h"
#include "fontmanager/FontManagerInterface.h"
#include "fonts/FontDataCache.h"
#include "foundation/PluginLog.h"
#include "state/HostAppInterface.h"
#include "state/KestraneGlobals.h"

namespace {

using Details = PropertyList::DictionaryRef;

constexpr int kDefaultServerType = 1;

HostAppInterface& HostApp() { return *HostAppInterface::GetHostAppInterface(); }

std::int64_t IntegerUnder(const Details& details, const char* key, std::int64_t defaultValue) {
  const PropertyList::Value* value = details->Find(key);
  const std::int64_t* integer = value ? value->AsInteger() : nullptr;
  return integer ? *integer : defaultValue;
}

bool BoolUnder(const Details& details, const char* key, bool defaultValue) {
  const PropertyList::Value* value = details->Find(key);
  if (const bool* flag = value ? value->AsBool() : nullptr) return *flag;
  return IntegerUnder(details, key, defaultValue ? 1 : 0) != 0;
}

// Negative if the event names no font. IDs cross as unsigned 32-bit numbers and are read as signed.
std::int32_t FontIDOf(const Details& details) {
  return static_cast<std::int32_t>(
      IntegerUnder(details, kPluginNotification_FontActivation_Font_ID, -1));
}

bool IsReplicationRunning() {
  return KestraneGlobals::GetIncrementalReplicationRunning() ||
         KestraneGlobals::GetBulkReplicationRunning();
}

void OnOnlineStateChanged(const Details& details) {
  const bool isOnline = BoolUnder(details, kPluginNotification_OnlineStateChanged, false);
  OutputFormattedDebugString(">>> notification: Online state changed to '%s'",
                             isOnline ? "true" : "false");
  HostApp().SetIsOnline(isOnline);
  if (TarnInterface* tarn = KestraneGlobals::GetSharedTarnInterface()) tarn->SetIsOnline(isOnline);
}

void AnnounceLogOff(TarnInterface& tarn) {
  if (KestraneGlobals::ArePluginServicesEnabled()) {
    OutputFormattedDebugString("Disabling plugin functionality until the user logs back in");
    tarn.ShowNotLoggedInMessageBox(false);
  } else {
    OutputFormattedDebugString(
        "Plugin Services are already disabled. Logging back in will not-renable them");
  }
}

void AnnounceLogIn() {
  OutputFormattedDebugString(
      KestraneGlobals::ArePluginServicesEnabled()
          ? "Re-enabling plugin functionality, now that the user has logged-in."
          : "User logged in, but plugin functionality was disabled for non-login reasons.");
}

void OnLoggedInStateChanged(const Details& details) {
  const bool isLoggedIn = BoolUnder(details, kPI_kIsLoggedInKey, false);
  const auto serverType =
      static_cast<EServerType>(IntegerUnder(details, kPI_kServerTypeKey, kDefaultServerType));
  OutputFormattedDebugString(">>> notification: Logged-in state changed to '%s'",
                             isLoggedIn ? "true" : "false");
  HostApp().SetLoggedInState(isLoggedIn, serverType);
  if (serverType == kServerTypeForeign) return;
  TarnInterface* tarn = KestraneGlobals::GetSharedTarnInterface();
  if (!tarn) return;

  const bool wasLoggedIn = KestraneGlobals::GetLoggedIn();
  if (wasLoggedIn && !isLoggedIn) AnnounceLogOff(*tarn);
  KestraneGlobals::SetLoggedIn(isLoggedIn);
  if (!wasLoggedIn) AnnounceLogIn();
  if (isLoggedIn && !IsReplicationRunning()) {
    FontManagerInterface::SetValidWorkgroupSelected(false);
    FontManagerInterface::CheckSelectWorkgroup();
    HostApp().RebuildWorkgroupsMenu();
  }
}

void OnPanelDataChanged(const Details&) {
  OutputFormattedDebugString(">>> notification: Data changed");
  HostApp().HandlePanelDataChanged();
}

void OnWorkgroupsChanged(const Details&) {
  OutputFormattedDebugString(">>> notification: Workgroups changed");
  HostApp().RebuildWorkgroupsMenu();
  if (FontManagerInterface::GetValidWorkgroupSelected() || IsReplicationRunning()) return;
  FontManagerInterface::GetFontManager()->InitializeDefaultWorkgroup();
  FontManagerInterface::CheckSelectWorkgroup();
}

void OnAgentShutdown(const Details&) {
  OutputFormattedDebugString(">>> notification: Agent shut down");
  OutputFormattedDebugString("Disabling plugin functionality");
  KestraneGlobals::SetPluginServicesEnabled(false);
  KestraneGlobals::SetConnectedToCore(false);
  if (TarnInterface* tarn = KestraneGlobals::GetSharedTarnInterface()) {
    OutputFormattedDebugString("Informing user that plugin functionality will be disabled...");
    tarn->ShowFontManagerNotFoundMessageBox();
  }
}

void OnFontActivated(const Details& details) {
  const std::int32_t id = FontIDOf(details);
  if (id < 0) return;
  OutputFormattedDebugString(">>> notification: font %d activated", id);
  const auto fontID = static_cast<std::uint32_t>(id);
  HostApp().FontActivated(fontID);
  FontDataPreviouslyGottenFromDatabase::SetFontActivationState(fontID, true);
}

void OnFontNonCompliant(const Details& details) {
  const std::int32_t id = FontIDOf(details);
  if (id < 0) return;
  OutputFormattedDebugString(">>> notification: font %d activated", id);
  HostApp().DesignActivationFailedComplianceCheck(static_cast<std::uint32_t>(id));
}

void OnFontDeactivated(const Details& details) {
  const std::int32_t id = FontIDOf(details);
  if (id < 0) return;
  OutputFormattedDebugString(">>> notification: font %d deactivated", id);
  const auto fontID = static_cast<std::uint32_t>(id);
  HostApp().FontDeactivated(fontID);
  FontDataPreviouslyGottenFromDatabase::SetFontActivationState(fontID, false);
}

void OnFontMissing(const Details& details) {
  const std::int32_t id = FontIDOf(details);
  if (id < 0) return;
  OutputFormattedDebugString(">>> notification: font %d deactivated", id);
  HostApp().FontMissing(static_cast<std::uint32_t>(id));
}

void OnBulkReplicationProgress(const Details& details) {
  KestraneGlobals::SetBulkReplicationRunning(true);
  HostApp().BulkReplicationProgress(details);
}

void OnBulkReplicationStopped(const Details&) {
  KestraneGlobals::SetBulkReplicationRunning(false);
  FontManagerInterface::CheckSelectWorkgroup();
  HostApp().BulkReplicationStopped();
}

void OnIncrementalReplicationProgress(const Details& details) {
  KestraneGlobals::SetIncrementalReplicationRunning(true);
  HostApp().IncrementalReplicationProgress(details);
}

void OnIncrementalReplicationStopped(const Details&) {
  KestraneGlobals::SetIncrementalReplicationRunning(false);
  FontManagerInterface::CheckSelectWorkgroup();
  HostApp().IncrementalReplicationStopped();
}

void OnGoogleWebFontsEnabled(const Details& details) {
  const PropertyList::Value* enabled = details->Find(kPluginNotification_Enabled);
  if (!enabled || !enabled->AsBool()) return;
  HostApp().GoogleWebFontsEnabled(*enabled->AsBool());
}

struct Response {
  const char* key;
  void (*respond)(const Details& details);
};

// The first key that an entry holds decides.
constexpr Response kResponses[] = {
    {kPluginNotification_OnlineStateChanged, OnOnlineStateChanged},
    {kPluginNotification_LoggedInStateChanged, OnLoggedInStateChanged},
    {kPluginNotification_PanelDataChanged, OnPanelDataChanged},
    {kPluginNotification_WorkgroupsChanged, OnWorkgroupsChanged},
    {kPluginNotification_UserPermissionsChanged, OnWorkgroupsChanged},
    {kPluginNotification_AgentShutdown, OnAgentShutdown},
    {kPluginNotification_FontActivated, OnFontActivated},
    {kPluginNotification_DesignActivationNonCompliant, OnFontNonCompliant},
    {kPluginNotification_FontDeactivated, OnFontDeactivated},
    {kPluginNotification_FontMissing, OnFontMissing},
    {kPluginNotification_BulkReplicationProgress, OnBulkReplicationProgress},
    {kPluginNotification_BulkReplicationStopped, OnBulkReplicationStopped},
    {kPluginNotification_IncrementalReplicationProgress, OnIncrementalReplicationProgress},
    {kPluginNotification_IncrementalReplicationStopped, OnIncrementalReplicationStopped},
    {kPluginNotification_GoogleReplicationProgress,
     [](const Details& details) { HostApp().GoogleReplicationProgress(details); }},
    {kPluginNotification_GoogleReplicationStopped,
     [](const Details&) { HostApp().GoogleReplicationStopped(); }},
    {kPluginNotification_FontServerReplicationProgress,
     [](const Details& details) { HostApp().FontServerReplicationProgress(details); }},
    {kPluginNotification_FontServerReplicationStopped,
     [](const Details&) { HostApp().FontServerReplicationStopped(); }},
    {kPluginNotification_GoogleWebFontsEnabled, OnGoogleWebFontsEnabled},
    {kPluginNotification_PreviewPNGsRendered,
     [](const Details& details) {
       HostApp().PreviewPNGsRendered(details->GetDictionary(kPluginNotification_FontPNGs));
     }},
    {kPluginNotification_SmartListsChanged, [](const Details&) { HostApp().SmartListsChanged(); }},
    {kPluginNotification_OfflineDownloadFinished,
     [](const Details&) { HostApp().OfflineDownloadFinished(); }},
};

}  // namespace

int CoreAgentPluginNotification::Respond() {
  const OperationTrace trace(__func__);
  if (!FontManagerInterface::GetFontManager()) return trace.Return(kErrorGeneral);
  for (const Response& response : kResponses) {
    const PropertyList::Value* value = dictionary->Find(response.key);
    if (value && value->AsBool()) {
      response.respond(dictionary);
      return trace.Return(0);
    }
  }
  return trace.Return(0);
}
