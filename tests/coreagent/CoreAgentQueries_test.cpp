#include "coreagent/AgentFixture.h"

namespace {

using Queries = AgentTest;
using IDs = FontManagerInterface::FontIDs;

TEST(RawStates, AreConverted) {
  struct Case {
    std::int64_t raw;
    const char* state;
    const char* isTemporary;
    const char* isActive;
    const char* isAuto;
  };
  const Case cases[] = {
      {0, "1", "0", "0", "0"},  {1, "3", "1", "1", "1"},  {2, "3", "1", "1", "1"},
      {3, "3", "1", "1", "0"},  {4, "2", "0", "1", "0"},  {5, "2", "0", "1", "0"},
      {6, "2", "0", "1", "0"},  {7, "0", "0", "0", "0"},  {8, "0", "0", "0", "0"},
      {9, "3", "1", "1", "0"},  {10, "3", "1", "1", "0"}, {11, "2", "0", "1", "0"},
      {12, "0", "0", "0", "0"}, {-1, "0", "0", "0", "0"},
  };
  for (const Case& c : cases) {
    const FontRecord record = MakeFontRecord();
    SetRecordNumber(record, kFP_ActivationStateKey, c.raw);
    EXPECT_EQ(ConvertActivationStateValues(record), 0);
    EXPECT_EQ(RecordString(record, kFP_ActivationStateKey), c.state) << c.raw;
    EXPECT_EQ(RecordString(record, kFP_IsTempKey), c.isTemporary) << c.raw;
    EXPECT_EQ(RecordString(record, kFP_IsActiveKey), c.isActive) << c.raw;
    EXPECT_EQ(RecordString(record, kFP_IsAutoActivatedKey), c.isAuto) << c.raw;
  }
  const FontRecord absent = MakeFontRecord();
  EXPECT_EQ(ConvertActivationStateValues(absent), 0);
  EXPECT_EQ(RecordString(absent, kFP_ActivationStateKey), "1");
  EXPECT_EQ(ConvertActivationStateValues(nullptr), -1);
}

TEST_F(Queries, LookInTheWorkgroupAndThenInTheSystemsOne) {
  facade.AddFont(40, "Name", "Fam", 4);
  facade.AddFont(1, "Name", "Fam", 11);
  facade.AddFont(2, "Other", "Fam", 12);
  facade.workgroups.push_back({8, "Web", kWorkgroupType_Google});
  Start();
  struct Case {
    long workgroupID;
    bool webFonts;
    IDs ids;
    Calls asked;
  };
  const Case cases[] = {
      {11, false, {1, 40}, {"Name@11", "Name@4"}},
      {11, true, {1, 40}, {"Name@11,8", "Name@4"}},
      {-2, true, {40, 1}, {"Name@0"}},
      {-1, false, {40, 1, 40}, {"Name@4294967295", "Name@4"}},
  };
  for (const Case& c : cases) {
    facade.ForgetCalls();
    facade.googleWebFontsEnabled = c.webFonts;
    IDs ids = {99};
    EXPECT_EQ(agent->FontIDsForPostScriptName("Name", c.workgroupID, ids), 0);
    EXPECT_EQ(ids, c.ids);
    EXPECT_EQ(facade.CallsOf("GetFontsByPostscriptName"), c.asked);
  }
  IDs ids;
  EXPECT_EQ(agent->FontIDsForFamilyName("Fam", 12, ids), 0);
  EXPECT_EQ(ids, (IDs{2, 40}));
}

TEST_F(Queries, TakeAThousandAndTwentyFourIDsFromEachQuestion) {
  for (std::uint32_t i = 0; i < 1500; ++i) {
    facade.AddFont(10000 + i, "Name", "Fam", 11);
    facade.AddFont(20000 + i, "Name", "Fam", 4);
  }
  Start();
  long count = 0;
  EXPECT_EQ(agent->CountNamedFonts("Name", kPostScriptFontName, 11, count, ""), 0);
  EXPECT_EQ(count, 2048);
  facade.claimedFonts = 0xFFFFFFFF;
  EXPECT_EQ(agent->CountNamedFonts("Name", kPostScriptFontName, 11, count, ""), 0);
  EXPECT_EQ(count, 2048);
  EXPECT_EQ(agent->CountNamedFonts("Name", static_cast<TypeOfFontName>(2), 11, count, ""), -1);
  EXPECT_EQ(count, 0);
}

TEST_F(Queries, ResultIsThatOfTheLastQuestion) {
  facade.AddFont(40, "Name", "Fam", 4);
  Start();
  long count = 0;
  facade.Answer("GetFontsByPostscriptName", {16, 0});
  EXPECT_EQ(agent->CountNamedFonts("Name", kPostScriptFontName, 11, count, ""), 0);
  EXPECT_EQ(count, 1);
  facade.Answer("GetFontsByPostscriptName", {0, 16});
  EXPECT_EQ(agent->CountNamedFonts("Name", kPostScriptFontName, 11, count, ""), -1);
}

TEST_F(Queries, DeliverAConvertedRecordAndRememberIt) {
  FakeFacade::Font& font = facade.AddFont(
      7, "Name", "Fam", 11, {{kFP_Faceprint_1_2_Key, "77"}, {kFP_KerningChecksumKey, "1048576"}});
  font.rawState = kRawActivationState_Auto;
  Start();
  FontManagerInterface::FontOrSetInfoRec rec;
  EXPECT_EQ(agent->GetNamedFontInfo("Name", kPostScriptFontName, 11, 1, "", rec), 0);
  EXPECT_EQ(rec.kind, 1);
  EXPECT_EQ(rec.databaseID, 7u);
  EXPECT_EQ(rec.activationState, 3);
  EXPECT_EQ(RecordString(rec.info, kFP_ActivationStateKey), "3");
  EXPECT_EQ(RecordString(rec.info, kFP_ChecksumKey), "77");
  EXPECT_EQ(RecordString(rec.info, kFP_KerningChecksumKey), "0");
  EXPECT_EQ(facade.CallsOf("GetFontInfoByID"), Calls{"7@4294967295"});
  FontRecord cached;
  std::uint32_t cachedID = 0;
  EXPECT_TRUE(FontDataPreviouslyGottenFromDatabase::CreateCopyOfFaceprintDataForActiveFont(
      "Name", cached, cachedID));
  EXPECT_EQ(cachedID, 7u);

  EXPECT_EQ(agent->GetNamedFontInfo("Name", kPostScriptFontName, 11, 0, "", rec), -1);
  EXPECT_EQ(agent->GetNamedFontInfo("Name", kPostScriptFontName, 11, 2, "", rec), -1);
  facade.ForgetCalls();
  FontRecord inAll = MakeFont(7);
  SetRecordNumber(inAll, kFP_WorkgroupIDKey, -2);
  EXPECT_EQ(agent->GetFontInfoByID(inAll, rec), 0);
  EXPECT_EQ(facade.CallsOf("GetFontInfoByID"), Calls{"7@0"});
  EXPECT_EQ(agent->GetFontInfoByID(MakeFont(8), rec), -1);
  EXPECT_FALSE(rec.info);

  std::string name;
  EXPECT_EQ(agent->GetPostscriptNameByID(name, 11, 7), 0);
  EXPECT_EQ(name, "Name");
}

// The whole way of a document font: ladder, table, text form and back.
TEST_F(Queries, FindADecoratedNameInTheLibrary) {
  facade.AddFont(7, "Name", "Fam", 11).rawState = kRawActivationState_User;
  Start();
  const FontRecord source = MakeFontRecord();
  source->Set(kFP_PostScriptNameKey, "ABCDEF+Name_12");
  FontRecordArray candidates = MakeFontRecordArray();
  EXPECT_EQ(agent->GetFaceprintData(source, 0, nullptr, 11, candidates), 0);
  ASSERT_EQ(IDsOf(candidates), IDs{7});
  EXPECT_EQ(RecordString(candidates->DictionaryAt(0), kFP_ActivationStateKey), "2");
}

TEST_F(Queries, ARecordTooLargeForTheBufferGivesNoText) {
  Start();
  const FontRecord font = MakeFont(7);
  char buffer[512];
  std::size_t size = sizeof buffer;
  EXPECT_EQ(agent->GetFaceprintInfo(7, font, buffer, size), 0);
  EXPECT_EQ(size, std::string(buffer).size());
  font->Set(kFP_FamilyKey, std::string(512, 'x'));
  size = sizeof buffer;
  EXPECT_EQ(agent->GetFaceprintInfo(7, font, buffer, size), 0);
  EXPECT_EQ(size, 0u);
  EXPECT_EQ(agent->GetFaceprintInfo(7, nullptr, buffer, size), -1);
}

TEST_F(Queries, FamilyLeavesOutOtherVersionsOfTheDocumentsOwnFonts) {
  for (const auto& [id, name] : {std::pair{1, "Fam-Roman"}, {2, "Fam-Roman"}, {3, "Fam-Bold"}}) {
    auto& font = facade.AddFont(static_cast<std::uint32_t>(id), name, "Fam", 11);
    font.familyGroupID = "5";
    font.rawState = kRawActivationState_System;
  }
  Start();
  const FontRecord asked = MakeFont(1);
  const FontRecordArray found = MakeFonts({99});
  EXPECT_EQ(agent->FindFontsInSameFamilyForActivation(asked, nullptr, 11, found), -1);
  asked->Set(kFP_AssignedFamilyGroupIDKey, "5");
  EXPECT_EQ(agent->FindFontsInSameFamilyForActivation(asked, nullptr, 11, nullptr), -1);
  const FontRecordArray excluded = MakeFontRecordArray();
  excluded->Append(facade.Find(1)->record);
  EXPECT_EQ(agent->FindFontsInSameFamilyForActivation(asked, excluded, 11, found), 0);
  EXPECT_EQ(IDsOf(found), (IDs{1, 3}));
  EXPECT_EQ(RecordString(found->DictionaryAt(1), kFP_ActivationStateKey), "2");
}

TEST_F(Queries, FacadeSaysWhatIsActiveAndTheCacheIsOnlyHeard) {
  auto& font = facade.AddFont(7, "Name", "Fam", 11);
  font.rawState = kRawActivationState_User;
  font.conflict = 3;
  Start();
  const FontRecordArray fonts = MakeFontRecordArray();
  fonts->Append(MakeFont(0));
  fonts->Append(PropertyList::Value());
  fonts->Append(facade.MakeDatabaseRecord(font));
  using States = std::map<std::uint32_t, bool>;
  EXPECT_EQ(agent->GetFontIsActivated(fonts), (States{{7, true}}));
  EXPECT_TRUE(facade.HasLogged("Skerry says that Name (fontID 7) is active"));
  EXPECT_TRUE(facade.HasLogged("But cache says Name (fontID 7) is NOT active"));
  EXPECT_EQ(agent->GetClientFontActivationStates({7, 8}), (States{{7, false}, {8, false}}));
  using Conflicts = std::map<std::uint32_t, std::uint32_t>;
  EXPECT_EQ(agent->GetFontConflicts({7, 0}), (Conflicts{{7, 3}}));
  facade.Answer("GetFontConflicts", {16});
  EXPECT_EQ(agent->GetFontConflicts({7}), Conflicts{});
}

}  // namespace
