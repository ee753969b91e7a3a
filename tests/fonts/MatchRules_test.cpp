#include "fonts/MatchRules.h"

#include <gtest/gtest.h>

#include "facade/SkerryLoader.h"
#include "fonts/FontRecordOperations.h"
#include "support/FontRecords.h"
#include "support/IdentifiedPlugin.h"
#include "support/LogCapture.h"

using namespace FaceprintSupport;

namespace {

FontRecord FullRecord() {
  return MakeRecord({{kFP_KindKey, "TrueType"},
                     {kFP_FamilyKey, "Helvetica"},
                     {kFP_PostScriptNameKey, "Helvetica"},
                     {kFP_FoundryKey, "Adobe"},
                     {kFP_VersionKey, "1.0"},
                     {kFP_PrinterFontKey, "P"},
                     {kFP_Faceprint_1_2_Key, "0"},
                     {kFP_ChecksumKey, "0"},
                     {kFP_KerningChecksumKey, "7"},
                     {kFP_OutlineFileSizeKey, "100"}});
}

FontRecord XMPSource() {
  return MakeRecord({{kFP_PostScriptNameKey, "Foo"},
                     {kAdobeXMPFontData_FamilyKey, "Foo Family"},
                     {kAdobeXMPFontData_TypeKey, "Open Type"},
                     {kAdobeXMPFontData_VersionStringKey, "Version 1.5;core"}});
}

FontRecord XMPCandidate(const char* kind, const char* version) {
  return MakeRecord({{kFP_PostScriptNameKey, "FOO"},
                     {kFP_FamilyKey, "foo family"},
                     {kFP_KindKey, kind},
                     {kFP_VersionKey, version}});
}

}  // namespace

TEST(IsPerfectMatch, EachKeyCounts) {
  const FontRecord source = FullRecord();
  EXPECT_TRUE(IsPerfectMatch(source, source->Copy()));
  for (const auto& [key, value] : source->Entries()) {
    const FontRecord other = source->Copy();
    other->Set(key, "999");
    const bool zeroChecksum = key == kFP_Faceprint_1_2_Key || key == kFP_ChecksumKey;
    LogCapture log;
    EXPECT_EQ(IsPerfectMatch(source, other), zeroChecksum) << key;
    EXPECT_EQ(log.Has("Found mismatch on '" + key + "'"), !zeroChecksum) << key;
    other->Remove(key);
    EXPECT_FALSE(IsPerfectMatch(source, other)) << key;
    other->Set(key, "  ");
    EXPECT_TRUE(IsPerfectMatch(source, other)) << key;
  }
  const FontRecord spaced = source->Copy();
  spaced->Set(kFP_FamilyKey, "HELVETICA ");
  EXPECT_TRUE(IsPerfectMatch(source, spaced));
}

TEST(IsPerfectMatch, ChecksumsSettleIt) {
  const FontRecord source = FullRecord();
  const FontRecord other = FullRecord();
  source->Set(kFP_Faceprint_1_2_Key, "11");
  other->Set(kFP_Faceprint_1_2_Key, "12");
  EXPECT_FALSE(IsPerfectMatch(source, other));
  other->Set(kFP_Faceprint_1_2_Key, "4294967307");  // 11 in its low 32 bits
  other->Set(kFP_KerningChecksumKey, "8");
  other->Set(kFP_OutlineFileSizeKey, "101");
  EXPECT_TRUE(IsPerfectMatch(source, other));
  other->Set(kFP_Faceprint_1_2_Key, "0");
  EXPECT_FALSE(IsPerfectMatch(source, other));  // not settled: the kerning checksum differs
}

TEST(IsPerfectMatch, WantsThreeKeys) {
  const FontRecord candidate = FullRecord();
  LogCapture log;
  EXPECT_FALSE(IsPerfectMatch(MakeNamed("Helvetica"), candidate));
  EXPECT_FALSE(IsPerfectMatch(nullptr, candidate));
  EXPECT_FALSE(IsPerfectMatch(candidate, nullptr));
  EXPECT_EQ(log.lines.size(), 3u);
  const FontRecord source = MakeNamed("Helvetica");
  source->Set(kFP_KindKey, "truetype");
  EXPECT_FALSE(IsPerfectMatch(source, candidate));
  EXPECT_TRUE(log.Has("source document lacks enough keys for a match."));
  source->Set(kFP_VersionKey, "");
  EXPECT_TRUE(IsPerfectMatch(source, candidate));
}

