// Reading the host's document model, and the events that are played.
#include <gtest/gtest.h>

#include "photoshop/DescriptorWalk.h"
#include "photoshop/HostText.h"
#include "photoshop/PIUtilities.h"
#include "photoshop/PSDocumentSuite.h"
#include "photoshop/PhotoshopFontUtils.h"
#include "photoshop/Shell.h"
#include "state/HostAppInterface.h"

using namespace PhotoshopFontUtils;

namespace {

OneTrackedDocument* Track(const std::string& path, long handle) {
  auto* document = new OneTrackedDocument;
  document->SetIdentifier("id of " + path);
  document->SetDocumentHandle(handle);
  AllTrackedDocuments::AddDocument(document, path);
  return document;
}

}  // namespace

TEST(AutoSuite, LacksAreThrownAndEverySuiteIsGivenBack) {
  Shell shell;
  shell.host.missingSuites.insert(kPSActionControlSuite);
  int id = 0;
  try {
    GetCurrentDocumentID(&id);
    FAIL() << "a missing suite was not noticed";
  } catch (unsigned int error) {
    EXPECT_EQ(static_cast<unsigned int>(kSPSuiteNotFoundError), error);
  }
  EXPECT_EQ(kSPSuiteNotFoundError, sPSActionControl.Error());
  shell.host.missingSuites.clear();
  shell.host.documents = {{5, ""}};
  shell.host.currentIndex = 1;
  EXPECT_EQ(0, GetCurrentDocumentID(&id));
  EXPECT_EQ(5, id);
  EXPECT_GT(shell.host.suitesHeld, 0);
  PIUSuitesRelease();
  PIUSuitesRelease();
  EXPECT_EQ(0, shell.host.suitesHeld);
  EXPECT_EQ(0u, shell.host.ObjectsAlive());
  sSPBasic = nullptr;
  EXPECT_EQ(kSPBadParameterError, sPSActionControl.AcquireSuite(false));
}

TEST(HostText, ErrorsStayErrorsInSixteenBits) {
  EXPECT_EQ(0, ShortError(0));
  EXPECT_EQ(-43, ShortError(-43));
  EXPECT_EQ(0x6C74, ShortError(kPSNoSuchElementError));  // '!elt' ends in 'lt'
  EXPECT_EQ(-1, ShortError(0x70000));
  EXPECT_EQ("Mk  ", FourCharTypeToStdString(eventMake));
}

TEST(HostAccess, DocumentsAreFoundByPathFromTheEnd) {
  Shell shell;
  const std::string a = shell.home.WriteFile("a.psd", "a");
  const std::string b = shell.home.WriteFile("b.psd", "b");
  shell.host.documents = {{11, a}, {12, ""}, {13, b}, {14, a}, {15, shell.home.Path() + "/gone"}};
  shell.host.currentIndex = 3;

  EXPECT_EQ(4, IndexOfDocumentWithPath(a));
  EXPECT_EQ(3, IndexOfDocumentWithPath(""));  // the current one's path
  EXPECT_EQ(-1, IndexOfDocumentWithPath(shell.home.Path() + "/gone"));
  EXPECT_EQ(-1, IndexOfDocumentWithPath(shell.home.Path() + "/A.psd"));
  int id = 0;
  EXPECT_EQ(0, GetDocumentID(&id, a));
  EXPECT_EQ(14, id);
  EXPECT_EQ(-1, GetDocumentID(&id, "/nowhere"));

  std::vector<std::string> paths;
  EXPECT_EQ(0, GetUTF8PathsForAllOpenDocuments(paths));
  EXPECT_EQ((std::vector<std::string>{a, "", b, a, ""}), paths);

  shell.host.currentIndex = 2;
  EXPECT_EQ(-1, IndexOfDocumentWithPath(""));
  HostDocumentHandle handle = 0;
  EXPECT_EQ(0, PSDocumentSuite::GetDocument(&handle, ""));
  EXPECT_EQ(12, handle);
  EXPECT_EQ(0, PSDocumentSuite::GetDocument(&handle, b));
  EXPECT_EQ(13, handle);
  EXPECT_EQ(0u, shell.host.ObjectsAlive());
}

TEST(HostAccess, ErrorsLeaveWhatWasThere) {
  Shell shell;
  const std::string a = shell.home.WriteFile("a.psd", "a");
  shell.host.documents = {{11, a}};
  shell.host.currentIndex = 1;
  shell.host.readErrors[keyFileReference] = -50;
  std::string path = "before";
  EXPECT_EQ(-50, GetCurrentDocumentPathUnstableInCS6(&path));
  EXPECT_EQ("before", path);
  std::vector<std::string> paths;
  EXPECT_EQ(-50, GetUTF8PathsForAllOpenDocuments(paths));
  EXPECT_TRUE(paths.empty());
  EXPECT_EQ(-1, IndexOfDocumentWithPath(a));

  bool exists = true;
  EXPECT_EQ(0, DocumentExists(12, &exists));
  EXPECT_FALSE(exists);
  EXPECT_EQ(0, DocumentExists(11, &exists));
  EXPECT_TRUE(exists);
  EXPECT_EQ(0, DocumentExists(11, nullptr));
  shell.host.readErrors[keyDocumentID] = -51;
  EXPECT_EQ(-51, DocumentExists(11, &exists));
  EXPECT_FALSE(exists);
  shell.host.readErrors[keyNumberOfDocuments] = -52;
  EXPECT_EQ(-52, DocumentExists(11, &exists));
  EXPECT_EQ(-1, IndexOfDocumentWithPath(a));
}

