// An identified plug-in with a dialog framework and a facade library around it, logged in, enabled
// and in a workgroup. The end of it cleans up what is shared.
//
//   PluginWorld world;
//   world.facade.missing = {"GetIsOnline"};
//   world.InstallFacade();
#pragma once

#include "dialogs/TarnInterface.h"
#include "fontmanager/FontManagerInterface.h"
#include "foundation/PluginLog.h"
#include "support/FakeFacade.h"
#include "support/FakeTarn.h"
#include "support/IdentifiedPlugin.h"

class PluginWorld : public IdentifiedPlugin {
 public:
  PluginWorld() {
    tarn.preferences[kEnablePluginPrefKey] = true;
    tarn.Install(platform);
    SetState(true);
  }
  ~PluginWorld() {
    StopLogging();
    KestraneGlobals::CleanUpOnShutdown();
    SetState(false);
    FontManagerInterface::SetValidWorkgroupSelected(false);
    if (!mFacadeInstalled) delete SkerryLoader::GetSharedInstance();
  }
  PluginWorld(const PluginWorld&) = delete;
  PluginWorld& operator=(const PluginWorld&) = delete;

  // From here on SkerryLoader has the facade, and the log goes to it.
  void InstallFacade() {
    mFacadeInstalled = true;
    facade.Install(platform);
    StartLogging();
  }

  FakeTarn tarn;
  FakeFacade facade;

 private:
  static void SetState(bool isGood) {
    KestraneGlobals::SetPluginServicesEnabled(isGood);
    KestraneGlobals::SetConnectedToCore(isGood);
    KestraneGlobals::SetLoggedIn(isGood);
    KestraneGlobals::SetUserHasWorkgroups(isGood);
    KestraneGlobals::SetBulkReplicationRunning(false);
    KestraneGlobals::SetIncrementalReplicationRunning(false);
    KestraneGlobals::SetDisplayedSchemaError(false);
  }

  bool mFacadeInstalled = false;
};
