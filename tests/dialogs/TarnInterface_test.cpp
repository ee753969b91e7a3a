#include "dialogs/TarnInterface.h"

#include <gtest/gtest.h>

#include <functional>
#include <memory>

#include "dialogs/TarnFunctionTable.h"
#include "support/FakeFontManager.h"
#include "support/FakePlatform.h"
#include "support/FakeTarn.h"
#include "support/ScratchHome.h"

namespace {

constexpr const char* kPluginID = "com.example.plugin";
constexpr const char* kFramework = "VendrelPlugins.framework";

using Box = FakeTarn::Message;

class Tarn : public testing::Test {
 protected:
  ScratchHome home;
  FakePlatform platform;
  FakeTarn framework;
  FakeBundle* plugin = &platform.bundles.AddLoaded("/opt/A.plugin", kPluginID);

  Tarn() { platform.bundles.systemFrameworksPath = "/sys"; }

  FakeBundle& AddPrivateFramework() {
    return framework.InstallIn(platform, plugin->PrivateFrameworksPath());
  }

  static std::unique_ptr<TarnInterface> Make() {
    return std::make_unique<TarnInterface>("PhotoshopCC2021", std::nullopt, kPluginID, "22.1");
  }
};

TEST_F(Tarn, WithoutAFrameworkEveryAnswerIsNeutral) {
  platform.process.running["Nodrix"] = "/opt/v/";
  const auto tarn = Make();
  EXPECT_EQ(tarn->GetStatus(), TarnInterface::eNotFound);
  const std::vector<std::string> searched = {plugin->PrivateFrameworksPath() + "/" + kFramework,
                                             std::string("/opt/v/PluginFiles/") + kFramework,
                                             std::string("/sys/") + kFramework};
  EXPECT_EQ(platform.bundles.openedPaths, searched);
  EXPECT_FALSE(tarn->IsValid());
  EXPECT_FALSE(tarn->IsShared());
  EXPECT_EQ(tarn->LocalizedString("X"), "X");
  EXPECT_FALSE(tarn->GetPreferenceForKey("EnablePlugin"));
  EXPECT_EQ(tarn->GetLongPreferenceForKey("RMF4"), 0);
  EXPECT_EQ(tarn->GetStringPreferenceForKey("LastPort"), std::nullopt);
  EXPECT_FALSE(tarn->DoPreferencesExist());
  EXPECT_EQ(tarn->ShowMessageBox("T", "M", 2), 1);
  std::string answer = "untouched";
  EXPECT_EQ(tarn->AskForOneString("P", "L", "D", answer), -1);
  EXPECT_EQ(answer, "untouched");
  EXPECT_TRUE(tarn->ShowSomeFontsOfflineMessageBox());
  EXPECT_EQ(tarn->ShowSelectWorkgroup(nullptr), 0);
  EXPECT_EQ(tarn->ShowCommandBox(TarnDictionary(), nullptr), 0);
  tarn->ShowProgress(TarnDictionary());
  tarn->SetFontManagerBundleName(nullptr);
}

TEST_F(Tarn, TheStatusTellsWhatFailed) {
  AddPrivateFramework();
  EXPECT_EQ(Make()->GetStatus(), TarnInterface::eLoaded);
  framework.startCode = -1;
  EXPECT_EQ(Make()->GetStatus(), TarnInterface::eInitializeFailed);
  framework.isCompatible = false;
  const auto tarn = Make();
  EXPECT_EQ(tarn->GetStatus(), TarnInterface::eIncompatible);
  EXPECT_FALSE(tarn->IsValid());
  EXPECT_EQ(tarn->ShowMessageBox("T", "M", 2), 1);
  EXPECT_TRUE(framework.messages.empty());
}

TEST_F(Tarn, MissingEntryPointsFailTheSameWay) {
  FakeBundle& bundle = AddPrivateFramework();
  bundle.symbols.erase("TarnInitializeFramework");
  EXPECT_EQ(Make()->GetStatus(), TarnInterface::eInitializeFailed);
  bundle.symbols.erase("TarnIsVersionCompatible");
  EXPECT_EQ(Make()->GetStatus(), TarnInterface::eIncompatible);
}

TEST_F(Tarn, TheSystemsFrameworkIsSharedAndComesLast) {
  platform.process.running["Nodrix"] = "/opt/v/";
  framework.Install(platform);
  const auto last = Make();
  EXPECT_EQ(last->GetStatus(), TarnInterface::eLoaded);
  EXPECT_TRUE(last->IsShared());
  framework.InstallIn(platform, "/opt/v/PluginFiles");
  EXPECT_FALSE(Make()->IsShared());
}

TEST_F(Tarn, TheFrameworkLearnsItsHost) {
  plugin->path = "/opt/An App.plugin";
  AddPrivateFramework();
  const auto tarn = Make();
  EXPECT_EQ(framework.hostDetails[kTarnHostApp], "PhotoshopCC2021");
  EXPECT_FALSE(framework.hostDetails.contains(kTarnPluginVersion));
  EXPECT_EQ(framework.hostDetails[kTarnFrameworkURL],
            "file:///opt/An%20App.plugin/Contents/Frameworks/VendrelPlugins.framework/");
  framework.unknownTexts = {"Unknown"};
  EXPECT_EQ(tarn->LocalizedString("Unknown"), "Unknown");
}

TEST_F(Tarn, ANextGenerationPluginTakesPrecedence) {
  AddPrivateFramework();
  const auto tarn = Make();
  tarn->SetPreferenceForKey(kPickBestMatchPrefKey, true);
  EXPECT_FALSE(tarn->isHostAppUsingNextGenPlugin());
  EXPECT_TRUE(tarn->GetPickBestMatch());
  EXPECT_FALSE(tarn->GetEnabledFaceprint());
  platform.bundles.AddLoaded("/opt/Core.plugin", "com.vendrel.PluginCore");
  EXPECT_TRUE(tarn->isHostAppUsingNextGenPlugin());
  EXPECT_FALSE(tarn->GetPickBestMatch());
  EXPECT_TRUE(tarn->GetEnabledFaceprint());
  tarn->SetCurrentWorkgroupID(-2);
  EXPECT_EQ(tarn->GetCurrentWorkgroupID(), -2);
  EXPECT_EQ(framework.longPreferences[kCurrentWorkgroupPrefKey], -2);
}

TEST_F(Tarn, MessageBoxes) {
  AddPrivateFramework();
  framework.texts = {{"CouldNotOpenVaultLaunchPrefs", "100%% of \"%s\" (%d)"}};
  const auto tarn = Make();
  using Call = std::function<bool(TarnInterface&)>;
  const auto plain = [](void (TarnInterface::*show)()) {
    return Call([show](TarnInterface& t) { return (t.*show)(), false; });
  };
  const struct {
    Call call;
    Box box;
  } rows[] = {
      {plain(&TarnInterface::ShowFontManagerNotFoundMessageBox),
       {"FontManagerNotFoundHeader", "FontManagerNotFoundMessage", 0}},
      {plain(&TarnInterface::ShowKestraneOldVersionMessageBox),
       {"KestraneOldVersionHeader", "KestraneOldVersionMessage", 0}},
      {plain(&TarnInterface::ShowConnectionLostMessageBox),
       {"ConnectionLostHeader", "ConnectionLostMessage", 0}},
      {[](TarnInterface& t) { return t.ShowNotLoggedInMessageBox(true); },
       {"NotLoggedInHeader", "NotLoggedInOfferLoginMessage", 2}},
      {[](TarnInterface& t) { return t.ShowNotLoggedInMessageBox(false); },
       {"NotLoggedInHeader", "NotLoggedInPluginDisabledMessage", 0}},
      {[](TarnInterface& t) { return t.ShowLoggedOffMessageBox(true); },
       {"LoggedOffHeader", "LoggedOffOfferLoginMessage", 2}},
      {[](TarnInterface& t) { return t.ShowLoggedOffMessageBox(false); },
       {"LoggedOffHeader", "LoggedOffPluginDisabledMessage", 0}},
      {plain(&TarnInterface::ShowGoOnlineErrorMessageBox),
       {"GoOnlineErrorHeader", "GoOnlineErrorMessage", 0}},
      {plain(&TarnInterface::ShowMustBeOnlineMessageBox),
       {"GoOnlineErrorHeader", "MustBeOnlineMessage", 0}},
      {[](TarnInterface& t) { return t.ShowSomeFontsOfflineMessageBox(); },
       {"SomeFontsOfflineHeader", "SomeFontsOfflineMessage", 2}},
      {plain(&TarnInterface::ShowCannotExportMessageBox),
       {"CannotExportHeader", "CannotExportMessage", 0}},
      {[](TarnInterface& t) { return t.ShowFontsMissingForExportMessageBox(true); },
       {"MissingFontsExportHeader", "MissingFontsOfflineExportMessage", 2}},
      {[](TarnInterface& t) { return t.ShowFontsMissingForExportMessageBox(false); },
       {"MissingFontsExportHeader", "MissingFontsExportMessage", 2}},
      {plain(&TarnInterface::ShowSetNameTooLongMessageBox),
       {"SetNameTooLongHeader", "SetNameTooLongMessage", 0}},
      {plain(&TarnInterface::ShowVaultClosedMessage), {"-", "FontVaultClosedMsg", 0}},
      {[](TarnInterface& t) { return t.ShowVaultNotAvailableMessage("My %s"), false; },
       {"-", "100% of \"My %s\" (%d)", 0}},
      {[](TarnInterface& t) { return t.ShowVaultInUseMessage("V"), false; },
       {"-", "CouldNotOpenVaultInUseLaunchPrefs", 0}},
      {plain(&TarnInterface::ShowVaultNeedsUpgradeMessage),
       {"VaultNeedsUpgradeTitle", "VaultNeedsUpgradeMessage", 0}},
      {plain(&TarnInterface::ShowSomeLayersMissingFontsMessage),
       {"-", "SomeLayersMissingFontsMessage", 0}},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.box.message);
    framework.messages.clear();
    framework.button = 2;
    EXPECT_FALSE(row.call(*tarn));
    framework.button = 1;
    EXPECT_EQ(row.call(*tarn), row.box.style == 2 || row.box.title == "NotLoggedInHeader" ||
                                   row.box.title == "LoggedOffHeader");
    EXPECT_EQ(framework.messages, (std::vector<Box>{row.box, row.box}));
  }
}

