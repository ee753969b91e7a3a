#include "fonts/MatchRules.h"

#include <gtest/gtest.h>

#include "support/FontRecords.h"
#include "support/LogCapture.h"

using namespace FaceprintSupport;

namespace {

// In the order in which they are compared.
constexpr const char* kKeys[] = {kFP_KindKey,           kFP_FamilyKey,   kFP_PostScriptNameKey,
                                 kFP_FoundryKey,        kFP_VersionKey,  kFP_PrinterFontKey,
                                 kFP_Faceprint_1_2_Key, kFP_ChecksumKey, kFP_KerningChecksumKey,
                                 kFP_OutlineFileSizeKey};

// Every key holds the same text, after two that don't count.
FontRecord FullRecord(const char* text) {
  const FontRecord record = ReadRecord("Path=x|Keywords=y");
  for (const char* key : kKeys) record->Set(key, text);
  return record;
}

void SetOrRemove(const FontRecord& record, const char* key, const char* text) {
  text != nullptr ? record->Set(key, text) : static_cast<void>(record->Remove(key));
}

}  // namespace

TEST(IsPerfectMatch, EachKeyCounts) {
  const struct {
    const char* source;  // null for absent
    const char* candidate;
    bool matches;
    bool checksumsMatch;
  } rows[] = {
      {nullptr, "0b", true, true},      {"0b", nullptr, false, false},
      {nullptr, nullptr, true, true},   {"0b", "", true, true},
      {"", "0b", true, true},           {"0b", " \t\r\n", true, true},
      {"  ", "0b", true, true},         {"0b", " 0B\n", true, true},
      {"7b", "7c", false, true},        {"7b", "8b", false, false},
      {"7b", "7bb", false, true},       {"0b", "5", false, true},
      {"5", "4294967301", false, true}, {"-1", "4294967295", false, true},
  };
  for (const char* key : kKeys) {
    const bool isChecksum = std::string_view(key).find("hecksum") != std::string_view::npos;
    for (const auto& row : rows) {
      const FontRecord source = FullRecord("0b");
      const FontRecord candidate = FullRecord("0b");
      SetOrRemove(source, key, row.source);
      SetOrRemove(candidate, key, row.candidate);
      const bool expected = isChecksum ? row.checksumsMatch : row.matches;
      LogCapture log;
      EXPECT_EQ(IsPerfectMatch(source, candidate), expected)
          << key << ": " << (row.source ? row.source : "-") << " and "
          << (row.candidate ? row.candidate : "-");
      EXPECT_EQ(log.Has("Found mismatch on '" + std::string(key) + "'"), !expected);
    }
  }
}

TEST(IsPerfectMatch, TellsOfTheFirstMismatch) {
  const FontRecord source = FullRecord("1");
  const FontRecord candidate = FullRecord("2");
  for (const char* key : kKeys) {
    LogCapture log;
    EXPECT_FALSE(IsPerfectMatch(source, candidate));
    EXPECT_TRUE(log.Has("Found mismatch on '" + std::string(key) + "'")) << key;
    source->Remove(key);
  }
}

TEST(IsPerfectMatch, CountsAndSettles) {
  const struct {
    const char* source;
    const char* candidate;
    bool matches;
    const char* log = nullptr;
  } rows[] = {
      {"PostScriptName=A", "PostScriptName=A|FontKind=x", false},
      {"PostScriptName=A|FontKind=x", "PostScriptName=A|FontKind=x|Version=1", false,
       "source document lacks enough keys for a match."},
      {"PostScriptName=A|FontKind=x|Version=", "PostScriptName=A|FontKind=x|Version=1", true},
      {"PostScriptName=A|FontKind=x|Path=p|Keywords=k", "PostScriptName=A|FontKind=x", false},
      // A 1.2 or 1.1 checksum that both know ends the comparison, a kerning checksum does not.
      {"Family=A|Version=1|Faceprint_1.2_Checksum=11|Checksum=5|OutlineFileSize=6",
       "Family=A|Version=1|Faceprint_1.2_Checksum=4294967307|Checksum=6|OutlineFileSize=7", true},
      {"Family=A|Version=1|Checksum=11|KerningChecksum=7|OutlineFileSize=6",
       "Family=A|Version=1|Checksum=11|KerningChecksum=8", true},
      {"Family=A|Version=1|KerningChecksum=7|OutlineFileSize=6",
       "Family=A|Version=1|KerningChecksum=7|OutlineFileSize=7", false,
       "KeysHaveSameValueIfDefined found mismatch between '6' and '7'"},
      {"Family=A|Version=1|Faceprint_1.2_Checksum=0|KerningChecksum=7",
       "Family=A|Version=1|Faceprint_1.2_Checksum=5|KerningChecksum=8", false,
       "0x00000007 != 0x00000008"},
      {"Family=A|Version=1|Faceprint_1.2_Checksum=5|KerningChecksum=7",
       "Family=A|Version=1|Faceprint_1.2_Checksum=0|KerningChecksum=8", false},
      // Settled too early to be a match.
      {"Family=A|Checksum=11|OutlineFileSize=6", "Family=A|Checksum=11|OutlineFileSize=6", false,
       "source document lacks enough keys for a match."},
  };
  for (const auto& row : rows) {
    LogCapture log;
    EXPECT_EQ(IsPerfectMatch(ReadRecord(row.source), ReadRecord(row.candidate)), row.matches)
        << row.source;
    EXPECT_TRUE(row.log == nullptr || log.Has(row.log)) << row.source;
  }
}

