#include <gtest/gtest.h>

#include <bit>
#include <random>

#include "facade/SkerryLoader.h"
#include "fonts/MatchRules.h"
#include "support/FontRecords.h"
#include "support/IdentifiedPlugin.h"
#include "support/LogCapture.h"
#include "support/TextTable.h"

using namespace FaceprintSupport;

namespace {

PluginFacadeInstance NoInstance() { return nullptr; }

std::size_t liveQuestions = 0;

// Fonts of even IDs are active; of a font with ID 9 nothing can be said.
uint32_t EvenOnesAreActive(PluginFacadeInstance, uint32_t count, const uint32_t* ids,
                           int32_t* states) {
  ++liveQuestions;
  uint32_t code = 0;
  for (uint32_t i = 0; i < count; ++i) {
    states[i] = ids[i] % 2 == 0 && ids[i] != 0 ? 1 : 0;
    if (ids[i] == 9) code = 1;
  }
  return code;
}

class BestMatch : public testing::Test {
 protected:
  BestMatch() { Bind(&EvenOnesAreActive); }
  ~BestMatch() override { Bind(nullptr); }

  static void Bind(decltype(SkerryLoader::pfGetFontIsActivated) function) {
    SkerryLoader::GetSharedInstance()->pfGetFontIsActivated = function;
    SkerryLoader::GetSharedInstance()->pfGetPluginFacadeInstance = &NoInstance;
  }

  IdentifiedPlugin mPlugin;
};

// The text as it is when the two records change places.
std::string Exchanged(std::string text) {
  for (char& c : text) {
    if (c == '1' || c == '2') c = c == '1' ? '2' : '1';
  }
  return text;
}

// The last line of the log is the reason; "" for none.
void ExpectChoice(const std::string& first, const std::string& second, const std::string& source,
                  int result, const std::string& reason) {
  LogCapture log;
  EXPECT_EQ(PickBestMatchCallBack(ReadRecord(first), ReadRecord(second), ReadRecord(source)),
            result)
      << first << " against " << second << " for " << source;
  EXPECT_EQ(log.HasPart("Cho") ? log.lines.back() : "\n", reason + "\n");
}

// The first one wins from either side.
void ExpectFirst(const std::string& first, const std::string& second, const std::string& source,
                 const std::string& reason) {
  ExpectChoice(first, second, source, -1, reason);
  ExpectChoice(second, first, source, 1, Exchanged(reason));
}

// What each step decides when the two are otherwise these at every later step.
const std::string kWorse =
    "DatabaseID=3|FontKind=TrueType|Foundry=Small|Version=1|IsTemp=0|IsVault=0|";
const std::string kBetter =
    "DatabaseID=2|FontKind=OpenType - PS|Foundry=Adobe|Version=2|IsTemp=1|IsVault=1|";

// Winner, loser, source and reason. What an earlier step would decide is taken away.
const auto kSteps = ReadTable(R"(
  IsActive=1   / IsActive=0   / FontKind=OpenType - PS|Foundry=Adobe / ...Choosing fontRef1 because it's active and fontRef2 isn't.
  DatabaseID=2 / DatabaseID=3 / FontKind=OpenType - PS|Foundry=Adobe / ...Choosing fontRef1 because it's active and fontRef2 isn't.
  DatabaseID   / DatabaseID   / FontKind=truetype|Foundry=Adobe      / Choosing a same-named font with the same type according to Faceprint.
  DatabaseID   / DatabaseID   / Foundry=SMALL                        / Choice based on kFP_FoundryKey.
  DatabaseID|FontKind=opentype / DatabaseID|FontKind=postscript     / / Choice based on kFP_KindKey.
  DatabaseID|FontKind|Foundry=The Adobe Type / DatabaseID|FontKind|Foundry=adobe   / / Choice based on kFP_FoundryKey.
  DatabaseID|FontKind|Foundry|Version=2 / DatabaseID|FontKind|Foundry|Version=1    / / Choice based on kFP_VersionKey.
  DatabaseID|FontKind|Foundry|Version|IsTemp=1 / DatabaseID|FontKind|Foundry|Version|IsTemp=0 / / Choice based on kFP_IsTempKey.
  DatabaseID|FontKind|Foundry|Version|IsTemp|IsVault=1 / DatabaseID|FontKind|Foundry|Version|IsTemp|IsVault=0 / / Choice based on kFP_IsVaultKey.)");

}  // namespace

