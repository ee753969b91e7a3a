#include "fonts/FontNames.h"

#include <gtest/gtest.h>

#include <random>

#include "fonts/FontNameIndex.h"
#include "support/FontRecords.h"

using namespace FaceprintSupport;

TEST(FontNames, NormalForms) {
  struct Row {
    const char* name;
    const char* plain;
    const char* strict;
  };
  const Row rows[] = {{"Foo#12Bar-Bold-Extra", "Foo12BarBoldExtra", "FooBarBold"},
                      {"Foo Bar_1", "FooBar1", "FooBar1"},
                      {"#12", "12", ""},
                      {"--A", "A", ""},
                      {"A#x1", "Ax1", "Ax1"},
                      {"\xC3\xA9"
                       "a",
                       "a", "a"},
                      {"...", "", ""}};
  for (const Row& row : rows) {
    EXPECT_EQ(GFontToolUtils_StripCharsAndNormalizeString(row.name, false), row.plain);
    EXPECT_EQ(StripIllegalPostScriptCharacters(row.name), row.strict);
  }
}

TEST(FontNames, CruftComesOff) {
  const std::pair<const char*, const char*> rows[] = {{"ABCDEF+Helvetica", "Helvetica"},
                                                      {"+Foo", "Foo"},
                                                      {" Foo", "Foo"},
                                                      {"+", ""},
                                                      {"A-", "A"},
                                                      {"Name-Bold_123", "Name-Bold"},
                                                      {"Name-Bold", "Name"},
                                                      {"Foo(1)", "Foo(1"},
                                                      {"A-B+C", "A"},
                                                      {"A+", ""},
                                                      {"(A", nullptr},
                                                      {"-A", nullptr},
                                                      {"Helvetica", nullptr},
                                                      {"", nullptr}};
  for (const auto& [name, shorter] : rows) {
    char buffer[32] = "untouched";
    EXPECT_EQ(PSNameMightHaveCruftAppended(name, sizeof buffer, buffer), shorter != nullptr)
        << name;
    EXPECT_STREQ(buffer, shorter != nullptr ? shorter : "untouched") << name;
  }
  char shared[] = "ABCDEF+Name-Bold";
  EXPECT_TRUE(PSNameMightHaveCruftAppended(shared, sizeof shared, shared));
  EXPECT_STREQ(shared, "Name-Bold");
  EXPECT_TRUE(PSNameMightHaveCruftAppended(shared, 3, shared));
  EXPECT_STREQ(shared, "Na");
  EXPECT_FALSE(PSNameMightHaveCruftAppended("A-B", 0, shared));
  EXPECT_FALSE(PSNameMightHaveCruftAppended(nullptr, 5, shared));
  EXPECT_FALSE(PSNameMightHaveCruftAppended("A-B", 5, nullptr));
}

TEST(FontNames, MultipleMasterInstancesReduceToTheirBase) {
  const std::pair<const char*, const char*> rows[] = {
      {"MinionMM_367_wt", "MinionMM"},
      {"MinionMM-Regular_367", "MinionMM-Regular"},
      {"AMM-x", nullptr},
      {"MM_", nullptr},
      {"MM", nullptr},
      {"Minion_367", nullptr},
      {"MM_a_", "MM"},
      {"MM-a_", nullptr}};  // the last two characters are not looked at
  for (const auto& [name, base] : rows) {
    const std::optional<std::string> resolved = CreateResolvedMMFontName(std::string(name));
    EXPECT_EQ(resolved.value_or("-"), base != nullptr ? base : "-") << name;
  }
  EXPECT_FALSE(CreateResolvedMMFontName(std::nullopt));
  const FontRecord record = MakeNamed("MinionMM_367_wt");
  ResolveDictionaryMMFontName(record);
  ResolveDictionaryMMFontName(record);
  EXPECT_EQ(RecordString(record, kFP_PostScriptNameKey), "MinionMM");
}

TEST(FontNames, ExactNamesBeatFuzzyOnes) {
  const FontRecordArray fonts =
      MakeFonts({MakeNamed("Foo#1Bar"), PropertyList::Value(), MakeFontRecord(),
                 MakeNamed("Foo-Bar"), MakeNamed("FooBar"), MakeNamed("foobar")});
  const std::pair<const char*, int> rows[] = {{"FooBar", 4},   {"Foo Bar", 3}, {"Foo#2Bar", 0},
                                              {"Foo#1Bar", 0}, {"foobar", 5},  {"FOOBAR", -1},
                                              {"Foo1Bar", 0}};
  for (const auto& [name, expected] : rows) {
    std::size_t index = 99;
    EXPECT_EQ(DoesArrayContainFontWithPostScriptName(fonts, name, &index), expected >= 0) << name;
    EXPECT_EQ(index, expected >= 0 ? static_cast<std::size_t>(expected) : 99u) << name;
  }
  EXPECT_FALSE(DoesArrayContainFontWithPostScriptName(nullptr, "A"));
  EXPECT_FALSE(DoesArrayContainFontWithPostScriptName(fonts, nullptr));
}

// The index against the plain three passes, on names that are often nearly equal.
TEST(FontNames, TheIndexAnswersAsTheThreePasses) {
  std::mt19937 random(5);
  const auto makeName = [&random] {
    std::string name;
    for (std::size_t length = random() % 5; length > 0; --length) name += "aB1#-."[random() % 6];
    return name;
  };
  for (int round = 0; round < 60; ++round) {
    const FontRecordArray fonts = MakeFontRecordArray();
    for (int i = 0; i < 12; ++i) fonts->Append(MakeNamed(makeName().c_str()));
    FontNameIndex index(fonts);
    for (int i = 0; i < 12; ++i) {
      const std::size_t place = random() % fonts->Count();
      index.Remove(fonts->DictionaryAt(place), place);
      fonts->Set(place, MakeNamed(makeName().c_str()));
      index.Add(fonts->DictionaryAt(place), place);
      const std::string asked = makeName();
      std::size_t expected = 0;
      const bool found = DoesArrayContainFontWithPostScriptName(fonts, asked.c_str(), &expected);
      EXPECT_EQ(index.Find(asked), found ? std::optional(expected) : std::nullopt) << asked;
    }
  }
}

TEST(FontNames, LookUpsByIDAndByMultipleMasterBase) {
  const FontRecordArray fonts = MakeFonts(
      {PropertyList::Value("text"), MakeRecord({{kFP_DatabaseIDKey, "5"}}),
       MakeRecord({{kFP_PostScriptNameKey, "MinionMM"}, {kFP_KindKey, "PostScript - MM"}}),
       MakeRecord({{kFP_PostScriptNameKey, "Foo"}, {kFP_KindKey, "TrueType"}}),
       MakeRecord({{kFP_PostScriptNameKey, "MinionMM_1"}, {kFP_DatabaseIDKey, "5"}})});
  std::size_t index = 99;
  EXPECT_TRUE(DoesArrayContainFontWithDatabaseID(fonts, 5, &index));
  EXPECT_EQ(index, 1u);
  EXPECT_FALSE(DoesArrayContainFontWithDatabaseID(fonts, 0));
  const auto find = [&fonts](const char* name) {
    return GetFaceprintDictionaryFromArrayWithPostscriptName(fonts, name);
  };
  EXPECT_EQ(find("MinionMM_1"), fonts->DictionaryAt(2));  // the base comes first in the array
  EXPECT_EQ(find("Foo"), fonts->DictionaryAt(3));
  EXPECT_FALSE(find("Foo_1"));
  EXPECT_FALSE(find("MinionMMx"));
  EXPECT_FALSE(find("minionMM"));
}
