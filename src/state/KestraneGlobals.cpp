#include "state/KestraneGlobals.h"

#include <array>
#include <cstdlib>
#include <string_view>
#include <vector>

#include "foundation/GStringUtils.h"
#include "foundation/PluginLog.h"
#include "platform/Bundle.h"

namespace {

std::optional<std::string> sHostApp;
std::optional<std::string> sHostAppVersionPrefix;
std::optional<std::string> sHostAppMinimumVersion;
std::optional<std::string> sPluginVersion;
std::optional<std::string> sPluginBundleIdentifier;
std::optional<std::string> sVendrelPluginInterfaceVersion;
std::string sPluginBinaryPath;

bool sPluginServicesEnabled = false;
bool sConnectedToCore = false;
bool sLoggedIn = false;
bool sUserHasWorkgroups = false;
bool sBulkReplicationRunning = false;
bool sIncrementalReplicationRunning = false;
bool sDisplayedSchemaError = false;
bool sSuppressingHostAppDialogs = false;

struct HostPrefix {
  std::string_view prefix;
  EHostType type;
};

constexpr std::array<HostPrefix, 5> kHostPrefixes{{
    {"InDesign", kHostTypeInDesign},
    {"InCopy", kHostTypeInCopy},
    {"Illustrator", kHostTypeIllustrator},
    {"Photoshop", kHostTypePhotoshop},
    {"After", kHostTypeAfterEffects},
}};

struct BundleHost {
  std::string_view bundleID;
  std::string_view hostApp;
};

// Bundles that don't name their host themselves.
constexpr std::array<BundleHost, 10> kBundleHosts{{
    {"com.vendrel.AutoActivationPlugin.AI21", "IllustratorCC2017"},
    {"com.vendrel.AutoActivationPlugin.AI22", "IllustratorCC2018"},
    {"com.vendrel.AutoActivationPlugin.AI23", "IllustratorCC2019"},
    {"com.vendrel.AutoActivationPlugin.AI24", "IllustratorCC2020"},
    {"com.vendrel.AutoActivationPlugin.AI25", "IllustratorCC2021"},
    {"com.vendrel.AutoActivationPlugin.AE140", "AfterEffectsCC2017"},
    {"com.vendrel.AutoActivationPlugin.AE150", "AfterEffectsCC2018"},
    {"com.vendrel.AutoActivationPlugin.AE160", "AfterEffectsCC2019"},
    {"com.vendrel.AutoActivationPlugin.AE170", "AfterEffectsCC2020"},
    {"com.vendrel.AutoActivationPlugin.AE175", "AfterEffectsCC2021"},
}};

// An assertion that also stands in release builds.
[[noreturn]] void StopOnProgrammingError(const char* message) {
  OutputFormattedDebugString("ASSERTION FAILED:  %s", message);
  std::abort();
}

EHostType CurrentHostType() { return KestraneGlobals::GetHostTypeFromHostAppID({}); }

}  // namespace

void KestraneGlobals::IdentifyPluginBundleID(const std::string& bundleID) {
  sPluginBundleIdentifier = bundleID;
}

void KestraneGlobals::IdentifyPluginInterfaceVersion(const std::string& version) {
  sVendrelPluginInterfaceVersion = version;
}

void KestraneGlobals::IdentifyPluginHostApp(const std::optional<std::string>& name) {
  sHostApp = name;
  if (!sHostApp && sPluginBundleIdentifier) {
    sHostApp = MapBundleIDtoHostApp(*sPluginBundleIdentifier);
  }
}

void KestraneGlobals::IdentifyPluginVersion(const std::string& version) {
  sPluginVersion = version;
}

void KestraneGlobals::IdentifyPluginBinaryPath(const std::string& path) {
  sPluginBinaryPath = path;
}

void KestraneGlobals::IdentifyPluginHostAppVersionPrefix(const std::string& prefix) {
  sHostAppVersionPrefix = prefix;
}

void KestraneGlobals::IdentifyPluginHostAppMinimumVersion(const std::string& version) {
  sHostAppMinimumVersion = version;
}

std::string KestraneGlobals::GetPluginHostApp() { return sHostApp.value_or(""); }

std::string KestraneGlobals::GetPluginVersion() { return sPluginVersion.value_or(""); }

std::string KestraneGlobals::GetPluginInterfaceVersion() {
  return sVendrelPluginInterfaceVersion.value_or("");
}

std::string KestraneGlobals::GetPluginHostAppMinimumVersion() {
  return sHostAppMinimumVersion.value_or("");
}

std::string KestraneGlobals::GetPluginBundleIdentifier() {
  if (!sPluginBundleIdentifier) StopOnProgrammingError("no bundle identifier");
  return *sPluginBundleIdentifier;
}

std::string KestraneGlobals::GetPluginBinaryPath() {
  if (sPluginBinaryPath.empty() && sPluginBundleIdentifier) {
    const auto bundle = GetBundleWithIdentifierReliably(*sPluginBundleIdentifier);
    if (bundle) sPluginBinaryPath = bundle->ExecutablePath();
  }
  return sPluginBinaryPath;
}

