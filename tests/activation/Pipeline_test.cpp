#include "activation/Pipeline.h"

#include <gtest/gtest.h>

#include "activation/DocumentFontGathering.h"
#include "fonts/FontDataCache.h"
#include "support/FakeFontManager.h"
#include "support/FontRecords.h"
#include "support/IdentifiedPlugin.h"
#include "support/LogCapture.h"

using namespace FaceprintSupport;

namespace {

class Pipeline : public testing::Test {
 protected:
  int Process(const FontRecordArray& fonts, bool pickBestMatch = false) {
    return ProcessDocumentFontsForAutoActivation(fonts, mMatched, mProblems, true, pickBestMatch, 0,
                                                 nullptr);
  }
  std::uint32_t MatchedID(std::size_t index) {
    const FontRecord font = mMatched->DictionaryAt(index);
    return font ? RecordDatabaseID(font->GetDictionary(kFP_MatchedFontKey)) : 0;
  }

  IdentifiedPlugin mPlugin;
  FakeFontManager mManager;
  FontRecordArray mMatched = MakeFontRecordArray();
  FontRecordArray mProblems = MakeFontRecordArray();
};

FontRecord Slug(const char* name, const char* checksum) {
  return MakeRecord({{kFP_PostScriptNameKey, name},
                     {kFP_KindKey, "TrueType"},
                     {kFP_Faceprint_1_2_Key, checksum}});
}

}  // namespace

TEST_F(Pipeline, EachFontFindsItsPlace) {
  mManager.workgroups["4"] = "Office";
  mManager.remoteWorkgroupIDs.insert("9");
  mManager.Add(1, "Single");
  mManager.Add(2, "Twice", {{kFP_WorkgroupIDKey, "4"}});
  mManager.Add(3, "Twice");
  mManager.Add(4, "OneActive");
  mManager.Add(5, "OneActive", {}, kActivationStateTemporary);
  mManager.Add(6, "Slugged", {{kFP_KindKey, "TrueType"}, {kFP_Faceprint_1_2_Key, "50"}},
               kActivationStateActive);
  mManager.Add(7, "Slugged", {{kFP_KindKey, "TrueType"}, {kFP_Faceprint_1_2_Key, "60"}});
  mManager.Add(8, "Remote", {{kFP_WorkgroupIDKey, "9"}});
  mPlugin.platform.fonts.visible.insert("SystemOnly");
  const FontRecord single = MakeNamed("Single");
  LogCapture log;
  EXPECT_EQ(Process(MakeFonts({single, MakeNamed("Twice"), MakeNamed("OneActive"),
                               Slug("Slugged", "60"), Slug("Slugged", "61"), Slug("Single", "5"),
                               MakeNamed("Remote"), MakeNamed("Nowhere"), MakeNamed("SystemOnly"),
                               PropertyList::Value(), MakeFontRecord()})),
            0);
  // The perfect match wins although another candidate is active and sorted before it. Single's
  // database record knows no kind, so the slug of that name equals no database font.
  EXPECT_EQ(NamesOf(mMatched), (std::vector<std::string>{"Single", "OneActive", "Slugged"}));
  EXPECT_EQ(mMatched->DictionaryAt(0), single);
  EXPECT_EQ(MatchedID(0), 1u);
  EXPECT_EQ(MatchedID(1), 5u);
  EXPECT_EQ(MatchedID(2), 7u);
  EXPECT_EQ(NamesOf(mProblems),
            (std::vector<std::string>{"Twice", "Slugged", "Single", "Remote", "Nowhere"}));
  const auto candidates = [this](std::size_t index) {
    return mProblems->DictionaryAt(index)->GetArray(kFP_PossibleReplacementsKey);
  };
  EXPECT_EQ(RecordString(candidates(0)->DictionaryAt(0), kFP_WorkgroupNameKey), "Office");
  EXPECT_EQ(CountOf(candidates(1)), 2u);
  EXPECT_FALSE(candidates(3));
  EXPECT_FALSE(candidates(4));
  EXPECT_TRUE(
      log.Has("Font 'SystemOnly' would be reported as missing, but appears to be active.  "
              "Must be of a type Kestrane does not support."));
  EXPECT_TRUE(
      log.Has("...Could not get fontName from entry 10 in "
              "ProcessDocumentFontsForAutoActivation's allDocumentFonts array."));
  EXPECT_TRUE(
      log.Has("Exiting ProcessDocumentFontsForAutoActivation with 3 matchedFonts (1 with "
              "Faceprint data) and 5 problemFonts (2 with Faceprint data)."));
}