TEST(IsXMPMatch, TypesVersionsAndNames) {
  constexpr const char* kPostscript = "FontKind=POSTSCRIPT";
  const struct {
    const char* source;
    const char* candidate;
    bool matches;
  } rows[] = {
      {"", "", true},
      {"PostScriptName", "", false},
      {"PostScriptName=foO", "", true},
      {"", "PostScriptName=Fop", false},
      {"AdobeXMPFontData_Family", "", false},
      {"", "Family=foo famil", false},
      {"", "Family", false},
      {"AdobeXMPFontData_Type", "", false},
      {"", "FontKind", false},
      {"", "FontKind=opentype - TT", true},
      {"", "FontKind=OpenType", false},
      {"", "FontKind=TrueType", false},
      {"AdobeXMPFontData_Type=TrueType", "FontKind=OpenType - TT", true},
      {"AdobeXMPFontData_Type=TrueType", "FontKind=TrueType", true},
      {"AdobeXMPFontData_Type=TrueType", "", false},
      {"AdobeXMPFontData_Type=Type 1", kPostscript, true},
      {"AdobeXMPFontData_Type=type 2", kPostscript, true},
      {"AdobeXMPFontData_Type=Type 3", kPostscript, true},
      {"AdobeXMPFontData_Type=PostScript", kPostscript, true},
      {"AdobeXMPFontData_Type=PostScript", "FontKind=PostScript - MM", false},
      {"AdobeXMPFontData_Type=Type 4", kPostscript, false},
      {"AdobeXMPFontData_VersionString", "Version=", false},
      {"", "Version", false},
      {"", "Version=", true},
      {"", "Version=core", false},
      {"", "Version=version", false},
      {"AdobeXMPFontData_VersionString=1.5", "", true},
  };
  for (const auto& row : rows) {
    const FontRecord source = ReadRecord(
        std::string("PostScriptName=Foo|AdobeXMPFontData_Family=Foo Family|AdobeXMPFontData_Type="
                    "Open Type|AdobeXMPFontData_VersionString=Version 1.5;core|") +
        row.source);
    const FontRecord candidate = ReadRecord(
        std::string("PostScriptName=FOO|Family=foo family|FontKind=OpenType - PS|Version=1.5|") +
        row.candidate);
    EXPECT_EQ(IsXMPMatch(source, candidate), row.matches) << row.source << " / " << row.candidate;
  }
}

TEST(SmallTests, CaseLengthAndNumbers) {
  const FontRecord record = ReadRecord("FontKind=OpenType - PS|Checksum=x|Foundry=a|Version=0");
  EXPECT_TRUE(KeyValueIs(record, kFP_KindKey, "opentype - ps"));
  EXPECT_FALSE(KeyValueIs(record, kFP_KindKey, "opentype"));
  EXPECT_FALSE(KeyValueIs(record, kFP_FamilyKey, ""));
  EXPECT_TRUE(KeyValueContains(record, kFP_KindKey, "TYPE"));
  EXPECT_FALSE(KeyValueContains(record, kFP_KindKey, "OpenType - PSx"));
  EXPECT_FALSE(KeyValueContains(record, kFP_FamilyKey, ""));
  EXPECT_FALSE(KeyHasNonZeroValue(record, kFP_ChecksumKey));
  EXPECT_FALSE(KeyHasNonZeroValue(record, kFP_VersionKey));
  EXPECT_TRUE(KeyHasNonZeroValue(ReadRecord("Checksum=99999999999999999999"), kFP_ChecksumKey));
  EXPECT_FALSE(IsPostScriptNameOnly(record));
  EXPECT_TRUE(IsPostScriptNameOnly(MakeNamed("A")));
  EXPECT_FALSE(IsPostScriptNameOnly(ReadRecord("Family=A")));
}
