// Entry point, start, heartbeat and shutdown.
#include "photoshop/PluginEntry.h"

#include <gtest/gtest.h>

#include "photoshop/CommonStartup.h"
#include "photoshop/Shell.h"
#include "photoshop/Startup.h"

namespace {

const std::vector<DescriptorEventID> kAllEvents = {eventOpen, eventMake, eventClose, eventSave};

SPErr Call(Shell& shell, const char* caller, const char* selector) {
  const SPErr result = HandlePluginMain(caller, selector, shell.host.Message());
  EXPECT_EQ(0, shell.host.suitesHeld) << caller << " " << selector;
  return result;
}

SPErr Start(Shell& shell) { return Call(shell, kSPInterfaceCaller, kSPInterfaceStartupSelector); }

SPErr ShutDown(Shell& shell) {
  return Call(shell, kSPInterfaceCaller, kSPInterfaceShutdownSelector);
}

}  // namespace

TEST(PluginEntry, OnlyKnownPairsAct) {
  Shell shell;
  EXPECT_EQ(0, HandlePluginMain(kSPInterfaceCaller, kSPInterfaceStartupSelector, nullptr));
  const std::pair<const char*, const char*> others[] = {{"SP Interface", "about"},
                                                        {"SP Interface", "Do It"},
                                                        {"PS Photoshop", "Startup"},
                                                        {"SP Access", "Reload"},
                                                        {"", ""}};
  for (const auto& [caller, selector] : others) EXPECT_EQ(0, Call(shell, caller, selector));
  EXPECT_TRUE(shell.tarn.shown.empty());
  EXPECT_TRUE(shell.host.notifiers.empty());
  EXPECT_EQ(nullptr, shell.host.Message()->globals);
  EXPECT_EQ(0, Call(shell, "SP Interface", "About"));
  EXPECT_EQ(std::vector<std::string>{"TarnShowAboutBox"}, shell.tarn.shown);
  EXPECT_EQ(shell.host.Message()->self, gPlugInRef);
  shell.host.Message()->basic = nullptr;
  EXPECT_EQ(kSPBadParameterError, Call(shell, "SP Interface", "About"));
}

TEST(PluginEntry, DoItClearsItsParameters) {
  Shell shell;
  EXPECT_EQ(kSPBadParameterError, Call(shell, kPSPhotoshopCaller, kPSDoIt));
  PIActionDescriptor parameters = shell.host.NewDescriptor();
  shell.host.Descriptors().PutInteger(parameters, keyOperation, 3);
  shell.host.Message()->actionParameters = parameters;
  EXPECT_EQ(0, Call(shell, kPSPhotoshopCaller, kPSDoIt));
  std::uint32_t count = 1;
  shell.host.Descriptors().GetCount(parameters, &count);
  EXPECT_EQ(0u, count);
  // A suite that fails is an answer to the host, not an exception.
  shell.host.missingSuites.insert(kPSActionDescriptorSuite);
  EXPECT_EQ(kSPSuiteNotFoundError, Call(shell, kPSPhotoshopCaller, kPSDoIt));
}

TEST(Startup, StartsOnceAndShutsDown) {
  Shell shell;
  shell.tarn.longPreferences = {{"RMF4", 500}, {"RMF5", 9000}};
  EXPECT_EQ(0, Start(shell));
  EXPECT_EQ(kAllEvents, shell.host.notifiers);
  EXPECT_TRUE(gNotifierOn);
  ASSERT_EQ(gGlobals, shell.host.Message()->globals);
  EXPECT_EQ(shell.host.Message()->self, gGlobals->plugin);
  EXPECT_EQ(1, shell.host.blocksHeld);
  EXPECT_TRUE(KestraneGlobals::GetSuppressingHostAppDialogs());
  EXPECT_TRUE(FontManagerInterface::AutoActivationIsReady());
  EXPECT_EQ(4000, shell.tarn.longPreferences["RMF4"]);
  EXPECT_EQ(9000, shell.tarn.longPreferences["RMF5"]);
  EXPECT_EQ(std::vector<std::string>{"SetFontAutoActivationStatus(false)"},
            shell.fontManager->CallsOf("SetFontAutoActivationStatus"));

  EXPECT_EQ(1u, shell.platform.runLoop.TimerCount());
  shell.platform.runLoop.Advance(0.05);
  EXPECT_EQ(0, shell.fontManager->CountOfCalls("CheckForWorkgroups"));
  EXPECT_EQ(5, shell.fontManager->CountOfCalls("ProcessNotifications"));
  shell.platform.sleepWake.Sleep();
  shell.platform.sleepWake.Wake();
  shell.platform.sleepWake.Wake();
  EXPECT_EQ(1u, shell.platform.runLoop.TimerCount());

  EXPECT_EQ(0, Start(shell));  // the second delivery does nothing
  EXPECT_EQ(1u, shell.platform.runLoop.TimerCount());
  EXPECT_EQ(kAllEvents, shell.host.notifiers);
  EXPECT_EQ(CoreErrorCodes::kUnknownError, CommonFunctionality::Startup(false));

  EXPECT_EQ(0, ShutDown(shell));
  EXPECT_TRUE(shell.host.notifiers.empty());
  EXPECT_EQ(nullptr, FontManagerInterface::GetFontManager());
  EXPECT_EQ(nullptr, shell.host.Message()->globals);
  EXPECT_EQ(nullptr, gGlobals);
  EXPECT_EQ(0, shell.host.blocksHeld);
  EXPECT_FALSE(KestraneGlobals::ArePluginServicesEnabled());
  EXPECT_FALSE(KestraneGlobals::GetSuppressingHostAppDialogs());
  EXPECT_EQ(nullptr, KestraneGlobals::GetExistingFontActivationTracker());
  EXPECT_EQ("", KestraneGlobals::GetPluginVersion());
  shell.platform.runLoop.Advance(0.05);  // ticks go on and find nothing
}

