#include "fonts/FontMerging.h"

#include <gtest/gtest.h>

#include "fonts/FontDataCache.h"
#include "support/FakePlatform.h"
#include "support/FontRecords.h"
#include "support/LogCapture.h"

using namespace FaceprintSupport;

TEST(FontMerging, ByCompletenessAndValues) {
  struct Row {
    FontRecord source;
    FontRecord destination;
    FontRecord expected;
    const char* log;
  };
  const auto foo = [](std::initializer_list<std::pair<const char*, const char*>> entries) {
    FontRecord record = MakeNamed("Foo");
    for (const auto& [key, value] : entries) record->Set(key, value);
    return record;
  };
  const Row rows[] = {
      {foo({{"b", "2"}}), foo({{"a", "1"}}), foo({{"a", "1"}, {"b", "2"}}),
       "Merging info from srcFontArray for entry 0 in dstFontArray (for 'Foo')."},
      {foo({{"a", "X"}}), foo({{"a", "x"}, {"b", "2"}}), foo({{"a", "x"}, {"b", "2"}}),
       "Ignoring entry 0 in srcFontArray (for 'Foo') because dstFontArray already has more "
       "complete "
       "info for that font."},
      {foo({{"a", "X"}}), foo({{"a", "x"}}), foo({{"a", "x"}}),
       "Ignoring entry 0 in srcFontArray (for 'Foo') because dstFontArray already has identical "
       "info for that font."},
      {foo({{"a", "1"}, {"b", "2"}}), foo({{"a", "9"}}), foo({{"a", "1"}, {"b", "2"}}),
       "WARNING: replacing entry 0 in dstFontArray (for 'Foo') because srcFontArray has more "
       "complete info for that font."},
      {foo({{"a", "1"}}), foo({{"a", "9"}, {"b", "2"}}), foo({{"a", "9"}, {"b", "2"}}),
       "Ignoring entry 0 in srcFontArray (for 'Foo') because dstFontArray already has more "
       "complete "
       "info for that font."},
      {foo({{"a", "1"}}), foo({{"a", "9"}}), foo({{"a", "9"}}),
       "Ignoring entry 0 in srcFontArray (for 'Foo') because dstFontArray already has identical "
       "info for that font."}};
  for (const Row& row : rows) {
    const FontRecordArray destination = MakeFonts({row.destination});
    const FontRecord before = row.destination->Copy();
    LogCapture log;
    MergeFontsIntoFontsArray(MakeFonts({row.source}), destination);
    ASSERT_EQ(destination->Count(), 1u);
    EXPECT_TRUE(destination->At(0).Equals(row.expected)) << row.log;
    EXPECT_TRUE(PropertyList::Value(row.destination).Equals(before)) << "changed in place";
    EXPECT_TRUE(log.Has(row.log)) << row.log;
  }
}

TEST(FontMerging, AppendsWhatIsNewAndSkipsTheNameless) {
  const FontRecordArray destination = MakeFonts({MakeNamed("A")});
  LogCapture log;
  MergeFontsIntoFontsArray(
      MakeFonts({PropertyList::Value(), MakeFontRecord(), MakeNamed("B"), MakeNamed("B"),
                 MakeRecord({{kFP_PostScriptNameKey, "A-"}, {kFP_KindKey, "TrueType"}}),
                 MakeNamed("A-")}),
      destination);
  // "A-" differs from "A", names the same font and says more: it takes its place.
  EXPECT_EQ(NamesOf(destination), (std::vector<std::string>{"A-", "B"}));
  EXPECT_TRUE(
      log.Has("WARNING: ignoring entry 1 in srcFontArray because it does not contain a "
              "postscript name."));
  EXPECT_TRUE(
      log.Has("Appending entry 2 in srcFontArray (for 'B') because dstFontArray has no "
              "such postscript name."));
  MergeFontsIntoFontsArray(nullptr, destination);
  MergeFontsIntoFontsArray(destination, nullptr);
  MergeFontsIntoFontsArray(destination, destination);
  EXPECT_EQ(destination->Count(), 2u);
}

TEST(FontMerging, OneRecordByNumberOfKeys) {
  const FontRecordArray fonts = MakeFonts({MakeNamed("A"), MakeNamed("B")});
  EXPECT_EQ(MergeFaceprintDictionaryIntoArray(fonts, MakeNamed("C")), 2);
  EXPECT_EQ(MergeFaceprintDictionaryIntoArray(fonts, MakeFontRecord()), 3);
  EXPECT_EQ(MergeFaceprintDictionaryIntoArray(fonts, nullptr), -50);
  const FontRecord longer = MakeRecord({{kFP_PostScriptNameKey, "B"}, {kFP_KindKey, "x"}});
  EXPECT_EQ(MergeFaceprintDictionaryIntoArray(fonts, longer), 1);
  EXPECT_EQ(MergeFaceprintDictionaryIntoArray(fonts, MakeNamed("B")), 1);
  EXPECT_EQ(fonts->DictionaryAt(1), longer);
}

