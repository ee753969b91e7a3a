#include "activation/FontActivationTracker.h"

#include <gtest/gtest.h>

#include <random>
#include <regex>

#include "dialogs/TarnInterface.h"
#include "support/FakeFontManager.h"
#include "support/FakeTarn.h"
#include "support/FontRecords.h"
#include "support/IdentifiedPlugin.h"
#include "support/LogCapture.h"

namespace {

class Tracker : public testing::Test {
 protected:
  // A document font whose match is the database font as it is now.
  FontRecord Element(std::uint32_t id) {
    const FakeFontManager::Font* font = mManager.Find(id);
    FontRecord matched = font->info->Copy();
    matched->Set(kFP_IsActiveKey, font->state >= kActivationStateActive ? "1" : "0");
    return MakeRecord({{kFP_PostScriptNameKey, "Doc"}, {kFP_MatchedFontKey, matched}});
  }
  int Open(const char* document, std::initializer_list<std::uint32_t> ids) {
    const FontRecordArray fonts = MakeFontRecordArray();
    for (const std::uint32_t id : ids) fonts->Append(Element(id));
    return mTracker.OpenFontsForIdentifier(fonts, document, false, nullptr, nullptr);
  }
  int Close(const char* document, bool deactivate = true) {
    return mTracker.CloseAllFontsForIdentifier(document, deactivate, false, nullptr);
  }
  bool IsOn(std::uint32_t id) { return mManager.Find(id)->state >= kActivationStateActive; }
  std::string LastCall(const char* operation) {
    const std::vector<std::string> calls = mManager.CallsOf(operation);
    return calls.empty() ? "" : calls.back();
  }

  IdentifiedPlugin mPlugin;
  FakeFontManager mManager;
  FontActivationTracker mTracker{nullptr};
};

}  // namespace

TEST_F(Tracker, OpensInOneBatchInOrder) {
  mManager.Add(1, "A");
  mManager.Add(2, "B", {}, kActivationStateActive);
  mManager.Add(3, "C");
  EXPECT_EQ(Open("doc", {1, 2, 3, 1}), 0);
  EXPECT_EQ(mManager.calls,
            (std::vector<std::string>{"BeginOpening(doc)", "SetCountForLongOperations(4)",
                                      "ActivateFontsByID(1,3)", "EndActivationChange()",
                                      "FinishOpening(doc)", "SetCountForLongOperations(1)"}));
  EXPECT_EQ(mTracker.CountFontsRegisteredForIdentifier("doc"), 3u);
  std::size_t alreadyActive = 9;
  EXPECT_EQ(mTracker.CountFontsOpenedForIdentifier("doc", alreadyActive), 2u);
  EXPECT_EQ(alreadyActive, 1u);
  EXPECT_EQ(mTracker.CountFontsRegisteredForIdentifier("other"), 0u);

  mManager.calls.clear();
  EXPECT_EQ(Close("doc"), 0);
  EXPECT_EQ(mManager.calls, (std::vector<std::string>{
                                "SetCountForLongOperations(3)", "GetClientFontActivationStates(3)",
                                "DeactivateFonts(1,3)", "EndActivationChange()",
                                "FinishClosing(doc,all)", "SetCountForLongOperations(1)"}));
  EXPECT_TRUE(IsOn(2));
}

TEST_F(Tracker, TheLastDocumentDeactivates) {
  mManager.Add(1, "A");
  Open("one", {1});
  Open("two", {1});
  EXPECT_EQ(mManager.CallsOf("ActivateFontsByID"),
            (std::vector<std::string>{"ActivateFontsByID(1)", "ActivateFontsByID()"}));
  LogCapture log;
  Close("one");
  EXPECT_TRUE(log.Has("Not deactivating 'A' because its ref count is 1"));
  EXPECT_EQ(LastCall("FinishClosing"), "FinishClosing(one,some)");
  EXPECT_TRUE(IsOn(1));
  Close("two");
  EXPECT_EQ(LastCall("FinishClosing"), "FinishClosing(two,all)");
  EXPECT_FALSE(IsOn(1));
  EXPECT_EQ(Close("two"), 0);  // unknown by now
  EXPECT_EQ(mManager.CountOfCalls("FinishClosing"), 3);
}

