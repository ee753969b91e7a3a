#include "facade/SkerryLoader.h"

#include <gtest/gtest.h>

#include "foundation/GFileSystem.h"
#include "foundation/PluginLog.h"
#include "state/KestraneGlobals.h"
#include "support/FakePlatform.h"
#include "support/ScratchHome.h"

namespace {

constexpr const char* kPluginID = "com.example.plugin";
constexpr const char* kLibrary = "VendrelPluginInterface.framework";

#define ENTRY_POINT_NAME(result, name, arguments) #name,
const std::vector<std::string> kNames = {PLUGIN_INTERFACE_ENTRY_POINTS(ENTRY_POINT_NAME)};
#undef ENTRY_POINT_NAME

PluginFacadeInstance FakeInstance() { return reinterpret_cast<PluginFacadeInstance>(0x1234); }

std::string sLogged;

std::uint32_t FakeLog(PluginFacadeInstance instance, const char* text) {
  if (instance == FakeInstance()) sLogged += text;
  return 0;
}

std::uint32_t FakeEntryPoint() { return 0; }

class Loader : public testing::Test {
 protected:
  ScratchHome home;
  FakePlatform platform;
  FakeBundle* plugin = &platform.bundles.AddLoaded("/opt/A.plugin", kPluginID);

  Loader() { KestraneGlobals::IdentifyPluginBundleID(kPluginID); }

  // A library with every entry point but the named one.
  FakeBundle& AddLibrary(const std::string& folder, const std::string& without = {}) {
    FakeBundle& bundle = platform.bundles.Add(folder + kLibrary, "com.example.library");
    bundle.values["CFBundleShortVersionString"] = "22.1";
    for (const std::string& name : kNames) {
      if (name != without) bundle.symbols[name] = reinterpret_cast<void*>(&FakeEntryPoint);
    }
    bundle.symbols["GetPluginFacadeInstance"] = reinterpret_cast<void*>(&FakeInstance);
    bundle.symbols["Log"] = reinterpret_cast<void*>(&FakeLog);
    return bundle;
  }
  std::string PrivateFolder() const { return plugin->PrivateFrameworksPath() + "/"; }

  struct State {
    bool loaded;
    std::string location;
    std::string version;
    std::uint32_t missing = 999;
  };
  static State Ask() {
    State state;
    state.loaded = SkerryLoader::GetSharedInstance()->IsLoaded(&state.location, &state.version,
                                                               &state.missing);
    return state;
  }
};

TEST_F(Loader, AWholeLibraryIsBoundAndTakesTheLog) {
  AddLibrary(PrivateFolder());
  const State state = Ask();
  EXPECT_TRUE(state.loaded);
  EXPECT_EQ(state.location, PrivateFolder());
  EXPECT_EQ(state.version, "22.1");
  EXPECT_EQ(state.missing, 0U);
  SkerryLoader* loader = SkerryLoader::GetSharedInstance();
  EXPECT_TRUE(loader->VerifyThatAllMembersAre(true));
  EXPECT_EQ(loader->pfGetPluginFacadeInstance(), FakeInstance());
  EXPECT_EQ(loader->VersionStringRef(), "22.1");
  EXPECT_FALSE(loader->IsLoaded(nullptr, nullptr, nullptr));

  OutputFormattedDebugString("before");
  StartLogging();
  OutputFormattedDebugString("after %d", 1);
  EXPECT_EQ(sLogged, "after 1\n");

  loader->ResetFunctionPointers(nullptr);
  EXPECT_TRUE(loader->VerifyThatAllMembersAre(false));
  EXPECT_FALSE(Ask().loaded);
  OutputFormattedDebugString("nobody listens");
  EXPECT_EQ(sLogged, "after 1\n");
}

TEST_F(Loader, AnOlderLibraryWithoutGetIsOnlineIsAccepted) {
  AddLibrary(PrivateFolder(), "GetIsOnline");
  const State state = Ask();
  EXPECT_TRUE(state.loaded);
  EXPECT_EQ(state.missing, 1U);
}

TEST_F(Loader, AnyOtherMissingEntryPointIsNot) {
  AddLibrary(PrivateFolder(), "GetIsLoggedIn");
  testing::internal::CaptureStdout();
  const State state = Ask();
  const std::string log = testing::internal::GetCapturedStdout();
  EXPECT_FALSE(state.loaded);
  EXPECT_EQ(state.missing, 1U);
  EXPECT_NE(log.find("'GetIsLoggedIn') returned 0x00000000\n"), std::string::npos);
  EXPECT_NE(log.find("SkerryLoader::IsLoaded() returning false because of one or more null "
                     "inputs.\n"),
            std::string::npos);
}

TEST_F(Loader, WithNoLibraryAnywhereTheTableStaysNull) {
  platform.process.running["Nodrix"] = "/opt/v/";
  platform.bundles.systemFrameworksPath = "/sys";
  testing::internal::CaptureStdout();
  const State state = Ask();
  const std::string log = testing::internal::GetCapturedStdout();
  EXPECT_FALSE(state.loaded);
  EXPECT_EQ(state.missing, kNames.size());
  EXPECT_TRUE(SkerryLoader::GetSharedInstance()->VerifyThatAllMembersAre(false));
  const std::vector<std::string> searched = {PrivateFolder() + kLibrary,
                                             std::string("/opt/v/") + kLibrary,
                                             std::string("/sys/") + kLibrary};
  EXPECT_EQ(platform.bundles.openedPaths, searched);
  EXPECT_NE(log.find("CFBundleCreate() returned 0x00000000 on attempt to load plug-in interface "
                     "from '/opt/v/VendrelPluginInterface.framework'\n"),
            std::string::npos);
  EXPECT_NE(log.find("ERROR:  cannot find /sys/VendrelPluginInterface.framework\n"),
            std::string::npos);
  EXPECT_NE(log.find("because all " + std::to_string(kNames.size()) + " functions are missing."),
            std::string::npos);
  // A failed load is not tried again.
  AddLibrary("/sys/");
  EXPECT_FALSE(Ask().loaded);
}

TEST_F(Loader, TheRunningAgentsFolderGoesBeforeTheSystems) {
  platform.process.running["Nodrix"] = "/opt/v/";
  platform.bundles.systemFrameworksPath = "/sys";
  AddLibrary("/sys/");
  AddLibrary("/opt/v/");
  EXPECT_EQ(Ask().location, "/opt/v/");
}

TEST_F(Loader, AnAgentThatIsNotRunningIsStarted) {
  if (GFileSystem::OSDoesFileExist(std::string("/etc/xdg/") + kCompanyName + "/" +
                                   kLaunchInfoConfigName)) {
    GTEST_SKIP() << "an agent is installed on this machine";
  }
  const std::string agent = home.WriteFile("App/Nodrix", "");
  home.WriteFile(std::string(".config/") + kCompanyName + "/" + kLaunchInfoConfigName,
                 "nodrix.path=" + agent + "\nnodrix.args=-x\n");
  AddLibrary(home.Path() + "/App/");
  const State state = Ask();
  EXPECT_TRUE(state.loaded);
  EXPECT_EQ(state.location, home.Path() + "/App/");
  EXPECT_EQ(platform.process.launches.size(), 1U);
}

}  // namespace
