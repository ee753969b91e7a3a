#include "coreagent/AgentFixture.h"

namespace {

class Workgroups : public AgentTest {
 protected:
  // "ID name" of each, an exclamation mark behind a type that is a number.
  Texts Load(bool addAll, bool special, bool typekit) {
    PropertyList::ArrayRef workgroups;
    EXPECT_EQ(agent->GetAllWorkgroupsForUser(workgroups, addAll, special, typekit), 0);
    Texts texts;
    for (std::size_t i = 0; i < CountOf(workgroups); ++i) {
      const auto entry = workgroups->DictionaryAt(i);
      const auto* type = entry->Find(kFP_WorkgroupTypeKey);
      texts.push_back(RecordString(entry, kFP_WorkgroupIDKey) + " " +
                      RecordString(entry, kFP_WorkgroupNameKey) +
                      (type && type->AsInteger() ? "!" : ""));
    }
    return texts;
  }
};

TEST_F(Workgroups, SpecialOnesGetLocalisedNames) {
  facade.workgroups = {{1, "a", 0}, {2, "b", 2}, {3, "Font Library", 3}, {4, "d", 4}, {5, "e", 5},
                       {8, "h", 8}, {9, "i", 9}, {10, "Mine", 3}};
  tarn.texts = {{"Font Library", "Bibliothek"},
                {"LocalPersonalWorkgroup", "Mein"},
                {"All Libraries", "Alle"},
                {"All Workgroups", "Toutes"}};
  Start();
  EXPECT_EQ(Load(false, true, true),
            (Texts{"1 AllServerFontsWorkgroup!", "2 ServerBasedPersonalWorkgroup!", "3 Bibliothek!",
                   "4 SystemWorkgroup!", "5 e", "8 MasterGoogleFontsLibrary!", "9 i", "10 Mine"}));
  EXPECT_EQ(Load(true, false, false), (Texts{"3 Bibliothek!", "5 e", "10 Mine"}));
  facade.permissions = {FakeFacade::kColumnAcrossWorkgroups};
  EXPECT_EQ(Load(true, false, false), (Texts{"3 Bibliothek!", "5 e", "10 Mine", "-2 Alle"}));
  facade.standalone = false;
  EXPECT_EQ(Load(true, false, false), (Texts{"3 Mein!", "5 e", "10 Mein!", "-2 Toutes"}));
  facade.workgroups.clear();
  EXPECT_EQ(Load(true, true, true), Texts{});
  facade.workgroupsAreNull = true;
  EXPECT_EQ(Load(true, true, true), Texts{});
  facade.Answer("GetAllWorkgroupsForUser", {77});
  PropertyList::ArrayRef workgroups;
  EXPECT_EQ(agent->GetAllWorkgroupsForUser(workgroups, false, false, false), 77);
}

TEST_F(Workgroups, AskForWhatIsPopulated) {
  using IDs = FontManagerInterface::FontIDs;
  facade.workgroups = {{11, "x", 3}};
  Start();
  const auto populate = [this](long id) {
    IDs ids;
    agent->PopulateWorkgroupArray(id, ids);
    return ids;
  };
  EXPECT_EQ(populate(-2), IDs{0});
  EXPECT_EQ(populate(11), IDs{11});
  facade.googleWebFontsEnabled = true;
  EXPECT_EQ(populate(11), IDs{11}) << "there is no such library yet";
  facade.workgroups.push_back({80, "web", kWorkgroupType_Google});
  EXPECT_EQ(populate(11), (IDs{11, 80}));
  facade.workgroups.pop_back();
  EXPECT_EQ(populate(11), (IDs{11, 80})) << "kept once it is known";
  EXPECT_EQ(populate(-2), IDs{0});
}

TEST_F(Workgroups, DisabledWebFontsAreRemoved) {
  Start();
  EXPECT_EQ(agent->RemoveRemoteFonts(nullptr), -1);
  const FontRecordArray fonts = MakeFonts({});
  EXPECT_EQ(agent->RemoveRemoteFonts(fonts), -1);
  fonts->Append(PropertyList::Value());
  EXPECT_EQ(agent->RemoveRemoteFonts(fonts), -1);
  for (const std::uint32_t id : {1u, 2u, 3u}) {
    const FontRecord font = MakeFont(id);
    SetRecordNumber(font, kFP_WorkgroupTypeKey, id == 2 ? 3 : 8);
    fonts->Append(font);
  }
  facade.googleWebFontsEnabled = true;
  EXPECT_EQ(agent->RemoveRemoteFonts(fonts), 0);
  EXPECT_EQ(CountOf(fonts), 4u);
  facade.googleWebFontsEnabled = false;
  EXPECT_EQ(agent->RemoveRemoteFonts(fonts), 0);
  EXPECT_EQ(IDsOf(fonts), FontManagerInterface::FontIDs{2});
  EXPECT_TRUE(facade.HasLogged("Removed font 3 because workgroupType is 8"));
}

TEST_F(Workgroups, PermissionsGoByColumn) {
  Start();
  facade.ForgetCalls();
  const FontRecordArray fonts = MakeFonts({7});
  EXPECT_FALSE(agent->CanActivateFromAllWorkgroups());
  EXPECT_FALSE(agent->CanExportFromWorkgroup(fonts));
  facade.permissions = {FakeFacade::kColumnExportFonts};
  EXPECT_TRUE(agent->CanExportFromWorkgroup(fonts));
  EXPECT_EQ(facade.CallsOf("GetPermission"),
            (Calls{"1,GetCanActivateAcrossWorkgroupsColumnID,0", "0,GetExportFontsColumnID,11",
                   "0,GetExportFontsColumnID,11"}));
  EXPECT_EQ(facade.CountOf("CanExportFonts"), 0u);

  tarn.longPreferences[kCurrentWorkgroupPrefKey] = -2;
  EXPECT_TRUE(agent->CanExportFromWorkgroup(nullptr));
  EXPECT_TRUE(agent->CanExportFromWorkgroup(fonts));
  facade.canExportFonts = false;
  EXPECT_FALSE(agent->CanExportFromWorkgroup(fonts));
  facade.canExportFonts = true;
  facade.Answer("CanExportFonts", {16});
  EXPECT_FALSE(agent->CanExportFromWorkgroup(fonts));
}

TEST_F(Workgroups, SelectedOneMayBeLocal) {
  facade.workgroups = {{11, "x", 3}, {12, "y", 7}};
  Start();
  EXPECT_TRUE(agent->IsSelectedWorkgroupLocal());
  tarn.longPreferences[kCurrentWorkgroupPrefKey] = 12;
  EXPECT_FALSE(agent->IsSelectedWorkgroupLocal());
  EXPECT_TRUE(agent->CheckForWorkgroups());
  facade.workgroups.clear();
  EXPECT_FALSE(agent->CheckForWorkgroups());
}

}  // namespace