TEST_F(Tracker, ClosingWithoutDeactivationKeepsTheEntryForTheQuit) {
  mManager.Add(1, "A");
  mManager.Add(2, "Before", {}, kActivationStateActive);
  Open("doc", {1, 2});
  Close("doc", false);
  EXPECT_EQ(LastCall("DeactivateFonts"), "DeactivateFonts()");
  Open("doc", {1, 2});  // sees A as active, which it was not at first
  EXPECT_EQ(mTracker.CloseAllFonts(true, false), 0);
  EXPECT_EQ(LastCall("DeactivateFonts"), "DeactivateFonts(1)");
  EXPECT_TRUE(IsOn(2));
  EXPECT_EQ(mTracker.CloseAllFonts(true, false), 0);  // empty: nobody is asked
  EXPECT_EQ(mManager.CountOfCalls("DeactivateFonts"), 2);
}

TEST_F(Tracker, FontsThatAreNoLongerOursStay) {
  mManager.Add(1, "A");
  mManager.Add(2, "B");
  Open("doc", {1, 2});
  mManager.clientStates[1] = false;
  LogCapture log;
  Close("doc");
  EXPECT_TRUE(log.Has("Not deactivating 'A' because it is no longer plugin activated"));
  EXPECT_EQ(LastCall("DeactivateFonts"), "DeactivateFonts(2)");
  Open("doc", {1, 2});
  mManager.clientStates[2] = false;
  mTracker.CloseAllFonts(true, false);
  EXPECT_EQ(LastCall("DeactivateFonts"), "DeactivateFonts()");
}

TEST_F(Tracker, TwoVersionsOfOneName) {
  mManager.Add(1, "A");
  mManager.Add(2, "A");
  mManager.Add(3, "B", {}, kActivationStateActive);
  mManager.Add(4, "B");
  Open("doc", {1, 2, 3, 3, 4});
  EXPECT_EQ(LastCall("ActivateFontsByID"), "ActivateFontsByID(1)");
  // An active match is registered for each of the document's fonts that it stands for.
  EXPECT_EQ(mTracker.CountFontsRegisteredForIdentifier("doc"), 5u);
  Close("doc");
  EXPECT_EQ(LastCall("DeactivateFonts"), "DeactivateFonts(1,2,4)");
}

TEST_F(Tracker, UnusableEntriesAndSubDocuments) {
  mManager.Add(1, "A");
  const FontRecord shared = Element(1);
  shared->Set(kFP_SubDocumentsWithFontKey, MakeFonts({"one", 7, "two"}));
  const FontRecord nameless =
      MakeRecord({{kFP_MatchedFontKey, MakeRecord({{kFP_DatabaseIDKey, "5"}})}});
  LogCapture log;
  mTracker.OpenFontsForIdentifier(
      MakeFonts({PropertyList::Value(), "text", MakeFontRecord(), nameless, shared}), "", false,
      nullptr, nullptr);
  for (const char* line :
       {"WARNING:  font 0 for document '' is NULL",
        "   ...Error:  Array element at i = 1 is NOT A DICTIONARY!!",
        "...Skipping font with no matched font in dictionary:  PS name \"<NULL>\"",
        "   ...Error:  PostscriptName and/or DatabaseID not found in matched font dict for i = "
        "3"}) {
    EXPECT_TRUE(log.Has(line)) << line;
  }
  EXPECT_EQ(mTracker.CountFontsRegisteredForIdentifier("one"), 1u);
  EXPECT_EQ(mTracker.CountFontsRegisteredForIdentifier("two"), 1u);
  Close("one");
  EXPECT_TRUE(IsOn(1));
  Close("two");
  EXPECT_FALSE(IsOn(1));
}

TEST_F(Tracker, ARefusedFontUndoesTheDocument) {
  mManager.Add(1, "A");
  mManager.Add(2, "B");
  mManager.refused.insert(2);
  const FontRecordArray refused = MakeFontRecordArray();
  EXPECT_EQ(mTracker.OpenFontsForIdentifier(MakeFonts({Element(1), Element(2)}), "doc", false,
                                            nullptr, refused),
            0);
  EXPECT_EQ(NamesOf(refused), (std::vector<std::string>{"B"}));
  EXPECT_FALSE(IsOn(1));
  EXPECT_EQ(mTracker.CountFontsRegisteredForIdentifier("doc"), 0u);
}

