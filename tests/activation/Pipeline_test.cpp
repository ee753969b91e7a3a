#include "activation/Pipeline.h"

#include <gtest/gtest.h>

#include <array>
#include <cstring>

#include "activation/DocumentFontGathering.h"
#include "fonts/FontDataCache.h"
#include "support/FakeFontManager.h"
#include "support/FontRecords.h"
#include "support/IdentifiedPlugin.h"
#include "support/LogCapture.h"

using namespace FaceprintSupport;

namespace {

struct Pipeline : testing::Test {
  IdentifiedPlugin plugin;
  FakeFontManager manager;
};

int Sort(const FontRecordArray& fonts, const FontRecordArray& matched,
         const FontRecordArray& problems, bool pickBestMatch = false) {
  return ProcessDocumentFontsForAutoActivation(fonts, matched, problems, true, pickBestMatch, 0,
                                               nullptr);
}

FontRecord Slug(const char* name, const char* checksum) {
  return MakeRecord({{kFP_PostScriptNameKey, name},
                     {kFP_KindKey, "TrueType"},
                     {kFP_Faceprint_1_2_Key, checksum}});
}

}  // namespace

TEST_F(Pipeline, EachFontFindsItsPlace) {
  manager.workgroups["4"] = "Office";
  manager.remoteWorkgroupIDs.insert("9");
  const auto add = [this](std::uint32_t id, const char* name, const char* checksum, bool isOn) {
    manager.Add(id, name, {{kFP_KindKey, "TrueType"}, {kFP_Faceprint_1_2_Key, checksum}},
                isOn ? kActivationStateTemporary : kActivationStateInactive);
  };
  add(1, "Single", "10", false);
  manager.Add(2, "Twice", {{kFP_WorkgroupIDKey, "4"}, {kFP_VersionKey, "1.0"}});
  manager.Add(3, "Twice", {{kFP_VersionKey, "2.0"}});
  add(4, "OneOn", "40", false);
  add(5, "OneOn", "50", true);
  add(6, "Same", "60", false);
  add(7, "Same", "60", true);
  manager.Add(8, "Remote", {{kFP_WorkgroupIDKey, "9"}});
  plugin.platform.fonts.visible.insert("SystemOnly");
  const struct {
    FontRecord font;
    bool pickBestMatch;
    std::string place;  // the matched ID, "?" and the candidates' workgroups, or neither list
  } rows[] = {
      {MakeNamed("Single"), false, "1"},         // the only one of its name
      {Slug("Single", "10"), false, "1"},        // perfect
      {Slug("Single", "11"), false, "?-"},       // the only one, and another
      {MakeNamed("Twice"), false, "?-Office-"},  // neither is on
      {MakeNamed("Twice"), true, "3"},           // the newer
      {MakeNamed("OneOn"), false, "5"},          // the one that is on
      {Slug("OneOn", "40"), false, "4"},         // the perfect one is not the one that is on
      {Slug("OneOn", "40"), true, "4"},          // nor the best
      {Slug("OneOn", "45"), false, "?--"},       // none is perfect, on or not
      {Slug("OneOn", "45"), true, "5"},          // the best
      {Slug("Same", "60"), false, "7"},          // the first of two perfect ones
      {MakeNamed("Remote"), false, "?"},         // as if it were not there
      {MakeNamed("Nowhere"), true, "?"},         // missing
      {MakeNamed("SystemOnly"), false, ""},      // of a kind that the database does not have
      {MakeFontRecord(), false, ""},             // without a name
      {nullptr, false, ""},
  };
  for (const auto& [font, pickBestMatch, place] : rows) {
    const FontRecordArray matched = MakeFonts({});
    const FontRecordArray problems = MakeFonts({});
    EXPECT_EQ(Sort(MakeFonts({font}), matched, problems, pickBestMatch), 0);
    std::string found;
    if (matched->Count() == 1 && matched->DictionaryAt(0) == font) {
      found += RecordString(font->GetDictionary(kFP_MatchedFontKey), kFP_DatabaseIDKey);
    }
    if (problems->Count() == 1 && problems->DictionaryAt(0) == font) {
      const FontRecordArray candidates = font->GetArray(kFP_PossibleReplacementsKey);
      found += "?";
      for (std::size_t i = 0; i < CountOf(candidates); ++i) {
        found += RecordString(candidates->DictionaryAt(i), kFP_WorkgroupNameKey) + "-";
      }
    }
    EXPECT_EQ(found, place) << RecordString(font, kFP_PostScriptNameKey);
  }
  const LogCapture log;
  Sort(MakeFonts({Slug("Same", "60"), Slug("OneOn", "45"), MakeNamed("Nowhere"),
                  MakeNamed("SystemOnly"), MakeFontRecord()}),
       MakeFonts({}), MakeFonts({}));
  for (const char* line :
       {"Font 'SystemOnly' would be reported as missing, but appears to be active.  Must be of a "
        "type Kestrane does not support.",
        "...Could not get fontName from entry 4 in ProcessDocumentFontsForAutoActivation's "
        "allDocumentFonts array.",
        "Exiting ProcessDocumentFontsForAutoActivation with 1 matchedFonts (1 with Faceprint data) "
        "and 2 problemFonts (1 with Faceprint data)."}) {
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
  EXPECT_EQ(NamesOf(matched), (std::vector<std::string>{"A", "C", "D", "A"}));
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
  manager.FailAt("CountNamedFonts(P:Fam-Light)", 0, -1);
  FontManagerInterface::FontOrSetInfoRec rec{1, 4, kActivationStateActive, nullptr};
  rec.info = MakeRecord(
      {{kFP_PostScriptNameKey, "Cached"}, {kFP_DatabaseIDKey, "4"}, {kFP_ActivationStateKey, "2"}});
  FontDataPreviouslyGottenFromDatabase::Add(4, rec);
  const struct {
    const char* name;
    const char* how;  // 'a'ctive fonts only, all 'i'nfo, try 'f'amilies
    const char *left, *counted, *line;
  } rows[] = {
      {"ABCDEF+Foo", "if", "Foo ", "P:ABCDEF+Foo P:ABCDEFFoo P:Foo ", nullptr},
      {"Foo", "f", "Foo ", "P:Foo ", "ERROR:  RemoveUnsluggableFaceprintKeys() apparently failed."},
      {"Foo", "aif", "", "P:Foo ", "Removing inactive 'Foo' from fonts."},
      {"On", "aif", "On ", "P:On ", nullptr},
      {"Cached", "aif", "Cached ", "",
       "Using cached faceprint data for the active version of Cached"},
      {"Cached", "if", "Cached ", "P:Cached ", nullptr},
      {"Fam-Light", "aif", "Fam-Bold ", "P:Fam-Light F:Fam ",
       "Removing inactive 'Fam-Light' from fonts."},
      {"Fam-Light", "ai", "", "P:Fam-Light ", nullptr},
      {"Fam-Light", "if", "Fam-Light ", "P:Fam-Light ", nullptr},
  };
  for (const auto& [name, how, left, counted, line] : rows) {
    SCOPED_TRACE(std::string(name) + " " + how);
    const auto is = [flags = how](char flag) { return std::strchr(flags, flag) != nullptr; };
    manager.calls.clear();
    const LogCapture log;
    const FontRecordArray fonts = MakeFonts({MakeNamed(name)});
    AppendFaceprintDataToFonts(fonts, 0, is('a'), is('i'), is('f'));
    std::string names;
    for (const std::string& found : NamesOf(fonts)) names += found + " ";
    EXPECT_EQ(names, left);
    std::string calls;
    for (const std::string& call : manager.CallsOf("CountNamedFonts")) {
      calls += call.substr(16, call.size() - 17) + " ";
    }
    EXPECT_EQ(calls, counted);
    EXPECT_TRUE(line == nullptr || log.Has(line)) << line;
    const bool isKnown = !names.empty() && names != "Fam-Light ";
    EXPECT_EQ(RecordHas(fonts->DictionaryAt(0), kFP_DatabaseIDKey), isKnown && is('i'));
  }
  FontDataPreviouslyGottenFromDatabase::DeleteAll();
}

TEST_F(Pipeline, IDsOfTheLastFontRemain) {
  manager.Add(1, "A");
  manager.Add(2, "B-Bold", {{kFP_FamilyKey, "B"}});
  manager.Add(3, "B-Light", {{kFP_FamilyKey, "B"}});
  FontRecordArray matched;
  const FontRecordArray fonts = MakeFonts({MakeNamed("A"), MakeRecord({{kFP_FamilyKey, "B"}})});
  EXPECT_EQ(FindIDsForBestMatches(fonts, &matched, 7), 0);
  EXPECT_EQ(NamesOf(matched), (std::vector<std::string>{"B-Bold", "B-Light"}));
  const FontRecord inner = matched->DictionaryAt(1)->GetDictionary(kFP_MatchedFontKey);
  EXPECT_EQ(RecordDatabaseID(inner), 3u);
  EXPECT_EQ(RecordInteger(inner, kFP_WorkgroupIDKey), 7);
  FindIDsForBestMatches(MakeFonts({}), &matched, 7);
  EXPECT_TRUE(matched && matched->IsEmpty());
}

TEST_F(Pipeline, ExactlyOneXMPMatch) {
  const FontRecord source = MakeRecord({{kFP_PostScriptNameKey, "F"},
                                        {"AdobeXMPFontData_Family", "F"},
                                        {"AdobeXMPFontData_Type", "TrueType"},
                                        {"AdobeXMPFontData_VersionString", "1.25"}});
  FontRecord fonts[3];
  for (std::size_t i = 0; i < 3; ++i) {
    fonts[i] = source->Copy();
    fonts[i]->Set(kFP_FamilyKey, "F");
    fonts[i]->Set(kFP_KindKey, "TrueType");
    fonts[i]->Set(kFP_VersionKey, std::array{"3", "1.2", "1.25"}[i]);
  }
  const auto find = AdobeXMPMatchesExactlyOnePossibleReplacement;
  FontRecord found;
  EXPECT_TRUE(find(source, MakeFonts({fonts[0], fonts[1]}), &found));
  EXPECT_EQ(found, fonts[1]);
  EXPECT_FALSE(find(source, MakeFonts({fonts[2], fonts[1]}), &found));
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
  EXPECT_EQ(NamesOf(fonts), (std::vector<std::string>{"adobeInvisFont", "AdobeInvisFont", "A"}));
  for (const char* prefix : {"", "Invis", "Adobe"}) RemoveMatchingFonts(fonts, prefix);
  EXPECT_EQ(NamesOf(fonts), (std::vector<std::string>{"adobeInvisFont", "A"}));
  EXPECT_EQ(log.lines,
            (std::vector<std::string>{
                "RemoveFontsThatHaveNoPossibleReplacement() removing 'AdobeInvisFont' from "
                "problemFonts\n",
                "RemoveFontsThatHaveNoPossibleReplacement() removing 'PhotoshopKinsokuHard' from "
                "problemFonts\n",
                "RemoveMatchingFonts() removing 'AdobeInvisFont' because it starts with "
                "'Adobe'\n"}));
  RemoveFontsThatHaveNoPossibleReplacement(nullptr);
  RemoveMatchingFonts(nullptr, "A");
}
