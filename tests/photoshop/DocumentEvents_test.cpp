// From the host's events to tracked records and activated fonts.
#include "photoshop/DocumentEvents.h"

#include <gtest/gtest.h>

#include "activation/FontActivationTracker.h"
#include "photoshop/DocumentActivation.h"
#include "photoshop/ParkedObjects.h"
#include "photoshop/Shell.h"

namespace {

std::size_t FontsOf(const OneTrackedDocument* document) {
  return KestraneGlobals::GetSharedFontActivationTracker()->CountFontsRegisteredForIdentifier(
      document->GetIdentifier());
}

std::vector<OneTrackedDocument*> Tracked() { return AllTrackedDocuments::GetDocumentList(); }

bool WasShown(const Shell& shell, const std::string& what) {
  for (const std::string& shown : shell.tarn.shown) {
    if (shown.find(what) != std::string::npos) return true;
  }
  return false;
}

}  // namespace

TEST(OpenEvent, TracksAndActivates) {
  Shell shell;
  shell.MakeReady();
  shell.fontManager->Add(41, "Foo-Bold");
  shell.fontManager->Add(42, "Bar", {}, kActivationStateActive);
  shell.Open(7, shell.WriteDocument("a.psd", {"Foo-Bold", "Bar"}));

  ASSERT_EQ(1u, Tracked().size());
  const OneTrackedDocument* document = Tracked()[0];
  EXPECT_EQ(7, document->GetDocumentHandle());
  EXPECT_EQ(shell.platform.runLoop.NowMilliseconds() / 1000,
            document->GetTimeOpenEventWasHandled());
  EXPECT_TRUE(document->GetCanExportFontsForDocument());
  ASSERT_TRUE(document->GetUnresolvedFonts());
  EXPECT_EQ(0u, CountOf(document->GetUnresolvedFonts()));
  EXPECT_EQ(std::vector<std::string>{"ActivateFontsByID(41)"},
            shell.fontManager->CallsOf("ActivateFontsByID"));
  EXPECT_EQ(2u, FontsOf(document));
  EXPECT_TRUE(shell.tarn.shown.empty());
  EXPECT_EQ(0, gOpenDocumentCallCounter);
  EXPECT_EQ(0u, shell.host.ObjectsAlive());

  // A second event only refreshes the handle.
  shell.host.documents[0].id = 9;
  shell.platform.runLoop.Advance(10);
  const std::time_t opened = document->GetTimeOpenEventWasHandled();
  shell.host.Deliver(eventOpen, shell.host.OpenDescriptor(document->GetDocumentFilePath()));
  EXPECT_EQ(9, document->GetDocumentHandle());
  EXPECT_EQ(opened, document->GetTimeOpenEventWasHandled());
  EXPECT_EQ(2u, FontsOf(document));
  EXPECT_TRUE(ParkedObjects<OneTrackedDocument>().empty());
}

TEST(OpenEvent, DoesNothingUnlessReady) {
  Shell shell;
  shell.MakeReady();
  shell.fontManager->loggedIn = false;
  shell.Open(7, shell.WriteDocument("a.psd", {"Foo-Bold"}));
  shell.host.Deliver(eventMake, shell.host.MakeEventDescriptor(classDocument));
  EXPECT_TRUE(Tracked().empty());
  EXPECT_EQ(0u, shell.host.reads);
}

TEST(OpenEvent, MissingFontsAreToldExceptTheHostsOwn) {
  Shell shell;
  shell.MakeReady();
  shell.fontManager->Add(41, "Foo-Bold");
  shell.Open(1, shell.WriteDocument("own.psd", {"Foo-Bold", "MyriadPro-Regular"}));
  EXPECT_FALSE(WasShown(shell, "SomeLayersMissingFontsMessage"));
  EXPECT_FALSE(Tracked()[0]->GetHasMissingFonts());
  shell.Open(2, shell.WriteDocument("missing.psd", {"Foo-Bold", "Nowhere"}));
  EXPECT_TRUE(WasShown(shell, "SomeLayersMissingFontsMessage"));
  EXPECT_TRUE(Tracked()[1]->GetHasMissingFonts());
  EXPECT_FALSE(WasShown(shell, "TarnShowResolveFonts"));
}

