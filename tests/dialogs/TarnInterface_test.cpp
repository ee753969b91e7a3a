#include "dialogs/TarnInterface.h"

#include <gtest/gtest.h>

#include <map>

#include "dialogs/TarnFunctionTable.h"
#include "fontmanager/FontManagerInterface.h"
#include "support/FakePlatform.h"
#include "support/ScratchHome.h"

namespace {

constexpr const char* kPluginID = "com.example.plugin";
constexpr const char* kFramework = "VendrelPlugins.framework";

// What the fake framework was asked, and what it answers.
struct Box {
  std::string title;  // "-" for none
  std::string message;
  unsigned style;
  bool operator==(const Box&) const = default;
};
std::vector<Box> sBoxes;
std::int32_t sButton = 1;
bool sCompatible = true;
std::int32_t sInitializeResult = 0;
std::string sFrameworkURL;
std::string sHostApp;
bool sHasPluginVersion = true;
std::map<std::string, std::int32_t> sPreferences;

bool IsVersionCompatible(const char* version) {
  return sCompatible && std::string(version) == "1.0";
}

std::int32_t InitializeFramework(PLDictionaryRef details) {
  const char* url = PLDictionaryGetString(details, kTarnFrameworkURL, nullptr);
  const char* host = PLDictionaryGetString(details, kTarnHostApp, nullptr);
  sFrameworkURL = url ? url : "";
  sHostApp = host ? host : "";
  sHasPluginVersion = PLDictionaryGetString(details, kTarnPluginVersion, nullptr) != nullptr;
  return sInitializeResult;
}

PLStringRef LocalizedString(const char* key) {
  const std::string name = key;
  if (name == "Unknown") return nullptr;
  const std::string text = name == "CouldNotOpenVaultLaunchPrefs" ? "100%% of \"%s\" (%d)" : name;
  return PLStringCreate(text.data(), text.size());
}

std::int32_t ShowMessageBox(const char* title, const char* message, std::uint32_t style) {
  sBoxes.push_back({title ? title : "-", message, style});
  return sButton;
}

std::int8_t GetPreference(const char* key) { return sPreferences[key] != 0; }
void SetPreference(const char* key, std::int8_t value) { sPreferences[key] = value; }
std::int32_t GetLongPreference(const char* key) { return sPreferences[key]; }
void SetLongPreference(const char* key, std::int32_t value) { sPreferences[key] = value; }

class Tarn : public testing::Test {
 protected:
  ScratchHome home;
  FakePlatform platform;
  FakeBundle* plugin = &platform.bundles.AddLoaded("/opt/A.plugin", kPluginID);

  Tarn() { platform.bundles.systemFrameworksPath = "/sys"; }

  FakeBundle& AddFramework(const std::string& folder) {
    FakeBundle& bundle = platform.bundles.Add(folder + "/" + kFramework, "com.example.tarn");
    const auto add = [&](const char* name, auto* function) {
      bundle.symbols[name] = reinterpret_cast<void*>(function);
    };
    add("TarnIsVersionCompatible", &IsVersionCompatible);
    add("TarnInitializeFramework", &InitializeFramework);
    add("TarnLocalizedString", &LocalizedString);
    add("TarnShowMessageBox", &ShowMessageBox);
    add("TarnGetPreferenceForKey", &GetPreference);
    add("TarnSetPreferenceForKey", &SetPreference);
    add("TarnGetLongPreferenceForKey", &GetLongPreference);
    add("TarnSetLongPreferenceForKey", &SetLongPreference);
    return bundle;
  }
  FakeBundle& AddPrivateFramework() { return AddFramework(plugin->PrivateFrameworksPath()); }

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
  sInitializeResult = -1;
  EXPECT_EQ(Make()->GetStatus(), TarnInterface::eInitializeFailed);
  sCompatible = false;
  const auto tarn = Make();
  EXPECT_EQ(tarn->GetStatus(), TarnInterface::eIncompatible);
  EXPECT_FALSE(tarn->IsValid());
  EXPECT_EQ(tarn->ShowMessageBox("T", "M", 2), 1);
  EXPECT_TRUE(sBoxes.empty());
}

TEST_F(Tarn, MissingEntryPointsFailTheSameWay) {
  FakeBundle& framework = AddPrivateFramework();
  framework.symbols.erase("TarnInitializeFramework");
  EXPECT_EQ(Make()->GetStatus(), TarnInterface::eInitializeFailed);
  framework.symbols.erase("TarnIsVersionCompatible");
  EXPECT_EQ(Make()->GetStatus(), TarnInterface::eIncompatible);
}

TEST_F(Tarn, TheSystemsFrameworkIsSharedAndComesLast) {
  platform.process.running["Nodrix"] = "/opt/v/";
  AddFramework("/sys");
  const auto last = Make();
  EXPECT_EQ(last->GetStatus(), TarnInterface::eLoaded);
  EXPECT_TRUE(last->IsShared());
  AddFramework("/opt/v/PluginFiles");
  EXPECT_FALSE(Make()->IsShared());
}

TEST_F(Tarn, TheFrameworkLearnsItsHost) {
  plugin->path = "/opt/An App.plugin";
  AddPrivateFramework();
  const auto tarn = Make();
  EXPECT_EQ(sHostApp, "PhotoshopCC2021");
  EXPECT_FALSE(sHasPluginVersion);
  EXPECT_EQ(sFrameworkURL,
            "file:///opt/An%20App.plugin/Contents/Frameworks/VendrelPlugins.framework/");
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
  EXPECT_EQ(sPreferences[kCurrentWorkgroupPrefKey], -2);
}

TEST_F(Tarn, MessageBoxes) {
  AddPrivateFramework();
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
    sBoxes.clear();
    sButton = 2;
    EXPECT_FALSE(row.call(*tarn));
    sButton = 1;
    EXPECT_EQ(row.call(*tarn), row.box.style == 2 || row.box.title == "NotLoggedInHeader" ||
                                   row.box.title == "LoggedOffHeader");
    EXPECT_EQ(sBoxes, (std::vector<Box>{row.box, row.box}));
  }
}