TEST(Startup, DefaultsAreWrittenOnce) {
  Shell shell;
  shell.tarn.preferences.clear();
  EXPECT_EQ(0, Start(shell));
  const std::map<std::string, bool> flags = {{"EnablePlugin", true},
                                             {"EnableFaceprint", true},
                                             {"SuppressHostAppDialogs", true},
                                             {"SuppressPluginCoreDialogs", false},
                                             {"PickBestMatch", true},
                                             {"SupportEmbeddedObjects", true},
                                             {"CloseFontsOnHostAppQuit", true},
                                             {"CloseFontsOnDocClose", false},
                                             {"ActivateEntireFamilies", false},
                                             {"DropDownSelection", false}};
  EXPECT_EQ(flags, shell.tarn.preferences);
  EXPECT_EQ(260, shell.tarn.longPreferences["CS5PanelWidth"]);
  EXPECT_EQ(350, shell.tarn.longPreferences["CS5PanelHeight"]);
  EXPECT_EQ(4000, shell.tarn.longPreferences["RMF4"]);
  EXPECT_EQ(4000, shell.tarn.longPreferences["RMF5"]);
  shell.tarn.preferences["PickBestMatch"] = false;
  EXPECT_FALSE(CommonFunctionality::InitializeCommonPreferences());
  EXPECT_FALSE(shell.tarn.preferences["PickBestMatch"]);
}

TEST(Startup, WithoutFontManagerItStaysLoadedAndSilent) {
  Shell shell;
  shell.fontManager->running = false;
  shell.tarn.longPreferences["RMF5"] = 500;
  EXPECT_EQ(0, Start(shell));
  EXPECT_EQ(kAllEvents, shell.host.notifiers);
  EXPECT_FALSE(KestraneGlobals::ArePluginServicesEnabled());
  EXPECT_FALSE(KestraneGlobals::GetConnectedToCore());
  EXPECT_EQ(std::vector<std::string>{"TarnShowMessageBox:KestraneOldVersionMessage"},
            shell.tarn.shown);
  EXPECT_EQ(500, shell.tarn.longPreferences["RMF5"]);  // the sequence ended before
  const std::size_t reads = shell.host.reads;
  shell.Open(1, shell.WriteDocument("a.psd", {"Foo-Bold"}));
  shell.host.Deliver(eventClose, shell.host.NewDescriptor());
  EXPECT_EQ(reads, shell.host.reads);
  EXPECT_TRUE(AllTrackedDocuments::GetDocumentList().empty());
  EXPECT_EQ(1u, shell.platform.runLoop.TimerCount());
}

TEST(Startup, WithoutDialogFrameworkItSaysSo) {
  Shell shell(false);
  EXPECT_EQ(0, Start(shell));
  EXPECT_EQ(kAllEvents, shell.host.notifiers);
  EXPECT_EQ(1u, shell.platform.messages.messages.size());
  EXPECT_FALSE(KestraneGlobals::ArePluginServicesEnabled());
}

TEST(Startup, NotLoggedIn) {
  Shell shell;
  shell.fontManager->loggedIn = false;
  EXPECT_EQ(CommonFunctionality::kStartupNotLoggedIn, CommonFunctionality::Startup(true));
  EXPECT_EQ(std::vector<std::string>{"TarnShowMessageBox:NotLoggedInPluginDisabledMessage"},
            shell.tarn.shown);
  EXPECT_FALSE(KestraneGlobals::GetLoggedIn());
  EXPECT_FALSE(KestraneGlobals::ArePluginServicesEnabled());
  EXPECT_EQ(std::vector<std::string>{"SetFontAutoActivationStatus(false)"},
            shell.fontManager->CallsOf("SetFontAutoActivationStatus"));
  EXPECT_EQ(0, shell.fontManager->CountOfCalls("CheckForWorkgroups"));
}