TEST_F(BestMatch, EachStepDecidesAgainstAllLaterOnes) {
  ASSERT_EQ(kSteps.size(), 9u);
  for (const auto& step : kSteps)
    ExpectFirst(kWorse + step[0], kBetter + step[1], step[2], step[3]);
}

TEST_F(BestMatch, EachTieGoesOnToTheNextStep) {
  // The step, what the two hold, and what the source holds, if not what the next step needs.
  const char* ties = R"(
    1 /  / IsActive=0;    1 / IsActive=true / IsActive=;   1 / IsActive=1|IsSystem=1 / IsActive=1|IsSystem=1
    2 / DatabaseID=2 / DatabaseID=4;     2 / DatabaseID=3 / DatabaseID=5;  2 / DatabaseID=0 / DatabaseID=2
    2 / DatabaseID=none / DatabaseID=2;  2 / DatabaseID=9 / DatabaseID=2;  3 / /
    3 / FontKind=TrueType / FontKind=truetype / FontKind=TRUETYPE|Foundry=Small
    3 / FontKind=TrueType / FontKind=OpenType / FontKind=Postscript|Foundry=Small
    4 / Foundry=Small / Foundry=SMALL / Foundry=small
    4 / Foundry=Small / Foundry=Adobe / Foundry=Other;  4 / Foundry=Small / Foundry=Adobe / Foundry=
    5 / FontKind=OpenType - TT / FontKind=OpenType - PS;  5 / FontKind=OpenType / FontKind
    5 / FontKind=PostScript - MM / FontKind=OpenType;     5 / FontKind=Postscript / FontKind=PostScript
    5 / FontKind=Type 3 / FontKind=TrueType
    6 / Foundry=Adobe / Foundry=An Adobe Foundry;         6 / Foundry / Foundry=adobe
    7 / Version=1.5 / Version=01.50 beta;                 7 / Version=beta / Version=beta
    7 / Version=Version 02 / Version=Version 2
    8 / IsTemp=1 / IsTemp;    8 / IsTemp / IsTemp=0;      8 / IsTemp=1 / IsTemp=1
    8 / IsTemp=0 / IsTemp=0;  8 / IsTemp=0 / IsTemp=2)";
  for (const auto& tie : ReadTable(ties)) {
    const auto& next = kSteps[std::stoul(tie[0])];
    const std::string source = tie.size() > 3 ? tie[3] : next[2];
    ExpectFirst(kWorse + next[0] + "|" + tie[1], kBetter + next[1] + "|" + tie[2], source, next[3]);
    ExpectFirst(kWorse + next[0] + "|" + tie[2], kBetter + next[1] + "|" + tie[1], source, next[3]);
  }
  for (const std::string other : {"", "IsVault=1", "IsActive=1|IsSystem=1|IsVault=1"}) {
    ExpectChoice("IsVault=1|IsActive=1|IsSystem=1", "IsActive=1|IsSystem=1|" + other, "", 0, "");
    ExpectChoice("IsActive=1|IsSystem=1|" + other, "IsVault=1|IsActive=1|IsSystem=1", "", 0, "");
  }
  Bind(nullptr);
  ExpectFirst("IsVault=1|DatabaseID=3", "IsVault=0|DatabaseID=2", "", kSteps[8][3]);
}

TEST_F(BestMatch, StepsWithMoreThanOneRule) {
  const auto rows = ReadTable(R"(
    FontKind=OpenType - TT / FontKind=TrueType;  FontKind=Postscript / FontKind=TrueType
    Version=0.1 /;         Version=1.5 / Version=1.10;  Version= +2 / Version=-3
    Version=Version 2 / Version=Version 10;      Version=0.0 / Version=3;  Version=2 / Version=v1
    Version=v / Version=v1;  Version=inf / Version=nan;                    Version=V / Version=v
    Version=v99999999999999999998 / Version=v99999999999999999999)");
  for (const auto& row : rows) {
    ExpectFirst(row[0], row[1], "", kSteps[row[0].starts_with("V") ? 6 : 4][3]);
  }
  // Of two that are active the second wins only over a system font, if it is none itself.
  const std::string reason =
      "...Choosing non-system fontRef1 since user has explicitly overridden system version.";
  ExpectChoice("IsActive=1|Version=1", "IsActive=1|Version=2", "", -1, reason);
  ExpectFirst("IsActive=1|Version=1", "IsActive=1|IsSystem=1|Version=2", "", reason);
}

