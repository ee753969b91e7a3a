#include <gtest/gtest.h>

#include "support/FakeFontManager.h"
#include "support/FontRecords.h"
#include "support/LogCapture.h"
#include "support/PluginWorld.h"
#include "support/TextTable.h"

namespace {

using FMI = FontManagerInterface;

class WorkgroupSelection : public testing::Test {
 protected:
  int Selected() { return static_cast<int>(world.tarn.longPreferences[kCurrentWorkgroupPrefKey]); }
  void Select(long id) { world.tarn.longPreferences[kCurrentWorkgroupPrefKey] = id; }
  // Puts one in place, with the workgroups 11, 12 and so on. `without` names what does not hold.
  FakeFontManager& Make(int workgroupCount, const std::string& without = "all") {
    manager.reset();
    manager = std::make_unique<FakeFontManager>();
    for (int i = 0; i < workgroupCount; ++i) {
      manager->workgroups[std::to_string(11 + i)] = "Library " + std::to_string(i);
    }
    const auto holds = [&](const char* what) { return without.find(what) == std::string::npos; };
    manager->canActivateFromAll = holds("all");
    manager->standalone = holds("standalone");
    manager->connected = holds("connected");
    manager->running = holds("running");
    manager->loggedIn = holds("login");
    if (!holds("loading")) manager->FailAt("GetAllWorkgroupsForUser", 0, 5);
    world.tarn.preferences[kEnablePluginPrefKey] = holds("preference");
    KestraneGlobals::SetPluginServicesEnabled(holds("services"));
    KestraneGlobals::SetUserHasWorkgroups(holds("workgroups"));
    FMI::SetValidWorkgroupSelected(holds("valid"));
    return *manager;
  }
  // What holds afterwards.
  std::string State() {
    std::string state = std::to_string(Selected());
    if (FMI::GetValidWorkgroupSelected()) state += " valid";
    if (KestraneGlobals::GetUserHasWorkgroups()) state += " workgroups";
    for (const std::string& title : world.tarn.TakeTitles()) state += " " + title;
    return state;
  }
  // Number of workgroups, the selected one, what does not hold, and the state afterwards.
  void ExpectStates(void (FMI::*operation)(), const char* table) {
    for (const auto& row : ReadTable(table)) {
      FakeFontManager& fontManager = Make(std::stoi(row[0]), row[2]);
      Select(std::stol(row[1]));
      (fontManager.*operation)();
      EXPECT_EQ(State(), row[3]) << row[0] << " " << row[1] << " without " << row[2];
    }
  }

  PluginWorld world;
  std::unique_ptr<FakeFontManager> manager;
};

TEST_F(WorkgroupSelection, ChoosesByRule) {
  ExpectStates(&FMI::HandleSelectWorkgroup, R"(
    2 / 12 / valid / 12 valid workgroups;               2 / 99 / valid / -2 valid workgroups
    2 / 12 / valid workgroups / 12 valid workgroups;    2 / 0 / valid / -2 valid workgroups
    2 / 99 / all valid / 11 valid workgroups;           1 / 0 / all valid standalone / 11 valid workgroups
    1 / -2 / all / 11 valid workgroups;                 1 / -2 / valid / -2 valid workgroups
    0 / 12 / all / 0 valid workgroups;                  0 / 12 / valid / 0 workgroups
    0 / 12 / all standalone / 0 NoWorkgroupsHeader;     0 / 12 / valid standalone / 0
    2 / 12 / loading standalone / 0 NoWorkgroupsHeader; 2 / 12 / loading valid / 0 workgroups
    2 / 99 / connected valid / 99 workgroups)");
}

// The message of an empty list runs the host's loop, from which a selection may be asked for again.
TEST_F(WorkgroupSelection, DoesNotStartWithinItself) {
  FakeFontManager& fontManager = Make(0, "standalone all");
  int nested = 0;
  world.tarn.onDialog = [&] {
    ++nested;
    fontManager.HandleSelectWorkgroup();
    FMI::CheckSelectWorkgroup();
    EXPECT_FALSE(FMI::GetValidWorkgroupSelected());
  };
  LogCapture log;
  fontManager.HandleSelectWorkgroup();
  EXPECT_EQ(nested, 1);
  EXPECT_TRUE(log.Has(
      "*** FontManagerInterface::HandleSelectWorkgroup -- OOPS, Select Workgroup dialog is already "
      "being displayed!"));
  EXPECT_TRUE(log.Has(
      "*** UH-OH, can't display Select Workgroup dialog, because it's already being displayed!"));
  EXPECT_EQ(fontManager.CountOfCalls("GetAllWorkgroupsForUser"), 1);
  fontManager.workgroups = {{"0", "None"}, {"11", "Library"}};
  fontManager.HandleSelectWorkgroup();
  EXPECT_EQ(Selected(), 11) << "the guard has gone";
}

TEST_F(WorkgroupSelection, TheDefaultIsInitialised) {
  ExpectStates(&FMI::InitializeDefaultWorkgroup, R"(
    2 / 12 / all valid / 12 valid workgroups;   2 / 12 / all valid workgroups / 12
    2 / 12 / all workgroups / 12 valid;         0 / -2 / valid / -2 valid workgroups
    2 / 99 / valid / -2 valid workgroups;       1 / 99 / all valid / 11 valid workgroups
    2 / 99 / all / 99 workgroups;               0 / -2 / all / -2 workgroups
    1 / 99 / all loading / 99 workgroups;       1 / 99 / all valid running / 99 workgroups)");
}

TEST_F(WorkgroupSelection, IsCheckedAndReadyOnlyWhereThePluginWorks) {
  // What does not hold, the answers of the check and of readiness, and the selected one.
  const char* table = R"(
    valid all / 1 / 1 / 11;          valid all services / 0 / 0 / 99;  valid all preference / 0 / 0 / 99
    all / 1 / 1 / 99;                valid all login / 1 / 0 / 11;     valid all login standalone / 0 / 0 / 99
    valid all standalone / 1 / 1 / 11; valid all workgroups / 1 / 1 / 11)";
  for (const auto& row : ReadTable(table)) {
    Make(1, row[0]);
    Select(99);
    EXPECT_EQ(FMI::CheckSelectWorkgroup(), row[1] == "1") << row[0];
    EXPECT_EQ(FMI::AutoActivationIsReady(), row[2] == "1") << row[0];
    EXPECT_EQ(Selected(), std::stoi(row[3])) << row[0];
    EXPECT_TRUE(KestraneGlobals::GetUserHasWorkgroups());
  }
  KestraneGlobals::SetUserHasWorkgroups(false);
  EXPECT_FALSE(FMI::AutoActivationIsReady());
  Make(0, "standalone valid");
  EXPECT_FALSE(FMI::CheckSelectWorkgroup()) << "the selection has found that there are none";
  Make(1, "valid");
  manager.reset();
  EXPECT_FALSE(FMI::AutoActivationIsReady());
  EXPECT_FALSE(FMI::CheckSelectWorkgroup());
}

