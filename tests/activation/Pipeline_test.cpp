#include "activation/Pipeline.h"

#include <gtest/gtest.h>

#include "activation/DocumentFontGathering.h"
#include "fonts/FontDataCache.h"
#include "support/FakeFontManager.h"
#include "support/FontRecords.h"
#include "support/IdentifiedPlugin.h"
#include "support/LogCapture.h"
#include "support/TextTable.h"

using namespace FaceprintSupport;

namespace {

using Names = std::vector<std::string>;

struct Pipeline : testing::Test {
  IdentifiedPlugin plugin;
  FakeFontManager manager;
};

int Sort(const FontRecordArray& fonts, const FontRecordArray& matched,
         const FontRecordArray& problems, bool pickBestMatch = false) {
  return ProcessDocumentFontsForAutoActivation(fonts, matched, problems, true, pickBestMatch, 0,
                                               nullptr);
}

// "?" and the candidates' workgroups where the font is the only problem.
std::string ProblemOf(const FontRecordArray& problems, const FontRecord& font) {
  if (problems->Count() != 1 || problems->DictionaryAt(0) != font) return "";
  const FontRecordArray candidates = font->GetArray(kFP_PossibleReplacementsKey);
  std::string text = "?";
  for (std::size_t i = 0; i < CountOf(candidates); ++i) {
    text += RecordString(candidates->DictionaryAt(i), kFP_WorkgroupNameKey) + "-";
  }
  return text;
}

}  // namespace

TEST_F(Pipeline, EachFontFindsItsPlace) {
  manager.workgroups["4"] = "Office";
  manager.remoteWorkgroupIDs.insert("9");
  plugin.platform.fonts.visible.insert("SystemOnly");
  // ID, name, checksum and state; and three of which only the name is known.
  const char* database = R"(1 / Single / 10 / 1;  4 / OneOn / 40 / 1;  5 / OneOn / 50 / 3
                            6 / Same / 60 / 1;    7 / Same / 60 / 3)";
  for (const auto& row : ReadTable(database)) {
    manager.Add(static_cast<std::uint32_t>(std::stoul(row[0])), row[1],
                {{kFP_KindKey, "TrueType"}, {kFP_Faceprint_1_2_Key, row[2].c_str()}},
                static_cast<std::uint16_t>(std::stoul(row[3])));
  }
  manager.Add(2, "Twice", {{kFP_WorkgroupIDKey, "4"}, {kFP_VersionKey, "1.0"}});
  manager.Add(3, "Twice", {{kFP_VersionKey, "2.0"}});
  manager.Add(8, "Remote", {{kFP_WorkgroupIDKey, "9"}});
  // The name, the checksum of a slug, and the place: the matched ID, or "?" and a hyphen for each
  // candidate, or neither list; then the place if the best match may be picked.
  const char* table = R"(
    Single / / 1 / 1;         Single / 10 / 1 / 1;     Single / 11 / ?- / 1
    Twice / / ?-Office- / 3;  OneOn / / 5 / 5;         OneOn / 40 / 4 / 4;  OneOn / 45 / ?-- / 5
    Same / 60 / 7 / 7;        Remote / / ? / ?;        Nowhere / / ? / ?;   SystemOnly / / /)";
  const LogCapture log;
  for (const auto& row : ReadTable(table)) {
    for (const bool pickBestMatch : {false, true}) {
      const FontRecord font = MakeNamed(row[0].c_str());
      if (!row[1].empty()) {
        font->Set(kFP_KindKey, "TrueType");
        font->Set(kFP_Faceprint_1_2_Key, row[1]);
      }
      const FontRecordArray matched = MakeFonts({});
      const FontRecordArray problems = MakeFonts({});
      EXPECT_EQ(Sort(MakeFonts({MakeFontRecord(), font}), matched, problems, pickBestMatch), 0);
      std::string place = ProblemOf(problems, font);
      if (matched->Count() == 1 && matched->DictionaryAt(0) == font) {
        place += RecordString(font->GetDictionary(kFP_MatchedFontKey), kFP_DatabaseIDKey);
      }
      EXPECT_EQ(place, row[pickBestMatch ? 3 : 2]) << row[0] << " " << row[1];
    }
  }
  for (const char* line :
       {"Font 'SystemOnly' would be reported as missing, but appears to be active.  Must be of a "
        "type Kestrane does not support.",
        "...Could not get fontName from entry 0 in ProcessDocumentFontsForAutoActivation's "
        "allDocumentFonts array.",
        "Exiting ProcessDocumentFontsForAutoActivation with 1 matchedFonts (1 with Faceprint data) "
        "and 0 problemFonts (0 with Faceprint data).",
        "Exiting ProcessDocumentFontsForAutoActivation with 0 matchedFonts (0 with Faceprint data) "
        "and 1 problemFonts (1 with Faceprint data)."}) {
    EXPECT_TRUE(log.Has(line)) << line;
  }
}

