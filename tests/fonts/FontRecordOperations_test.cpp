#include "fonts/FontRecordOperations.h"

#include <gtest/gtest.h>

#include "fonts/FontKinds.h"
#include "support/FakeFontManager.h"
#include "support/FontRecords.h"
#include "support/LogCapture.h"
#include "support/TextTable.h"

using namespace FaceprintSupport;

TEST(FontKinds, MapBothWaysByExtent) {
  // A kind, and what it becomes of all names and of pairs only.
  const char* toPresent = R"(
    PS Pair / Postscript / Postscript;              ps pair / Postscript / Postscript
    PS MM / PostScript - MM / PS MM;                OpenType (TT) / OpenType - TT / OpenType (TT)
    OpenType (PS) / OpenType - PS / OpenType (PS);  DFont / TrueType / DFont
    TrueType / TrueType / TrueType;                 PS Pairs / PS Pairs / PS Pairs)";
  for (const auto& row : ReadTable(toPresent)) {
    for (const int extent : {0, 1, 2}) {
      const std::string expected = row[extent == kMapAllNames ? 1 : 2];
      const FontRecord record = ReadRecord("FontKind=" + row[0] + "|Foundry=Unknown");
      LogCapture log;
      EXPECT_EQ(MapSorrellineFontTypeToKestraneFontType(record, extent), row[0] != expected);
      EXPECT_EQ(log.Has("MapSorrellineFontTypeToKestraneFontType mapping '" + row[0] + "' to '" +
                        expected + "'"),
                row[0] != expected);
      MapSorrellineNamesToKestraneNames(MakeFonts({PropertyList::Value(), record}), extent);
      EXPECT_EQ(WriteRecord(record),
                "FontKind=" + expected + "|Foundry=" + (extent == 0 ? "--" : "Unknown"));
    }
  }
  const char* toOlder = R"(
    Postscript / PS Pair / PS Pair;       POSTSCRIPT / PS Pair / PS Pair;  PostScript - MM / PS MM / PostScript - MM
    OpenType - TT / OpenType (TT) / OpenType - TT;  OpenType - PS / OpenType (PS) / OpenType - PS
    TrueType / TrueType / TrueType)";
  for (const auto& row : ReadTable(toOlder)) {
    EXPECT_EQ(MapKestraneFontTypeToSorrellineFontType(row[0], 0), row[1]);
    EXPECT_EQ(MapKestraneFontTypeToSorrellineFontType(row[0], 1), row[2]);
  }
}

// What is repaired in a slug, before and after, and by which of its operations.
TEST(FontKinds, FoundriesAndChecksumsOfASlug) {
  const char* foundries = R"(
    unknown / --;  UNKNOWN / --;  adobe / Adobe;  émile / Émile;  Émile / Émile;  -- / --;  "" /
    Adobe Systems / Adobe Systems;  the 3d o'hara type-works / The 3D O'hara Type-Works)";
  for (const auto& row : ReadTable(foundries)) {
    const FontRecord record = ReadRecord("Foundry=" + row[0]);
    EXPECT_EQ(MapSorrellineFoundryNameToKestraneFoundryName(record), row[0] != row[1]);
    EXPECT_EQ(WriteRecord(record), "Foundry=" + row[1]);
  }
  // The 1.2 checksum stands in for the older one. The kerning checksum is cut to 32 bits.
  const char* checksums = R"(
    77|Checksum=0|KerningChecksum=1048575 / 77|Checksum=77|KerningChecksum=1048575
    77|Checksum=|KerningChecksum=1048576 / 77|Checksum=77|KerningChecksum=0
    77|KerningChecksum=-1 / 77|KerningChecksum=0|Checksum=77
    77|Checksum=5|KerningChecksum=4294967297 / 77|Checksum=5|KerningChecksum=4294967297
    77|Checksum=5|KerningChecksum=99999999999999999999 / 77|Checksum=5|KerningChecksum=0
    77|Checksum=5|KerningChecksum=-99999999999999999999 / 77|Checksum=5|KerningChecksum=0
    77|Checksum=5|KerningChecksum=none / 77|Checksum=5|KerningChecksum=none
    |Checksum=0 / |Checksum=0;  0 / 0)";
  for (const auto& row : ReadTable(checksums)) {
    const FontRecord record = ReadRecord("Faceprint_1.2_Checksum=" + row[0]);
    EXPECT_EQ(FixFaceprintChecksumsIfNeeded(record), row[0] != row[1]) << row[0];
    EXPECT_EQ(WriteRecord(record), "Faceprint_1.2_Checksum=" + row[1]);
  }
  const FontRecord record = ReadRecord("FontKind=DFont|Foundry=Unknown|KerningChecksum=-1");
  EXPECT_FALSE(PostProcessSingleFontForSlug(record)) << "without a font manager";
  FakeFontManager manager;
  LogCapture log;
  PostProcessFaceprintSlug(MakeFonts({MakeNamed("Plain"), PropertyList::Value(), record}));
  EXPECT_EQ(WriteRecord(record), "FontKind=TrueType|Foundry=--|KerningChecksum=0");
  EXPECT_TRUE(log.Has("Entry 2 modified by PostProcessSingleFontForSlug()"));
  EXPECT_FALSE(log.Has("Entry 0 modified by PostProcessSingleFontForSlug()"));
  for (const char* one : {"FontKind=DFont", "Foundry=Unknown", "KerningChecksum=-1"}) {
    EXPECT_TRUE(PostProcessSingleFontForSlug(ReadRecord(one))) << one;
  }
}

