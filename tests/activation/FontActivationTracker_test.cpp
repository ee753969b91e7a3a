#include "activation/FontActivationTracker.h"

#include <gtest/gtest.h>

#include <regex>

#include "activation/Pipeline.h"
#include "activation/TrackerModel.h"
#include "dialogs/TarnInterface.h"
#include "support/FakeFontManager.h"
#include "support/FakeTarn.h"
#include "support/FontRecords.h"
#include "support/IdentifiedPlugin.h"
#include "support/LogCapture.h"

namespace {

using PropertyList::Value;

// A tracker over a font manager that is a table.
struct Books {
  // A document font whose match is the database font as it is now.
  FontRecord Element(std::uint32_t id) {
    const FakeFontManager::Font* font = mManager.Find(id);
    FontRecord matched = font->info->Copy();
    matched->Set(kFP_IsActiveKey, font->state >= kActivationStateActive ? "1" : "0");
    return MakeRecord({{kFP_PostScriptNameKey, "Doc"}, {kFP_MatchedFontKey, matched}});
  }
  int Open(const char* document, const FontRecordArray& fonts) {
    return mTracker.OpenFontsForIdentifier(fonts, document, true, nullptr, nullptr);
  }
  int Open(const char* document, std::initializer_list<std::uint32_t> ids) {
    const FontRecordArray fonts = MakeFontRecordArray();
    for (const std::uint32_t id : ids) fonts->Append(Element(id));
    return Open(document, fonts);
  }
  int Close(const char* document) {
    return mTracker.CloseAllFontsForIdentifier(document, true, false, nullptr);
  }

  FakeFontManager mManager;
  FontActivationTracker mTracker;
  explicit Books(TarnInterface* tarn = nullptr) : mTracker(tarn) {}
};

class Tracker : public testing::Test, protected IdentifiedPlugin, protected Books {};

// The step writes these lines in this order, among others.
void ExpectLines(const std::function<int()>& step, const std::vector<std::string>& lines) {
  const LogCapture log;
  TrackerModel::CodeOf(step);
  auto at = log.lines.begin();
  for (const std::string& line : lines) {
    at = std::find(at, log.lines.end(), line + "\n");
    ASSERT_TRUE(at != log.lines.end()) << line << " in " << testing::PrintToString(log.lines);
    ++at;
  }
}

}  // namespace

TEST_F(Tracker, TheLogTellsWhatBecomesOfEachFont) {
  mManager.Add(1, "A");
  mManager.Add(2, "A");
  mManager.Add(3, "B", {}, kActivationStateActive);
  mManager.Add(4, "B");
  mManager.Add(5, "C", {{kFP_AssignedFamilyGroupNameKey, "Fam"}});
  platform.fonts.visible = {"Fam"};
  mManager.unable = {5};
  const std::string sameName =
      " because a different font with the same postscript name is already ";
  const std::string family = "The OS thinks the 'Fam' font family is active, but Nodrix says 'C' ";
  ExpectLines(
      [&] {
        return Open("one", {1, 1, 2, 3, 3, 4, 5});
      },
      {"Preparing 7 fonts for batch-activation...", "Adding 'A' (1) because it is not active.",
       "--- Skipping family font with fontID 1 (\"A\"), which is already in the array to activate",
       "Skipping 'A' (2)" + sameName + "in the array.",
       "Skipping 'B' because it is already active.", "Skipping 'B' because it is already active.",
       "Skipping 'B' (4)" + sameName + "active.", family + "is not. Treating it as a system font",
       "Adding 'C' (5) because it is not active.", "Ready to batch-activate 2 fonts",
       "Calling SetMissingFontsDialogNeeded() because 1 of 2 fonts were activated."});
  std::size_t alreadyActive = 9;
  EXPECT_EQ(mTracker.CountFontsOpenedForIdentifier("one", alreadyActive), 4u);
  EXPECT_EQ(alreadyActive, 2u);
  Open("two", {1, 5});
  EXPECT_EQ(mTracker.CountFontsOpenedForIdentifier("two", alreadyActive), 0u);  // one's came first
  mManager.clientStates[2] = false;
  ExpectLines(
      [&] { return Close("one"); },
      {"Considering whether to deactivate databaseID 1",
       "Not deactivating 'A' because its ref count is 1",
       "Not deactivating 'A' because it is no longer plugin activated",
       "Not deactivating 'B' because its ref count is 1",
       "Not deactivating 'B' because it was already active", "Adding 'B' to fontsToDeactivate.",
       "Not deactivating 'C' because its ref count is 1"});
  ExpectLines([&] { return Close("one"); },
              {"No entry in FontActivationTracker::m_mDocuments for 'one'"});
  ExpectLines([&] { return mTracker.CloseAllFonts(true, false); },
              {"Calling FontManagerInterface::SetCountForLongOperations(2)"});
  ExpectLines([&] { return Close("two"); },
              {"No entry found for nDatabaseID(1) in FontManagerInterface::m_mFonts"});
  Open("one", {1});
  mManager.coreAgent = false;
  mManager.FailAt("DeactivateFont", 0, -3);
  ExpectLines([&] { return Close("one"); }, {"XTDeactivateFont returned -3"});
  mManager.coreAgent = true;
  mManager.ThrowAt("ActivateFontsByID", 0);
  ExpectLines(
      [&] { return Open("one", {1}); },
      {"   *** Exception caught in FontActivationTracker::OpenFontsForIdentifier.  Rethrowing."});
  mManager.ThrowAt("DeactivateFonts", 0);
  ExpectLines([&] { return Close("one"); },
              {"FontActivationTracker::CloseAllFontsForIdentifier() exiting abnormally"});
  mManager.connected = false;
  ExpectLines([&] { return Open("one", {1}); },
              {"OpenFontsForIdentifier returning kErrorKestraneNotRunning (EARLY RETURN)"});
}