TEST_F(Pipeline, PickingTheBestAsksNobody) {
  mManager.Add(2, "Twice", {{kFP_VersionKey, "1.0"}});
  mManager.Add(3, "Twice", {{kFP_VersionKey, "2.0"}});
  EXPECT_EQ(Process(MakeFonts({MakeNamed("Twice"), Slug("Twice", "5"), MakeNamed("No")}), true), 0);
  EXPECT_EQ(MatchedID(0), 3u);
  EXPECT_EQ(MatchedID(1), 3u);
  EXPECT_EQ(NamesOf(mProblems), (std::vector<std::string>{"No"}));
}

TEST_F(Pipeline, ErrorsLoseOneFontAndALostManagerEndsTheWalk) {
  for (const char* name : {"A", "B", "C", "D"}) {
    mManager.Add(static_cast<std::uint32_t>(*name), name);
  }
  mManager.FailAt("CountNamedFonts", 2, -1);
  mManager.FailAt("GetNamedFontInfo", 2, kErrorKestraneNotRunning);
  const FontRecordArray fonts =
      MakeFonts({MakeNamed("A"), MakeNamed("B"), MakeNamed("C"), MakeNamed("D")});
  EXPECT_EQ(Process(fonts), kErrorKestraneNotRunning);
  EXPECT_EQ(NamesOf(mMatched), (std::vector<std::string>{"A"}));
  EXPECT_EQ(mProblems->Count(), 0u);

  mManager.ThrowAt("CountNamedFonts", mManager.CountOfCalls("CountNamedFonts") + 1);
  EXPECT_THROW(Process(fonts), std::runtime_error);
  EXPECT_EQ(Process(nullptr), -50);
  mManager.connected = false;
  EXPECT_EQ(Process(fonts), kErrorKestraneNotRunning);
  EXPECT_EQ(AppendFaceprintDataToFonts(fonts, 0, true, true, true), kErrorKestraneNotRunning);
}

TEST_F(Pipeline, AppendingReplacesDecoratedNames) {
  mManager.Add(1, "Foo", {{kFP_VersionKey, "1"}, {kFP_PathKey, "/f"}});
  const FontRecordArray fonts = MakeFonts({MakeNamed("ABCDEF+Foo"), MakeNamed("No")});
  LogCapture log;
  EXPECT_EQ(AppendFaceprintDataToFonts(fonts, 0, false, true, true), 0);
  EXPECT_EQ(NamesOf(fonts), (std::vector<std::string>{"No", "Foo"}));
  EXPECT_EQ(RecordDatabaseID(fonts->DictionaryAt(1)), 1u);
  EXPECT_EQ(AppendFaceprintDataToFonts(fonts, 0, false, false, false), 0);
  EXPECT_FALSE(RecordHas(fonts->DictionaryAt(1), kFP_DatabaseIDKey));
  EXPECT_TRUE(RecordHas(fonts->DictionaryAt(1), kFP_VersionKey));
  EXPECT_TRUE(log.Has("ERROR:  RemoveUnsluggableFaceprintKeys() apparently failed."));
}

TEST_F(Pipeline, AppendingActiveFontsOnly) {
  mManager.Add(1, "On", {}, kActivationStateActive);
  mManager.Add(2, "Off");
  mManager.Add(3, "Fam-Bold", {{kFP_FamilyKey, "Fam"}}, kActivationStateActive);
  mManager.Add(4, "Cached", {}, kActivationStateActive);
  FontManagerInterface::FontOrSetInfoRec rec{1, 4, kActivationStateActive, nullptr};
  rec.info = MakeRecord(
      {{kFP_PostScriptNameKey, "Cached"}, {kFP_DatabaseIDKey, "4"}, {kFP_ActivationStateKey, "2"}});
  FontDataPreviouslyGottenFromDatabase::Add(4, rec);
  const FontRecordArray fonts =
      MakeFonts({MakeNamed("On"), MakeNamed("Off"), MakeNamed("Fam-Light"), MakeNamed("Cached")});
  EXPECT_EQ(AppendFaceprintDataToFonts(fonts, 0, true, true, true), 0);
  EXPECT_EQ(NamesOf(fonts), (std::vector<std::string>{"On", "Cached", "Fam-Bold"}));
  FontDataPreviouslyGottenFromDatabase::DeleteAll();
  for (const std::string& call : mManager.CallsOf("CountNamedFonts")) {
    EXPECT_NE(call, "CountNamedFonts(P:Cached)");
  }
}