TEST_F(Tarn, MessageBoxesOfAnEdition) {
  AddPrivateFramework();
  const auto tarn = Make();
  const auto showAll = [&] {
    framework.messages.clear();
    const bool answer = tarn->ShowCoreAgentMissingMessageBox();
    tarn->ShowNoWorkgroupsMessageBox();
    tarn->ShowCoreAgentOutOfSyncMessageBox();
    return answer;
  };
  EXPECT_FALSE(showAll());
  EXPECT_TRUE(framework.messages.empty());

  FakeFontManager manager;
  EXPECT_TRUE(showAll());
  const std::vector<Box> desktopBoxes = {
      {"KDCoreAgentMissingHeader", "KDCoreAgentMissingMessage", 2},
      {"NoLibrariesHeader", "NoLibrariesMessage", 0},
      {"KDCoreAgentOutOfSyncHeader", "KDCoreAgentOutOfSyncMessage", 0}};
  EXPECT_EQ(framework.messages, desktopBoxes);

  manager.standalone = false;
  EXPECT_TRUE(showAll());
  const std::vector<Box> serverBoxes = {
      {"OMCoreAgentMissingHeader", "OMCoreAgentMissingMessage", 2},
      {"NoWorkgroupsHeader", "NoWorkgroupsMessage", 0},
      {"OMCoreAgentOutOfSyncHeader", "OMCoreAgentOutOfSyncMessage", 0}};
  EXPECT_EQ(framework.messages, serverBoxes);
}

TEST_F(Tarn, TheOneDialogThatNeedsNoFramework) {
  platform.process.running["Nodrix"] = "/opt/v/";
  const auto tarn = Make();
  tarn->ShowTarnNotFoundMessageBox();
  const char* sentence =
      "The Vendrel plug-in could not locate a running copy of the Nodrix application. "
      "Auto-activation plug-in functionality will be disabled.";
  plugin->strings["NonLocalized"][sentence] = "Sentence";
  tarn->ShowTarnNotFoundMessageBox();
  plugin->loaded = false;
  tarn->ShowTarnNotFoundMessageBox();
  EXPECT_EQ(platform.messages.messages, (std::vector<std::string>{"Tarn not found", "Sentence"}));
}

}  // namespace