TEST(IsXMPMatch, TypesVersionsAndNames) {
  struct Row {
    const char* type;
    const char* kind;
    const char* version;
    bool matches;
  };
  const Row rows[] = {{"Open Type", "OpenType - PS", "1.5", true},
                      {"open type", "OpenType - TT", "", true},
                      {"Open Type", "OpenType", "1.5", false},
                      {"TrueType", "OpenType - TT", "1.5", true},
                      {"TrueType", "TrueType", "1.5", true},
                      {"TrueType", "OpenType - PS", "1.5", false},
                      {"Type 1", "Postscript", "1.5", true},
                      {"Type 2", "POSTSCRIPT", "1.5", true},
                      {"Type 3", "Postscript", "1.5", true},
                      {"PostScript", "Postscript", "1.5", true},
                      {"Type 4", "Postscript", "1.5", false},
                      {"Open Type", "OpenType - PS", "core", false},
                      {"Open Type", "OpenType - PS", "version", false}};
  for (const Row& row : rows) {
    const FontRecord source = XMPSource();
    source->Set(kAdobeXMPFontData_TypeKey, row.type);
    EXPECT_EQ(IsXMPMatch(source, XMPCandidate(row.kind, row.version)), row.matches)
        << row.type << " " << row.kind << " " << row.version;
  }
  for (const char* key : {kFP_PostScriptNameKey, kAdobeXMPFontData_FamilyKey,
                          kAdobeXMPFontData_TypeKey, kAdobeXMPFontData_VersionStringKey}) {
    const FontRecord source = XMPSource();
    source->Remove(key);
    EXPECT_FALSE(IsXMPMatch(source, XMPCandidate("OpenType - PS", "1.5"))) << key;
  }
}

namespace {

PluginFacadeInstance NoInstance() { return nullptr; }

uint32_t SecondIsActivated(PluginFacadeInstance, uint32_t count, const uint32_t* ids,
                           int32_t* states) {
  for (uint32_t i = 0; i < count; ++i) states[i] = ids[i] == 2 ? 1 : 0;
  return 0;
}

uint32_t Unreachable(PluginFacadeInstance, uint32_t, const uint32_t*, int32_t* states) {
  states[0] = 1;
  return 1;
}

// Nothing is bound unless a test says so.
class PickBestMatch : public testing::Test {
 protected:
  ~PickBestMatch() override { Bind(nullptr); }

  static void Bind(decltype(SkerryLoader::pfGetFontIsActivated) function) {
    SkerryLoader::GetSharedInstance()->pfGetFontIsActivated = function;
    SkerryLoader::GetSharedInstance()->pfGetPluginFacadeInstance = &NoInstance;
  }

  IdentifiedPlugin mPlugin;
};

}  // namespace

TEST_F(PickBestMatch, EachStepDecidesAlone) {
  constexpr const char* kFirstActive =
      "...Choosing fontRef1 because it's active and fontRef2 isn't.";
  constexpr const char* kOverridden1 =
      "...Choosing non-system fontRef1 since user has explicitly overridden system version.";
  constexpr const char* kOverridden2 =
      "...Choosing non-system fontRef2 since user has explicitly overridden system version.";
  constexpr const char* kVersion = "Choice based on kFP_VersionKey.";
  const FontRecord none = MakeFontRecord();
  const auto with = [](const char* key, const char* value) { return MakeRecord({{key, value}}); };
  const auto active = [](const char* isSystem) {
    return MakeRecord({{kFP_IsActiveKey, "1"}, {kFP_IsSystemKey, isSystem}});
  };
  struct Row {
    FontRecord first;
    FontRecord second;
    int result;
    const char* reason;
    bool isSymmetric = true;  // swapping the two turns the answer round
  };
  const Row rows[] = {
      {active("0"), none, -1, kFirstActive, false},
      {active("0"), active("0"), -1, kOverridden1, false},
      {active("0"), active("1"), -1, kOverridden1, false},
      {active("1"), active("0"), 1, kOverridden2, false},
      {active("1"), active("1"), 0, "...Two active fonts - one must be a system font."},
      {with(kFP_KindKey, "OpenType - PS"), with(kFP_KindKey, "TrueType"), -1,
       "Choice based on kFP_KindKey."},
      {with(kFP_KindKey, "opentype"), with(kFP_KindKey, "PostScript"), -1,
       "Choice based on kFP_KindKey."},
      {with(kFP_KindKey, "Postscript"), with(kFP_KindKey, "TrueType"), -1,
       "Choice based on kFP_KindKey."},
      {with(kFP_KindKey, "OpenType - PS"), with(kFP_KindKey, "OpenType - TT"), 0, nullptr},
      {with(kFP_KindKey, "OpenType"), none, 0, nullptr},
      {with(kFP_FoundryKey, "The Adobe Type"), with(kFP_FoundryKey, "adobe"), -1,
       "Choice based on kFP_FoundryKey."},
      {with(kFP_VersionKey, "1.0"), none, -1, kVersion},
      {with(kFP_VersionKey, "1.5"), with(kFP_VersionKey, "1.10"), -1, kVersion},
      {with(kFP_VersionKey, "1.5"), with(kFP_VersionKey, "01.50 beta"), 0, nullptr},
      {with(kFP_VersionKey, "Version 2"), with(kFP_VersionKey, "Version 10"), -1, kVersion},
      {with(kFP_VersionKey, "Version 02"), with(kFP_VersionKey, "Version 2"), 0, nullptr},
      {with(kFP_VersionKey, "0.0"), with(kFP_VersionKey, "3"), -1, kVersion},
      {with(kFP_VersionKey, "inf"), with(kFP_VersionKey, "nan"), -1, kVersion},
      {with(kFP_IsTempKey, "1"), with(kFP_IsTempKey, "0"), -1, "Choice based on kFP_IsTempKey."},
      {with(kFP_IsTempKey, "1"), none, 0, nullptr},
      {with(kFP_IsVaultKey, "1"), with(kFP_IsVaultKey, "0"), -1, "Choice based on kFP_IsVaultKey."},
      {none, none, 0, nullptr}};
  for (std::size_t i = 0; i < std::size(rows); ++i) {
    LogCapture log;
    EXPECT_EQ(PickBestMatchCallBack(rows[i].first, rows[i].second, nullptr), rows[i].result) << i;
    if (rows[i].reason == nullptr) {
      EXPECT_TRUE(log.lines.empty()) << i;
    } else {
      EXPECT_EQ(log.lines.empty() ? "" : log.lines.back(), std::string(rows[i].reason) + "\n") << i;
    }
    if (rows[i].isSymmetric) {
      EXPECT_EQ(PickBestMatchCallBack(rows[i].second, rows[i].first, nullptr), -rows[i].result)
          << i;
    }
  }
}