// Knows nothing but its edition.
class Edition : public FontManagerInterface {
 public:
  explicit Edition(bool standalone) : mStandalone(standalone) {}
  bool RunningStandalone() override { return mStandalone; }
  std::map<std::uint32_t, bool> GetFontIsActivated(const FontRecordArray&) override { return {}; }
  int ActivateFontByID(const FontRecord&, const std::string&, void*) override { return 0; }
  int ActivateFontsByID(const FontRecordArray&, const std::string&, void*, const FontRecordArray&,
                        const FontRecordArray&, FontProgressCallback, void*) override {
    return 0;
  }
  int DeactivateFont(const FontRecord&, void*) override { return 0; }
  int DeactivateFonts(const FontRecordArray&, void*, const FontRecordArray&, FontProgressCallback,
                      void*) override {
    return 0;
  }
  int GetAllWorkgroupsForUser(PropertyList::ArrayRef&, bool, bool, bool) override { return 0; }
  int RemoveRemoteFonts(const FontRecordArray&) override { return 0; }

 private:
  bool mStandalone;
};

TEST_F(Tarn, MessageBoxesOfAnEdition) {
  AddPrivateFramework();
  const auto tarn = Make();
  const auto showAll = [&] {
    sBoxes.clear();
    const bool answer = tarn->ShowCoreAgentMissingMessageBox();
    tarn->ShowNoWorkgroupsMessageBox();
    tarn->ShowCoreAgentOutOfSyncMessageBox();
    return answer;
  };
  EXPECT_FALSE(showAll());
  EXPECT_TRUE(sBoxes.empty());

  Edition desktop(true);
  FontManagerInterface::ExchangeFontManager(&desktop);
  EXPECT_TRUE(showAll());
  const std::vector<Box> desktopBoxes = {
      {"KDCoreAgentMissingHeader", "KDCoreAgentMissingMessage", 2},
      {"NoLibrariesHeader", "NoLibrariesMessage", 0},
      {"KDCoreAgentOutOfSyncHeader", "KDCoreAgentOutOfSyncMessage", 0}};
  EXPECT_EQ(sBoxes, desktopBoxes);

  Edition server(false);
  FontManagerInterface::ExchangeFontManager(&server);
  EXPECT_TRUE(showAll());
  const std::vector<Box> serverBoxes = {
      {"OMCoreAgentMissingHeader", "OMCoreAgentMissingMessage", 2},
      {"NoWorkgroupsHeader", "NoWorkgroupsMessage", 0},
      {"OMCoreAgentOutOfSyncHeader", "OMCoreAgentOutOfSyncMessage", 0}};
  EXPECT_EQ(sBoxes, serverBoxes);
  FontManagerInterface::ExchangeFontManager(nullptr);
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