TEST(OpenEvent, UserResolvesWhenBestMatchIsOff) {
  Shell shell;
  shell.MakeReady();
  shell.tarn.preferences[kPickBestMatchPrefKey] = false;
  shell.Open(1, shell.WriteDocument("a.psd", {"Nowhere"}));
  EXPECT_TRUE(WasShown(shell, "TarnShowResolveFonts"));
  EXPECT_FALSE(WasShown(shell, "SomeLayersMissingFontsMessage"));
  EXPECT_FALSE(Tracked()[0]->GetCanExportFontsForDocument());
  EXPECT_EQ(1u, CountOf(Tracked()[0]->GetUnresolvedFonts()));

  // All is resolved: nothing is kept.
  shell.fontManager->Add(41, "Foo-Bold", {}, kActivationStateActive);
  shell.Open(2, shell.WriteDocument("b.psd", {"Foo-Bold"}));
  EXPECT_FALSE(Tracked()[1]->GetUnresolvedFonts());
}

TEST(OpenEvent, OneRefusedFontEndsTheActivation) {
  Shell shell;
  shell.MakeReady();
  shell.fontManager->Add(41, "Foo-Bold");
  shell.fontManager->refused = {41};
  shell.fontManager->Add(42, "Bar");
  shell.Open(1, shell.WriteDocument("a.psd", {"Foo-Bold", "Bar", "Nowhere"}));
  EXPECT_TRUE(WasShown(shell, "TarnShowRestrictedFonts"));
  EXPECT_FALSE(WasShown(shell, "SomeLayersMissingFontsMessage"));
  ASSERT_EQ(1u, Tracked().size());
  EXPECT_EQ(0u, FontsOf(Tracked()[0]));
  EXPECT_FALSE(Tracked()[0]->GetUnresolvedFonts());
}

TEST(OpenEvent, FilesThatAreNotThereAreTrackedWithoutAPath) {
  Shell shell;
  shell.MakeReady();
  shell.Open(4, shell.home.Path() + "/gone.psd");
  ASSERT_EQ(1u, Tracked().size());
  EXPECT_EQ("", Tracked()[0]->GetDocumentFilePath());
  EXPECT_EQ(4, Tracked()[0]->GetDocumentHandle());
  // Nor does an event without an alias stop anybody.
  shell.host.Deliver(eventOpen, shell.host.NewDescriptor());
  EXPECT_EQ(1u, Tracked().size());
}

// The host's window comes before the open event: the document is taken in by the detection.
TEST(OpenEvent, CatchesUpWithTheDetection) {
  Shell shell;
  shell.MakeReady();
  shell.fontManager->Add(41, "Foo-Bold");
  const std::string path = shell.WriteDocument("a.psd", {"Foo-Bold", "Nowhere"});
  shell.host.documents = {{7, path}, {8, ""}};
  shell.host.currentIndex = 1;

  gOpenDocumentCallCounter = 1;
  DetectAndHandleNewlyOpenedDocuments(false);
  shell.host.Deliver(eventOpen, shell.host.OpenDescriptor(path));
  EXPECT_TRUE(Tracked().empty());  // an outer call takes it in
  gOpenDocumentCallCounter = 0;
  DetectAndHandleNewlyOpenedDocuments(false);
  EXPECT_EQ(0, gOpenDocumentCallCounter);
  ASSERT_EQ(1u, Tracked().size());
  EXPECT_EQ(0, Tracked()[0]->GetTimeOpenEventWasHandled());
  EXPECT_EQ(7, Tracked()[0]->GetDocumentHandle());
  DetectAndHandleNewlyOpenedDocuments(false);
  EXPECT_EQ(1u, Tracked().size());

  // What was left unresolved is tried again, on a record outside the list.
  shell.host.Deliver(eventOpen, shell.host.OpenDescriptor(path));
  EXPECT_NE(0, Tracked()[0]->GetTimeOpenEventWasHandled());
  ASSERT_EQ(1u, Tracked().size());
  ASSERT_EQ(1u, ParkedObjects<OneTrackedDocument>().size());
  const OneTrackedDocument* parked = ParkedObjects<OneTrackedDocument>()[0].get();
  EXPECT_NE(parked->GetIdentifier(), Tracked()[0]->GetIdentifier());
  EXPECT_EQ(1u, FontsOf(parked));
  EXPECT_EQ(0, gOpenDocumentCallCounter);
  shell.host.Deliver(eventOpen, shell.host.OpenDescriptor(path));
  EXPECT_EQ(1u, ParkedObjects<OneTrackedDocument>().size());
}

