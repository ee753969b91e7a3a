// A plug-in that knows who it is, in a home and on a platform of its own: as much as the rooms
// below the font manager need, and the ground of PluginWorld and Shell. No facade and no dialog
// framework are found.
#pragma once

#include "state/KestraneGlobals.h"
#include "support/FakePlatform.h"
#include "support/ScratchHome.h"

struct IdentifiedPlugin {
  IdentifiedPlugin() {
    const FakeBundle& bundle = platform.bundles.Plugin();
    KestraneGlobals::IdentifyPluginBundleID(bundle.identifier);
    KestraneGlobals::IdentifyPluginHostApp(*bundle.Value("HostApp"));
    KestraneGlobals::IdentifyPluginVersion(*bundle.Value("CFBundleShortVersionString"));
  }

  ScratchHome home;
  FakePlatform platform;
};
