#include <gtest/gtest.h>

#include "support/FakeFontManager.h"
#include "support/FontRecords.h"
#include "support/IdentifiedPlugin.h"
#include "support/LogCapture.h"
#include "support/TextTable.h"

using namespace std::string_literals;

namespace {

class Queries : public testing::Test {
 protected:
  int Climb(const std::string& source, int type = kPostScriptFontName) {
    return manager->GetFaceprintData(ReadRecord(source), type, &excludedRemote, 11, candidates);
  }
  int Ask(const std::optional<std::string>& name) {
    return manager->GetFaceprintDataForFontName(name, kPostScriptFontName, nullptr, 11, candidates);
  }
  void Reset() {
    manager.reset();
    manager = std::make_unique<FakeFontManager>();
    candidates = before;
  }

  IdentifiedPlugin plugin;
  std::unique_ptr<FakeFontManager> manager = std::make_unique<FakeFontManager>();
  const FontRecordArray before = MakeFontRecordArray();
  FontRecordArray candidates = before;
  bool excludedRemote = false;
};

using NameLadder = Queries;
using QueryByName = Queries;

TEST_F(NameLadder, AsksForShorterAndShorterNames) {
  // The source, the question that finds a font, and what is asked.
  const char* table = R"(
    Name-Bold    / P:Name-Bold   / P:Name-Bold
    Na#12me-Bold / P:NameBold    / P:Na#12me-Bold, P:NameBold
    A+Name-Bold  / P:Name        / P:A+Name-Bold, P:ANameBold, P:Name-Bold, F:Name-Bold, F:Name Bold, P:Name
    A+Name-Bold  / F:Name-Bold   / P:A+Name-Bold, P:ANameBold, P:Name-Bold, F:Name-Bold
    A+N-B-C      / F:N B C       / P:A+N-B-C, P:ANB, P:N-B-C, F:N-B-C, F:N B C
    Name_1       /               / P:Name_1, P:Name1, P:Name, F:Name, F:Name
    Family=Na_1  / P:Na          / F:Na_1, F:Na1, P:Na
    Family=Na    / F:Na          / F:Na
    Name         /               / P:Name, P:Name)";
  for (const auto& row : ReadTable(table)) {
    const std::string source = row[0];
    const std::string present = row[1];
    Reset();
    if (!present.empty()) {
      manager->Add(7, present[0] == 'P' ? present.substr(2) : "",
                   {{kFP_FamilyKey, present[0] == 'F' ? present.c_str() + 2 : "-"}});
    }
    const bool byFamily = source.starts_with("Family=");
    EXPECT_EQ(Climb(byFamily ? source : "Family=x|PostScriptName=" + source, byFamily), 0);
    EXPECT_EQ(manager->NamesAsked(), row[2]);
    EXPECT_EQ(CountOf(candidates), present.empty() ? 0u : 1u) << source;
  }
}

TEST_F(NameLadder, EndsAtAnError) {
  // The question that fails, its code, the result, and the number of questions.
  const char* table = R"(
    P:A+Name-Bold / -1 / -1 / 1;  P:ANameBold / -1 / -1 / 2;  P:ANameBold / 1000 / 1000 / 2
    P:Name-Bold / -1 / 0 / 8;     F:Name-Bold / 1000 / 1000 / 4;  F:Name / -1 / -1 / 8
    P:A+Name-Bold / 70000 / 4464 / 1)";
  for (const auto& row : ReadTable(table)) {
    Reset();
    manager->FailAt("CountNamedFonts(" + row[0] + ")", 0, std::stoi(row[1]));
    EXPECT_EQ(Climb("PostScriptName=A+Name-Bold"), std::stoi(row[2])) << row[0];
    EXPECT_EQ(manager->CountOfCalls("CountNamedFonts"), std::stoi(row[3])) << row[0];
    EXPECT_EQ(candidates, before);
  }
}

