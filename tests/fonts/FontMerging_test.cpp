#include "fonts/FontMerging.h"

#include <gtest/gtest.h>

#include "support/FakePlatform.h"
#include "support/FontRecords.h"
#include "support/LogCapture.h"
#include "support/TextTable.h"

using namespace FaceprintSupport;

using Names = std::vector<std::string>;

TEST(FontMerging, ByCompletenessAndValues) {
  // Source, destination, the destination afterwards, and the line of the log.
  const char* table = R"(
    b=2 / a=1 / a=1|b=2 / Merging info from srcFontArray for entry 1 in dstFontArray (for 'Foo').
    a=X|b=2 / a=x|c=3|d=4 / a=x|c=3|d=4|b=2 / Merging info from srcFontArray for entry 1 in dstFontArray (for 'Foo').
    a=É|b=1 / a=é / a=é|b=1 / Merging info from srcFontArray for entry 1 in dstFontArray (for 'Foo').
    a=1|b=2 / a=11 / a=1|b=2 / WARNING: replacing entry 1 in dstFontArray (for 'Foo') because srcFontArray has more complete info for that font.
    a=STRASSE|b=1 / a=straße / a=STRASSE|b=1 / WARNING: replacing entry 1 in dstFontArray (for 'Foo') because srcFontArray has more complete info for that font.
    a=X / a=x|b=2 / a=x|b=2 / Ignoring entry 0 in srcFontArray (for 'Foo') because dstFontArray already has more complete info for that font.
    a=1 / a=9 / a=9 / Ignoring entry 0 in srcFontArray (for 'Foo') because dstFontArray already has identical info for that font.
    a=1|c=3 / a=9|b=2 / a=9|b=2 / Ignoring entry 0 in srcFontArray (for 'Foo') because dstFontArray already has identical info for that font.)";
  for (const auto& row : ReadTable(table)) {
    const std::string name = "PostScriptName=Foo|";
    const FontRecord source = ReadRecord(name + row[0]);
    const FontRecord old = ReadRecord(name + row[1]);
    const FontRecordArray destination = MakeFonts({MakeNamed("Bar"), old});
    LogCapture log;
    MergeFontsIntoFontsArray(MakeFonts({source}), destination);
    EXPECT_EQ(WriteRecord(destination->DictionaryAt(1)), name + row[2]);
    EXPECT_EQ(log.lines, Names{row[3] + "\n"});
    EXPECT_EQ(WriteRecord(source) + WriteRecord(old), name + row[0] + name + row[1])
        << "changed in place";
  }
}

TEST(FontMerging, AppendsWhatIsNewAndSkipsTheNameless) {
  const FontRecordArray destination = MakeFonts({MakeNamed("A")});
  LogCapture log;
  MergeFontsIntoFontsArray(
      MakeFonts({PropertyList::Value(), MakeFontRecord(), MakeNamed("B"), MakeNamed("B"),
                 ReadRecord("PostScriptName=A#1|FontKind=TrueType"), MakeNamed("A1")}),
      destination);
  // "A#1" names the same font as "A" and says more: it takes its place, and "A1" now finds it.
  EXPECT_EQ(NamesOf(destination), (Names{"A#1", "B"}));
  EXPECT_TRUE(log.Has(
      "WARNING: ignoring entry 1 in srcFontArray because it does not contain a postscript name."));
  EXPECT_TRUE(
      log.Has("Appending entry 2 in srcFontArray (for 'B') because dstFontArray has no "
              "such postscript name."));
  MergeFontsIntoFontsArray(destination, destination);
  EXPECT_EQ(destination->Count(), 2u);
  // A single record gives its place; it takes another's only with more keys.
  const char* records = R"(
    PostScriptName=C / 2;  FontKind=x / 3;  PostScriptName=B|FontKind=x / 1;  PostScriptName=B|a=1 / 1)";
  for (const auto& row : ReadTable(records)) {
    const FontRecord record = ReadRecord(row[0]);
    EXPECT_EQ(MergeFaceprintDictionaryIntoArray(destination, record), std::stoi(row[1])) << row[0];
  }
  EXPECT_EQ(WriteRecord(destination->DictionaryAt(1)), "PostScriptName=B|FontKind=x");
  EXPECT_EQ(NamesOf(destination), (Names{"A#1", "B", "C", ""}));
}

TEST(FontMerging, CountsAndLists) {
  FakePlatform platform;
  platform.fonts.visible.insert("Family");
  const auto matched = [](const char* match) {
    return MakeRecord({{kFP_MatchedFontKey, ReadRecord(match)}});
  };
  const auto choice = [](const FontRecordArray& replacements) {
    return MakeRecord({{kFP_PossibleReplacementsKey, replacements}});
  };
  const FontRecordArray fonts = MakeFonts(
      {matched("IsActive=1"), matched("IsActive=0|AssignedFamilyName=Family"),
       PropertyList::Value(), choice(MakeFonts({MakeNamed("X")})), choice(MakeFonts({}))});
  EXPECT_EQ(CountActiveFonts(fonts), 1);
  EXPECT_EQ(platform.fonts.questions, Names{"Family"});  // its answer doesn't count
  EXPECT_EQ(CountMissingFonts(fonts), 3);
  const FontRecordArray resolved = MakeFontRecordArray();
  EXPECT_FALSE(AllFontsResolved(fonts, resolved));
  EXPECT_EQ(resolved->Values().size(), 2u);
  EXPECT_EQ(resolved->DictionaryAt(1), fonts->DictionaryAt(1));
  EXPECT_TRUE(AllFontsResolved(resolved, nullptr));

  const FontRecord slug = ReadRecord("PostScriptName=B|FontKind=x");
  const FontRecordArray slugs = CreateFaceprintSlugsWithFaceprintFontsAndDocumentFonts(
      MakeFonts({MakeNamed("Z"), slug, MakeNamed("B")}),
      MakeFonts({MakeNamed("A"), MakeFontRecord(), MakeNamed("B"), MakeNamed("B_1")}));
  EXPECT_EQ(NamesOf(slugs), (Names{"A", "B", "B_1"}));
  EXPECT_EQ(slugs->DictionaryAt(1), slug);
  const FontRecordArray trimmed =
      MakeFonts({MakeNamed("C"), MakeNamed("A"), MakeFontRecord(), MakeNamed("D")});
  EXPECT_EQ(RemoveUniqueFontsFromFontArray(trimmed, slugs), 2);
  EXPECT_EQ(NamesOf(trimmed), (Names{"A", ""}));
}
