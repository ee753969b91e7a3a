#include "coreagent/AgentFixture.h"

namespace {

using Activation = AgentTest;
using IDs = FontManagerInterface::FontIDs;

TEST_F(Activation, GoesWhereThePreferencesSay) {
  struct Case {
    bool locally;
    bool globally;
    Calls sent;
  };
  const Case cases[] = {
      {false, false, {"ActivateFonts"}},
      {false, true, {"ActivateFonts"}},
      {true, false, {"PreviewActivateFonts"}},
      {true, true, {"ActivateFonts", "PreviewActivateFonts"}},
  };
  facade.AddFont(7, "Name", "Fam", 11);
  Start();
  for (const Case& c : cases) {
    tarn.preferences[kActivateLocallyPrefKey] = c.locally;
    tarn.preferences[kActivateGloballyPrefKey] = c.globally;
    facade.ForgetCalls();
    EXPECT_EQ(agent->ActivateFontByID(MakeFont(7), "document", nullptr), 0);
    EXPECT_EQ(facade.AllCalls(), c.sent);
  }
  tarn.preferences[kActivateLocallyPrefKey] = true;
  facade.Answer("ActivateFonts", {16});
  facade.ForgetCalls();
  EXPECT_EQ(agent->ActivateFontByID(MakeFont(7), "document", nullptr), -1);
  EXPECT_EQ(facade.AllCalls(), Calls{"ActivateFonts"});
}

TEST_F(Activation, TellsWhatWentOnAndWhatWasRefused) {
  for (std::uint32_t id = 1; id <= 4; ++id) facade.AddFont(id, "Name", "Fam", 11);
  facade.Find(2)->failsToActivate = true;
  facade.Find(3)->isRefused = true;
  Start();
  const FontRecordArray fonts = MakeFonts({1, 2, 0, 3, 4});
  const FontRecordArray activated = MakeFontRecordArray();
  const FontRecordArray second = MakeFontRecordArray();
  EXPECT_EQ(agent->ActivateFontsByID(fonts, "d", nullptr, activated, second, nullptr, nullptr), 0);
  EXPECT_EQ(facade.CallsOf("ActivateFonts"), Calls{"1,2,3,4"});
  EXPECT_EQ(IDsOf(activated), (IDs{1, 4}));
  EXPECT_EQ(IDsOf(second), IDs{3});
  EXPECT_EQ(activated->DictionaryAt(0), fonts->DictionaryAt(0)) << "records are shared";
  EXPECT_EQ(agent->ActivateFontsByID(fonts, "d", nullptr, nullptr, nullptr, nullptr, nullptr), 0);
}

TEST_F(Activation, TellsNothingWhereTheCommandFailed) {
  facade.AddFont(1, "Name", "Fam", 11);
  Start();
  for (const std::uint32_t code : {16u, 0x80000001u}) {
    facade.Answer("ActivateFonts", {code});
    facade.Answer("DeactivateFonts", {code});
    const int expected = code == 16u ? -1 : 0;
    const FontRecordArray told = MakeFontRecordArray();
    EXPECT_EQ(agent->ActivateFontsByID(MakeFonts({1}), "d", nullptr, told, told, nullptr, nullptr),
              expected);
    EXPECT_EQ(agent->DeactivateFonts(MakeFonts({1}), nullptr, told, nullptr, nullptr), expected);
    EXPECT_EQ(CountOf(told), 0u) << code;
  }
}

TEST_F(Activation, NothingIsSentForNoFonts) {
  Start();
  facade.ForgetCalls();
  for (const FontRecordArray& fonts : {FontRecordArray(), MakeFonts({}), MakeFonts({0})}) {
    EXPECT_EQ(agent->ActivateFontsByID(fonts, "d", nullptr, nullptr, nullptr, nullptr, nullptr), 0);
    EXPECT_EQ(agent->DeactivateFonts(fonts, nullptr, nullptr, nullptr, nullptr), 0);
  }
  EXPECT_TRUE(facade.AllCalls().empty());
  EXPECT_TRUE(facade.HasLogged(
      "CoreAgentInterface::ActivateFontsByID -- empty fonts vector, doing nothing."));
}

TEST_F(Activation, ByNameNeedsExactlyOneFont) {
  facade.AddFont(1, "One", "Fam", 11);
  facade.AddFont(2, "Two", "Fam", 11);
  facade.AddFont(3, "Two", "Fam", 4);
  Start();
  std::uint32_t id = 99;
  EXPECT_EQ(agent->ActivateFontByName("Two", 11, "d", id), 0);
  EXPECT_EQ(id, 0u);
  EXPECT_EQ(agent->ActivateFontByName("One", 11, "d", id), 0);
  EXPECT_EQ(id, 1u);
  EXPECT_EQ(facade.CallsOf("ActivateFonts"), Calls{"1"});
}

TEST_F(Activation, DeactivatesAndTellsWhat) {
  facade.AddFont(1, "One", "Fam", 11).rawState = kRawActivationState_Auto;
  Start();
  const FontRecordArray told = MakeFontRecordArray();
  EXPECT_EQ(agent->DeactivateFonts(MakeFonts({1, 0}), nullptr, told, nullptr, nullptr), 0);
  EXPECT_EQ(IDsOf(told), IDs{1});
  EXPECT_FALSE(facade.Find(1)->IsActive());
}

}  // namespace