TEST(FontRecordOperations, DocumentNamesAreCleanedAndAddedOnce) {
  const FontRecordArray fonts = MakeFontRecordArray();
  LogCapture log;
  // The name, whether it may be there twice, and whether it is added.
  const char* table = R"(
    Foo Bar(1) / 0 / 1;  FooBar1 / 0 / 0;  [Foo-Bar{1}] / 0 / 0;  FooBar1 / 1 / 1
    "" / 1 / 0;  " ()[]{}" / 1 / 0;  A<B>#- / 1 / 1)";
  for (const auto& row : ReadTable(table)) {
    EXPECT_EQ(AddFontToArray(row[0].c_str(), fonts, row[1] == "1"), row[2] == "1") << row[0];
  }
  EXPECT_EQ(NamesOf(fonts), (std::vector<std::string>{"FooBar1", "FooBar1", "A<B>#-"}));
  for (const char* name : {"/", "A\xFF", static_cast<const char*>(nullptr)}) {
    EXPECT_FALSE(AddFontToArray(name, fonts, true));
  }
  EXPECT_FALSE(AddFontToArray("A", nullptr, true));
  EXPECT_TRUE(log.Has("ERROR string coverted to emptyString A\xFF"));
  EXPECT_TRUE(log.Has("*** ERROR:  NULL cfPostScriptName passed to AddFontToArray"));
  EXPECT_TRUE(log.Has("*** ERROR:  NULL fontsArray passed to AddFontToArray"));
}

TEST(FontRecordOperations, SlugsAndLists) {
  const FontRecord record = MakeFontRecord();
  for (const char* const* key = kAllFaceprintCFKeys; *key != nullptr; ++key) record->Set(*key, "1");
  EXPECT_EQ(record->Count(), 33u);
  const FontRecordArray fonts = MakeFonts({record, PropertyList::Value(), MakeNamed("A")});
  EXPECT_EQ(RemoveUnsluggableFaceprintKeys(fonts), 1);
  EXPECT_EQ(WriteRecord(record),
            "PostScriptName=1|FontKind=1|Foundry=1|Version=1|KerningChecksum=1|Checksum=1|"
            "Faceprint_1.2_Checksum=1|OutlineFileSize=1|OutlineFileName=1|Family=1");
  EXPECT_EQ(RemoveUnsluggableFaceprintKeys(fonts), 0);

  std::string xml;
  EXPECT_EQ(CreateXMLFaceprintSlug(MakeFonts({MakeNamed("A&B")}), &xml), 0);
  EXPECT_NE(xml.find("<key>PostScriptName</key>"), std::string::npos);
  EXPECT_NE(xml.find("<string>A&amp;B</string>"), std::string::npos);
  EXPECT_EQ(CreateXMLFaceprintSlug(MakeFontRecordArray(), nullptr), -50);
  EXPECT_EQ(NamesOf(CreateFontArrayFromVectorOfPostscriptNames({"A", "", "\xFF", "A", "B"})),
            (std::vector<std::string>{"A", "A", "B"}));
  EXPECT_EQ(WriteRecord(CreateFaceprintDictionaryWithFamilyName("A")), "Family=A");
  EXPECT_EQ(WriteRecord(CreateFaceprintDictionaryWithFamilyName(nullptr)), "");
  EXPECT_EQ(WriteRecord(CreateFaceprintDictionary(nullptr)), "");
  const FontRecord match = MakeNamed("M");
  const FontRecordArray matches = CreateFontArrayFromFontMatchArray(
      MakeFonts({MakeNamed("A"), MakeRecord({{kFP_MatchedFontKey, match}})}));
  EXPECT_EQ(matches->Count(), 1u);
  EXPECT_EQ(matches->DictionaryAt(0), match);
}