TEST_F(Tracker, BadInputIsToldAndPassedOver) {
  const auto match = [](const Value& id, const Value& name = "X", const Value& parts = {}) {
    const FontRecord font = MakeRecord({{kFP_DatabaseIDKey, id}, {kFP_PostScriptNameKey, name}});
    return MakeRecord({{kFP_MatchedFontKey, font}, {kFP_SubDocumentsWithFontKey, parts}});
  };
  const FontRecord itself = MakeRecord({{kFP_PostScriptNameKey, "I"}, {kFP_DatabaseIDKey, "9"}});
  itself->Set(kFP_MatchedFontKey, itself);
  const std::string foreign = "   ...Error:  Array element at i = 0 is NOT A DICTIONARY!!";
  const std::string unmatched = "...Skipping font with no matched font in dictionary:  PS name ";
  const std::string incomplete =
      "   ...Error:  PostscriptName and/or DatabaseID not found in matched font dict for i = 0";
  const std::string homeless =
      "WARNING:  font 0 for document '' has no kFP_SubDocumentsWithFontKey";
  const std::string ready = "Ready to batch-activate 1 fonts";
  const struct {
    Value element;
    std::string line;
    std::size_t registered;  // under "doc"
    const char* document = "doc";
  } rows[] = {
      {{}, "WARNING:  font 0 for document 'doc' is NULL", 0},
      {"text", foreign, 0},
      {MakeFonts({}), foreign, 0},
      {MakeFontRecord(), unmatched + "\"<NULL>\"", 0},
      {MakeNamed("X"), unmatched + "\"X\"", 0},
      {MakeRecord({{kFP_MatchedFontKey, "text"}}), unmatched + "\"<NULL>\"", 0},
      {match("5", Value()), incomplete, 0},
      {match("abc"), incomplete, 0},
      {match("99999999999"), incomplete, 0},
      {match("5", ""), "Adding '' (5) because it is not active.", 1},
      {match("5", std::string(128, 'n')), ready, 1},
      {match("5", std::string(100'000, 'n')), ready, 1},
      {itself, ready, 1},
      {match("5"), homeless, 0, ""},
      {match("5", "X", "doc"), homeless, 0, ""},
      {match("5", "X", MakeFonts({Value(), 7, itself, "doc", "", "doc"})), ready, 2, ""},
  };
  const FontRecordArray all = MakeFonts({});
  for (const auto& row : rows) {
    ExpectLines([&] { return Open(row.document, MakeFonts({row.element})); }, {row.line});
    EXPECT_EQ(mTracker.CountFontsRegisteredForIdentifier("doc"), row.registered) << row.line;
    for (const char* document : {"doc", ""}) EXPECT_EQ(Close(document), 0) << row.line;
    all->Append(row.element);
  }
  EXPECT_EQ(mManager.CallsOf("DeactivateFonts").back(), "DeactivateFonts(5)");
  mManager.calls.clear();
  EXPECT_EQ(Open("doc", nullptr), 0);
  EXPECT_EQ(mManager.calls, (std::vector<std::string>{"BeginOpening(doc)", "FinishOpening(doc)",
                                                      "SetCountForLongOperations(1)"}));
  // The other operations on the same.
  FontRecordArray matched;
  using namespace FaceprintSupport;
  FontActivationTracker::RemoveActivatedFonts(all, 0, true);
  EXPECT_EQ(ProcessDocumentFontsForAutoActivation(all, MakeFonts({}), MakeFonts({}), true, true, 0,
                                                  nullptr),
            0);
  EXPECT_EQ(FindIDsForBestMatches(all, &matched, 0), -1);
  EXPECT_EQ(AppendFaceprintDataToFonts(all, 0, true, false, true), -1);
  EXPECT_EQ(NamesOf(all), (std::vector<std::string>{"", "", ""}));  // what is no record
  itself->Remove(kFP_MatchedFontKey);
}

TEST_F(Tracker, ManuallyActivatedFontsAreTakenOut) {
  platform.fonts.visible = {"Hand", "Auto", "System"};
  mManager.Add(1, "Hand");
  mManager.Add(2, "Auto", {{kFP_IsAutoActivatedKey, "1"}});
  mManager.Add(3, "System", {{kFP_IsSystemKey, "1"}});
  const FontRecordArray fonts = MakeFonts(
      {MakeNamed("Hand"), MakeNamed("System"), MakeNamed("Auto"), MakeNamed("Off"), Value()});
  const auto remove = [&fonts](bool onlyManuallyActivated) {
    FontActivationTracker::RemoveActivatedFonts(fonts, 0, onlyManuallyActivated);
    return 0;
  };
  ExpectLines([&] { return remove(true); },
              {"ERROR:  fontArray[4] is NULL",
               "Font:  'Auto':  kFP_IsAutoActivatedKey=1, kFP_IsSystemKey=0",
               "Font:  'Hand':  kFP_IsAutoActivatedKey=0, kFP_IsSystemKey=0"});
  EXPECT_EQ(NamesOf(fonts), (std::vector<std::string>{"System", "Auto", "Off", ""}));
  remove(false);
  EXPECT_EQ(NamesOf(fonts), (std::vector<std::string>{"Off", ""}));
}

// With a dialog framework: families, one question however many fonts are remote, and progress.
TEST_F(Tracker, FamiliesAndTheQuestionWhileOffline) {
  FakeTarn framework;
  framework.Install(platform);
  framework.preferences["ActivateEntireFamilies"] = true;
  TarnInterface tarn("Photoshop", "1", "com.vendrel.test.photoshop", "1");
  Books books(&tarn);
  FakeFontManager& manager = books.mManager;
  for (const auto& [id, name] : {std::pair{1u, "Fam-Bold"}, {2u, "Fam-Light"}, {3u, "Fam-On"}}) {
    manager.Add(id, name, {{kFP_AssignedFamilyGroupNameKey, "Fam"}});
  }
  platform.fonts.visible.insert("Fam-On");
  manager.online = false;
  EXPECT_EQ(books.Open("doc", {1, 3}), 0);
  EXPECT_EQ(manager.CallsOf("ActivateFontsByID").back(), "ActivateFontsByID(1,2)");
  EXPECT_EQ(books.mTracker.CountFontsRegisteredForIdentifier("doc"), 2u);
  EXPECT_EQ(framework.TakeTitles().size(), 1u);
  EXPECT_EQ(manager.CountOfCalls("GoOnline"), 1);
  EXPECT_EQ(framework.CountShown("TarnShowProgress"), 1);
  EXPECT_EQ(framework.CountShown("TarnHideProgress"), 1);

  // The whole family is on: the matched font is asked for by itself. Nobody is asked for a font
  // that is here, nor online.
  platform.fonts.visible = {"Fam-Bold", "Fam-Light", "Fam-On"};
  for (const char* isLocal : {"1", "0"}) {
    manager.Find(1)->info->Set(kFP_IsLocalKey, isLocal);
    manager.Find(1)->state = kActivationStateInactive;
    books.Open(isLocal, {1});
    EXPECT_EQ(books.mTracker.CountFontsRegisteredForIdentifier(isLocal), 1u);
    EXPECT_TRUE(framework.TakeTitles().empty());
    manager.online = true;
  }
  // A family that the font manager has no record of, and a matched font of no family.
  manager.fonts.push_back({});
  ExpectLines(
      [&] {
        const FontRecord element = books.Element(1);
        element->GetDictionary(kFP_MatchedFontKey)->Remove(kFP_AssignedFamilyGroupNameKey);
        return books.Open("none", MakeFonts({element}));
      },
      {"ERROR:  fontArray[0] is NULL", "*** ERROR: NULL entry in fonts in family array, iFont = 0",
       "Skipping 'Fam-Bold' because it is already active."});
  // The window goes also when the sorting fails.
  manager.ThrowAt("CountNamedFonts", 0);
  ExpectLines(
      [&] {
        return FaceprintSupport::ProcessDocumentFontsForAutoActivation(
            MakeFonts({MakeNamed("A")}), MakeFonts({}), MakeFonts({}), true, false, 0, &tarn);
      },
      {"Exiting ProcessDocumentFontsForAutoActivation via throw."});
  EXPECT_EQ(framework.CountShown("TarnHideProgress"), 5);
  // What closes while the question stands is not turned on.
  manager.online = false;
  manager.Add(4, "Late");
  framework.onDialog = [&books] { books.Close("late"); };
  books.Open("late", {4});
  framework.onDialog = {};
  EXPECT_EQ(manager.CallsOf("ActivateFontsByID").back(), "ActivateFontsByID()");
  KestraneGlobals::CleanUpOnShutdown();  // the shared dialog interface goes before its framework
}

// A progress window turns the host's run loop, and whatever that runs may come back in. Two
// documents share B; one of them closes, and in a window something happens.
TEST_F(Tracker, WhatAProgressWindowLetsInDoesNoHarm) {
  FakeTarn framework;
  framework.Install(platform);
  TarnInterface tarn("Photoshop", "1", "com.vendrel.test.photoshop", "1");
  const struct {
    const char* what;
    int window;      // the first is the window's opening, the others are its updates
    bool inBatches;  // of the closing
    int result;
    const char* left;   // on after the closing
    const char* atEnd;  // and after both documents' end
  } rows[] = {
      {"nothing", 1, true, 0, "BC", ""},    {"nothing", 1, false, 0, "BC", ""},
      {"close one", 1, true, 0, "BC", ""},  {"close one", 1, false, 0, "BC", ""},
      {"close one", 2, false, 0, "BC", ""}, {"close two", 1, true, 0, "", ""},
      {"close two", 1, false, 0, "", ""},   {"open one", 1, true, 0, "BC", ""},
      {"open one", 2, false, 0, "ABC", ""}, {"quit", 1, true, 0, "", ""},
      {"quit", 2, false, 0, "", ""},        {"lose", 1, true, 1000, "ABC", ""},
      {"lose", 1, false, 1000, "ABC", ""},
  };
  for (const auto& [what, window, inBatches, result, left, atEnd] : rows) {
    SCOPED_TRACE(what + std::to_string(window) + (inBatches ? " in batches" : ""));
    Books books(&tarn);
    FakeFontManager& manager = books.mManager;
    for (const auto& [id, name] : {std::pair{1u, "A"}, {2u, "B"}, {3u, "C"}}) manager.Add(id, name);
    const auto on = [&manager] {
      std::string names;
      for (const auto& font : manager.fonts) {
        if (font.state == kActivationStateActive) {
          names += RecordString(font.info, kFP_PostScriptNameKey);
        }
      }
      return names;
    };
    books.Open("one", {1, 2});
    books.Open("two", {2, 3});
    int shown = 0;
    framework.onDialog = [&, what = std::string(what), window = window, inBatches = inBatches] {
      if (++shown != window) return;
      manager.coreAgent = true;
      if (what == "close one") books.Close("one");
      if (what == "close two") books.Close("two");
      if (what == "open one") books.Open("one", {1});
      if (what == "quit") books.mTracker.CloseAllFonts(true, false);
      if (what == "lose") FontManagerInterface::ExchangeFontManager(nullptr);
      if (what == "lose") manager.calls.clear();
      manager.coreAgent = inBatches;
    };
    manager.coreAgent = inBatches;
    EXPECT_EQ(books.mTracker.CloseAllFontsForIdentifier("one", true, true, nullptr), result);
    framework.onDialog = {};
    manager.coreAgent = true;
    EXPECT_EQ(on(), left);
    if (result != 0) {
      EXPECT_TRUE(manager.calls.empty());
      FontManagerInterface::ExchangeFontManager(&manager);
    }
    for (const char* document : {"one", "two"}) books.Close(document);
    EXPECT_EQ(on(), atEnd);
  }
  KestraneGlobals::CleanUpOnShutdown();
}

TEST_F(Tracker, IdentifiersAndUnresolvedFonts) {
  const std::regex form("[0-9A-F]{8}-[0-9A-F]{4}-4[0-9A-F]{3}-[89AB][0-9A-F]{3}-[0-9A-F]{12}");
  const LogCapture log;
  const std::string identifier = FontActivationTracker::GenerateUniqueIdentifier();
  EXPECT_TRUE(std::regex_match(identifier, form)) << identifier;
  EXPECT_NE(FontActivationTracker::GenerateUniqueIdentifier(), identifier);
  EXPECT_TRUE(
      log.Has("FontActivationTracker::GenerateUniqueIdentifier() returning '" + identifier + "'"));
  for (const char* name : {"A", "B"}) mTracker.AddUnresolvedFont("doc", name);
  EXPECT_EQ(mTracker.GetUnresolvedFonts("doc"), (std::vector<std::string>{"A", "B"}));
  EXPECT_TRUE(mTracker.GetUnresolvedFonts("other").empty());
}