TEST(OpenEvent, SilentDetectionTracksAndLeavesFontsAlone) {
  Shell shell;
  shell.MakeReady();
  shell.host.documents = {{7, shell.WriteDocument("a.psd", {"Nowhere"})}};
  shell.host.currentIndex = 1;
  DetectAndHandleNewlyOpenedDocuments(true);
  ASSERT_EQ(1u, Tracked().size());
  EXPECT_FALSE(Tracked()[0]->GetUnresolvedFonts());
  EXPECT_TRUE(shell.tarn.shown.empty());
}

TEST(OpenEvent, ErrorsOfTheHostEndInTheHandler) {
  Shell shell;
  shell.MakeReady();
  const std::string path = shell.WriteDocument("a.psd", {});
  shell.host.documents = {{7, path}};
  shell.host.currentIndex = 1;
  for (const char* suite :
       {kPSActionDescriptorSuite, kPSActionControlSuite, kPSActionReferenceSuite, kPSAliasSuite}) {
    PIUSuitesRelease();
    shell.host.missingSuites = {suite};
    shell.host.Deliver(eventOpen, shell.host.OpenDescriptor(path));
    shell.host.Deliver(eventMake, shell.host.MakeEventDescriptor(classDocument));
    shell.host.Deliver(eventSave, shell.host.SaveDescriptor(true));
    shell.host.Deliver(eventClose, shell.host.NewDescriptor());
    EXPECT_EQ(0, gOpenDocumentCallCounter) << suite;
  }
  shell.host.missingSuites.clear();
  EXPECT_EQ(0u, shell.host.ObjectsAlive());
}

// A dialog turns the run loop, and a close event may end the record that is being worked on.
TEST(OpenEvent, SurvivesACloseFromWithinADialog) {
  Shell shell;
  shell.MakeReady();
  shell.tarn.preferences[kPickBestMatchPrefKey] = false;
  shell.fontManager->Add(41, "Foo-Bold");
  shell.tarn.onDialog = [&] { shell.host.Deliver(eventClose, shell.host.NewDescriptor()); };
  shell.Open(7, shell.WriteDocument("a.psd", {"Foo-Bold", "Nowhere"}));
  EXPECT_TRUE(Tracked().empty());
  EXPECT_EQ(0, shell.fontManager->CountOfCalls("ActivateFontsByID"));
  EXPECT_EQ(0, gOpenDocumentCallCounter);
}

TEST(MakeEvent, OneUntitledDocumentAtATime) {
  Shell shell;
  shell.MakeReady();
  shell.host.documents = {{21, ""}};
  shell.host.currentIndex = 1;
  shell.host.Deliver(eventMake, shell.host.MakeEventDescriptor(SP_CODE('L', 'y', 'r', ' ')));
  shell.host.Deliver(eventMake, shell.host.NewDescriptor());
  EXPECT_TRUE(Tracked().empty());
  shell.host.Deliver(eventMake, shell.host.MakeEventDescriptor(classDocument));
  ASSERT_EQ(1u, Tracked().size());
  EXPECT_EQ(21, Tracked()[0]->GetDocumentHandle());
  EXPECT_EQ("", Tracked()[0]->GetDocumentFilePath());
  EXPECT_NE("", Tracked()[0]->GetIdentifier());
  EXPECT_TRUE(Tracked()[0]->GetCanExportFontsForDocument());
  EXPECT_NE(0, Tracked()[0]->GetTimeOpenEventWasHandled());

  shell.host.documents.push_back({22, ""});
  shell.host.currentIndex = 2;
  shell.host.Deliver(eventMake, shell.host.MakeEventDescriptor(classDocument));
  EXPECT_EQ(1u, Tracked().size());
  EXPECT_EQ(1u, ParkedObjects<OneTrackedDocument>().size());
}