TEST(FontMerging, CountsAndLists) {
  FakePlatform platform;
  platform.fonts.visible.insert("Family");
  const auto matched = [](const char* isActive) {
    return MakeRecord(
        {{kFP_PostScriptNameKey, "M"},
         {kFP_MatchedFontKey,
          MakeRecord({{kFP_IsActiveKey, isActive}, {kFP_AssignedFamilyGroupNameKey, "Family"}})}});
  };
  const FontRecord choice =
      MakeRecord({{kFP_PossibleReplacementsKey, MakeFonts({MakeNamed("X")})}});
  const FontRecordArray fonts =
      MakeFonts({matched("1"), matched("0"), PropertyList::Value(), choice,
                 MakeRecord({{kFP_PossibleReplacementsKey, MakeFontRecordArray()}})});
  EXPECT_EQ(CountActiveFonts(fonts), 1);
  EXPECT_EQ(CountMissingFonts(fonts), 3);
  EXPECT_EQ(CountMissingFonts(nullptr), 0);

  const FontRecordArray resolved = MakeFontRecordArray();
  EXPECT_FALSE(AllFontsResolved(fonts, resolved));
  EXPECT_EQ(resolved->Count(), 2u);
  EXPECT_TRUE(AllFontsResolved(MakeFonts({PropertyList::Value(), matched("0")}), resolved));
  EXPECT_TRUE(AllFontsResolved(MakeFontRecordArray(), nullptr));
}

TEST(FontMerging, SlugsForDocumentFontsAndTrimming) {
  const FontRecord slug = MakeRecord({{kFP_PostScriptNameKey, "B"}, {kFP_KindKey, "x"}});
  const FontRecordArray merged = CreateFaceprintSlugsWithFaceprintFontsAndDocumentFonts(
      MakeFonts({MakeNamed("Z"), slug}),
      MakeFonts({MakeNamed("A"), MakeFontRecord(), MakeNamed("B")}));
  EXPECT_EQ(NamesOf(merged), (std::vector<std::string>{"A", "B"}));
  EXPECT_EQ(merged->DictionaryAt(1), slug);
  EXPECT_FALSE(CreateFaceprintSlugsWithFaceprintFontsAndDocumentFonts(nullptr, merged));

  const FontRecordArray trimmed = MakeFonts({MakeNamed("A"), MakeFontRecord(), MakeNamed("C")});
  EXPECT_EQ(RemoveUniqueFontsFromFontArray(trimmed, merged), 1);
  EXPECT_EQ(NamesOf(trimmed), (std::vector<std::string>{"A", ""}));
}

namespace {

void Deliver(std::uint32_t id, const char* name, const char* state) {
  FontManagerInterface::FontOrSetInfoRec rec;
  rec.databaseID = id;
  rec.activationState = static_cast<std::uint16_t>(std::stoi(state));
  rec.info = MakeRecord({{kFP_PostScriptNameKey, name}, {kFP_ActivationStateKey, state}});
  FontDataPreviouslyGottenFromDatabase::Add(id, rec);
}

// The ID of the hit, 0 for none.
std::uint32_t ActiveVersionOf(const char* name) {
  FontRecord record;
  std::uint32_t id = 0;
  FontDataPreviouslyGottenFromDatabase::CreateCopyOfFaceprintDataForActiveFont(name, record, id);
  return id;
}

}  // namespace

TEST(FontDataCache, BothViewsHaveToAgree) {
  using namespace FontDataPreviouslyGottenFromDatabase;
  Deliver(5, "Foo", "2");
  Deliver(3, "Foo", "3");
  Deliver(3, "Late", "2");  // the first delivery stands
  Deliver(4, "Bar", "1");
  EXPECT_EQ(ActiveVersionOf("Foo"), 3u);
  EXPECT_EQ(ActiveVersionOf("foo"), 0u);
  EXPECT_EQ(ActiveVersionOf("Late"), 0u);

  SetFontActivationState(4, true);  // delivered inactive: never a hit
  EXPECT_EQ(ActiveVersionOf("Bar"), 0u);
  SetFontActivationState(5, true);  // is active already: nothing happens
  EXPECT_EQ(ActiveVersionOf("Foo"), 3u);
  SetFontActivationState(5, false);
  SetFontActivationState(5, true);  // now the other version goes off
  EXPECT_EQ(ActiveVersionOf("Foo"), 5u);
  SetFontActivationState(5, false);
  EXPECT_EQ(ActiveVersionOf("Foo"), 0u);

  LogCapture log;
  SetFontActivationState(99, false);
  EXPECT_TRUE(
      log.Has("SetFontActivationState() failing to record transition to activation state 1 "
              "because font with databaseID 99 not in "
              "FontDataPreviouslyGottenFromDatabase."));
  EXPECT_EQ(DeleteAll(), 0);
  EXPECT_TRUE(
      log.Has("FontDataPreviouslyGottenFromDatabase::DeleteAll() removing 4 ('Bar') from "
              "cache."));
  SetFontActivationState(5, true);
  EXPECT_EQ(ActiveVersionOf("Foo"), 0u);
}
