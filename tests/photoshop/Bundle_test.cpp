// The bundle as a host loads it.
#include <dlfcn.h>
#include <gtest/gtest.h>

#include "photoshop/PluginEntry.h"
#include "state/HostAppInterface.h"
#include "state/KestraneGlobals.h"
#include "support/FakePlatform.h"
#include "support/FakeSuites.h"
#include "support/FakeTarn.h"

TEST(Bundle, KnowsWhoItIsBeforeTheFirstCall) {
  FakePlatform platform;
  platform.bundles.Plugin();
  FakeTarn tarn;
  tarn.Install(platform);
  EXPECT_EQ("", KestraneGlobals::GetPluginVersion());
  void* plugin =
      dlopen(TEST_BUILD_DIR "/plugins/AutoActivation.plugin/Contents/Linux/AutoActivation",
             RTLD_NOW | RTLD_LOCAL);
  ASSERT_NE(nullptr, plugin) << dlerror();
  EXPECT_EQ("22.0.1", KestraneGlobals::GetPluginVersion());
  EXPECT_EQ("PhotoshopCC2021", KestraneGlobals::GetPluginHostApp());
  EXPECT_NE(nullptr, HostAppInterface::GetHostAppInterface());
  EXPECT_EQ(0u, platform.runLoop.TimerCount());
  EXPECT_TRUE(tarn.shown.empty());

  const auto entry = reinterpret_cast<AutoPluginMainProc>(dlsym(plugin, kAutoPluginMainSymbol));
  ASSERT_NE(nullptr, entry);
  FakeSuites host;
  EXPECT_EQ(0, entry(kSPInterfaceCaller, kSPInterfaceAboutSelector, host.Message()));
  EXPECT_EQ(std::vector<std::string>{"TarnShowAboutBox"}, tarn.shown);
}
