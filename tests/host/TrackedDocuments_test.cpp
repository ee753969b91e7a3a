// The plug-in's records of documents, driven through the host as a user drives it: the real bundle,
// the real frameworks, a real agent.
#include <filesystem>

#include "activation/TrackedDocuments.h"
#include "dialogs/TarnInterface.h"
#include "host/KestraneFixture.h"
#include "host/Places.h"
#include "host/PluginHost.h"
#include "photoshop/PhotoshopFontUtils.h"
#include "state/KestraneGlobals.h"

namespace {

namespace fs = std::filesystem;

constexpr const char* kRegular = "HarbourGrid-Regular";
constexpr const char* kBold = "HarbourGrid-Bold";

bool CopyFile(const HostDocument& document, const std::string& path) {
  std::error_code error;
  if (document.path.empty() || document.path == path) return true;
  return fs::copy_file(document.path, path, fs::copy_options::overwrite_existing, error);
}

class TrackedDocumentsTest : public KestraneTest {
 protected:
  void SetUp() override {
    AddExampleFonts();
    std::string error;
    ASSERT_TRUE(host.LoadPlugin(Places::PluginBundle(), error)) << error;
    ASSERT_EQ(host.Startup(), 0);
    ASSERT_TRUE(KestraneGlobals::ArePluginServicesEnabled());
  }
  ~TrackedDocumentsTest() override { ShutDown(); }

  void ShutDown() {
    if (!mRunning) return;
    mRunning = false;
    EXPECT_EQ(host.Shutdown(), 0);
    EXPECT_EQ(host.CountAcquiredSuites(), 0);
    EXPECT_EQ(host.CountLiveBlocks(), 0);
    EXPECT_EQ(host.CountNotifiers(), 0u);
  }

  static const std::vector<OneTrackedDocument*>& Tracked() {
    return AllTrackedDocuments::GetDocumentList();
  }
  // The one record there is; stops the test where there is another number.
  static const OneTrackedDocument& Only() {
    if (Tracked().size() != 1) throw std::runtime_error("not one tracked document");
    return *Tracked().front();
  }

  PluginHost host{{[](const HostWindow&) {}, nullptr, CopyFile}};

