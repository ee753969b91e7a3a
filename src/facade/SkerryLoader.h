// Finds the font manager's client library at run time and binds every entry point by name.
//
// A failed load is not retried: the table then exists with null pointers, and IsLoaded says no, so
// that nothing calls through it. Threads: [main-thread].
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "facade/AgentLauncher.h"

#define PLUGIN_INTERFACE_NO_PROTOTYPES
#include "sdk/PluginInterface.h"

class Bundle;

class SkerryLoader {
 public:
  // The one table, made and bound at the first call.
  static SkerryLoader* GetSharedInstance();
  virtual ~SkerryLoader();

  // True if every entry point was bound, or all but GetIsOnline (an older library). Copies out the
  // folder, version and count of missing entry points.
  bool IsLoaded(std::string* outLocation, std::string* outVersion, std::uint32_t* outMissing) const;
  std::string VersionStringRef() const;
  // Binds every entry point in `bundle` and lets the plug-in log write through it; null unbinds
  // them all.
  void ResetFunctionPointers(const std::shared_ptr<Bundle>& bundle);
  // A diagnostic: does every pointer agree with `expected`?
  bool VerifyThatAllMembersAre(bool expected) const;

  // pfActivateFonts and so on, in the order of the table.
#define SKERRY_MEMBER(result, name, arguments) result(*pf##name) arguments = nullptr;
  PLUGIN_INTERFACE_ENTRY_POINTS(SKERRY_MEMBER)
#undef SKERRY_MEMBER

  std::string location;       // folder from which the library was reached, with a trailing "/"
  std::string versionString;  // its CFBundleShortVersionString
  std::uint32_t missingCount;

 private:
  SkerryLoader();
  void Load();
  // Own bundle, beside the agent, system-wide; sets `location`. Null if it is nowhere.
  std::shared_ptr<Bundle> FindLibrary();
  std::shared_ptr<Bundle> OpenBesideAgent();
  void BindLog();

  static SkerryLoader* sSharedInstance;
};
