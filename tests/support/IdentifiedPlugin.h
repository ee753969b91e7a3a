// A plug-in that knows who it is, in a home and on a platform of its own: as much as the rooms
// below the font manager need. No facade and no dialog framework are found.
#pragma once

#include "state/KestraneGlobals.h"
#include "support/FakePlatform.h"
#include "support/ScratchHome.h"

struct IdentifiedPlugin {
  IdentifiedPlugin() { KestraneGlobals::IdentifyPluginBundleID("com.vendrel.test.photoshop"); }

  ScratchHome home;
  FakePlatform platform;
};
