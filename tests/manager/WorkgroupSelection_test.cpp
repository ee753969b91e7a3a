#include <gtest/gtest.h>

#include "support/FakeFontManager.h"
#include "support/FontRecords.h"
#include "support/PluginWorld.h"

namespace {

using Titles = std::vector<std::string>;

class WorkgroupSelection : public testing::Test {
 protected:
  long Selected() { return world.tarn.longPreferences[kCurrentWorkgroupPrefKey]; }
  void Select(long id) { world.tarn.longPreferences[kCurrentWorkgroupPrefKey] = id; }
  // Puts one in place, with the workgroups 11, 12 and so on.
  FakeFontManager& Make(int workgroupCount) {
    manager.reset();
    manager = std::make_unique<FakeFontManager>();
    for (int i = 0; i < workgroupCount; ++i) {
      manager->workgroups[std::to_string(11 + i)] = "Library " + std::to_string(i);
    }
    return *manager;
  }

  PluginWorld world;
  std::unique_ptr<FakeFontManager> manager;
};

TEST_F(WorkgroupSelection, ChoosesByRule) {
  struct Case {
    const char* title;
    int workgroupCount;
    bool canActivateFromAll;
    bool standalone;
    bool wasValid;
    long selected;
    long expected;
    bool isValid;
    bool hasWorkgroups;
    Titles messages;
  };
  const Case cases[] = {
      {"kept", 2, true, true, false, 12, 12, true, true, {}},
      {"all, where the user may", 2, true, true, false, 99, -2, true, true, {}},
      {"the first otherwise", 2, false, true, false, 99, 11, true, true, {}},
      {"none yet", 1, false, false, false, 0, 11, true, true, {}},
      {"all selected but not allowed any more", 1, false, false, true, -2, 11, true, true, {}},
      {"empty, standalone", 0, false, true, true, 12, 0, true, true, {}},
      {"empty, server", 0, false, false, true, 12, 0, false, false, {"NoWorkgroupsHeader"}},
      {"empty, server, known already", 0, true, false, false, 12, 0, false, false, {}}};
  for (const Case& c : cases) {
    FakeFontManager& table = Make(c.workgroupCount);
    table.canActivateFromAll = c.canActivateFromAll;
    table.standalone = c.standalone;
    Select(c.selected);
    FontManagerInterface::SetValidWorkgroupSelected(c.wasValid);
    KestraneGlobals::SetUserHasWorkgroups(true);
    table.HandleSelectWorkgroup();
    EXPECT_EQ(Selected(), c.expected) << c.title;
    EXPECT_EQ(FontManagerInterface::GetValidWorkgroupSelected(), c.isValid) << c.title;
    EXPECT_EQ(KestraneGlobals::GetUserHasWorkgroups(), c.hasWorkgroups) << c.title;
    EXPECT_EQ(world.tarn.TakeTitles(), c.messages) << c.title;
  }
}

TEST_F(WorkgroupSelection, DoesNothingWhileNotConnectedAndTreatsAnErrorAsAnEmptyList) {
  FakeFontManager& table = Make(2);
  Select(12);
  table.connected = false;
  table.FailAt("GetAllWorkgroupsForUser", 0, 5);
  table.HandleSelectWorkgroup();
  EXPECT_EQ(Selected(), 12);
  table.connected = true;
  table.HandleSelectWorkgroup();
  EXPECT_EQ(Selected(), 0);
}

// The message of an empty list runs the host's loop, from which a selection may be asked for again.
TEST_F(WorkgroupSelection, DoesNotStartWithinItself) {
  FakeFontManager& table = Make(0);
  table.standalone = false;
  FontManagerInterface::SetValidWorkgroupSelected(true);
  int nested = 0;
  world.tarn.onDialog = [&] {
    ++nested;
    table.HandleSelectWorkgroup();
    EXPECT_FALSE(FontManagerInterface::GetValidWorkgroupSelected());
    FontManagerInterface::CheckSelectWorkgroup();
  };
  table.HandleSelectWorkgroup();
  EXPECT_EQ(nested, 1);
  table.workgroups = {{"11", "Library"}};
  table.HandleSelectWorkgroup();  // the guard has gone
  EXPECT_EQ(Selected(), 11);
}

TEST_F(WorkgroupSelection, TheDefaultIsInitialised) {
  struct Case {
    const char* title;
    int workgroupCount;
    bool canActivateFromAll;
    bool hasWorkgroups;
    long selected;
    long expected;
    bool wasValid;
    bool isValid;
  };
  const Case cases[] = {
      {"valid", 2, false, true, 12, 12, false, true},
      {"valid, but the flag stays where the user has none", 2, false, false, 12, 12, false, false},
      {"all selected and allowed", 0, true, true, -2, -2, false, true},
      {"invalid, all allowed", 2, true, true, 99, -2, false, true},
      {"invalid, one", 1, false, true, 99, 11, false, true},
      {"invalid, several", 2, false, true, 99, 99, true, false},
      {"invalid, none", 0, false, true, -2, -2, true, false}};
  for (const Case& c : cases) {
    FakeFontManager& table = Make(c.workgroupCount);
    table.canActivateFromAll = c.canActivateFromAll;
    KestraneGlobals::SetUserHasWorkgroups(c.hasWorkgroups);
    Select(c.selected);
    FontManagerInterface::SetValidWorkgroupSelected(c.wasValid);
    table.InitializeDefaultWorkgroup();
    EXPECT_EQ(Selected(), c.expected) << c.title;
    EXPECT_EQ(FontManagerInterface::GetValidWorkgroupSelected(), c.isValid) << c.title;
  }
  FakeFontManager& table = Make(1);
  table.running = false;
  Select(99);
  table.InitializeDefaultWorkgroup();
  EXPECT_EQ(Selected(), 99);
}

TEST_F(WorkgroupSelection, IsCheckedOnlyWhereThePluginWorks) {
  struct Case {
    const char* title;
    bool services;
    bool preference;
    bool loggedIn;
    bool standalone;
    bool result;
    long selected;
  };
  const Case cases[] = {{"runs", true, true, true, false, true, 11},
                        {"services off", false, true, true, false, false, 99},
                        {"preference off", true, false, true, false, false, 99},
                        {"neither logged in nor standalone", true, true, false, false, false, 99},
                        {"standalone", true, true, false, true, true, 11}};
  for (const Case& c : cases) {
    FakeFontManager& table = Make(1);
    table.loggedIn = c.loggedIn;
    table.standalone = c.standalone;
    world.tarn.preferences[kEnablePluginPrefKey] = c.preference;
    KestraneGlobals::SetPluginServicesEnabled(c.services);
    KestraneGlobals::SetUserHasWorkgroups(false);
    FontManagerInterface::SetValidWorkgroupSelected(false);
    Select(99);
    EXPECT_EQ(FontManagerInterface::CheckSelectWorkgroup(), c.result) << c.title;
    EXPECT_EQ(Selected(), c.selected) << c.title;
    EXPECT_TRUE(KestraneGlobals::GetUserHasWorkgroups());
  }
  manager.reset();
  FontManagerInterface::SetValidWorkgroupSelected(false);
  EXPECT_FALSE(FontManagerInterface::CheckSelectWorkgroup());
  FontManagerInterface::SetValidWorkgroupSelected(true);
  EXPECT_TRUE(FontManagerInterface::CheckSelectWorkgroup());
}

TEST_F(WorkgroupSelection, IsReadyOnlyWhenAllHolds) {
  FakeFontManager& table = Make(1);
  EXPECT_TRUE(FontManagerInterface::AutoActivationIsReady());
  table.loggedIn = false;
  EXPECT_FALSE(FontManagerInterface::AutoActivationIsReady());
  table.loggedIn = true;
  KestraneGlobals::SetUserHasWorkgroups(false);
  EXPECT_FALSE(FontManagerInterface::AutoActivationIsReady());
  KestraneGlobals::SetUserHasWorkgroups(true);
  world.tarn.preferences[kEnablePluginPrefKey] = false;
  EXPECT_FALSE(FontManagerInterface::AutoActivationIsReady());
  world.tarn.preferences[kEnablePluginPrefKey] = true;
  manager.reset();
  EXPECT_FALSE(FontManagerInterface::AutoActivationIsReady());
}

TEST_F(WorkgroupSelection, NamesAndIDsGoBothWays) {
  world.tarn.texts = {{"All Libraries", "Alle"}, {"All Workgroups", "Toutes"}};
  FakeFontManager& table = Make(2);
  int id = 0;
  EXPECT_EQ(table.GetWorkgroupID("Library 1", &id), 0);
  EXPECT_EQ(id, 12);
  EXPECT_EQ(table.GetWorkgroupID("library 1", &id), -1);
  EXPECT_EQ(table.GetWorkgroupID("Alle", &id), -1);
  table.canActivateFromAll = true;
  EXPECT_EQ(table.GetWorkgroupID("Alle", &id), 0);
  EXPECT_EQ(id, -2);
  table.standalone = false;
  EXPECT_EQ(table.GetWorkgroupID("Alle", &id), -1);
  EXPECT_EQ(table.GetWorkgroupID("Toutes", nullptr), -1);
  EXPECT_EQ(table.SetDefaultWorkgroupName(std::nullopt), -1);
  EXPECT_EQ(table.SetDefaultWorkgroupName("Library 0"), 0);
  EXPECT_EQ(Selected(), 11);
  EXPECT_EQ(table.GetDefaultWorkgroupName(), "Library 0");
  EXPECT_EQ(table.GetWorkgroupNameFromID(13), std::nullopt);

  const FontRecordArray fonts = MakeFontRecordArray();
  EXPECT_EQ(table.AddWorkgroupNamesToFonts(fonts), -1);
  for (const int workgroupID : {12, 13}) {
    const FontRecord font = MakeFontRecord();
    SetRecordNumber(font, kFP_WorkgroupIDKey, workgroupID);
    fonts->Append(font);
  }
  EXPECT_EQ(table.AddWorkgroupNamesToFonts(fonts), 0);
  EXPECT_EQ(RecordString(fonts->DictionaryAt(0), kFP_WorkgroupNameKey), "Library 1");
  EXPECT_FALSE(RecordHas(fonts->DictionaryAt(1), kFP_WorkgroupNameKey));
}

// A workgroup counts by its name, not by its ID.
TEST_F(WorkgroupSelection, IsValidByName) {
  FakeFontManager& table = Make(2);
  EXPECT_FALSE(table.IsValidWorkgroupForUser(0));
  EXPECT_TRUE(table.IsValidWorkgroupForUser(12));
  EXPECT_FALSE(table.IsValidWorkgroupForUser(13));
  EXPECT_FALSE(table.IsValidWorkgroupForUser(-2));
  table.canActivateFromAll = true;
  EXPECT_TRUE(table.IsValidWorkgroupForUser(-2));
}

}  // namespace