TEST(HostAccess, DirtyFlagGoesToTheLowByteOfTheID) {
  Shell shell;
  shell.host.documents = {{0x12345678, "", true}};
  shell.host.currentIndex = 1;
  int id = 0x12345678;
  bool dirty = false;
  EXPECT_EQ(0, GetDocumentDirtyFlag(&id, &dirty));
  EXPECT_FALSE(dirty);
  EXPECT_EQ(0x12345601, id);
  shell.host.documents[0].dirty = false;
  dirty = true;
  EXPECT_EQ(0, GetDocumentDirtyFlag(&id, &dirty));
  EXPECT_TRUE(dirty);
  EXPECT_EQ(0x12345600, id);
}

TEST(HostAccess, NamesAndFonts) {
  Shell shell;
  EXPECT_EQ("c", FileNameOnly("a:b/c"));
  EXPECT_EQ("c", FileNameOnly("a\\c"));
  EXPECT_EQ("c", FileNameOnly("/a\\b:c"));
  EXPECT_EQ("plain", FileNameOnly("plain"));
  EXPECT_EQ("", FileNameOnly("folder/"));
  shell.host.fontList = {"Foo-Bold", "Bar"};
  std::vector<std::string> names;
  EXPECT_EQ(0, GetPhotoshopFonts(names));
  EXPECT_EQ(shell.host.fontList, names);
  EXPECT_EQ(0, BringDocumentToFront(7));
  ASSERT_EQ(1u, shell.host.played.size());
  EXPECT_EQ(eventSelect, shell.host.played[0].event);
  EXPECT_EQ(7, shell.host.played[0].selected);
  EXPECT_EQ(0u, shell.host.ObjectsAlive());
}

TEST(HostAccess, OpeningLastsFourWholeSeconds) {
  Shell shell;
  const std::string a = shell.home.WriteFile("a.psd", "a");
  shell.host.documents = {{11, a}};
  shell.host.currentIndex = 1;
  OneTrackedDocument* document = Track(a, 11);

  EXPECT_TRUE(isCurrentDocumentBeingOpened(nullptr));  // starts the five seconds
  EXPECT_NE(0, document->GetTimeOpenEventWasHandled());
  shell.platform.runLoop.Advance(4);
  EXPECT_TRUE(isCurrentDocumentBeingOpened(document));
  shell.platform.runLoop.Advance(1);
  EXPECT_FALSE(isCurrentDocumentBeingOpened(document));
}

TEST(HostAccess, RecordsThatNothingIsOpenedFor) {
  Shell shell;
  const std::string a = shell.home.WriteFile("a.psd", "a");
  shell.host.documents = {{11, a}};
  shell.host.currentIndex = 1;
  EXPECT_TRUE(isCurrentDocumentBeingOpened(nullptr));  // listed by the host, not by us

  OneTrackedDocument* untitled = Track("", 0);
  EXPECT_FALSE(isCurrentDocumentBeingOpened(untitled));
  OneTrackedDocument* noHandle = Track(a, 0);
  EXPECT_FALSE(isCurrentDocumentBeingOpened(noHandle));
  EXPECT_EQ(0, noHandle->GetTimeOpenEventWasHandled());
  EXPECT_FALSE(isCurrentDocumentBeingOpened(nullptr));  // every path is tracked
  OneTrackedDocument* saved = Track("/saved.psd", 12);
  saved->SetTimeSaveEventWasHandled();
  EXPECT_FALSE(isCurrentDocumentBeingOpened(saved));
  EXPECT_EQ(0, saved->GetTimeOpenEventWasHandled());

  shell.host.documents = {{11, ""}};
  EXPECT_FALSE(isCurrentDocumentBeingOpened(nullptr));  // nothing is open from disk
}

