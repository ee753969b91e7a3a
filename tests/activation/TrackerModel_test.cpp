// Random sequences of openings, closings, quits and troubles: the tracker against the rules.
#include "activation/TrackerModel.h"

#include <gtest/gtest.h>

#include <array>
#include <random>

#include "activation/FontActivationTracker.h"
#include "support/FakeFontManager.h"
#include "support/FontRecords.h"
#include "support/IdentifiedPlugin.h"
#include "support/LogCapture.h"

namespace {

using ID = TrackerModel::ID;
using IDs = TrackerModel::IDs;

// What can be seen after a step: code, calls, fonts that are on, fonts that a closing says it
// turned off, and the registrations of each document.
using Outcome =
    std::tuple<int, std::vector<std::string>, IDs, std::string, std::vector<std::size_t>>;

class Sequence {
 public:
  explicit Sequence(unsigned seed) : mRandom(seed) {
    const char* const names[] = {"A", "A", "B", "C", "B"};
    for (ID id = 1; id <= std::size(names); ++id) {
      mModel.fonts[id] = {names[id - 1], OneIn(4), true};
      mManager.Add(id, names[id - 1]);
    }
  }

  // One step; what the tracker does that is against the rules, or nothing.
  std::string Step() {
    SetTheScene();
    const std::string document = std::array{"one", "two", "three", ""}[Any(4)];
    const bool turnOff = !OneIn(3);
    const unsigned kind = Any(10);
    const FontRecordArray fonts = MakeFontRecordArray();
    if (kind == 0) {
      // What a quit leaves whose end can't be told is promised by nobody.
      if (mModel.failure.first == "EndActivationChange") mModel.failure = {};
      return Compare([&] { return mModel.Quit(turnOff); },
                     [&] { return mTracker.CloseAllFonts(turnOff, false); });
    }
    if (kind < 5) {
      return Compare(
          [&] { return mModel.Close(document, turnOff); },
          [&] { return mTracker.CloseAllFontsForIdentifier(document, turnOff, false, fonts); },
          fonts);
    }
    std::vector<TrackerModel::Match> matches(kind - 5 + Any(3));
    for (auto& [id, isActive] : matches) {
      id = Any(5) + 1;
      isActive = mModel.fonts[id].isOn != OneIn(8);
      fonts->Append(Element(id, isActive));
    }
    return Compare([&] { return mModel.Open(document, matches, "part"); },
                   [&] {
                     return mTracker.OpenFontsForIdentifier(fonts, document, false, nullptr,
                                                            MakeFontRecordArray());
                   });
  }

 private:
  unsigned Any(unsigned n) { return static_cast<unsigned>(mRandom() % n); }
  bool OneIn(unsigned n) { return Any(n) == 0; }

  // What the user does by hand, and the troubles of one step.
  void SetTheScene() {
    mManager.StopFailing();
    mManager.calls.clear();
    mModel.calls.clear();
    mModel.turnedOff.clear();
    mManager.connected = mModel.isConnected = !OneIn(20);
    mManager.coreAgent = mModel.hasBatches = !OneIn(5);
    for (auto& [id, font] : mModel.fonts) {
      if (OneIn(16)) font.isOn = !font.isOn;
      if (OneIn(10)) font.isOurs = !font.isOurs;
      mManager.Find(id)->state = font.isOn ? kActivationStateActive : kActivationStateInactive;
      mManager.clientStates[id] = font.isOurs;
      if (font.isOurs && OneIn(2)) mManager.clientStates.erase(id);
    }
    const auto pick = [this] { return OneIn(8) ? std::set{Any(5) + 1} : std::set<ID>(); };
    mManager.refused = mModel.refused = pick();
    mManager.unable = mModel.unable = pick();
    mModel.failure = {};
    if (!OneIn(3)) return;
    const auto operation = std::array{"ActivateFontsByID",
                                      "DeactivateFonts",
                                      "DeactivateFont",
                                      "DeactivateFont(2)",
                                      "EndActivationChange",
                                      "GetClientFontActivationStates",
                                      "BeginOpening",
                                      "SetCountForLongOperations",
                                      "FinishOpening",
                                      "FinishClosing",
                                      "SetCountForLongOperations(1)"};
    const auto code = std::array{-1, TrackerModel::kGone, TrackerModel::kThrows};
    mModel.failure = {operation[Any(operation.size())], code[Any(3)]};
  }

  // Nobody changes one, so the sequences share them.
  FontRecord Element(ID id, bool isActive) {
    static std::map<std::pair<ID, bool>, FontRecord> elements;
    FontRecord& element = elements[{id, isActive}];
    if (element) return element;
    const FontRecord matched = mManager.Find(id)->info->Copy();
    matched->Set(kFP_IsActiveKey, isActive ? "1" : "0");
    return element = MakeRecord({{kFP_MatchedFontKey, matched},
                                 {kFP_SubDocumentsWithFontKey, MakeFonts({7, "part"})}});
  }

  std::string Compare(const std::function<int()>& ofModel, const std::function<int()>& ofTracker,
                      const FontRecordArray& turnedOff = nullptr) {
    const auto& [failing, failure] = mModel.failure;
    const bool once = failing == "EndActivationChange";
    if (failure != 0)
      mManager.FailAt(failing, once ? mManager.CountOfCalls(failing) + 1 : 0, failure);
    Outcome right{TrackerModel::CodeOf(ofModel), mModel.calls, {}, {}, {}};
    Outcome found{TrackerModel::CodeOf(ofTracker), mManager.calls, {}, {}, {}};
    for (const auto& [id, font] : mModel.fonts) {
      if (font.isOn) std::get<2>(right).push_back(id);
      if (mManager.Find(id)->state == kActivationStateActive) std::get<2>(found).push_back(id);
    }
    if (turnedOff) std::get<3>(right) = TrackerModel::List(mModel.turnedOff);
    std::get<3>(found) = IDsOf(turnedOff);
    for (const char* document : {"one", "two", "three", "part", ""}) {
      const auto held = mModel.documents.find(document);
      std::get<4>(right).push_back(held == mModel.documents.end() ? 0 : held->second.size());
      std::get<4>(found).push_back(mTracker.CountFontsRegisteredForIdentifier(document));
    }
    if (found == right) return "";
    return testing::PrintToString(found) + " instead of " + testing::PrintToString(right);
  }

  const LogCapture mQuiet;
  std::mt19937 mRandom;
  TrackerModel mModel;
  FakeFontManager mManager;
  FontActivationTracker mTracker{nullptr};
};

}  // namespace

TEST(TrackerModel, TenThousandRandomSequencesFollowTheRules) {
  const IdentifiedPlugin plugin;
  std::string difference;
  unsigned seed = 0;
  while (difference.empty() && seed < 10'000) {
    Sequence sequence(++seed);
    for (int step = 0; step < 10 && difference.empty(); ++step) difference = sequence.Step();
  }
  EXPECT_EQ(difference, "") << "sequence " << seed;
}