TEST_F(Pipeline, ErrorsLoseOneFontAndALostManagerEndsTheWalk) {
  const FontRecordArray fonts = MakeFonts({});
  for (const char* name : {"A", "B", "C", "D"}) {
    manager.Add(static_cast<std::uint32_t>(*name), name);
    fonts->Append(MakeNamed(name));
  }
  const FontRecordArray matched = MakeFonts({});
  manager.FailAt("CountNamedFonts(P:B)", 0, -1);
  EXPECT_EQ(Sort(fonts, matched, matched), 0);
  manager.FailAt("GetNamedFontInfo(C)", 0, kErrorKestraneNotRunning);
  EXPECT_EQ(Sort(fonts, matched, matched), kErrorKestraneNotRunning);
  EXPECT_EQ(NamesOf(matched), (Names{"A", "C", "D", "A"}));
  const FontRecordArray left = MakeFonts({MakeNamed("A"), MakeNamed("C"), MakeNamed("D")});
  EXPECT_EQ(AppendFaceprintDataToFonts(left, 0, false, true, true), kErrorKestraneNotRunning);
  EXPECT_EQ(WriteRecord(left->DictionaryAt(0)), "PostScriptName=A");  // the walk is backwards
  EXPECT_TRUE(RecordHas(left->DictionaryAt(2), kFP_DatabaseIDKey));
  FontRecordArray ids;
  for (const int code : {-50, kErrorKestraneNotRunning}) {
    EXPECT_EQ(Sort(nullptr, matched, matched), code);
    EXPECT_EQ(Sort(fonts, nullptr, matched), code);
    EXPECT_EQ(Sort(fonts, matched, nullptr), code);
    EXPECT_EQ(AppendFaceprintDataToFonts(nullptr, 0, true, true, true), code);
    EXPECT_EQ(FindIDsForBestMatches(fonts, nullptr, 0), code);
    EXPECT_EQ(FindIDsForBestMatches(nullptr, &ids, 0), code);
    manager.connected = false;
  }
}

TEST_F(Pipeline, AppendingCompletesOrReplacesOrRemoves) {
  manager.Add(1, "Foo", {{kFP_VersionKey, "1"}, {kFP_PathKey, "/f"}});
  manager.Add(2, "On", {}, kActivationStateActive);
  manager.Add(3, "Fam-Bold", {{kFP_FamilyKey, "Fam"}}, kActivationStateActive);
  manager.Add(4, "Cached", {}, kActivationStateActive);
  manager.FailAt("CountNamedFonts(P:Fam-X-Light)", 0, -1);
  FontDataPreviouslyGottenFromDatabase::Add(
      4, {1, 4, kActivationStateActive,
          ReadRecord("PostScriptName=Cached|DatabaseID=4|ActivationStatus=2")});
  // The name; "a"ctive fonts only, all "i"nfo, try "f"amilies; what is left, the names that are
  // counted, and a line of the log.
  const char* table = R"(
    ABCDEF+Foo / if / Foo   / P:ABCDEF+Foo, P:ABCDEFFoo, P:Foo /
    Foo        / f  / Foo   / P:Foo           / ERROR:  RemoveUnsluggableFaceprintKeys() apparently failed.
    Foo        / aif /      / P:Foo           / Removing inactive 'Foo' from fonts.
    On         / aif / On   / P:On            /
    Cached     / aif / Cached    /            / Using cached faceprint data for the active version of Cached
    Cached     / if  / Cached    / P:Cached   /
    Fam-X-Light  / aif / Fam-Bold  / P:Fam-X-Light, F:Fam / Removing inactive 'Fam-X-Light' from fonts.
    Fam-X-Light  / ai  /           / P:Fam-X-Light /
    Fam-X-Light  / if  / Fam-X-Light / P:Fam-X-Light /)";
  for (const auto& row : ReadTable(table)) {
    SCOPED_TRACE(row[0] + " " + row[1]);
    const auto is = [&row](char flag) { return row[1].find(flag) != std::string::npos; };
    manager.calls.clear();
    const LogCapture log;
    const FontRecordArray fonts = MakeFonts({MakeNamed(row[0].c_str())});
    AppendFaceprintDataToFonts(fonts, 0, is('a'), is('i'), is('f'));
    EXPECT_EQ(NamesOf(fonts), row[2].empty() ? Names{} : Names{row[2]});
    EXPECT_EQ(manager.NamesAsked(), row[3]);
    EXPECT_TRUE(row[4].empty() || log.Has(row[4])) << row[4];
    const bool isKnown = !row[2].empty() && row[2] != "Fam-X-Light";
    EXPECT_EQ(RecordHas(fonts->DictionaryAt(0), kFP_DatabaseIDKey), isKnown && is('i'));
  }
  FontDataPreviouslyGottenFromDatabase::DeleteAll();
}

