// Random sequences of openings, closings, quits and troubles: the tracker against the rules.
#include "activation/TrackerModel.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <array>
#include <cstdio>
#include <random>

#include "activation/FontActivationTracker.h"
#include "support/FakeFontManager.h"
#include "support/FontRecords.h"
#include "support/IdentifiedPlugin.h"

namespace {

using ID = TrackerModel::ID;
using IDs = TrackerModel::IDs;

// What can be seen after a step.
struct Outcome {
  int code;
  std::vector<std::string> calls;
  IDs on;
  IDs turnedOff;  // by a closing
  std::vector<std::size_t> registered;
  bool operator==(const Outcome&) const = default;
};

std::string Print(const Outcome& outcome) {
  return testing::PrintToString(
      std::tie(outcome.code, outcome.calls, outcome.on, outcome.turnedOff, outcome.registered));
}

int CodeOf(const std::function<int()>& step) {
  try {
    return step();
  } catch (const std::exception&) {
    return TrackerModel::kThrows;
  }
}

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
    const FontRecordArray off = MakeFontRecordArray();
    const unsigned kind = Any(10);
    if (kind == 0) {
      // What a quit that throws leaves behind is not among the rules.
      if (mModel.failure.second == TrackerModel::kThrows) mModel.failure = {};
      return Compare([&] { return mModel.Quit(turnOff); },
                     [&] { return mTracker.CloseAllFonts(turnOff, false); }, nullptr);
    }
    if (kind < 5) {
      return Compare(
          [&] { return mModel.Close(document, turnOff); },
          [&] { return mTracker.CloseAllFontsForIdentifier(document, turnOff, false, off); }, off);
    }
    std::vector<TrackerModel::Match> matches(kind - 5 + Any(3));
    const FontRecordArray fonts = MakeFontRecordArray();
    for (TrackerModel::Match& match : matches) {
      match.id = Any(5) + 1;
      match.isActive = mModel.fonts[match.id].isOn != OneIn(8);
      fonts->Append(Element(match));
    }
    return Compare([&] { return mModel.Open(document, matches, "part"); },
                   [&] {
                     return mTracker.OpenFontsForIdentifier(fonts, document, false, nullptr,
                                                            MakeFontRecordArray());
                   },
                   nullptr);
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
    const auto operation = std::array{"ActivateFontsByID", "DeactivateFonts", "DeactivateFont",
                                      "DeactivateFont(2)", "GetClientFontActivationStates"}[Any(5)];
    mModel.failure = {operation,
                      std::array{-1, TrackerModel::kGone, TrackerModel::kThrows}[Any(3)]};
  }

  // Nobody changes one, so the sequences share them.
  FontRecord Element(const TrackerModel::Match& match) {
    static std::map<std::pair<ID, bool>, FontRecord> elements;
    FontRecord& element = elements[{match.id, match.isActive}];
    if (!element) {
      const FontRecord matched = mManager.Find(match.id)->info->Copy();
      matched->Set(kFP_IsActiveKey, match.isActive ? "1" : "0");
      element = MakeRecord(
          {{kFP_MatchedFontKey, matched}, {kFP_SubDocumentsWithFontKey, MakeFonts({7, "part"})}});
    }
    return element;
  }

  std::string Compare(const std::function<int()>& ofModel, const std::function<int()>& ofTracker,
                      const FontRecordArray& turnedOff) {
    if (mModel.failure.second != 0) {
      mManager.FailAt(mModel.failure.first, 0, mModel.failure.second);
    }
    Outcome right{CodeOf(ofModel), mModel.calls, {}, {}, {}};
    Outcome found{CodeOf(ofTracker), mManager.calls, {}, {}, {}};
    for (const auto& [id, font] : mModel.fonts) {
      if (font.isOn) right.on.push_back(id);
      if (mManager.Find(id)->state == kActivationStateActive) found.on.push_back(id);
    }
    if (turnedOff) right.turnedOff = mModel.turnedOff;
    for (std::size_t i = 0; i < CountOf(turnedOff); ++i) {
      found.turnedOff.push_back(RecordDatabaseID(turnedOff->DictionaryAt(i)));
    }
    for (const char* document : {"one", "two", "three", "part", ""}) {
      const auto held = mModel.documents.find(document);
      right.registered.push_back(held == mModel.documents.end() ? 0 : held->second.size());
      found.registered.push_back(mTracker.CountFontsRegisteredForIdentifier(document));
    }
    return found == right ? "" : Print(found) + " instead of " + Print(right);
  }

  std::mt19937 mRandom;
  TrackerModel mModel;
  FakeFontManager mManager;
  FontActivationTracker mTracker{nullptr};
};

void PutOutputInto(int file) {
  std::fflush(stdout);
  dup2(file, STDOUT_FILENO);
  close(file);
}

}  // namespace

TEST(TrackerModel, TenThousandRandomSequencesFollowTheRules) {
  const IdentifiedPlugin plugin;
  std::string difference;
  unsigned seed = 0;
  const int output = dup(STDOUT_FILENO);
  PutOutputInto(open("/dev/null", O_WRONLY));  // a million lines of log
  while (difference.empty() && seed < 10'000) {
    Sequence sequence(++seed);
    for (int step = 0; step < 10 && difference.empty(); ++step) difference = sequence.Step();
  }
  PutOutputInto(output);
  EXPECT_EQ(difference, "") << "sequence " << seed;
}
