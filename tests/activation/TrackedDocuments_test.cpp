#include "activation/TrackedDocuments.h"

#include <gtest/gtest.h>

#include <memory>

#include "activation/FontActivationTracker.h"
#include "state/KestraneGlobals.h"
#include "support/FakeFontManager.h"
#include "support/FontRecords.h"
#include "support/IdentifiedPlugin.h"
#include "support/LogCapture.h"

namespace {

class TrackedDocuments : public testing::Test {
 protected:
  ~TrackedDocuments() override {
    while (!AllTrackedDocuments::GetDocumentList().empty()) {
      AllTrackedDocuments::RemoveClosedDocument(AllTrackedDocuments::GetDocumentList().front());
    }
  }

  // A record in the list; the list owns it.
  static OneTrackedDocument* Add(const char* identifier, const char* path) {
    auto document = std::make_unique<OneTrackedDocument>();
    document->SetIdentifier(identifier);
    AllTrackedDocuments::AddDocument(document.get(), path);
    return document.release();
  }

  IdentifiedPlugin mPlugin;
};

}  // namespace

TEST_F(TrackedDocuments, APathIsTrackedOnce) {
  OneTrackedDocument* first = Add("1", "/a");
  OneTrackedDocument* untitled = Add("2", "");
  OneTrackedDocument late;
  late.SetIdentifier("3");
  AllTrackedDocuments::AddDocument(&late, "/a");
  AllTrackedDocuments::AddDocument(&late, "");
  AllTrackedDocuments::AddDocument(nullptr, "/zeroed");
  EXPECT_EQ(AllTrackedDocuments::GetDocumentList().size(), 3u);
  EXPECT_EQ(AllTrackedDocuments::FindTrackedDocumentByPath("/a"), first);
  EXPECT_EQ(AllTrackedDocuments::FindTrackedDocumentByPath(""), untitled);
  EXPECT_EQ(AllTrackedDocuments::FindTrackedDocumentByPath("/A"), nullptr);
  EXPECT_EQ(AllTrackedDocuments::FindTrackedDocumentByIdentifier("3"), nullptr);
  first->SetDocumentHandle(0x1234);
  EXPECT_EQ(AllTrackedDocuments::FindTrackedDocumentByHandle(0x1234), first);
  EXPECT_EQ(AllTrackedDocuments::FindTrackedDocumentByHandle(0), untitled);
  untitled->SetDocumentHandle(5);
  LogCapture log;
  EXPECT_EQ(AllTrackedDocuments::FindTrackedDocumentByHandle(0x77), nullptr);
  EXPECT_TRUE(log.Has("WARNING: FindTrackedDocumentByHandle() could not find document 0x00000077"));
  AllTrackedDocuments::SetCurrentDocument("2");
  EXPECT_EQ(AllTrackedDocuments::GetCurrentDocument(), untitled);
}

TEST_F(TrackedDocuments, TheMostRecentOneIsTheFirstOfTheLatest) {
  OneTrackedDocument* first = Add("1", "/a");
  OneTrackedDocument* second = Add("2", "/b");
  OneTrackedDocument* third = Add("3", "/c");
  EXPECT_EQ(AllTrackedDocuments::GetMostRecentlyOpenedDocument(), nullptr);
  first->SetTimeOpenEventWasHandled();
  mPlugin.platform.runLoop.Advance(2);
  second->SetTimeOpenEventWasHandled();
  third->SetTimeOpenEventWasHandled();
  EXPECT_EQ(AllTrackedDocuments::GetMostRecentlyOpenedDocument(), second);
  EXPECT_EQ(second->GetTimeOpenEventWasHandled() - first->GetTimeOpenEventWasHandled(), 2);
}

TEST_F(TrackedDocuments, MissingFonts) {
  OneTrackedDocument document;
  EXPECT_FALSE(document.GetHasMissingFonts());
  const FontRecordArray problems =
      MakeFonts({MakeRecord({{kFP_PossibleReplacementsKey, MakeFonts({MakeNamed("X")})}})});
  document.SetUnresolvedFonts(problems);
  document.SetUnresolvedFonts(document.GetUnresolvedFonts());
  EXPECT_FALSE(document.GetHasMissingFonts());
  problems->Append(MakeNamed("Gone"));
  EXPECT_TRUE(document.GetHasMissingFonts());
}

TEST_F(TrackedDocuments, RemovalDropsTheReferences) {
  FakeFontManager manager;
  manager.Add(1, "A");
  const FontRecord element = MakeRecord({{kFP_MatchedFontKey, manager.Find(1)->info->Copy()}});
  FontActivationTracker* tracker = KestraneGlobals::GetSharedFontActivationTracker();
  OneTrackedDocument* document = Add("doc", "/a");
  tracker->OpenFontsForIdentifier(MakeFonts({element}), "doc", false, nullptr, nullptr);
  OneTrackedDocument stranger;
  stranger.SetIdentifier("stranger");
  AllTrackedDocuments::RemoveClosedDocument(&stranger);
  AllTrackedDocuments::RemoveClosedDocument(nullptr);
  EXPECT_EQ(manager.CountOfCalls("FinishClosing"), 0);
  AllTrackedDocuments::RemoveClosedDocument(document);
  // Without a dialog framework the preference is off: the font stays on.
  EXPECT_EQ(manager.CallsOf("FinishClosing"),
            (std::vector<std::string>{"FinishClosing(doc,some)"}));
  EXPECT_EQ(manager.Find(1)->state, kActivationStateActive);
  EXPECT_TRUE(AllTrackedDocuments::GetDocumentList().empty());

  LogCapture log;
  document = Add("doc", "/a");
  tracker->OpenFontsForIdentifier(MakeFonts({element}), "doc", false, nullptr, nullptr);
  manager.ThrowAt("DeactivateFonts", 0);
  AllTrackedDocuments::RemoveClosedDocument(document);
  EXPECT_TRUE(log.Has("Exception thrown in RemoveClosedDocument()"));
  manager.FailAt("DeactivateFonts", 0, 0);
}