TEST_F(Pipeline, ANameThatGoesIsGoneInAllItsForms) {
  manager.Add(1, "Foo");
  manager.Add(2, "Fo1o");  // what the second name is without its illegal characters
  const FontRecordArray fonts = MakeFonts({MakeNamed("X+Fo1o"), MakeNamed("Fo#1o")});
  EXPECT_EQ(AppendFaceprintDataToFonts(fonts, 0, false, true, false), 0);
  EXPECT_EQ(NamesOf(fonts), (Names{"Foo", "Fo1o"}));
  // Nothing empty stands in its place, even when the walk is broken off.
  manager.ThrowAt("CountNamedFonts(P:Bar)", 0);
  const FontRecordArray broken = MakeFonts({MakeNamed("Bar"), MakeNamed("X+Foo")});
  EXPECT_THROW(AppendFaceprintDataToFonts(broken, 0, false, true, false), std::runtime_error);
  EXPECT_EQ(NamesOf(broken), (Names{"Bar", "Foo"}));
}

TEST_F(Pipeline, IDsOfTheLastFontRemain) {
  manager.Add(1, "A");
  manager.Add(2, "B-Bold", {{kFP_FamilyKey, "B"}});
  manager.Add(3, "B-Light", {{kFP_FamilyKey, "B"}});
  FontRecordArray matched;
  const FontRecordArray fonts =
      MakeFonts({MakeNamed("A"), ReadRecord("Family=B"), ReadRecord("Family=Nowhere")});
  EXPECT_EQ(FindIDsForBestMatches(fonts, &matched, 7), 0);
  ASSERT_EQ(NamesOf(matched), (Names{"B-Bold", "B-Light"}));
  const FontRecord inner = matched->DictionaryAt(1)->GetDictionary(kFP_MatchedFontKey);
  EXPECT_EQ(WriteRecord(inner), "PostScriptName=B-Light|DatabaseID=3|WorkgroupID=7");
  FindIDsForBestMatches(MakeFonts({}), &matched, 7);
  EXPECT_TRUE(matched && matched->IsEmpty());
}

TEST_F(Pipeline, ExactlyOneXMPMatch) {
  const FontRecord source = ReadRecord(
      "PostScriptName=F|AdobeXMPFontData_Family=F|AdobeXMPFontData_Type=TrueType|"
      "AdobeXMPFontData_VersionString=1.25");
  const auto font = [](const std::string& version) {
    return ReadRecord("PostScriptName=F|Family=F|FontKind=TrueType|Version=" + version);
  };
  const FontRecord match = font("1.2");
  const auto find = AdobeXMPMatchesExactlyOnePossibleReplacement;
  FontRecord found;
  EXPECT_TRUE(find(source, MakeFonts({match, font("3")}), &found));
  EXPECT_EQ(found, match);
  EXPECT_FALSE(find(source, MakeFonts({font("1.25"), match}), &found));
  EXPECT_FALSE(found || find(source, nullptr, nullptr));
}

TEST(DocumentFontGathering, RemovesWhatStandsForNoFont) {
  using namespace CommonFunctionality;
  const auto replaced = [](const FontRecordArray& replacements) {
    return MakeRecord(
        {{kFP_PostScriptNameKey, "AdobeInvisFont"}, {kFP_PossibleReplacementsKey, replacements}});
  };
  const FontRecordArray fonts =
      MakeFonts({MakeNamed("PhotoshopKinsokuHard"), MakeNamed("adobeInvisFont"),
                 replaced(MakeFonts({MakeNamed("X")})), MakeNamed("A"), replaced(MakeFonts({}))});
  const LogCapture log;
  RemoveFontsThatHaveNoPossibleReplacement(fonts);
  EXPECT_EQ(NamesOf(fonts), (Names{"adobeInvisFont", "AdobeInvisFont", "A"}));
  EXPECT_EQ(log.lines.size(), 2u);
  for (const char* prefix : {"", "Invis", "Adobe"}) RemoveMatchingFonts(fonts, prefix);
  EXPECT_EQ(NamesOf(fonts), (Names{"adobeInvisFont", "A"}));
  EXPECT_TRUE(
      log.Has("RemoveFontsThatHaveNoPossibleReplacement() removing 'AdobeInvisFont' from "
              "problemFonts"));
  EXPECT_TRUE(
      log.Has("RemoveMatchingFonts() removing 'AdobeInvisFont' because it starts with "
              "'Adobe'"));
  RemoveFontsThatHaveNoPossibleReplacement(nullptr);
  RemoveMatchingFonts(nullptr, "A");
}