TEST_F(WorkgroupSelection, NamesAndIDsGoBothWays) {
  world.tarn.texts = {{"All Libraries", "Alle"}, {"All Workgroups", "Toutes"}};
  // The name, what does not hold, and the ID.
  const char* table = R"(
    Library 1 / all / 12;  library 1 / / none;   Library 1 / loading / none;  Alle / / -2
    Alle / all / none;     Alle / standalone / none;  Toutes / standalone / -2;  alle / / none)";
  for (const auto& row : ReadTable(table)) {
    FakeFontManager& fontManager = Make(2, row[1]);
    Select(99);
    int id = 99;
    const bool isKnown = row[2] != "none";
    EXPECT_EQ(fontManager.GetWorkgroupID(row[0], &id), isKnown ? 0 : -1) << row[0] << row[1];
    EXPECT_EQ(id, isKnown ? std::stoi(row[2]) : 99) << row[0] << row[1];
    EXPECT_EQ(fontManager.SetDefaultWorkgroupName(row[0]), isKnown ? 0 : -1);
    EXPECT_EQ(Selected(), id);
    EXPECT_EQ(fontManager.IsAllWorkgroupsSelected(), id == -2);
    EXPECT_EQ(fontManager.GetDefaultWorkgroupName().value_or("none"), id == 12 ? row[0] : "none");
  }
  FakeFontManager& fontManager = Make(2);
  int id = 0;
  EXPECT_EQ(fontManager.GetWorkgroupID("Library 0", nullptr), -1);
  EXPECT_EQ(fontManager.GetWorkgroupID(std::nullopt, &id), -1);
  EXPECT_EQ(fontManager.SetDefaultWorkgroupName(std::nullopt), -1);

  const FontRecord known = ReadRecord("WorkgroupID=12");
  const FontRecord other = ReadRecord("WorkgroupID=4294967308");  // 12 in 32 bits
  EXPECT_EQ(fontManager.AddWorkgroupNamesToFonts(MakeFonts({other, MakeFontRecord()})), -1);
  EXPECT_EQ(fontManager.AddWorkgroupNamesToFonts(MakeFonts({known, other})), 0);
  EXPECT_EQ(WriteRecord(known), "WorkgroupID=12|WorkgroupName=Library 1");
  EXPECT_FALSE(RecordHas(other, kFP_WorkgroupNameKey));
}

TEST_F(WorkgroupSelection, IsValidByNameAndAsksForWhatItNeeds) {
  FakeFontManager& fontManager = Make(2);
  fontManager.workgroups["13"] = "Library 1";  // the name of one that is the user's
  fontManager.workgroups["14"] = "Special";
  fontManager.specialWorkgroupIDs = {"13", "14"};
  for (const int id : {0, 12, 13, 14, 15, -2}) {
    EXPECT_EQ(fontManager.IsValidWorkgroupForUser(id), id == 12 || id == 13) << id;
  }
  fontManager.canActivateFromAll = true;
  EXPECT_TRUE(fontManager.IsValidWorkgroupForUser(-2));
  EXPECT_TRUE(fontManager.UserHasAtLeastOneWorkgroup());
  fontManager.calls.clear();
  fontManager.workgroups.clear();
  EXPECT_FALSE(fontManager.UserHasAtLeastOneWorkgroup());
  fontManager.GetWorkgroupNameFromID(11);
  fontManager.AddWorkgroupNamesToFonts(MakeFontRecordArray());
  fontManager.HandleSelectWorkgroup();
  EXPECT_EQ(fontManager.calls,
            (std::vector<std::string>{
                "GetAllWorkgroupsForUser()", "GetAllWorkgroupsForUser(all,special,)",
                "GetAllWorkgroupsForUser(special,)", "GetAllWorkgroupsForUser()"}));
}

}  // namespace
