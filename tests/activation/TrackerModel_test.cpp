// Random sequences of openings, closings, quits and troubles: the tracker against the rules.
#include "activation/TrackerModel.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <functional>
#include <random>

#include "activation/FontActivationTracker.h"
#include "support/FakeFontManager.h"
#include "support/FontRecords.h"
#include "support/IdentifiedPlugin.h"

namespace {

using ID = TrackerModel::ID;

// The log of a hundred thousand steps goes nowhere.
struct SilentOutput {
  SilentOutput() : saved(dup(STDOUT_FILENO)) { Show(open("/dev/null", O_WRONLY)); }
  ~SilentOutput() { Show(saved); }
  SilentOutput(const SilentOutput&) = delete;
  SilentOutput& operator=(const SilentOutput&) = delete;
  static void Show(int file) {
    std::fflush(stdout);
    dup2(file, STDOUT_FILENO);
    close(file);
  }
  int saved;
};

int CodeOf(const std::function<int()>& step) {
  try {
    return step();
  } catch (const std::runtime_error&) {
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

  // What differs after the first step that does not follow the rules; nothing if all do.
  std::string Play() {
    for (int step = 0; step < 14; ++step) {
      SetTheScene();
      std::string report = "step " + std::to_string(step) + ", ";
      const std::string difference = TakeStep(report);
      if (!difference.empty()) return report + ": " + difference;
    }
    return "";
  }

 private:
  bool OneIn(unsigned n) { return mRandom() % n == 0; }

  // By hand, and the troubles of one step.
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
    const auto pick = [this] { return OneIn(8) ? std::set{Any(5u) + 1} : std::set<ID>(); };
    mManager.refused = mModel.refused = pick();
    mManager.unable = mModel.unable = pick();
    const char* const calls[] = {"ActivateFontsByID", "DeactivateFonts", "DeactivateFont",
                                 "DeactivateFont(2)", "GetClientFontActivationStates"};
    const int codes[] = {-1, TrackerModel::kGone, TrackerModel::kThrows};
    mModel.failure = OneIn(3) ? std::pair<std::string, int>(calls[Any(5u)], codes[Any(3u)])
                              : std::pair<std::string, int>();
    // No answer of that one is a code.
    if (mModel.failure.first == calls[4]) mModel.failure.second = TrackerModel::kThrows;
  }
  unsigned Any(unsigned n) { return static_cast<unsigned>(mRandom() % n); }

  std::string TakeStep(std::string& report) {
    const std::string document = std::array{"one", "two", "three", ""}[Any(4)];
    const bool deactivate = !OneIn(3);
    switch (const unsigned kind = Any(10)) {
      case 0:
        report += "quit";
        // What a quit that throws leaves behind is nobody's to say.
        if (mModel.failure.second == TrackerModel::kThrows) mModel.failure = {};
        return Compare([&] { return mModel.Quit(deactivate); },
                       [&] { return mTracker.CloseAllFonts(deactivate, false); });
      case 1:
      case 2:
      case 3:
      case 4: {
        report += "close " + document;
        const FontRecordArray off = MakeFontRecordArray();
        std::string difference = Compare(
            [&] { return mModel.Close(document, deactivate); },
            [&] {
              return mTracker.CloseAllFontsForIdentifier(document, deactivate, false, off);
            });
        std::vector<ID> turnedOff;
        for (std::size_t i = 0; i < off->Count(); ++i) {
          turnedOff.push_back(RecordDatabaseID(off->DictionaryAt(i)));
        }
        return turnedOff == mModel.turnedOff ? difference : "other fonts turned off";
      }
      default: {
        report += "open " + document;
        std::vector<TrackerModel::Match> matches;
        const FontRecordArray fonts = MakeFontRecordArray();
        for (unsigned count = kind - 4 + Any(3); count > 0; --count) {
          const ID id = Any(5) + 1;
          matches.push_back({id, mModel.fonts[id].isOn != OneIn(8)});
          fonts->Append(Element(matches.back()));
          report += " " + std::to_string(id) + (matches.back().isActive ? "+" : "");
        }
        return Compare([&] { return mModel.Open(document, matches, {"one", "sub"}); },
                       [&] {
                         return mTracker.OpenFontsForIdentifier(fonts, document, false, nullptr,
                                                                MakeFontRecordArray());
                       });
      }
    }
  }

  FontRecord Element(const TrackerModel::Match& match) {
    const FontRecord matched = mManager.Find(match.id)->info->Copy();
    matched->Set(kFP_IsActiveKey, match.isActive ? "1" : "0");
    return MakeRecord({{kFP_MatchedFontKey, matched},
                       {kFP_SubDocumentsWithFontKey, MakeFonts({"one", 7, "sub"})}});
  }

  std::string Compare(const std::function<int()>& ofModel, const std::function<int()>& ofTracker) {
    mManager.FailAt(mModel.failure.first, 0, mModel.failure.second);
    const int expected = CodeOf(ofModel);
    const int found = CodeOf(ofTracker);
    if (found != expected) return "gives " + std::to_string(found);
    if (mManager.calls != mModel.calls) {
      return testing::PrintToString(mManager.calls) + " instead of " +
             testing::PrintToString(mModel.calls);
    }
    for (const auto& [id, font] : mModel.fonts) {
      if ((mManager.Find(id)->state == kActivationStateActive) != font.isOn) {
        return std::to_string(id) + " should be " + (font.isOn ? "on" : "off");
      }
    }
    for (const char* document : {"one", "two", "three", "sub", ""}) {
      const auto held = mModel.documents.find(document);
      const std::size_t count = held == mModel.documents.end() ? 0 : held->second.size();
      if (mTracker.CountFontsRegisteredForIdentifier(document) != count) {
        return std::string("miscounts ") + document;
      }
    }
    return "";
  }

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
  {
    const SilentOutput silent;
    while (difference.empty() && seed < 10'000) difference = Sequence(++seed).Play();
  }
  EXPECT_EQ(difference, "") << "sequence " << seed;
}
