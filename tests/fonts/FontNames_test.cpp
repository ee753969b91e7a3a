#include "fonts/FontNames.h"

#include <gtest/gtest.h>

#include <random>

#include "fonts/FontNameIndex.h"
#include "support/FontRecords.h"
#include "support/TextTable.h"

using namespace FaceprintSupport;

TEST(FontNames, NormalForms) {
  const char* table = R"(
    Foo#12Bar-Bold-Extra / Foo12BarBoldExtra / FooBarBold;  Foo Bar_1 / FooBar1 / FooBar1
    #12 / 12 / ;  --A / A / ;  A#x1 / Ax1 / Ax1;  éa / a / a;  ... / / ;  a-#1-#2b / a12b / a)";
  for (const auto& row : ReadTable(table)) {
    EXPECT_EQ(GFontToolUtils_StripCharsAndNormalizeString(row[0], false), row[1]);
    EXPECT_EQ(StripIllegalPostScriptCharacters(row[0]), row[2]);
  }
}

TEST(FontNames, CruftComesOff) {
  const char* table = R"(
    ABCDEF+Helvetica / Helvetica;  +Foo / Foo;  " Foo" / Foo;  + / ;  A- / A;  A+ / ;  A_B+C / A
    Name-Bold_123 / Name-Bold;  Name-Bold / Name;  Foo(1) / Foo(1;  Foo(1 / Foo;  A-B+C / A
    (A / no;  -A / no;  Helvetica / no;  A+B+C / B+C;  "A " / A;  "" / no)";
  for (const auto& row : ReadTable(table)) {
    char buffer[32] = "no";
    EXPECT_EQ(PSNameMightHaveCruftAppended(row[0].c_str(), sizeof buffer, buffer), row[1] != "no");
    EXPECT_EQ(buffer, row[1]) << row[0];
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
  // The last two characters are not looked at.
  const char* table = R"(
    MinionMM_367_wt / MinionMM;  MinionMM-Regular_367 / MinionMM-Regular;  MM_a_ / MM;  MM-a_xx / MM-a
    AMM-x / no;  MM_ / no;  MM / no;  Minion_367 / no;  MM-a_ / no;  M_MM-_12 / M_MM-)";
  for (const auto& row : ReadTable(table)) {
    EXPECT_EQ(CreateResolvedMMFontName(row[0]).value_or("no"), row[1]) << row[0];
    const FontRecord record = MakeNamed(row[0].c_str());
    ResolveDictionaryMMFontName(record);
    EXPECT_EQ(RecordString(record, kFP_PostScriptNameKey), row[row[1] == "no" ? 0 : 1]);
  }
  EXPECT_FALSE(CreateResolvedMMFontName(std::nullopt));
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

TEST(FontNames, LookUps) {
  const FontRecordArray fonts =
      MakeFonts({"text", ReadRecord("DatabaseID=5"),
                 ReadRecord("PostScriptName=MinionMM|FontKind=PostScript - MM"),
                 ReadRecord("PostScriptName=MinionMM_1|DatabaseID=5"),
                 ReadRecord("PostScriptName=Bar|FontKind=PostScript - Multiple Master"),
                 ReadRecord("DatabaseID=0"), MakeNamed("Foo#1Bar"), MakeNamed("Foo-Bar"),
                 MakeNamed("FooBar"), MakeNamed("foobar")});
  std::size_t index = 99;
  EXPECT_TRUE(DoesArrayContainFontWithDatabaseID(fonts, 5, &index));
  EXPECT_EQ(index, 1u);
  EXPECT_FALSE(DoesArrayContainFontWithDatabaseID(fonts, 0));
  EXPECT_FALSE(DoesArrayContainFontWithDatabaseID(fonts, 6));
  // A name; its place, where exact names beat fuzzy ones; and where the base of a Multiple Master
  // instance stands for it, and nothing is fuzzy.
  const char* table = R"(
    FooBar / 8 / 8;      Foo Bar / 7 / 99;  Foo#2Bar / 6 / 99;   Foo#1Bar / 6 / 6;     foobar / 9 / 9
    FOOBAR / 99 / 99;    Foo1Bar / 6 / 99;  MinionMM_1 / 3 / 2;  MinionMM / 2 / 2;     Bar_ / 4 / 4
    FooBar_1 / 99 / 99;  MinionMMx / 99 / 99;  minionMM / 99 / 99;  xMinionMM_1 / 99 / 99)";
  for (const auto& row : ReadTable(table)) {
    const char* name = row[0].c_str();
    index = 99;
    EXPECT_EQ(DoesArrayContainFontWithPostScriptName(fonts, name, &index), row[1] != "99");
    EXPECT_EQ(index, std::stoul(row[1])) << name;
    index = 99;
    const FontRecord found = GetFaceprintDictionaryFromArrayWithPostscriptName(fonts, name, &index);
    EXPECT_EQ(index, std::stoul(row[2])) << name;
    EXPECT_EQ(found, fonts->DictionaryAt(index));
  }
}
