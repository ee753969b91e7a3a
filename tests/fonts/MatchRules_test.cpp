#include "fonts/MatchRules.h"

#include <gtest/gtest.h>

#include "support/FontRecords.h"
#include "support/LogCapture.h"
#include "support/TextTable.h"

using namespace FaceprintSupport;

namespace {

// In the order in which they are compared.
constexpr const char* kKeys[] = {
    "FontKind",        "Family",         "PostScriptName",         "Foundry",
    "Version",         "PrinterFont",    "Faceprint_1.2_Checksum", "Checksum",
    "KerningChecksum", "OutlineFileSize"};

// Every key holds the text, or what `entry` says; two more don't count.
FontRecord FullRecord(const std::string& text, const std::string& entry = "") {
  std::string entries = "Path=x|Keywords=y|";
  for (const char* key : kKeys) entries += key + ("=" + text) + "|";
  return ReadRecord(entries + entry);
}

}  // namespace

TEST(IsPerfectMatch, EachKeyCounts) {
  // What follows the key in both records, and whether they match; whether they do as checksums.
  const auto rows = ReadTable(R"(
    / =0b / 1 / 1;       =0b /  / 0 / 0;       /  / 1 / 1;                =0b / = / 1 / 1
    = / =0b / 1 / 1;     "=  " / =0b / 1 / 1;  =0b / "=   " / 1 / 1;      =0b / "= 0B " / 1 / 1
    =7b / =7c / 0 / 1;   =7b / =8b / 0 / 0;    =7b / =7bb / 0 / 1;        =0b / =5 / 0 / 1
    =5 / =0b / 0 / 1;    =5 / =4294967301 / 0 / 1;                        =-1 / =4294967295 / 0 / 1
    =CAFÉ / =café / 1 / 1;  =STRASSE / =straße / 0 / 1)");
  for (const std::string key : kKeys) {
    const bool isChecksum = key.find("hecksum") != std::string::npos;
    for (const auto& row : rows) {
      LogCapture log;
      const bool expected = row[isChecksum ? 3 : 2] == "1";
      EXPECT_EQ(IsPerfectMatch(FullRecord("0b", key + row[0]), FullRecord("0b", key + row[1])),
                expected)
          << key << row[0] << " and " << row[1];
      EXPECT_EQ(log.Has("Found mismatch on '" + key + "'"), !expected);
    }
  }
  const FontRecord source = FullRecord("1");
  for (const std::string key : kKeys) {  // all differ: the first one is told of
    LogCapture log;
    EXPECT_FALSE(IsPerfectMatch(source, FullRecord("2")));
    EXPECT_TRUE(log.Has("Found mismatch on '" + key + "'")) << key;
    source->Remove(key);
  }
}

TEST(IsPerfectMatch, CountsAndSettles) {
  // A 1.2 or 1.1 checksum that both know ends the comparison, a kerning checksum does not.
  const char* table = R"(
PostScriptName=A                               / FontKind=x                   / 0 / 1 element(s)
PostScriptName=A|FontKind=x                    / Version=1                    / 0 / lacks enough keys
PostScriptName=A|FontKind=x|Path=p|Keywords=k  /                              / 0 / lacks enough keys
PostScriptName=A|FontKind=x|Version=           / Version=1                    / 1 /
Family=A|FontKind=x|Faceprint_1.2_Checksum=11|Checksum=5 / Faceprint_1.2_Checksum=4294967307|Checksum=6 / 1 /
Family=A|FontKind=x|Checksum=11|KerningChecksum=7        / KerningChecksum=8  / 1 /
Family=A|FontKind=x|Checksum=11|OutlineFileSize=6        / OutlineFileSize    / 1 /
Family=A|FontKind=x|KerningChecksum=7|OutlineFileSize=6  / OutlineFileSize=7  / 0 / '6' and '7'
Family=A|FontKind=x|Faceprint_1.2_Checksum=0|Checksum=7 / Faceprint_1.2_Checksum=5|Checksum=8 / 0 / 0x00000007 != 0x00000008
Family=A|FontKind=x|Checksum=5|KerningChecksum=7         / Checksum=0|KerningChecksum=8 / 0 / != 0x00000008
Family=A|Checksum=11|OutlineFileSize=6                   /                    / 0 / lacks enough keys)";
  for (const auto& row : ReadTable(table)) {
    LogCapture log;
    EXPECT_EQ(IsPerfectMatch(ReadRecord(row[0]), ReadRecord(row[0] + "|" + row[1])), row[2] == "1")
        << row[0];
    EXPECT_TRUE(row[3].empty() || log.HasPart(row[3])) << row[0] << ": " << row[3];
  }
}

TEST(IsXMPMatch, TypesVersionsAndNames) {
  const char* table = R"(
        / / 1;              / PostScriptName / 0;  / PostScriptName=Fop / 0
 Family / / 0;              / Family / 0;          / Family=foo famil / 0
 Type / / 0;                / FontKind / 0;        / FontKind=opentype - TT / 1
        / FontKind=OpenType / 0;                   / FontKind=TrueType / 0
 Type=TrueType / / 0;       Type=TrueType / FontKind=OpenType - TT / 1
 Type=TrueType / FontKind=TrueType / 1;            Type=Type 1 / FontKind=POSTSCRIPT / 1
 Type=type 2 / FontKind=Postscript / 1;            Type=Type 3 / FontKind=Postscript / 1
 Type=PostScript / FontKind=postscript / 1;        Type=PostScript / FontKind=PostScript - MM / 0
 Type=Type 4 / FontKind=Postscript / 0;            VersionString / Version= / 0
        / Version / 0;      / Version= / 1;        / Version=core / 0;  / Version=version / 0
 Family=CAFÉ / Family=café / 0;  Family=CAFÉ / Family=cafÉ / 1
 VersionString=1.5 / / 1;   VersionString=x 1.5 y / / 1)";
  for (const auto& row : ReadTable(table)) {
    std::string source = "PostScriptName=Foo";
    for (const char* entry : {"Family=Foo Family", "Type=Open Type", "VersionString=V 1.5;core"}) {
      source += std::string("|AdobeXMPFontData_") + entry;
    }
    LogCapture log;
    EXPECT_EQ(
        IsXMPMatch(
            ReadRecord(source + "|AdobeXMPFontData_" + row[0]),
            ReadRecord("PostScriptName=FOO|Family=foo family|FontKind=OpenType - PS|Version=1.5|" +
                       row[1])),
        row[2] == "1")
        << row[0] << " and " << row[1];
    EXPECT_EQ(log.Has("XMP match found."), row[2] == "1");
  }
  LogCapture log;
  EXPECT_FALSE(IsXMPMatch(MakeNamed("Foo"), MakeNamed("Foo")));
  EXPECT_EQ(log.lines.size(), 1u);  // one key is nothing to compare
}