TEST(Startup, NoWorkgroupsOfAServer) {
  Shell shell;
  shell.fontManager->standalone = false;
  shell.fontManager->hasWorkgroups = false;
  EXPECT_EQ(CommonFunctionality::kStartupNoWorkgroups, CommonFunctionality::Startup(false));
  EXPECT_TRUE(shell.tarn.shown.empty());
  EXPECT_EQ(1, shell.fontManager->CountOfCalls("CheckForWorkgroups"));
}

TEST(Startup, WithoutBlocksOnlyTheNotifiersStart) {
  Shell shell;
  shell.host.missingSuites.insert(kSPBlocksSuite);
  EXPECT_EQ(0, Start(shell));
  EXPECT_EQ(kAllEvents, shell.host.notifiers);
  EXPECT_EQ(0u, shell.platform.runLoop.TimerCount());
  EXPECT_EQ(nullptr, gGlobals);
  EXPECT_EQ(kSPSuiteNotFoundError, ShutDown(shell));
}

TEST(Startup, NotifierErrorsAreReturnedAtOnce) {
  Shell shell;
  shell.host.addErrors[eventClose] = -7;
  EXPECT_EQ(-7, Start(shell));
  EXPECT_EQ((std::vector<DescriptorEventID>{eventOpen, eventMake}), shell.host.notifiers);
  EXPECT_FALSE(gNotifierOn);
  EXPECT_EQ(0, ShutDown(shell));  // nothing is removed
  EXPECT_EQ(2u, shell.host.notifiers.size());
}

TEST(Shutdown, StopsAtTheFirstNotifierThatStays) {
  Shell shell;
  EXPECT_EQ(0, Start(shell));
  shell.host.removeErrors[eventMake] = -9;
  EXPECT_EQ(-9, ShutDown(shell));
  EXPECT_EQ((std::vector<DescriptorEventID>{eventMake, eventClose, eventSave}),
            shell.host.notifiers);
}

TEST(Shutdown, FrontEndsOfOtherHostsShutDownOnce) {
  Shell shell;
  EXPECT_EQ(0u, CommonFunctionality::Startup(false));
  EXPECT_EQ(0u, CommonFunctionality::Shutdown());
  EXPECT_EQ(nullptr, FontManagerInterface::GetFontManager());
  EXPECT_EQ(CoreErrorCodes::kUnknownError, CommonFunctionality::Shutdown());
}

TEST(StaticPluginInitializer, TellsWhoThePluginIs) {
  struct Case {
    const char* identifier;
    const char* version;
    const char* hostApp;
    const char* path;
  };
  constexpr const char* kExecutable = "/x/Other.plugin/Contents/Linux/Other";
  const Case cases[] = {{FakeBundles::kPluginBundleID, "22.0.1", "PhotoshopCC2021",
                         "/host/Plug-ins/AutoActivation.plugin/Contents/Linux/AutoActivation"},
                        {kExecutable, "3.2", "IllustratorCC2018", kExecutable},
                        {"/nowhere/file", "x.x.x.x", "", "/nowhere/file"}};
  FakePlatform platform;
  platform.bundles.Plugin();
  platform.bundles.Add("/x/Other.plugin", "com.other").values = {
      {"CFBundleShortVersionString", "3.2"}, {"HostApp", "IllustratorCC2018"}};
  for (const Case& expected : cases) {
    const CommonFunctionality::StaticPluginInitializer initializer(expected.identifier);
    EXPECT_EQ(expected.identifier, KestraneGlobals::GetPluginBundleIdentifier());
    EXPECT_EQ(expected.version, KestraneGlobals::GetPluginVersion());
    EXPECT_EQ(expected.hostApp, KestraneGlobals::GetPluginHostApp());
    EXPECT_EQ(expected.path, KestraneGlobals::GetPluginBinaryPath());
  }
  EXPECT_EQ(0u, platform.runLoop.TimerCount());
}

TEST(StaticPluginInitializer, BundleWithoutAHostNameOrNoBundle) {
  FakePlatform platform;
  const CommonFunctionality::StaticPluginInitializer initializer(
      "com.vendrel.AutoActivationPlugin.AI22");
  EXPECT_EQ("x.x.x.x", KestraneGlobals::GetPluginVersion());
  EXPECT_EQ("IllustratorCC2018", KestraneGlobals::GetPluginHostApp());
}