TEST_F(Tracker, FailuresKeepTheBooksStraight) {
  mManager.Add(1, "A");
  mManager.Add(2, "B");
  mManager.unable.insert(2);
  LogCapture log;
  Open("doc", {1, 2});
  EXPECT_TRUE(
      log.Has("Calling SetMissingFontsDialogNeeded() because 1 of 2 fonts were activated."));
  mManager.FailAt("ActivateFontsByID", 2, -7);
  EXPECT_EQ(Open("late", {2}), -7);
  EXPECT_EQ(mTracker.CountFontsRegisteredForIdentifier("late"), 1u);

  mManager.ThrowAt("ActivateFontsByID", 3);
  EXPECT_THROW(Open("bad", {1}), std::runtime_error);
  EXPECT_EQ(mManager.calls.back(), "SetCountForLongOperations(1)");
  mManager.ThrowAt("DeactivateFonts", 1);
  EXPECT_THROW(Close("doc"), std::runtime_error);
  EXPECT_EQ(mTracker.CountFontsRegisteredForIdentifier("doc"), 0u);
  EXPECT_TRUE(log.Has("FontActivationTracker::CloseAllFontsForIdentifier() exiting abnormally"));

  mManager.connected = false;
  EXPECT_EQ(Open("doc", {1}), kErrorKestraneNotRunning);
  EXPECT_EQ(Close("late"), kErrorKestraneNotRunning);
  EXPECT_EQ(mTracker.CloseAllFonts(true, false), kErrorKestraneNotRunning);
}

TEST_F(Tracker, OneByOneWithoutTheAgent) {
  for (std::uint32_t id = 1; id <= 4; ++id) {
    mManager.Add(id, std::string(1, static_cast<char>('@' + id)));
  }
  Open("doc", {1, 2, 3});
  mManager.coreAgent = false;
  Open("none", {4});  // nothing is activated and nothing registered
  EXPECT_EQ(mTracker.CountFontsRegisteredForIdentifier("none"), 0u);
  mManager.FailAt("DeactivateFont", 1, -3);
  mManager.FailAt("DeactivateFont", 2, kErrorKestraneNotRunning);
  const FontRecordArray deactivated = MakeFontRecordArray();
  EXPECT_EQ(mTracker.CloseAllFontsForIdentifier("doc", true, false, deactivated),
            kErrorKestraneNotRunning);
  EXPECT_EQ(mManager.CallsOf("DeactivateFont"),
            (std::vector<std::string>{"DeactivateFont(1)", "DeactivateFont(2)"}));
  // 1 is forgotten although it failed; 2 and 3 are left for the quit.
  EXPECT_EQ(mTracker.CloseAllFonts(true, false), 0);
  EXPECT_EQ(mManager.CallsOf("DeactivateFont").size(), 4u);
  EXPECT_FALSE(IsOn(3));
  EXPECT_EQ(deactivated->Count(), 0u);
}

TEST_F(Tracker, ManuallyActivatedFontsAreTakenOut) {
  mPlugin.platform.fonts.visible = {"Hand", "Auto"};
  mManager.Add(1, "Hand");
  mManager.Add(2, "Auto", {{kFP_IsAutoActivatedKey, "1"}});
  const FontRecordArray fonts =
      MakeFonts({MakeNamed("Hand"), MakeNamed("Auto"), MakeNamed("Off"), PropertyList::Value()});
  FontActivationTracker::RemoveActivatedFonts(fonts, 0, true);
  EXPECT_EQ(NamesOf(fonts), (std::vector<std::string>{"Auto", "Off", ""}));
  FontActivationTracker::RemoveActivatedFonts(fonts, 0, false);
  EXPECT_EQ(NamesOf(fonts), (std::vector<std::string>{"Off", ""}));
}

// With a dialog framework: families, one question however many fonts are remote, and progress.
TEST_F(Tracker, FamiliesAndTheQuestionWhileOffline) {
  FakeTarn framework;
  framework.Install(mPlugin.platform);
  framework.preferences["ActivateEntireFamilies"] = true;
  TarnInterface tarn("Photoshop", "1", "com.vendrel.test.photoshop", "1");
  FontActivationTracker tracker(&tarn);
  mManager.Add(1, "Fam-Bold", {{kFP_AssignedFamilyGroupNameKey, "Fam"}});
  mManager.Add(2, "Fam-Light", {{kFP_AssignedFamilyGroupNameKey, "Fam"}});
  mManager.Add(3, "Fam-On", {{kFP_AssignedFamilyGroupNameKey, "Fam"}});
  mPlugin.platform.fonts.visible.insert("Fam-On");
  mManager.online = false;
  EXPECT_EQ(tracker.OpenFontsForIdentifier(MakeFonts({Element(1), Element(2)}), "doc", true,
                                           nullptr, nullptr),
            0);
  EXPECT_EQ(LastCall("ActivateFontsByID"), "ActivateFontsByID(1,2)");
  EXPECT_EQ(tracker.CountFontsRegisteredForIdentifier("doc"), 2u);
  EXPECT_EQ(framework.TakeTitles().size(), 1u);
  EXPECT_EQ(mManager.CountOfCalls("GoOnline"), 1);
  EXPECT_EQ(framework.CountShown("TarnShowProgress"), 1);
  EXPECT_EQ(framework.CountShown("TarnHideProgress"), 1);

  // The whole family is on: the matched font is asked for by itself.
  mPlugin.platform.fonts.visible = {"Fam-Bold", "Fam-Light", "Fam-On"};
  mManager.Find(1)->info->Set(kFP_IsLocalKey, "1");
  tracker.OpenFontsForIdentifier(MakeFonts({Element(1)}), "late", false, nullptr, nullptr);
  EXPECT_EQ(tracker.CountFontsRegisteredForIdentifier("late"), 1u);
  EXPECT_TRUE(framework.TakeTitles().empty());
  KestraneGlobals::CleanUpOnShutdown();  // the shared dialog interface goes before its framework
}

