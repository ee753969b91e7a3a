// What every operation answers to what it should never be given.
#include <gtest/gtest.h>

#include <functional>

#include "fonts/FontDataCache.h"
#include "fonts/FontDebugUtils.h"
#include "fonts/FontKinds.h"
#include "fonts/FontMerging.h"
#include "fonts/FontNames.h"
#include "fonts/FontRecordOperations.h"
#include "fonts/MatchRules.h"
#include "support/FakeFontManager.h"
#include "support/FontRecords.h"
#include "support/LogCapture.h"

using namespace FaceprintSupport;

namespace {

FontRecord Named(PropertyList::Value name) {
  return MakeRecord({{kFP_PostScriptNameKey, std::move(name)}});
}

// Made anew each time, for the operations change them. Who asks breaks the circle of the last one,
// or it would never be freed.
constexpr std::size_t kCount = 12;
FontRecord MakeBadRecord(std::size_t number) {
  const FontRecord itself = MakeNamed("A");
  const FontRecord records[kCount] = {nullptr,
                                      MakeFontRecord(),
                                      Named(5),
                                      Named(MakeFontRecordArray()),
                                      ReadRecord("PostScriptName=A|DatabaseID=abc"),
                                      ReadRecord("PostScriptName=A|DatabaseID=-1"),
                                      ReadRecord("PostScriptName=A|DatabaseID=99999999999"),
                                      Named(std::string(128, 'x')),
                                      Named(std::string(100000, 'x')),
                                      Named(std::string("A\0Z", 3)),
                                      Named("\xFF\xFE"),
                                      itself};
  if (number == kCount - 1) {
    itself->Set(kFP_MatchedFontKey, itself);
    itself->Set(kFP_PossibleReplacementsKey, MakeFonts({itself}));
  }
  return records[number];
}

FontRecordArray JustA() { return MakeFonts({MakeNamed("A")}); }

int DeliverToCache(const FontRecord& record) {
  namespace Cache = FontDataPreviouslyGottenFromDatabase;
  Cache::DeleteAll();
  Cache::Add(7, {1, 7, kActivationStateActive, record});
  Cache::SetFontActivationState(7, false);
  Cache::SetFontActivationState(7, true);
  FontRecord copy;
  std::uint32_t id = 0;
  return Cache::CreateCopyOfFaceprintDataForActiveFont("A", copy, id) ? 1 : Cache::DeleteAll();
}

int CountAfterMerging(const FontRecordArray& fonts) {
  const FontRecordArray destination = JustA();
  MergeFontsIntoFontsArray(fonts, destination);
  MergeFontsIntoFontsArray(destination, nullptr);
  return static_cast<int>(destination->Count());
}

int RunThrough(const FontRecordArray& fonts) {
  PostProcessFaceprintSlug(fonts);
  MapSorrellineNamesToKestraneNames(fonts, kMapAllNames);
  FontDebugUtils::DumpFontNames(fonts, nullptr);
  SortByBestMatch(fonts, nullptr);
  return static_cast<int>(CountOf(fonts));
}

// The answers, "-" for a negative one, about each bad record: null, empty, a number and a list for
// a name, three IDs that are none, 128 and 100,000 bytes, a zero byte, no UTF-8, itself within.
using R = const FontRecord&;
template <typename Input>
struct Row {
  const char* answers;
  std::function<int(Input)> operation;
};
constexpr const char* kName = kFP_PostScriptNameKey;
constexpr const char* kID = kFP_DatabaseIDKey;
const Row<R> kRecordRows[] = {
    {"000000000000", [](R r) { return IsPerfectMatch(r, r) || IsXMPMatch(r, r); }},
    {"000000000000", [](R r) { return PickBestMatchCallBack(r, MakeNamed("A"), r); }},
    {"000010000001", [](R r) { return KeyValueIs(r, kName, "A") && !KeyHasNonZeroValue(r, kID); }},
    {"000011100101", [](R r) { return KeyValueContains(r, kName, "a"); }},
    {"000000011110", [](R r) { return KeyValueStringMatch(r, MakeNamed("A"), r, kName); }},
    {"001100011110", [](R r) { return IsPostScriptNameOnly(r); }},
    {"000000000000",
     [](R r) { return FontRefContainsFaceprintData(r) || FontRefContainsXMPData(r); }},
    {"000011100001", [](R r) { return RemoveUnsluggableKeysFromDictionary(r); }},
    {"000000000000",
     [](R r) { return FixFaceprintChecksumsIfNeeded(r) || PostProcessSingleFontForSlug(r); }},
    {"001111111111", [](R r) { return ResolveDictionaryMMFontName(r), RecordHas(r, kName); }},
    {"000000000000", &DeliverToCache},
    {"-11100011110", [](R r) { return MergeFaceprintDictionaryIntoArray(JustA(), r); }},
    {"------------", [](R r) { return MergeFaceprintDictionaryIntoArray(nullptr, r); }}};

// The same about an array of that record, about none, and about one with foreign entries.
using F = const FontRecordArray&;
constexpr auto& MakeSlugs = CreateFaceprintSlugsWithFaceprintFontsAndDocumentFonts;
bool HasName(F fonts, const char* name) {
  const bool found = DoesArrayContainFontWithPostScriptName(fonts, name);
  EXPECT_EQ(GetFaceprintDictionaryFromArrayWithPostscriptName(fonts, name) != nullptr, found);
  return found;
}
const Row<F> kArrayRows[] = {
    {"11111112222111", &CountAfterMerging},
    {"11111111111105", &RunThrough},
    {"00001110000100", [](F f) { return RemoveUnsluggableFaceprintKeys(f); }},
    {"011111111000-0",
     [](F f) {
       std::string xml;
       return CreateXMLFaceprintSlug(f, &xml) == 0 ? !xml.empty() : -1;
     }},
    {"01111111111001", &CountMissingFonts},
    {"10000000000110", [](F f) { return AllFontsResolved(f, nullptr); }},
    {"00000000000100", [](F f) { return CountOf(CreateFontArrayFromFontMatchArray(f)); }},
    {"00001111111100", [](F f) { return CountOf(MakeSlugs(f, f)); }},
    {"00000001111000", [](F f) { return RemoveUniqueFontsFromFontArray(f, JustA()); }},
    {"00001111111100", [](F f) { return RemoveUniqueFontsFromFontArray(f, nullptr); }},
    {"11110001111011", [](F f) { return RemoveUniqueFontsFromFontArray(JustA(), f); }},
    {"00001110000100", [](F f) { return HasName(f, "A"); }},
    {"00000000000000",
     [](F f) { return CountActiveFonts(f) + HasName(f, nullptr) + bool(MakeSlugs(nullptr, f)); }},
    {"00000000000000", [](F f) { return DoesArrayContainFontWithDatabaseID(f, 1); }}};

// Runs each operation on each input, which `make` makes of a bad record.
template <typename Rows, typename Make>
void RunAll(const Rows& rows, Make make) {
  for (const auto& row : rows) {
    for (std::size_t i = 0; row.answers[i] != '\0'; ++i) {
      const FontRecord bad = i < kCount ? MakeBadRecord(i) : nullptr;
      const int answer = row.operation(make(bad, i));
      EXPECT_EQ(answer < 0 ? '-' : static_cast<char>('0' + answer), row.answers[i])
          << "operation " << &row - rows << ", input " << i;
      if (bad) bad->Clear();
    }
  }
}

}  // namespace

TEST(BadInput, IsAnsweredAsTold) {
  const LogCapture quiet;
  FakeFontManager manager;
  RunAll(kRecordRows, [](R bad, std::size_t) { return bad; });
  RunAll(kArrayRows, [](R bad, std::size_t i) {
    const PropertyList::Value null;
    if (i > kCount) return MakeFonts({null, "text", 5, MakeFontRecordArray(), MakeFontRecord()});
    return i < kCount ? MakeFonts({bad}) : FontRecordArray();
  });
}
