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

using All = AllTrackedDocuments;

class TrackedDocuments : public testing::Test {
 protected:
  ~TrackedDocuments() override {
    const std::vector<OneTrackedDocument*> left = All::GetDocumentList();
    for (OneTrackedDocument* document : left) All::RemoveClosedDocument(document);
  }

  // A record in the list, which owns it.
  static OneTrackedDocument* Add(const char* identifier, const char* path) {
    auto document = std::make_unique<OneTrackedDocument>();
    document->SetIdentifier(identifier);
    All::AddDocument(document.get(), path);
    return document.release();
  }

  IdentifiedPlugin mPlugin;
  LogCapture mLog;
};

TEST_F(TrackedDocuments, AreFoundByWhatTheyAre) {
  OneTrackedDocument* first = Add("1", "/a");
  OneTrackedDocument* untitled = Add("2", "");
  OneTrackedDocument late;
  for (const char* path : {"/a", ""}) All::AddDocument(&late, path);  // tracked already
  All::AddDocument(nullptr, "/zeroed");
  EXPECT_EQ(All::GetDocumentList().size(), 3u);
  EXPECT_EQ(All::FindTrackedDocumentByPath("/a"), first);
  EXPECT_EQ(All::FindTrackedDocumentByPath("/A"), nullptr);
  first->SetDocumentHandle(0x1234);
  EXPECT_EQ(All::FindTrackedDocumentByHandle(0x1234), first);
  EXPECT_EQ(All::FindTrackedDocumentByHandle(0), untitled);
  EXPECT_EQ(All::FindTrackedDocumentByHandle(0x77), nullptr);
  EXPECT_TRUE(
      mLog.Has("WARNING: FindTrackedDocumentByHandle() could not find document 0x00000077"));
  All::SetCurrentDocument("2");
  EXPECT_EQ(All::GetCurrentDocument(), untitled);
  // The most recent one is the first of the latest.
  EXPECT_EQ(All::GetMostRecentlyOpenedDocument(), nullptr);
  first->SetTimeOpenEventWasHandled();
  mPlugin.platform.runLoop.Advance(2);
  for (OneTrackedDocument* document : {untitled, Add("3", "/c")}) {
    document->SetTimeOpenEventWasHandled();
  }
  EXPECT_EQ(All::GetMostRecentlyOpenedDocument(), untitled);
  EXPECT_EQ(untitled->GetTimeOpenEventWasHandled() - first->GetTimeOpenEventWasHandled(), 2);
}

TEST_F(TrackedDocuments, MissingFonts) {
  OneTrackedDocument document;
  EXPECT_FALSE(document.GetHasMissingFonts());
  const FontRecordArray problems =
      MakeFonts({MakeRecord({{kFP_PossibleReplacementsKey, MakeFonts({MakeNamed("X")})}})});
  document.SetUnresolvedFonts(problems);
  EXPECT_FALSE(document.GetHasMissingFonts());
  problems->Append(MakeNamed("Gone"));
  EXPECT_TRUE(document.GetHasMissingFonts());
}

TEST_F(TrackedDocuments, RemovalDropsTheReferences) {
  FakeFontManager manager;
  manager.Add(1, "A");
  const FontRecord element = MakeRecord({{kFP_MatchedFontKey, manager.Find(1)->info->Copy()}});
  OneTrackedDocument* document = Add("doc", "/a");
  KestraneGlobals::GetSharedFontActivationTracker()->OpenFontsForIdentifier(
      MakeFonts({element}), "doc", false, nullptr, nullptr);
  OneTrackedDocument stranger;
  stranger.SetIdentifier("stranger");
  for (OneTrackedDocument* unknown : {&stranger, static_cast<OneTrackedDocument*>(nullptr)}) {
    All::RemoveClosedDocument(unknown);
  }
  EXPECT_EQ(manager.CountOfCalls("FinishClosing"), 0);
  All::RemoveClosedDocument(document);
  // Without a dialog framework the preference is off: the font stays on.
  EXPECT_EQ(manager.CallsOf("FinishClosing"),
            (std::vector<std::string>{"FinishClosing(doc,some)"}));
  EXPECT_EQ(manager.Find(1)->state, kActivationStateActive);
  EXPECT_TRUE(All::GetDocumentList().empty());
  manager.ThrowAt("FinishClosing", 2);
  All::RemoveClosedDocument(Add("doc", "/a"));
  EXPECT_TRUE(mLog.Has("Exception thrown in RemoveClosedDocument()"));
}

}  // namespace