TEST_F(PickBestMatch, SourceAndLiveState) {
  const FontRecord source =
      MakeRecord({{kFP_KindKey, "TrueType"}, {kFP_FoundryKey, "Small Foundry"}});
  const FontRecord openType =
      MakeRecord({{kFP_KindKey, "OpenType - PS"}, {kFP_DatabaseIDKey, "2"}});
  const FontRecord trueType = MakeRecord({{kFP_KindKey, "truetype"}, {kFP_DatabaseIDKey, "3"}});
  EXPECT_EQ(PickBestMatchCallBack(openType, trueType, source), 1);
  EXPECT_EQ(PickBestMatchCallBack(openType, trueType, nullptr), -1);
  const FontRecord adobe = MakeRecord({{kFP_FoundryKey, "Adobe"}});
  const FontRecord small = MakeRecord({{kFP_FoundryKey, "small foundry"}});
  EXPECT_EQ(PickBestMatchCallBack(adobe, small, source), 1);

  Bind(&SecondIsActivated);
  EXPECT_EQ(PickBestMatchCallBack(openType, trueType, source), -1);
  EXPECT_EQ(PickBestMatchCallBack(trueType, openType, source), 1);
  Bind(&Unreachable);
  EXPECT_EQ(PickBestMatchCallBack(openType, trueType, source), 1);
}

TEST_F(PickBestMatch, SortsStablyAndEndsOnACircle) {
  const auto version = [](const char* name, const char* text) {
    return MakeRecord({{kFP_PostScriptNameKey, name}, {kFP_VersionKey, text}});
  };
  const FontRecordArray fonts = MakeFonts({version("a", "1"), version("b", "2"), version("c", "1"),
                                           version("d", "3"), version("e", "2")});
  SortByBestMatch(fonts, nullptr);
  EXPECT_EQ(NamesOf(fonts), (std::vector<std::string>{"d", "b", "e", "a", "c"}));

  // Both numbers: the higher first; one text among them: the lower first. 3 > 2, "2" < "v", and so
  // on in a circle; and two active fonts each claim to be first.
  FontRecordArray circle = MakeFontRecordArray();
  const char* versions[] = {"3", "2", "0", "v1", "10", "0x"};
  for (int i = 0; i < 50; ++i) {
    const FontRecord record = version(std::to_string(i).c_str(), versions[i % 6]);
    if (i % 7 == 0) record->Set(kFP_IsActiveKey, "1");
    circle->Append(record);
  }
  SortByBestMatch(circle, nullptr);
  std::set<std::string> names;
  for (const std::string& name : NamesOf(circle)) names.insert(name);
  EXPECT_EQ(names.size(), 50u);
}

TEST(SmallTests, NullsAndCase) {
  const FontRecord record = MakeRecord({{kFP_KindKey, "OpenType - PS"}, {kFP_ChecksumKey, "x"}});
  EXPECT_TRUE(KeyValueIs(record, kFP_KindKey, "opentype - ps"));
  EXPECT_FALSE(KeyValueIs(record, kFP_KindKey, "opentype"));
  EXPECT_FALSE(KeyValueIs(nullptr, kFP_KindKey, ""));
  EXPECT_FALSE(KeyValueIs(record, kFP_FamilyKey, ""));
  EXPECT_TRUE(KeyValueContains(record, kFP_KindKey, "TYPE"));
  EXPECT_FALSE(KeyValueContains(record, kFP_FamilyKey, ""));
  EXPECT_FALSE(KeyHasNonZeroValue(record, kFP_ChecksumKey));
  record->Set(kFP_ChecksumKey, "99999999999999999999");
  EXPECT_TRUE(KeyHasNonZeroValue(record, kFP_ChecksumKey));
  EXPECT_FALSE(IsPostScriptNameOnly(record));
  EXPECT_TRUE(IsPostScriptNameOnly(MakeNamed("A")));
  EXPECT_FALSE(IsPostScriptNameOnly(MakeRecord({{kFP_FamilyKey, "A"}})));
}