TEST(CloseEvent, LetsEveryVanishedDocumentGo) {
  Shell shell;
  shell.MakeReady();
  shell.fontManager->Add(41, "Foo-Bold");
  for (int id = 1; id <= 4; ++id) {
    shell.Open(id, shell.WriteDocument(std::to_string(id) + ".psd", {"Foo-Bold"}));
  }
  const std::string second = Tracked()[1]->GetDocumentFilePath();
  Tracked()[3]->SetDocumentHandle(0);
  shell.host.documents.erase(shell.host.documents.begin() + 2);

  shell.host.readErrors[keyDocumentID] = -50;  // nobody can tell: all but the one without a handle
  shell.Close(1);
  EXPECT_EQ(3u, Tracked().size());
  shell.host.readErrors.clear();
  KestraneGlobals::SetPluginServicesEnabled(false);
  shell.host.Deliver(eventClose, shell.host.NewDescriptor());
  EXPECT_EQ(3u, Tracked().size());
  KestraneGlobals::SetPluginServicesEnabled(true);
  shell.host.Deliver(eventClose, shell.host.NewDescriptor());
  ASSERT_EQ(1u, Tracked().size());
  EXPECT_EQ(second, Tracked()[0]->GetDocumentFilePath());
  EXPECT_EQ(1u, FontsOf(Tracked()[0]));
  EXPECT_EQ(kActivationStateActive, shell.fontManager->Find(41)->state);
}

TEST(SaveEvent, FirstSaveAndSaveAsMoveTheRecord) {
  Shell shell;
  shell.MakeReady();
  shell.host.documents = {{21, ""}};
  shell.host.currentIndex = 1;
  shell.host.Deliver(eventMake, shell.host.MakeEventDescriptor(classDocument));
  OneTrackedDocument* document = Tracked()[0];
  const std::string identifier = document->GetIdentifier();

  for (const char* name : {"first.psd", "second.psd"}) {
    shell.host.documents[0].path = shell.home.WriteFile(name, "x");
    shell.platform.runLoop.Advance(10);
    shell.host.Deliver(eventSave, shell.host.SaveDescriptor(true));
    EXPECT_EQ(shell.host.documents[0].path, document->GetDocumentFilePath());
    EXPECT_EQ(shell.platform.runLoop.NowMilliseconds() / 1000,
              document->GetTimeSaveEventWasHandled());
  }
  EXPECT_EQ(identifier, document->GetIdentifier());
  EXPECT_EQ(1u, Tracked().size());
  EXPECT_NE(document->GetTimeOpenEventWasHandled(), document->GetTimeSaveEventWasHandled());
}

TEST(SaveEvent, TracksAlsoWhenTheHostOrThePluginIsNotReady) {
  Shell shell;
  shell.MakeReady();
  const std::string path = shell.WriteDocument("a.psd", {});
  shell.Open(5, path);
  OneTrackedDocument* document = Tracked()[0];
  KestraneGlobals::SetPluginServicesEnabled(false);
  shell.host.Deliver(eventSave, shell.host.SaveDescriptor(false));
  EXPECT_NE(0, document->GetTimeSaveEventWasHandled());

  // Nobody's document, and a host that names none.
  shell.host.documents = {{6, shell.home.WriteFile("b.psd", "x")}};
  shell.host.Deliver(eventSave, shell.host.SaveDescriptor(true));
  shell.host.documents.clear();
  shell.host.currentIndex = 0;
  shell.host.Deliver(eventSave, shell.host.SaveDescriptor(true));
  EXPECT_EQ(path, document->GetDocumentFilePath());
  EXPECT_EQ(5, document->GetDocumentHandle());
}

// A different handle is warned of and not repaired.
TEST(SaveEvent, LeavesAnotherHandleAlone) {
  Shell shell;
  shell.MakeReady();
  shell.Open(5, shell.WriteDocument("a.psd", {}));
  shell.host.documents[0].id = 6;
  shell.host.Deliver(eventSave, shell.host.SaveDescriptor(true));
  EXPECT_EQ(5, Tracked()[0]->GetDocumentHandle());
  EXPECT_NE(0, Tracked()[0]->GetTimeSaveEventWasHandled());
}
