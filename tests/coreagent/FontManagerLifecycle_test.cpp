#include "coreagent/FontManagerLifecycle.h"

#include "activation/FontActivationTracker.h"
#include "coreagent/AgentFixture.h"

namespace {

TEST(Versions, AreCompatibleByTheirFirstThreeNumbers) {
  struct Case {
    const char* facade;
    const char* plugin;
    bool compatible;
  };
  const Case cases[] = {
      {"22.0.1", "22.0.1", true},      {"", "", true},
      {"", "22.0.1", false},           {"22.0.1", "", false},
      {"1.0.0.0", "22.0.1", true},     {"22.0.1", "1.0.0.0", true},
      {"1.0.0", "22.0.1", false},      {"22.0.1.4", "22.0.1.9", true},
      {"22.0.1.4", "22.0.2.4", false}, {"22.0", "22.0.1", true},
      {"22.0", "22.01", false},        {"22.0.1", "22.0.12", false},
      {"22.0.", "22.0.1", false},      {"22.0.1.", "22.0.1", true},
      {"1.0.0.0", "", false},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(VersionsAreCompatible(c.facade, c.plugin), c.compatible) << c.facade << c.plugin;
  }
}

class Lifecycle : public AgentTest {
 protected:
  ~Lifecycle() override { delete FontManagerInterface::ExchangeFontManager(nullptr); }
  struct Verdict {
    std::uint32_t code;
    bool running;
    std::string name;
  };
  static Verdict Ask() {
    Verdict verdict{0, true, ""};
    verdict.code =
        FontManagerInterface::CompatibleFontManagerIsRunning(&verdict.name, &verdict.running);
    return verdict;
  }
};

TEST_F(Lifecycle, StartsOnceAndAnswersFromThenOn) {
  world.InstallFacade();
  const Verdict first = Ask();
  EXPECT_EQ(first.code, 0u);
  EXPECT_TRUE(first.running);
  EXPECT_EQ(first.name, kKestraneDuoraPlugin);
  EXPECT_EQ(tarn.hostDetails["FontManager"], kKestraneDuoraPlugin);
  EXPECT_TRUE(facade.HasLogged("Skerry at location '" +
                               SkerryLoader::GetSharedInstance()->location +
                               "' is version '22.0.1' and plugin version is '22.0.1'"));
  const FontManagerInterface* made = FontManagerInterface::GetFontManager();
  facade.agentRunning = false;
  const Verdict second = Ask();
  EXPECT_EQ(second.code, CoreErrorCodes::kUnknownError);
  EXPECT_FALSE(second.running);
  EXPECT_EQ(FontManagerInterface::GetFontManager(), made);
  EXPECT_EQ(facade.CountOf("InitAppInstance"), 1u);
}

TEST_F(Lifecycle, WithoutALibraryThereIsNoFontManager) {
  const Verdict verdict = Ask();
  EXPECT_EQ(verdict.code, CoreErrorCodes::kUnknownError);
  EXPECT_FALSE(verdict.running);
  EXPECT_EQ(FontManagerInterface::GetFontManager(), nullptr);
}

TEST_F(Lifecycle, AnOlderLibraryIsAVersionMismatchOnlyWhenItGetsNoFurther) {
  facade.missing = {"GetIsOnline"};
  facade.agentRunning = false;
  world.InstallFacade();
  const Verdict verdict = Ask();
  EXPECT_EQ(verdict.code, CoreErrorCodes::kVersionMismatch);
  EXPECT_FALSE(verdict.running);
  EXPECT_NE(FontManagerInterface::GetFontManager(), nullptr);
}

TEST_F(Lifecycle, NobodyLoggedInIsACodeOfItsOwn) {
  facade.standalone = false;
  facade.loggedIn = false;
  world.InstallFacade();
  const Verdict verdict = Ask();
  EXPECT_EQ(verdict.code, 3u);
  EXPECT_TRUE(verdict.running);
  EXPECT_EQ(verdict.name, kOmnarelPlugin);
}

TEST_F(Lifecycle, AnotherVersionRunsNot) {
  facade.version = "21.0.1";
  world.InstallFacade();
  const Verdict verdict = Ask();
  EXPECT_EQ(verdict.code, 0u);
  EXPECT_FALSE(verdict.running);
}

TEST_F(Lifecycle, EndsByClosingUnregisteringAndDestroying) {
  struct Case {
    bool preference;
    Calls deactivated;
  };
  world.InstallFacade();
  for (const Case& c : {Case{true, {"7"}}, Case{false, {}}}) {
    facade.fonts.clear();
    facade.AddFont(7, "Name", "Fam", 11);
    tarn.preferences[kCloseFontsOnHostAppQuitPrefKey] = c.preference;
    ASSERT_TRUE(Ask().running);
    FontManagerInterface::FontOrSetInfoRec rec;
    FontManagerInterface::GetFontManager()->GetFontInfoByID(MakeFont(7), rec);
    const FontRecord documentFont = MakeFontRecord();
    documentFont->Set(kFP_PostScriptNameKey, "Name");
    documentFont->Set(kFP_MatchedFontKey, rec.info);
    const FontRecordArray fonts = MakeFontRecordArray();
    fonts->Append(documentFont);
    KestraneGlobals::GetSharedFontActivationTracker()->OpenFontsForIdentifier(fonts, "d", false,
                                                                              nullptr, nullptr);
    facade.ForgetCalls();
    FontManagerInterface::OnHostAppShuttingDown(false);
    EXPECT_EQ(facade.CallsOf("DeactivateFonts"), c.deactivated);
    const Calls calls = facade.AllCalls();
    ASSERT_GE(calls.size(), 2u);
    EXPECT_EQ(calls[calls.size() - 2], "UnregisterForNotifications");
    EXPECT_EQ(calls.back(), "DestroyThreadInstance");
    EXPECT_EQ(FontManagerInterface::GetFontManager(), nullptr);
  }
  FontManagerInterface::OnHostAppShuttingDown(false);
  EXPECT_TRUE(facade.HasLogged(
      "*** UH-OH, sm_pFontManager is NULL in FontManagerInterface::OnHostAppShuttingDown"));
}

// A message box during the start turns the host's run loop, and the user may quit from there.
TEST_F(Lifecycle, AShutdownWithinTheStartKeepsNothing) {
  facade.Answer("InitThreadInstance", {0x02002005});
  world.InstallFacade();
  int boxes = 0;
  tarn.onDialog = [&boxes] {
    ++boxes;
    EXPECT_EQ(Ask().code, CoreErrorCodes::kUnknownError);
    FontManagerInterface::OnHostAppShuttingDown(false);
  };
  EXPECT_FALSE(Ask().running);
  EXPECT_EQ(boxes, 1);
  EXPECT_EQ(FontManagerInterface::GetFontManager(), nullptr);
  EXPECT_FALSE(facade.HasCallback());
  tarn.onDialog = {};
  EXPECT_TRUE(Ask().running);  // a later start is one of its own
}

}  // namespace