TEST_F(Tracker, IdentifiersAndUnresolvedFonts) {
  const std::regex form("[0-9A-F]{8}-[0-9A-F]{4}-4[0-9A-F]{3}-[89AB][0-9A-F]{3}-[0-9A-F]{12}");
  std::set<std::string> identifiers;
  for (int i = 0; i < 50; ++i)
    identifiers.insert(FontActivationTracker::GenerateUniqueIdentifier());
  EXPECT_EQ(identifiers.size(), 50u);
  for (const std::string& identifier : identifiers) {
    EXPECT_TRUE(std::regex_match(identifier, form)) << identifier;
  }
  mTracker.AddUnresolvedFont("doc", "A");
  mTracker.AddUnresolvedFont("doc", "B");
  EXPECT_EQ(mTracker.GetUnresolvedFonts("doc"), (std::vector<std::string>{"A", "B"}));
  EXPECT_TRUE(mTracker.GetUnresolvedFonts("other").empty());
}

// A model of the reference rules that keeps a list of holders per font, against the tracker.
TEST_F(Tracker, RandomSequencesFollowTheRules) {
  struct Model {
    bool isOn = false;
    bool wasOn = false;
    bool isKnown = false;
    std::multiset<int> holders;
  };
  std::mt19937 random(11);
  for (int round = 0; round < 300; ++round) {
    constexpr int kFonts = 5;
    constexpr int kDocuments = 4;
    mManager.fonts.clear();
    Model model[kFonts];
    for (int i = 0; i < kFonts; ++i) {
      model[i].isOn = random() % 4 == 0;
      mManager.Add(static_cast<std::uint32_t>(i + 1), "F" + std::to_string(i), {},
                   model[i].isOn ? kActivationStateActive : kActivationStateInactive);
    }
    FontActivationTracker tracker(nullptr);
    bool isOpen[kDocuments] = {};
    for (int step = 0; step < 12; ++step) {
      const int document = static_cast<int>(random() % kDocuments);
      const std::string identifier = "doc" + std::to_string(document);
      if (!isOpen[document]) {
        const FontRecordArray fonts = MakeFontRecordArray();
        for (int i = 0; i < kFonts; ++i) {
          if (random() % 2 == 0) continue;
          fonts->Append(Element(static_cast<std::uint32_t>(i + 1)));
          if (!model[i].isKnown) model[i].wasOn = model[i].isOn;
          model[i].isKnown = model[i].isOn = true;
          model[i].holders.insert(document);
        }
        tracker.OpenFontsForIdentifier(fonts, identifier, false, nullptr, nullptr);
      } else {
        const bool deactivate = random() % 3 != 0;
        tracker.CloseAllFontsForIdentifier(identifier, deactivate, false, nullptr);
        for (Model& font : model) {
          if (font.holders.erase(document) == 0 || !deactivate || !font.holders.empty()) continue;
          if (!font.wasOn) font.isOn = false;
          font.isKnown = false;
        }
      }
      isOpen[document] = !isOpen[document];
      for (int i = 0; i < kFonts; ++i) {
        ASSERT_EQ(IsOn(static_cast<std::uint32_t>(i + 1)), model[i].isOn)
            << "round " << round << " step " << step << " font " << i;
      }
    }
    tracker.CloseAllFonts(true, false);
    for (int i = 0; i < kFonts; ++i) {
      const bool staysOn = model[i].isOn && (model[i].wasOn || !model[i].isKnown);
      ASSERT_EQ(IsOn(static_cast<std::uint32_t>(i + 1)), staysOn) << "round " << round;
    }
  }
}
