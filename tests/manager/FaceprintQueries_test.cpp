#include <gtest/gtest.h>

#include "sdk/FontRecordKeys.h"
#include "support/FakeFontManager.h"

namespace {

// Questions by name: type, "P" or "F", and name.
using Questions = std::vector<std::string>;

Questions QuestionsTo(const FakeFontManager& manager) {
  Questions questions;
  for (const std::string& call : manager.CallsOf("CountNamedFonts")) {
    const std::size_t start = call.find('(') + 1;
    questions.push_back(call.substr(start, call.size() - start - 1));
  }
  return questions;
}

FontRecord Source(const char* key, const std::string& name) {
  FontRecord record = MakeFontRecord();
  record->Set(key, name);
  return record;
}

std::vector<std::uint32_t> IDsOf(const FontRecordArray& fonts) {
  std::vector<std::uint32_t> ids;
  for (std::size_t i = 0; i < CountOf(fonts); ++i) {
    ids.push_back(RecordDatabaseID(fonts->DictionaryAt(i)));
  }
  return ids;
}

struct Ladder {
  const char* title;
  const char* name;
  int type;
  const char* present;  // the question that finds a font; "" for none
  Questions asked;
};

TEST(NameLadder, AsksForShorterAndShorterNames) {
  const Ladder ladders[] = {
      {"found at once", "Name-Bold", 0, "P:Name-Bold", {"P:Name-Bold"}},
      {"found without what PostScript forbids",
       "Na#12me-Bold",
       0,
       "P:NameBold",
       {"P:Na#12me-Bold", "P:NameBold"}},
      {"a subset prefix",
       "ABCDEF+Name-Bold",
       0,
       "P:Name",
       {"P:ABCDEF+Name-Bold", "P:ABCDEFNameBold", "P:Name-Bold", "F:Name-Bold", "F:Name Bold",
        "P:Name"}},
      {"a family with blanks",
       "ABCDEF+Name-Bold",
       0,
       "F:Name Bold",
       {"P:ABCDEF+Name-Bold", "P:ABCDEFNameBold", "P:Name-Bold", "F:Name-Bold", "F:Name Bold"}},
      {"nothing, and no hyphen: the third question all the same",
       "Name_1",
       0,
       "",
       {"P:Name_1", "P:Name1", "P:Name", "F:Name", "F:Name"}},
      {"a family name climbs through both types",
       "Name_1",
       1,
       "P:Name",
       {"F:Name_1", "F:Name1", "P:Name"}},
      {"nothing to take off", "Name", 0, "", {"P:Name", "P:Name"}}};
  for (const Ladder& ladder : ladders) {
    FakeFontManager manager;
    const std::string present = ladder.present;
    if (present.starts_with("F:")) {
      manager.Add(7, "", {{kFP_FamilyKey, present.c_str() + 2}});
    } else if (!present.empty()) {
      manager.Add(7, present.substr(2));
    }
    FontRecordArray candidates = MakeFontRecordArray();
    const FontRecord source =
        Source(ladder.type == 1 ? kFP_FamilyKey : kFP_PostScriptNameKey, ladder.name);
    EXPECT_EQ(manager.GetFaceprintData(source, ladder.type, nullptr, 11, candidates), 0);
    EXPECT_EQ(QuestionsTo(manager), ladder.asked) << ladder.title;
    EXPECT_EQ(CountOf(candidates), *ladder.present ? 1u : 0u) << ladder.title;
  }
}

TEST(NameLadder, EndsAtAnError) {
  struct Case {
    const char* question;
    int code;
    int result;
    std::size_t questions;
  };
  const Case cases[] = {
      {"P:A+Name-Bold", -1, -1, 1},    // the name itself
      {"P:ANameBold", -1, -1, 2},      // without what PostScript forbids
      {"P:Name-Bold", -1, 0, 8},       // a rung that fails is passed by
      {"F:Name-Bold", 1000, 1000, 4},  // the font manager has gone
      {"F:Name", -1, -1, 8},           // the last result counts
  };
  for (const Case& c : cases) {
    FakeFontManager manager;
    manager.FailAt("CountNamedFonts(" + std::string(c.question) + ")", 0, c.code);
    FontRecordArray candidates = MakeFontRecordArray();
    EXPECT_EQ(manager.GetFaceprintData(Source(kFP_PostScriptNameKey, "A+Name-Bold"), 0, nullptr, 11,
                                       candidates),
              c.result)
        << c.question;
    EXPECT_EQ(QuestionsTo(manager).size(), c.questions) << c.question;
  }
}

TEST(NameLadder, RefusesBadArgumentsAndLongNames) {
  FakeFontManager manager;
  const std::string fits(127, 'x');
  const std::string tooLong(128, 'x');
  manager.Add(1, fits);
  manager.Add(2, tooLong);
  FontRecordArray candidates = MakeFontRecordArray();
  const FontRecordArray before = candidates;
  const FontRecord named = Source(kFP_PostScriptNameKey, "Name");
  EXPECT_EQ(manager.GetFaceprintData(named, 2, nullptr, 11, candidates), -1);
  EXPECT_EQ(manager.GetFaceprintData(named, 1, nullptr, 11, candidates), -1);  // no family name
  EXPECT_EQ(manager.GetFaceprintData(nullptr, 0, nullptr, 11, candidates), -1);
  FontRecordArray none;
  EXPECT_EQ(manager.GetFaceprintData(named, 0, nullptr, 11, none), -1);
  EXPECT_EQ(
      manager.GetFaceprintData(Source(kFP_PostScriptNameKey, tooLong), 0, nullptr, 11, candidates),
      -1);
  EXPECT_TRUE(QuestionsTo(manager).empty());
  EXPECT_EQ(candidates, before);
  EXPECT_EQ(
      manager.GetFaceprintData(Source(kFP_PostScriptNameKey, fits), 0, nullptr, 11, candidates), 0);
  EXPECT_EQ(IDsOf(candidates), std::vector<std::uint32_t>{1});
}

TEST(QueryByName, WritesTheDatabaseStateIntoEachRecord) {
  struct Case {
    std::uint16_t state;
    const char* isTemporary;
    const char* isActive;
  };
  for (const Case& c : {Case{0, "0", "0"}, {1, "0", "0"}, {2, "0", "1"}, {3, "1", "1"}}) {
    FakeFontManager manager;
    const FontRecord original = manager.Add(4000000000u, "Name", {}, c.state).info;
    original->Remove(kFP_DatabaseIDKey);
    FontRecordArray candidates = MakeFontRecordArray();
    ASSERT_EQ(
        manager.GetFaceprintDataForFontName("Name", kPostScriptFontName, nullptr, 11, candidates),
        0);
    ASSERT_EQ(CountOf(candidates), 1u);
    const FontRecord record = candidates->DictionaryAt(0);
    EXPECT_EQ(RecordString(record, kFP_DatabaseIDKey), "4000000000");
    EXPECT_EQ(RecordString(record, kFP_IsTempKey), c.isTemporary);
    EXPECT_EQ(RecordString(record, kFP_IsActiveKey), c.isActive);
    EXPECT_EQ(RecordString(record, kFP_ActivationStateKey), std::to_string(c.state));
    EXPECT_FALSE(original->Has(kFP_DatabaseIDKey)) << "the caller's record is a copy";
    EXPECT_EQ(manager.CountOfCalls("EndGetFaceprintInfo"), 1);
  }
}

TEST(QueryByName, PassesOverWhatItCannotReadAndStopsWhenTheFontManagerHasGone) {
  struct Case {
    const char* title;
    int infoError;
    int slugError;
    std::string slug;
    int result;
    std::vector<std::uint32_t> ids;  // of three fonts, the second of which is special
  };
  const std::string huge = "<plist><array><dict><key>Family</key><string>" +
                           std::string(65536, 'x') + "</string></dict></array></plist>";
  const Case cases[] = {
      {"an error on the way", -1, 0, "", 0, {1, 3}},
      {"gone at a record", 1000, 0, "", 1000, {1}},
      {"an error of the text", 0, -1, "", 0, {1, 3}},
      {"gone at a text", 0, 1000, "", 1000, {1}},
      {"no property list", 0, 0, "junk", 0, {1, 3}},
      {"no list of records", 0, 0, "<plist><string>x</string></plist>", 0, {1, 3}},
      {"larger than the buffer", 0, 0, huge, 0, {1, 3}}};
  for (const Case& c : cases) {
    FakeFontManager manager;
    for (std::uint32_t id = 1; id <= 3; ++id) manager.Add(id, "Name");
    manager.fonts[1].slug = c.slug;
    if (c.infoError != 0) manager.FailAt("GetNamedFontInfo", 2, c.infoError);
    if (c.slugError != 0) manager.FailAt("GetFaceprintInfo", 2, c.slugError);
    FontRecordArray candidates = MakeFontRecordArray();
    EXPECT_EQ(
        manager.GetFaceprintDataForFontName("Name", kPostScriptFontName, nullptr, 11, candidates),
        c.result)
        << c.title;
    EXPECT_EQ(IDsOf(candidates), c.ids) << c.title;
    EXPECT_EQ(manager.CountOfCalls("EndGetFaceprintInfo"), 1);
  }
}

TEST(QueryByName, LeavesOutDisabledRemoteWorkgroups) {
  FakeFontManager manager;
  manager.disabledWorkgroupType = 8;
  manager.Add(1, "Name");
  manager.Add(2, "Name", {{kFP_WorkgroupTypeKey, "8"}});
  FontRecordArray candidates = MakeFontRecordArray();
  bool excludedRemote = false;
  EXPECT_EQ(manager.GetFaceprintDataForFontName("Name", kPostScriptFontName, &excludedRemote, 11,
                                                candidates),
            0);
  EXPECT_TRUE(excludedRemote);
  EXPECT_EQ(IDsOf(candidates), std::vector<std::uint32_t>{1});
}

TEST(QueryByName, LeavesTheCallersArrayWhereNothingIsFound) {
  FakeFontManager manager;
  FontRecordArray candidates = MakeFontRecordArray();
  const FontRecordArray before = candidates;
  EXPECT_EQ(
      manager.GetFaceprintDataForFontName("Name", kPostScriptFontName, nullptr, 11, candidates), 0);
  EXPECT_EQ(candidates, before);
  EXPECT_EQ(manager.GetFaceprintDataForFontName(std::nullopt, kPostScriptFontName, nullptr, 11,
                                                candidates),
            -50);
  FontRecordArray none;
  EXPECT_EQ(manager.GetFaceprintDataForFontName("Name", kPostScriptFontName, nullptr, 11, none),
            -50);
}

TEST(QueryByName, BestMatchComesFirst) {
  FakeFontManager manager;
  manager.Add(1, "Name", {}, kActivationStateInactive);
  manager.Add(2, "Name", {}, kActivationStateActive);
  FontRecordArray candidates = MakeFontRecordArray();
  EXPECT_EQ(
      manager.GetFaceprintData(Source(kFP_PostScriptNameKey, "Name"), 0, nullptr, 11, candidates),
      0);
  EXPECT_EQ(IDsOf(candidates), (std::vector<std::uint32_t>{2, 1}));
}

}  // namespace
