#include "fonts/FontRecordOperations.h"

#include <gtest/gtest.h>

#include "fonts/FontKinds.h"
#include "support/FakeFontManager.h"
#include "support/FontRecords.h"
#include "support/LogCapture.h"

using namespace FaceprintSupport;

TEST(FontKinds, MapBothWaysByExtent) {
  struct Row {
    const char* older;
    const char* present;
    const char* atPSPairOnly;
  };
  const Row toPresent[] = {{"PS Pair", "Postscript", "Postscript"},
                           {"ps pair", "Postscript", "Postscript"},
                           {"PS MM", "PostScript - MM", "PS MM"},
                           {"OpenType (TT)", "OpenType - TT", "OpenType (TT)"},
                           {"OpenType (PS)", "OpenType - PS", "OpenType (PS)"},
                           {"DFont", "TrueType", "DFont"},
                           {"TrueType", "TrueType", "TrueType"},
                           {"", "", ""}};
  for (const Row& row : toPresent) {
    EXPECT_EQ(MapSorrellineFontTypeToKestraneFontType(std::string(row.older), 0), row.present);
    EXPECT_EQ(MapSorrellineFontTypeToKestraneFontType(std::string(row.older), 2), row.atPSPairOnly);
  }
  const Row toOlder[] = {{"Postscript", "PS Pair", "PS Pair"},
                         {"POSTSCRIPT", "PS Pair", "PS Pair"},
                         {"PostScript - MM", "PS MM", "PostScript - MM"},
                         {"OpenType - TT", "OpenType (TT)", "OpenType - TT"},
                         {"OpenType - PS", "OpenType (PS)", "OpenType - PS"},
                         {"TrueType", "TrueType", "TrueType"}};
  for (const Row& row : toOlder) {
    EXPECT_EQ(MapKestraneFontTypeToSorrellineFontType(row.older, 0), row.present);
    EXPECT_EQ(MapKestraneFontTypeToSorrellineFontType(row.older, 1), row.atPSPairOnly);
  }
}

TEST(FontKinds, FoundryNames) {
  const std::pair<const char*, const char*> rows[] = {
      {"unknown", "--"},
      {"UNKNOWN", "--"},
      {"Unknown", "--"},
      {"adobe", "Adobe"},
      {"Adobe Systems", "Adobe Systems"},
      {"the 3d o'hara type-works", "The 3D O'hara Type-Works"},
      {"--", "--"},
      {"", ""},
      {"\xC3\xA9mile", "\xC3\x89mile"}};
  for (const auto& [name, mapped] : rows) {
    EXPECT_EQ(CreateSorrellineFoundryNameFromKestraneFoundryName(name), mapped) << name;
  }
}

TEST(FontKinds, PostProcessNeedsAFontManager) {
  const FontRecord record = MakeRecord(
      {{kFP_KindKey, "DFont"}, {kFP_FoundryKey, "Unknown"}, {kFP_KerningChecksumKey, "-1"}});
  EXPECT_FALSE(PostProcessSingleFontForSlug(record));
  EXPECT_EQ(RecordString(record, kFP_KindKey), "DFont");

  FakeFontManager manager;
  LogCapture log;
  PostProcessFaceprintSlug(MakeFonts({MakeNamed("Plain"), PropertyList::Value(), record}));
  EXPECT_EQ(RecordString(record, kFP_KindKey), "TrueType");
  EXPECT_EQ(RecordString(record, kFP_FoundryKey), "--");
  EXPECT_EQ(RecordString(record, kFP_KerningChecksumKey), "0");
  EXPECT_TRUE(log.Has("Entry 2 modified by PostProcessSingleFontForSlug()"));
  EXPECT_FALSE(log.Has("Entry 0 modified by PostProcessSingleFontForSlug()"));
  EXPECT_FALSE(PostProcessSingleFontForSlug(record));
}

TEST(FontRecordOperations, ChecksumRepairs) {
  struct Row {
    const char* key;
    const char* value;
    const char* kerning;
    const char* expectedChecksum;
    const char* expectedKerning;
    bool changed;
  };
  const Row rows[] = {
      {kFP_ChecksumKey, "0", "1048575", "77", "1048575", true},
      {kFP_ChecksumKey, "", "1048576", "77", "0", true},
      {kFP_PathKey, "x", "-1", "77", "0", true},                       // no 1.1 checksum at all
      {kFP_ChecksumKey, "5", "4294967297", "5", "4294967297", false},  // low 32 bits are 1
      {kFP_ChecksumKey, "5", "99999999999999999999", "5", "0", true},
      {kFP_ChecksumKey, "5", "none", "5", "none", false}};
  for (const Row& row : rows) {
    const FontRecord record = MakeRecord({{kFP_Faceprint_1_2_Key, "77"},
                                          {row.key, row.value},
                                          {kFP_KerningChecksumKey, row.kerning}});
    EXPECT_EQ(FixFaceprintChecksumsIfNeeded(record), row.changed) << row.kerning;
    EXPECT_EQ(RecordString(record, kFP_ChecksumKey), row.expectedChecksum);
    EXPECT_EQ(RecordString(record, kFP_KerningChecksumKey), row.expectedKerning);
  }
  EXPECT_FALSE(FixFaceprintChecksumsIfNeeded(MakeRecord({{kFP_Faceprint_1_2_Key, "0"}})));
  EXPECT_FALSE(FixFaceprintChecksumsIfNeeded(nullptr));
}