namespace {

// Records with one text of each row of `choices`.
std::vector<FontRecord> RandomFonts(std::mt19937& random, std::size_t count, const char* choices) {
  const auto rows = ReadTable(choices);
  std::vector<FontRecord> fonts;
  for (std::size_t i = 0; i < count; ++i) {
    std::string text;
    for (const auto& row : rows) text += row[random() % row.size()] + "|";
    fonts.push_back(ReadRecord(text));
  }
  return fonts;
}

std::vector<FontRecord> Sorted(const std::vector<FontRecord>& fonts, const FontRecord& source) {
  const FontRecordArray array = MakeFontRecordArray();
  for (const FontRecord& font : fonts) array->Append(font);
  SortByBestMatch(array, source);
  std::vector<FontRecord> sorted;
  for (std::size_t i = 0; i < array->Count(); ++i) sorted.push_back(array->DictionaryAt(i));
  return sorted;
}

}  // namespace

// Where every key is there and at most one font is active, the comparator is an ordering.
TEST_F(BestMatch, SortsAnOrderingAsTheLibraryDoes) {
  const char* choices = R"(
    DatabaseID=3 / DatabaseID=5;  FontKind=OpenType / FontKind=Postscript / FontKind=TrueType
    Foundry=Adobe / Foundry=Small / Foundry=Other;  Version=1 / Version=1.0 / Version=2.5
    IsTemp=1 / IsTemp=0;  IsVault=1 / IsVault=0)";
  const char* sources[] = {"", "FontKind=TrueType", "Foundry=Other|FontKind=Postscript"};
  const LogCapture quiet;
  std::mt19937 random(3);
  for (int round = 0; round < 300; ++round) {
    std::vector<FontRecord> fonts = RandomFonts(random, 1 + random() % 40, choices);
    const FontRecord source = ReadRecord(sources[round % 3]);
    const std::size_t special = random() % fonts.size();
    if (round % 4 == 1) fonts[special]->Set(kFP_IsActiveKey, "1");
    if (round % 4 == 2) fonts[special]->Set(kFP_DatabaseIDKey, "2");
    const std::vector<FontRecord> sorted = Sorted(fonts, source);
    std::stable_sort(fonts.begin(), fonts.end(), [&](const auto& a, const auto& b) {
      return PickBestMatchCallBack(a, b, source) < 0;
    });
    EXPECT_EQ(sorted, fonts) << round;
  }
}

// 3 is above 2 as a number, "2" comes before "v" and "v" before nothing: a circle. Each comparison
// asks once for the live state.
TEST_F(BestMatch, EndsInBoundsWhereThereIsNoOrdering) {
  const char* choices = R"(
    Version=3 / Version=2 / Version=0 / Version=v1 / Version=10 / Version / Version=
    FontKind / FontKind=OpenType / FontKind=TrueType;  IsTemp / IsTemp=1 / IsTemp=0
    DatabaseID=3)";
  const LogCapture quiet;
  std::mt19937 random(4);
  for (int round = 0; round < 200; ++round) {
    const std::vector<FontRecord> fonts = RandomFonts(random, 2 + random() % 63, choices);
    liveQuestions = 0;
    const std::vector<FontRecord> sorted = Sorted(fonts, nullptr);
    EXPECT_TRUE(std::is_permutation(fonts.begin(), fonts.end(), sorted.begin(), sorted.end()));
    EXPECT_GE(liveQuestions, fonts.size() - 1);
    EXPECT_LE(liveQuestions, fonts.size() * std::bit_width(fonts.size() - 1));
  }
}

TEST_F(BestMatch, LeavesWhatIsNoRecord) {
  const FontRecordArray fonts = MakeFonts({"text", MakeNamed("A"), 5});
  SortByBestMatch(fonts, nullptr);
  EXPECT_NE(fonts->At(0).AsString(), nullptr);
  EXPECT_NE(fonts->At(2).AsInteger(), nullptr);
}