 private:
  bool mRunning = true;
};

TEST_F(TrackedDocumentsTest, OpenedClosedAndOpenedAgain) {
  const std::string path = WriteDocument("a.psd", {kRegular});
  const std::int32_t id = host.OpenDocument(path);
  EXPECT_EQ(Only().GetDocumentFilePath(), path);
  EXPECT_EQ(Only().GetDocumentHandle(), id);
  EXPECT_NE(Only().GetTimeOpenEventWasHandled(), 0);
  EXPECT_EQ(Only().GetTimeSaveEventWasHandled(), 0);
  EXPECT_FALSE(Only().GetHasMissingFonts());
  EXPECT_TRUE(IsActivated(kRegular));
  const std::string identifier = Only().GetIdentifier();
  EXPECT_FALSE(identifier.empty());

  EXPECT_TRUE(host.CloseDocument(id));
  EXPECT_TRUE(Tracked().empty());
  EXPECT_TRUE(IsActivated(kRegular)) << "out of the box a font stays until the host quits";

  host.OpenDocument(path);
  EXPECT_NE(Only().GetIdentifier(), identifier);
  ShutDown();
  EXPECT_EQ(MatchedFile(kRegular), "");
}

TEST_F(TrackedDocumentsTest, AFontGoesWithItsLastDocumentIfTheUserWantsIt) {
  KestraneGlobals::GetSharedTarnInterface()->SetPreferenceForKey(kCloseFontsOnDocClosePrefKey,
                                                                 true);
  const std::int32_t a = host.OpenDocument(WriteDocument("a.psd", {kRegular}));
  const std::int32_t b = host.OpenDocument(WriteDocument("b.psd", {kRegular, kBold}));
  EXPECT_EQ(Tracked().size(), 2u);
  host.CloseDocument(b);
  EXPECT_TRUE(IsActivated(kRegular)) << "the first document still needs it";
  EXPECT_EQ(MatchedFile(kBold), "");
  host.CloseDocument(a);
  EXPECT_EQ(MatchedFile(kRegular), "");
}

TEST_F(TrackedDocumentsTest, SavedAndSavedUnderAnotherName) {
  const std::string path = WriteDocument("a.psd", {kRegular});
  const std::string other = mHome.Path() + "/other.psd";
  const std::int32_t id = host.OpenDocument(path);
  const std::string identifier = Only().GetIdentifier();
  EXPECT_TRUE(host.SaveDocument(id));
  EXPECT_NE(Only().GetTimeSaveEventWasHandled(), 0);
  EXPECT_EQ(Only().GetDocumentFilePath(), path);
  EXPECT_TRUE(host.SaveDocument(id, other));
  EXPECT_EQ(Only().GetDocumentFilePath(), other);
  EXPECT_EQ(Only().GetDocumentHandle(), id);
  EXPECT_EQ(Only().GetIdentifier(), identifier);
  host.CloseDocument(id);
  EXPECT_TRUE(Tracked().empty());
}

TEST_F(TrackedDocumentsTest, UntitledUntilTheFirstSave) {
  const std::int32_t first = host.NewDocument();
  EXPECT_EQ(Only().GetDocumentFilePath(), "");
  EXPECT_EQ(Only().GetDocumentHandle(), first);
  EXPECT_NE(Only().GetTimeOpenEventWasHandled(), 0);
  const std::int32_t second = host.NewDocument();
  EXPECT_EQ(Only().GetDocumentHandle(), first) << "a second untitled document has no record";

  const std::string path = WriteDocument("first.psd", {});
  EXPECT_TRUE(host.SaveDocument(first, path));
  EXPECT_EQ(Only().GetDocumentFilePath(), path);
  EXPECT_TRUE(host.SaveDocument(second, WriteDocument("second.psd", {})));
  EXPECT_EQ(Only().GetDocumentHandle(), first) << "and stays untracked when it is saved";
  host.CloseDocument(first);
  EXPECT_TRUE(Tracked().empty());
}

TEST_F(TrackedDocumentsTest, OpenedTwice) {
  const std::string path = WriteDocument("a.psd", {kRegular});
  const std::int32_t id = host.OpenDocument(path);
  const std::string identifier = Only().GetIdentifier();
  EXPECT_EQ(host.OpenDocument(path), id);
  EXPECT_EQ(Only().GetIdentifier(), identifier);
  EXPECT_EQ(Only().GetDocumentHandle(), id);
}

TEST_F(TrackedDocumentsTest, RemovedFromDisk) {
  const std::string path = WriteDocument("a.psd", {kRegular});
  const std::int32_t id = host.OpenDocument(path);
  const std::int32_t other = host.OpenDocument(WriteDocument("b.psd", {}));
  fs::remove(path);
  host.CloseDocument(other);
  EXPECT_EQ(Only().GetDocumentFilePath(), path) << "the host still has it";
  host.CloseDocument(id);
  EXPECT_TRUE(Tracked().empty());
  const std::int32_t gone = host.OpenDocument(path);
  EXPECT_EQ(Only().GetDocumentFilePath(), "") << "a file that is not there has no path";
  EXPECT_EQ(Only().GetDocumentHandle(), gone);
}

TEST_F(TrackedDocumentsTest, WhatThePluginPlaysHasRunItsHandlersWhenItReturns) {
  const std::string path = WriteDocument("a.psd", {kRegular});
  host.OpenDocument(path);
  const std::string identifier = Only().GetIdentifier();
  PhotoshopFontUtils::PlayeventClose();
  EXPECT_TRUE(Tracked().empty());
  EXPECT_TRUE(host.Documents().Documents().empty());
  PhotoshopFontUtils::PlayeventOpen(path);
  EXPECT_EQ(Only().GetDocumentFilePath(), path);
  EXPECT_NE(Only().GetIdentifier(), identifier);
  EXPECT_EQ(host.Documents().Current()->path, path);
}

TEST_F(TrackedDocumentsTest, AFontThatWasOnBeforeStaysOn) {
  fs::copy(ExampleFonts() + "/HarbourGrid-Bold.ttf", mHome.SystemFonts());
  ASSERT_EQ(Run({"library", "scan"}).exitCode, 0);
  host.OpenDocument(WriteDocument("a.psd", {kBold, kRegular}));
  ShutDown();
  EXPECT_EQ(MatchedFile(kBold), mHome.SystemFonts() + "/HarbourGrid-Bold.ttf");
  EXPECT_EQ(MatchedFile(kRegular), "");
}

}  // namespace