TEST(FontRecordOperations, AddFontToArrayCleansNames) {
  const FontRecordArray fonts = MakeFontRecordArray();
  EXPECT_TRUE(AddFontToArray("Foo Bar(1)", fonts, false));
  EXPECT_FALSE(AddFontToArray("FooBar1", fonts, false));
  EXPECT_FALSE(AddFontToArray("[Foo-Bar/{1}]", fonts, false));  // equal after normalisation
  EXPECT_TRUE(AddFontToArray("FooBar1", fonts, true));
  EXPECT_FALSE(AddFontToArray("", fonts, true));
  EXPECT_FALSE(AddFontToArray(" ()/[]{}", fonts, true));
  EXPECT_TRUE(AddFontToArray("A<B>#-", fonts, true));  // kept: not in the narrow set
  LogCapture log;
  EXPECT_FALSE(AddFontToArray("A\xFF", fonts, true));
  EXPECT_FALSE(AddFontToArray(nullptr, fonts, true));
  EXPECT_FALSE(AddFontToArray("A", nullptr, true));
  EXPECT_TRUE(log.Has("ERROR string coverted to emptyString A\xFF"));
  EXPECT_TRUE(log.Has("*** ERROR:  NULL cfPostScriptName passed to AddFontToArray"));
  EXPECT_TRUE(log.Has("*** ERROR:  NULL fontsArray passed to AddFontToArray"));
  EXPECT_EQ(NamesOf(fonts), (std::vector<std::string>{"FooBar1", "FooBar1", "A<B>#-"}));
}

TEST(FontRecordOperations, ASlugKeepsItsTenKeys) {
  const FontRecord record = MakeFontRecord();
  for (const char* const* key = kAllFaceprintCFKeys; *key != nullptr; ++key) record->Set(*key, "1");
  EXPECT_EQ(record->Count(), 33u);
  const FontRecordArray fonts = MakeFonts({PropertyList::Value(), record});
  EXPECT_EQ(RemoveUnsluggableFaceprintKeys(fonts), 1);
  std::vector<std::string> keys;
  for (const auto& [key, value] : record->Entries()) keys.push_back(key);
  EXPECT_EQ(keys, (std::vector<std::string>{"PostScriptName", "FontKind", "Foundry", "Version",
                                            "KerningChecksum", "Checksum", "Faceprint_1.2_Checksum",
                                            "OutlineFileSize", "OutlineFileName", "Family"}));
  EXPECT_EQ(RemoveUnsluggableFaceprintKeys(fonts), 0);
}

TEST(FontRecordOperations, SlugTextAndArrays) {
  std::string xml;
  EXPECT_EQ(CreateXMLFaceprintSlug(MakeFonts({MakeNamed("A&B")}), &xml), 0);
  EXPECT_NE(xml.find("<key>PostScriptName</key>"), std::string::npos);
  EXPECT_NE(xml.find("<string>A&amp;B</string>"), std::string::npos);
  xml = "kept";
  EXPECT_EQ(CreateXMLFaceprintSlug(MakeFonts({MakeNamed("\x01")}), &xml), 0);
  EXPECT_EQ(xml, "kept");
  EXPECT_EQ(CreateXMLFaceprintSlug(nullptr, &xml), -50);
  EXPECT_EQ(CreateXMLFaceprintSlug(MakeFontRecordArray(), nullptr), -50);

  EXPECT_EQ(NamesOf(CreateFontArrayFromVectorOfPostscriptNames({"A", "", "\xFF", "A", "B"})),
            (std::vector<std::string>{"A", "A", "B"}));
  EXPECT_FALSE(CreateFontArrayFromFontMatchArray(MakeFontRecordArray()));
  const FontRecord match = MakeNamed("M");
  const FontRecordArray matches = CreateFontArrayFromFontMatchArray(
      MakeFonts({MakeNamed("A"), MakeRecord({{kFP_MatchedFontKey, match}})}));
  ASSERT_EQ(matches->Count(), 1u);
  EXPECT_EQ(matches->DictionaryAt(0), match);
}
