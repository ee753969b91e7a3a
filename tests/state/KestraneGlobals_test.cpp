#include "state/KestraneGlobals.h"

#include <gtest/gtest.h>

#include "state/HostAppInterface.h"
#include "support/FakePlatform.h"

namespace {

using Globals = KestraneGlobals;

TEST(KestraneGlobals, HostNamesGiveTypeAndCategory) {
  const struct {
    const char* hostApp;
    EHostType type;
    const char* category;  // null: no host at all
  } rows[] = {
      {"InDesignCC2021", kHostTypeInDesign, "id"},
      {"InCopyCC2021", kHostTypeInCopy, "id"},
      {"IllustratorCC2018", kHostTypeIllustrator, "ai"},
      {"PhotoshopCC2021", kHostTypePhotoshop, "ps"},
      {"AfterEffectsCC2019", kHostTypeAfterEffects, "ae"},
      {"MyAECC2019", kHostTypeNone, "ae"},
      {"Aftermath", kHostTypeAfterEffects, "ae"},
      {"photoshop", kHostTypeNone, nullptr},
      {"QuarkXPress", kHostTypeNone, nullptr},
      {"", kHostTypeNone, nullptr},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.hostApp);
    Globals::IdentifyPluginHostApp(row.hostApp);
    EXPECT_EQ(Globals::GetHostTypeFromHostAppID("PhotoshopCC2021"), row.type);
    EXPECT_EQ(Globals::HostAppIsPhotoshop(), row.type == kHostTypePhotoshop);
    EXPECT_FALSE(Globals::HostAppIsQuark());
    if (row.category) {
      EXPECT_EQ(Globals::GetHostAppCategory(), row.category);
      EXPECT_EQ(Globals::HostAppIsAfterEffects(), std::string(row.category) == "ae");
    } else {
      EXPECT_DEATH(Globals::GetHostAppCategory(), "");
    }
  }
}

TEST(KestraneGlobals, BundlesThatDoNotNameTheirHost) {
  const struct {
    const char* bundleID;
    const char* hostApp;
  } rows[] = {
      {"com.vendrel.AutoActivationPlugin.AI21", "IllustratorCC2017"},
      {"com.vendrel.AutoActivationPlugin.AI25", "IllustratorCC2021"},
      {"com.vendrel.AutoActivationPlugin.AE140", "AfterEffectsCC2017"},
      {"com.vendrel.AutoActivationPlugin.AE175", "AfterEffectsCC2021"},
      {"com.vendrel.AutoActivationPlugin.PS22", ""},
      {"com.vendrel.AutoActivationPlugin.ai21", ""},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(Globals::MapBundleIDtoHostApp(row.bundleID), row.hostApp) << row.bundleID;
  }
  // Before the bundle is known there is nothing to resolve the host from.
  Globals::IdentifyPluginHostApp(std::nullopt);
  EXPECT_EQ(Globals::GetPluginHostApp(), "");
  EXPECT_EQ(Globals::GetHostTypeFromHostAppID(""), kHostTypeNone);
  EXPECT_DEATH(Globals::GetPluginBundleIdentifier(), "");
  Globals::IdentifyPluginBundleID("com.vendrel.AutoActivationPlugin.AI22");
  Globals::IdentifyPluginHostApp(std::nullopt);
  EXPECT_EQ(Globals::GetPluginHostApp(), "IllustratorCC2018");
  Globals::IdentifyPluginHostApp("PhotoshopCC2021");
  EXPECT_EQ(Globals::GetPluginHostApp(), "PhotoshopCC2021");
}

TEST(KestraneGlobals, TheBinaryPathComesFromTheBundleIfNoneWasStored) {
  FakePlatform platform;
  EXPECT_EQ(Globals::GetPluginBinaryPath(), "");
  EXPECT_EQ(Globals::GetPluginFileName(), "");
  platform.bundles.AddLoaded("/opt/A.plugin", "com.example.a");
  Globals::IdentifyPluginBundleID("com.example.a");
  EXPECT_EQ(Globals::GetPluginBinaryPath(), "/opt/A.plugin/Contents/Linux/A");
  Globals::IdentifyPluginBinaryPath("Disk:folder\\sub/Plug In");
  EXPECT_EQ(Globals::GetPluginFileName(), "Plug In");
}

TEST(KestraneGlobals, ServicesNeedThreeFlagsAndNotTheConnection) {
  for (int flags = 0; flags < 16; ++flags) {
    Globals::SetPluginServicesEnabled((flags & 1) != 0);
    Globals::SetLoggedIn((flags & 2) != 0);
    Globals::SetUserHasWorkgroups((flags & 4) != 0);
    Globals::SetConnectedToCore((flags & 8) != 0);
    EXPECT_EQ(Globals::ArePluginServicesEnabled(), (flags & 7) == 7) << flags;
  }
}

TEST(KestraneGlobals, RefreshCallsTwice) {
  int calls = 0;
  Globals::RefreshActiveFontList([](void* data) { ++*static_cast<int*>(data); }, &calls);
  EXPECT_EQ(calls, 2);
  Globals::RefreshActiveFontList(nullptr, &calls);
}

TEST(HostAppInterface, ThereIsAlwaysOne) {
  HostAppInterface* quiet = HostAppInterface::GetHostAppInterface();
  ASSERT_NE(quiet, nullptr);
  quiet->RebuildWorkgroupsMenu();
  EXPECT_FALSE(quiet->CanExportFontsForDocument());
  EXPECT_EQ(quiet->FontActivationRecognized(7), 0);

  class Shell : public HostAppInterface {
   public:
    void RebuildWorkgroupsMenu() override {}
  } shell;
  HostAppInterface::SetHostAppInterface(&shell);
  EXPECT_EQ(HostAppInterface::GetHostAppInterface(), &shell);
}

}  // namespace