TEST_F(Pipeline, IDsOfTheLastFontRemain) {
  mManager.Add(1, "A");
  mManager.Add(2, "B-Bold", {{kFP_FamilyKey, "B"}});
  mManager.Add(3, "B-Light", {{kFP_FamilyKey, "B"}});
  FontRecordArray matched;
  EXPECT_EQ(FindIDsForBestMatches(MakeFonts({MakeNamed("A"), MakeRecord({{kFP_FamilyKey, "B"}})}),
                                  &matched, 7),
            0);
  EXPECT_EQ(NamesOf(matched), (std::vector<std::string>{"B-Bold", "B-Light"}));
  const FontRecord inner = matched->DictionaryAt(1)->GetDictionary(kFP_MatchedFontKey);
  EXPECT_EQ(RecordDatabaseID(inner), 3u);
  EXPECT_EQ(RecordInteger(inner, kFP_WorkgroupIDKey), 7);
  FindIDsForBestMatches(MakeFontRecordArray(), &matched, 7);
  EXPECT_EQ(CountOf(matched), 0u);
  EXPECT_TRUE(matched);
}

TEST_F(Pipeline, ExactlyOneXMPMatch) {
  const auto font = [](const char* version) {
    return MakeRecord({{kFP_PostScriptNameKey, "F"},
                       {kFP_FamilyKey, "F"},
                       {kFP_KindKey, "TrueType"},
                       {kFP_VersionKey, version}});
  };
  const FontRecord source = MakeRecord({{kFP_PostScriptNameKey, "F"},
                                        {"AdobeXMPFontData_Family", "F"},
                                        {"AdobeXMPFontData_Type", "TrueType"},
                                        {"AdobeXMPFontData_VersionString", "1.25"}});
  FontRecord found;
  const FontRecord right = font("1.2");
  EXPECT_TRUE(
      AdobeXMPMatchesExactlyOnePossibleReplacement(source, MakeFonts({font("3"), right}), &found));
  EXPECT_EQ(found, right);
  EXPECT_FALSE(AdobeXMPMatchesExactlyOnePossibleReplacement(
      source, MakeFonts({font("1.25"), right}), &found));
  EXPECT_FALSE(found);
}

TEST(DocumentFontGathering, RemovesWhatStandsForNoFont) {
  const auto withReplacements = [](const char* name, const FontRecordArray& replacements) {
    return MakeRecord({{kFP_PostScriptNameKey, name}, {kFP_PossibleReplacementsKey, replacements}});
  };
  const FontRecordArray fonts =
      MakeFonts({MakeNamed("PhotoshopKinsokuHard"), MakeNamed("adobeInvisFont"),
                 withReplacements("AdobeInvisFont", MakeFonts({MakeNamed("X")})), MakeNamed("A"),
                 withReplacements("AdobeInvisFont", MakeFontRecordArray())});
  CommonFunctionality::RemoveFontsThatHaveNoPossibleReplacement(fonts);
  EXPECT_EQ(NamesOf(fonts), (std::vector<std::string>{"adobeInvisFont", "AdobeInvisFont", "A"}));
  CommonFunctionality::RemoveMatchingFonts(fonts, "");
  CommonFunctionality::RemoveMatchingFonts(fonts, "Invis");
  EXPECT_EQ(fonts->Count(), 3u);
  CommonFunctionality::RemoveMatchingFonts(fonts, "Adobe");
  EXPECT_EQ(NamesOf(fonts), (std::vector<std::string>{"adobeInvisFont", "A"}));
  CommonFunctionality::RemoveFontsThatHaveNoPossibleReplacement(nullptr);
  CommonFunctionality::RemoveMatchingFonts(nullptr, "A");
}