TEST_F(NameLadder, RefusesBadArgumentsAndLongNames) {
  const std::string fits = "PostScriptName=" + std::string(127, 'x');
  const std::string tooLong = fits + std::string(99'999, '+');
  for (const int type : {2, -1, 1}) EXPECT_EQ(Climb("PostScriptName=Name", type), -1);
  for (const auto& source : {"Family=Name"s, fits + "x", tooLong}) EXPECT_EQ(Climb(source), -1);
  EXPECT_EQ(manager->GetFaceprintData(nullptr, 0, nullptr, 11, candidates), -1);
  EXPECT_EQ(candidates, before);
  candidates = nullptr;
  EXPECT_EQ(Climb(fits), -1);
  EXPECT_EQ(manager->NamesAsked(), "");
  candidates = before;
  EXPECT_EQ(Climb(fits), 0);
  EXPECT_NE(manager->NamesAsked(), "");
}

TEST_F(NameLadder, BestMatchForTheSourceComesFirst) {
  manager->Add(1, "Name", {{kFP_KindKey, "OpenType"}});
  manager->Add(2, "Name", {{kFP_KindKey, "TrueType"}});
  EXPECT_EQ(Climb("PostScriptName=Name|FontKind=truetype"), 0);
  EXPECT_EQ(IDsOf(candidates), "2,1");
  EXPECT_EQ(Climb("PostScriptName=Name"), 0);
  EXPECT_EQ(IDsOf(candidates), "1,2");
}

TEST_F(QueryByName, WritesTheDatabaseStateIntoEachRecord) {
  const char* expected[] = {
      "|IsTemp=0|IsActive=0|ActivationStatus=0", "|IsTemp=0|IsActive=0|ActivationStatus=1",
      "|IsTemp=0|IsActive=1|ActivationStatus=2", "|IsTemp=1|IsActive=1|ActivationStatus=3"};
  for (std::uint16_t state = 0; state <= 3; ++state) {
    Reset();
    const FontRecord original = manager->Add(4000000000u, "Name", {}, state).info;
    original->Remove(kFP_DatabaseIDKey);
    EXPECT_EQ(Ask("Name"), 0);
    EXPECT_EQ(WriteRecord(candidates->DictionaryAt(0)),
              std::string("PostScriptName=Name|DatabaseID=4000000000") + expected[state]);
    EXPECT_FALSE(original->Has(kFP_DatabaseIDKey)) << "the caller's record is a copy";
  }
}

TEST_F(QueryByName, PassesOverWhatItCannotReadAndStopsWhenTheFontManagerHasGone) {
  // Of three fonts the second one is special: what fails there and its code, or its text; the
  // result, what comes back, and the log.
  const char* table = R"(
    GetNamedFontInfo / -1 / 0 / 1,3 / ;   GetNamedFontInfo / 1000 / 1000 / 1 /
    GetFaceprintInfo / -1 / 0 / 1,3 / ...GetFaceprintInfo returned -1 for Name (databaseID 2).
    GetFaceprintInfo / 1000 / 1000 / 1 / ...GetFaceprintInfo returned 1000 for Name (databaseID 2).
    / junk               / 0 / 1,3 / ...CFPropertyListCreateFromXMLData failed on "junk"
    / array              / 0 / 1,3 / ...CFPropertyListCreateFromXMLData failed on "<plist>
    / huge               / 0 / 1,3 / ...GetFaceprintInfo returned 0 but no Faceprint info for Name)";
  const std::map<std::string, std::string> texts = {
      {"junk", "junk"}, {"array", "<plist><array/></plist>"}, {"huge", std::string(65536, 'x')}};
  for (const auto& row : ReadTable(table)) {
    Reset();
    for (std::uint32_t id = 1; id <= 3; ++id) manager->Add(id, "Name");
    if (row[0].empty()) {
      manager->fonts[1].slug = texts.at(row[1]);
    } else {
      manager->FailAt(row[0], 2, std::stoi(row[1]));
    }
    LogCapture log;
    EXPECT_EQ(Ask("Name"), std::stoi(row[2]));
    EXPECT_EQ(IDsOf(candidates), row[3]) << row[0] << row[1];
    EXPECT_TRUE(row[4].empty() || log.HasPart(row[4])) << row[4];
    EXPECT_EQ(manager->CountOfCalls("EndGetFaceprintInfo"), 1);
  }
}

TEST_F(QueryByName, LeavesOutDisabledRemoteWorkgroups) {
  manager->disabledWorkgroupType = 8;
  manager->Add(1, "Name");
  EXPECT_EQ(Climb("PostScriptName=Name"), 0);
  EXPECT_FALSE(excludedRemote);
  manager->Add(2, "Name", {{kFP_WorkgroupTypeKey, "8"}, {kFP_Faceprint_1_2_Key, "77"}});
  manager->Add(3, "Name", {{kFP_WorkgroupTypeKey, "9"}});
  LogCapture log;
  EXPECT_EQ(Climb("PostScriptName=Name"), 0);
  EXPECT_TRUE(excludedRemote);
  EXPECT_TRUE(log.HasPart("Excluding version with checksum 77 because it's remote"));
  EXPECT_EQ(IDsOf(candidates), "1,3");
}

TEST_F(QueryByName, LeavesTheCallersArrayWhereNothingIsFound) {
  EXPECT_EQ(Ask(std::nullopt), -50);
  // What is said to be there, where there is nothing.
  for (const auto& [count, code] : {std::pair(0, 0), {-2, 0}, {1, -1}}) {
    manager->countOfNamed = count;
    EXPECT_EQ(Ask("Name"), code) << count;
    EXPECT_EQ(manager->CountOfCalls("EndGetFaceprintInfo"), count == 1 ? 1 : 0);
    EXPECT_EQ(candidates, before);
  }
  manager->Add(1, "Name");
  manager->countOfNamed = 2;  // one more than there are
  EXPECT_EQ(Ask("Name"), -1);
  EXPECT_EQ(IDsOf(candidates), "1");
  candidates = nullptr;
  EXPECT_EQ(Ask("Name"), -50);
}

}  // namespace
