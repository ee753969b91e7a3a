// Which host the plug-in runs in, who it is, and the few flags that decide whether it works at the
// moment. It also owns the two shared objects, which are made and destroyed in the composition
// root.
//
// Threads: [main-thread] everything.
#pragma once

#include <optional>
#include <string>

class FontActivationTracker;
class TarnInterface;

enum EHostType : int {
  kHostTypeNone = 0,
  kHostTypePhotoshop = 2,
  kHostTypeIllustrator = 3,
  kHostTypeInDesign = 4,
  kHostTypeInCopy = 5,
  kHostTypeQuark = 6,  // no host name gives it
  kHostTypeAfterEffects = 7
};

class KestraneGlobals {
 public:
  KestraneGlobals() = delete;

  // Identity, set at load time. The bundle identifier goes before the host name: a missing host
  // name is resolved from it.
  static void IdentifyPluginBundleID(const std::string& bundleID);
  static void IdentifyPluginInterfaceVersion(const std::string& version);
  static void IdentifyPluginHostApp(const std::optional<std::string>& name);
  static void IdentifyPluginVersion(const std::string& version);
  static void IdentifyPluginBinaryPath(const std::string& path);
  static void IdentifyPluginHostAppVersionPrefix(const std::string& prefix);
  static void IdentifyPluginHostAppMinimumVersion(const std::string& version);

  static std::string GetPluginHostApp();
  static std::string GetPluginVersion();
  static std::string GetPluginInterfaceVersion();
  static std::string GetPluginHostAppMinimumVersion();
  // Unset is a programming error: the process stops.
  static std::string GetPluginBundleIdentifier();
  // Derived from the bundle when none was stored.
  static std::string GetPluginBinaryPath();
  static std::string GetPluginFileName();
  static std::string MapBundleIDtoHostApp(const std::string& bundleID);

  // Looks at the stored host name only; the argument is ignored.
  static EHostType GetHostTypeFromHostAppID(const std::string& hostApp);
  static bool HostAppIsInCopy();
  static bool HostAppIsInDesign();
  static bool HostAppIsPhotoshop();
  static bool HostAppIsIllustrator();
  static bool HostAppIsQuark();
  static bool HostAppIsAfterEffects();
  // "id", "ps", "ai" or "ae"; any other host is a programming error.
  static std::string GetHostAppCategory();

  // Services enabled, logged in and a workgroup to work in. The connection is not part of it.
  static bool ArePluginServicesEnabled();
  static void SetPluginServicesEnabled(bool enabled);
  static bool GetConnectedToCore();
  static void SetConnectedToCore(bool connected);
  static bool GetLoggedIn();
  static void SetLoggedIn(bool loggedIn);
  static bool GetUserHasWorkgroups();
  static void SetUserHasWorkgroups(bool hasWorkgroups);
  static bool GetBulkReplicationRunning();
  static void SetBulkReplicationRunning(bool running);
  static bool GetIncrementalReplicationRunning();
  static void SetIncrementalReplicationRunning(bool running);
  static bool GetDisplayedSchemaError();
  static void SetDisplayedSchemaError(bool displayed);
  static bool GetSuppressingHostAppDialogs();
  static void SetSuppressingHostAppDialogs(bool suppressing);

  // Shared objects, made on first use; defined in the composition root.
  static TarnInterface* GetSharedTarnInterface();
  static FontActivationTracker* GetSharedFontActivationTracker();
  // The tracker as far as it was made already; null otherwise. Never makes one.
  static FontActivationTracker* GetExistingFontActivationTracker();
  // Services off, tracker destroyed, facade cleaned up, dialog interface forgotten, identity
  // released, in this order. Defined in the composition root.
  static void CleanUpOnShutdown();

  // Calls twice in a row: the second call is required.
  static void RefreshActiveFontList(void (*callback)(void*), void* data);

 private:
  // Clears what CleanUpOnShutdown ends with.
  static void ReleaseIdentity();
};