std::string KestraneGlobals::GetPluginFileName() {
  const std::vector<std::string> components =
      GStringUtils::OSTokenizeString(GetPluginBinaryPath(), ":\\/");
  return components.empty() ? std::string() : components.back();
}

std::string KestraneGlobals::MapBundleIDtoHostApp(const std::string& bundleID) {
  for (const BundleHost& row : kBundleHosts) {
    if (row.bundleID == bundleID) return std::string(row.hostApp);
  }
  OutputFormattedDebugString("Unknown bundleID in %s(%s)", __func__, bundleID.c_str());
  return {};
}

EHostType KestraneGlobals::GetHostTypeFromHostAppID(const std::string&) {
  if (!sHostApp) return kHostTypeNone;
  for (const HostPrefix& row : kHostPrefixes) {
    if (GStringUtils::BeginsWith(*sHostApp, row.prefix)) return row.type;
  }
  return kHostTypeNone;
}

bool KestraneGlobals::HostAppIsInCopy() { return CurrentHostType() == kHostTypeInCopy; }

bool KestraneGlobals::HostAppIsInDesign() { return CurrentHostType() == kHostTypeInDesign; }

bool KestraneGlobals::HostAppIsPhotoshop() { return CurrentHostType() == kHostTypePhotoshop; }

bool KestraneGlobals::HostAppIsIllustrator() { return CurrentHostType() == kHostTypeIllustrator; }

bool KestraneGlobals::HostAppIsQuark() { return CurrentHostType() == kHostTypeQuark; }

bool KestraneGlobals::HostAppIsAfterEffects() {
  return sHostApp && (sHostApp->find("AECC") != std::string::npos ||
                      GStringUtils::BeginsWith(*sHostApp, "After"));
}

std::string KestraneGlobals::GetHostAppCategory() {
  if (HostAppIsInCopy() || HostAppIsInDesign()) return "id";
  if (HostAppIsPhotoshop()) return "ps";
  if (HostAppIsIllustrator()) return "ai";
  if (HostAppIsAfterEffects()) return "ae";
  StopOnProgrammingError("a host without a category");
}

bool KestraneGlobals::ArePluginServicesEnabled() {
  return sPluginServicesEnabled && sLoggedIn && sUserHasWorkgroups;
}

void KestraneGlobals::SetPluginServicesEnabled(bool enabled) {
  if (enabled != sPluginServicesEnabled) {
    OutputFormattedDebugString("%s() changing enabled state to %d", __func__, enabled);
  }
  sPluginServicesEnabled = enabled;
}

bool KestraneGlobals::GetConnectedToCore() { return sConnectedToCore; }

void KestraneGlobals::SetConnectedToCore(bool connected) {
  if (connected != sConnectedToCore) {
    OutputFormattedDebugString("%s() changing connected state to %d", __func__, connected);
  }
  sConnectedToCore = connected;
}

bool KestraneGlobals::GetLoggedIn() { return sLoggedIn; }

void KestraneGlobals::SetLoggedIn(bool loggedIn) {
  OutputFormattedDebugString("Calling KestraneGlobals::SetLoggedIn(loggedIn=%d)", loggedIn);
  sLoggedIn = loggedIn;
}

bool KestraneGlobals::GetUserHasWorkgroups() { return sUserHasWorkgroups; }

void KestraneGlobals::SetUserHasWorkgroups(bool hasWorkgroups) {
  sUserHasWorkgroups = hasWorkgroups;
}

bool KestraneGlobals::GetBulkReplicationRunning() { return sBulkReplicationRunning; }

void KestraneGlobals::SetBulkReplicationRunning(bool running) {
  OutputFormattedDebugString("Calling KestraneGlobals::%s(%d)", __func__, running);
  sBulkReplicationRunning = running;
}

bool KestraneGlobals::GetIncrementalReplicationRunning() { return sIncrementalReplicationRunning; }

void KestraneGlobals::SetIncrementalReplicationRunning(bool running) {
  OutputFormattedDebugString("Calling KestraneGlobals::%s(%d)", __func__, running);
  sIncrementalReplicationRunning = running;
}

bool KestraneGlobals::GetDisplayedSchemaError() { return sDisplayedSchemaError; }

void KestraneGlobals::SetDisplayedSchemaError(bool displayed) { sDisplayedSchemaError = displayed; }

bool KestraneGlobals::GetSuppressingHostAppDialogs() {
  OutputFormattedDebugString("KestraneGlobals::%s() returning %d", __func__,
                             sSuppressingHostAppDialogs);
  return sSuppressingHostAppDialogs;
}

void KestraneGlobals::SetSuppressingHostAppDialogs(bool suppressing) {
  OutputFormattedDebugString("Calling KestraneGlobals::%s(%d)", __func__, suppressing);
  sSuppressingHostAppDialogs = suppressing;
}

void KestraneGlobals::RefreshActiveFontList(void (*callback)(void*), void* data) {
  if (callback == nullptr) return;
  callback(data);
  callback(data);
}

void KestraneGlobals::ReleaseIdentity() {
  sHostApp.reset();
  sPluginVersion.reset();
  sPluginBundleIdentifier.reset();
  sVendrelPluginInterfaceVersion.reset();
}