TEST(PlayedEvents, CloseAndOpenSpanOneProgressWindow) {
  Shell shell;
  EXPECT_EQ(0, PlayeventOpen("/alone.psd"));
  EXPECT_TRUE(shell.tarn.shown.empty());

  EXPECT_EQ(0, PlayeventClose());
  const std::vector<std::string> begun = {"TarnShowProgress:indeterminate", "TarnUpdateProgress"};
  EXPECT_EQ(begun, shell.tarn.shown);
  EXPECT_EQ(0, PlayeventClose());
  EXPECT_EQ(begun, shell.tarn.shown);  // one window is enough
  shell.host.playError = kPSEventFailedError;
  EXPECT_NE(0, PlayeventOpen("/caf\x8E.psd"));  // Mac Roman
  EXPECT_EQ("TarnHideProgress", shell.tarn.shown.back());
  EXPECT_EQ(3u, shell.tarn.shown.size());

  ASSERT_EQ(4u, shell.host.played.size());
  const auto& close = shell.host.played[1];
  EXPECT_EQ(eventClose, close.event);
  EXPECT_EQ(kPSDialogSilent, close.options);
  EXPECT_EQ(enumNo, close.saving);
  const auto& open = shell.host.played[3];
  EXPECT_EQ(eventOpen, open.event);
  EXPECT_EQ(kPSDialogSilent, open.options);
  EXPECT_EQ("/caf\xC3\xA9.psd", open.aliasPath);
  EXPECT_EQ(0u, shell.host.ObjectsAlive());
}

TEST(PlayedEvents, ReplacementWaitsForAScannedDocument) {
  Shell shell;
  EXPECT_TRUE(CanReplaceSubstitutes());
  EXPECT_EQ(0, PlayreplaceSubstitutes());
  EXPECT_TRUE(shell.host.played.empty());
  shell.MakeReady();
  shell.Open(1, shell.WriteDocument("a.psd", {}));
  EXPECT_EQ(0, PlayreplaceSubstitutes());
  ASSERT_EQ(2u, shell.host.played.size());
  EXPECT_EQ(shell.host.TypeID("updateLayouts"), shell.host.played[0].event);
  EXPECT_EQ(shell.host.TypeID("replaceSubstitutes"), shell.host.played[1].event);
}

TEST(DescriptorWalk, FindsKeyedNamesAtAnyDepth) {
  Shell shell;
  const auto& d = shell.host.Descriptors();
  const auto& l = shell.host.Lists();
  const DescriptorTypeID name = shell.host.TypeID("fontPostScriptName");
  PIActionDescriptor inner = shell.host.NewDescriptor();
  d.PutString(inner, name, "Foo-Bold");
  d.PutString(inner, keyFileReference, "/linked.psd");
  PIActionList list = nullptr;
  l.Make(&list);
  l.PutString(list, "NoName");
  l.PutObject(list, classDocument, inner);
  l.PutGlobalObject(list, classDocument, inner);
  PIActionDescriptor outer = shell.host.NewDescriptor();
  d.PutString(outer, name, "Bar");
  d.PutInteger(outer, keyDocumentID, 3);
  d.PutEnumerated(outer, keySaving, typeYesNo, enumNo);
  d.PutList(outer, shell.host.TypeID("list"), list);
  d.PutObject(outer, keyNew, classDocument, inner);
  l.Free(list);

  std::vector<std::string> fonts;
  std::vector<std::string> files;
  int count = 0;
  ProcessDescriptor(eventOpen, outer, fonts, files, count);
  EXPECT_EQ((std::vector<std::string>{"Bar", "Foo-Bold"}), fonts);
  EXPECT_EQ((std::vector<std::string>(3, "/linked.psd")), files);
  EXPECT_EQ(4, count);
  EXPECT_EQ(nullptr, sFreeZone);
  EXPECT_EQ(1u, shell.host.ObjectsAlive());  // the list, which the walk does not free

  ProcessDescriptor(eventOpen, nullptr, fonts, files, count);
  PIUSuitesRelease();
  shell.host.missingSuites.insert(kPSActionListSuite);
  ProcessDescriptor(eventOpen, outer, fonts, files, count);
  EXPECT_EQ(4, count);
}

TEST(DescriptorWalk, ZoneNamesWhatWasVisited) {
  PSFU_FreeZone zone;
  zone.Add("ref", 0x10);
  zone.Add(reinterpret_cast<PIActionDescriptor>(0x20));
  zone.Add(reinterpret_cast<PIActionList>(0x30));
  zone.Add(reinterpret_cast<PIActionReference>(0x40));
  zone.Add(reinterpret_cast<AliasHandle>(0x50));
  EXPECT_EQ((std::vector<std::string>{"ref0x10", "desc0x20", "list0x30", "ref0x40", "aliasValue"}),
            zone.Entries());
}

TEST(PhotoshopInterface, ServesTheRecordOfTheCurrentDocument) {
  Shell shell;
  HostAppInterface* hostApp = HostAppInterface::GetHostAppInterface();
  hostApp->SetCanExportFontsForDocument(true);
  EXPECT_FALSE(hostApp->CanExportFontsForDocument());  // no document at all
  shell.host.documents = {{11, ""}};
  shell.host.currentIndex = 1;
  EXPECT_FALSE(hostApp->CanExportFontsForDocument());  // not tracked
  OneTrackedDocument* document = Track("", 11);
  hostApp->SetCanExportFontsForDocument(true);
  EXPECT_TRUE(document->GetCanExportFontsForDocument());
  EXPECT_TRUE(hostApp->CanExportFontsForDocument());
}
