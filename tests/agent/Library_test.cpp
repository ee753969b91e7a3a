// The library's tables, written by the scanner and asked by the reader, without an agent.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>

#include "agent/LibraryScanner.h"
#include "agent/library/LibraryReader.h"
#include "agent/library/Paths.h"
#include "support/AgentHome.h"
#include "support/TestFonts.h"

namespace fs = std::filesystem;

namespace Nodrix {
namespace {

using IDs = std::vector<std::uint32_t>;

class Library : public testing::Test {
 protected:
  void SetUp() override {
    std::string error;
    ASSERT_TRUE(MakeFolder(fs::path(DatabasePath()).parent_path().string(), error)) << error;
    mStore = LibraryStore::Open(DatabasePath(), error);
    ASSERT_TRUE(mStore) << error;
    mReader = mHome.Reader();
  }
  ScanResult Scan(const std::string& name = "") {
    const std::string path = mHome.Home().Path() + "/library" + name;
    ScanControl control;
    ScanResult result;
    LibraryScanner scanner(*mStore, ActivationFolder());
    scanner.ScanFolder({mStore->AddFolder(path), path}, control, result);
    EXPECT_FALSE(result.failed);
    return result;
  }
  ScanResult ScanSystem() {
    ScanControl control;
    ScanResult result;
    LibraryScanner(*mStore, ActivationFolder()).ScanSystem(control, result);
    EXPECT_FALSE(result.failed);
    return result;
  }

  AgentHome mHome;
  std::unique_ptr<LibraryStore> mStore;
  std::unique_ptr<LibraryReader> mReader;
};

TEST_F(Library, IsThereFromTheFirstStart) {
  EXPECT_EQ(mReader->SchemaVersion(), kSchemaVersion);
  const auto workgroups = mReader->Workgroups();
  ASSERT_EQ(workgroups.size(), 2u);
  EXPECT_EQ(workgroups[0].id, kSystemWorkgroupID);
  EXPECT_EQ(workgroups[0].type, 4u);
  EXPECT_EQ(workgroups[1].id, kPersonalWorkgroupID);
  EXPECT_EQ(workgroups[1].type, 3u);
  EXPECT_EQ(workgroups[1].name, "Font Library");
  EXPECT_EQ(mReader->CountAll().faces, 0u);
  // Opening it once more changes nothing; another schema is refused by both sides.
  std::string error;
  EXPECT_TRUE(LibraryStore::Open(DatabasePath(), error)) << error;
  ASSERT_TRUE(mStore->Connection().Execute("PRAGMA user_version = 99"));
  EXPECT_FALSE(LibraryStore::Open(DatabasePath(), error));
  EXPECT_FALSE(LibraryReader::Open(DatabasePath(), error));
  EXPECT_NE(error.find("schema 99"), std::string::npos) << error;
  EXPECT_FALSE(LibraryReader::Open(mHome.Home().Path() + "/none.db", error));
}

TEST_F(Library, AnswersQuestions) {
  BuildFont(mHome.LibraryPath("a.ttf"), {"--family", "Acme", "--psname", "Acme-Regular"});
  BuildFont(mHome.LibraryPath("sub/b.otf"),
            {"--family", "Acme", "--psname", "Acme-Bold", "--style", "Bold", "--format", "otf"});
  BuildFont(mHome.SystemPath("s.ttf"), {"--family", "Acme", "--psname", "Acme-Regular"});
  const ScanResult system = ScanSystem();
  const ScanResult scan = Scan();
  EXPECT_EQ(scan.outcome.files, 2u);
  EXPECT_EQ(scan.outcome.added, 2u);
  EXPECT_EQ(scan.outcome.faces, 2u);

  const IDs regular = mReader->FontsByPostScriptName("Acme-Regular", {});
  ASSERT_EQ(regular.size(), 2u);
  const std::uint32_t inSystem = regular[0], inLibrary = regular[1];
  const IDs personal{kPersonalWorkgroupID}, every{kPersonalWorkgroupID, 0xFFFFFFFF}, other{77};
  EXPECT_EQ(mReader->FontsByPostScriptName("Acme-Regular", personal), IDs{inLibrary});
  EXPECT_EQ(mReader->FontsByPostScriptName("Acme-Regular", every), regular);
  EXPECT_EQ(mReader->FontsByPostScriptName("Acme-Regular", other), IDs{});
  EXPECT_EQ(mReader->FontsByPostScriptName("acme-regular", {}), IDs{});
  EXPECT_EQ(mReader->FontsByFamilyName("Acme", {}).size(), 3u);
  EXPECT_EQ(mReader->FontsByFamilyName("Acme", personal).size(), 2u);

  const auto row = mReader->FontByID(mReader->FontsByPostScriptName("Acme-Bold", {}).at(0));
  ASSERT_TRUE(row);
  EXPECT_EQ(row->kind, "OpenType - PS");
  EXPECT_EQ(row->style, "Bold");
  EXPECT_EQ(row->path, mHome.LibraryPath("sub/b.otf"));
  EXPECT_EQ(row->outlineFileName, "b.otf");
  EXPECT_EQ(row->outlineFileSize, fs::file_size(mHome.LibraryPath("sub/b.otf")));
  EXPECT_EQ(row->workgroupType, 3u);
  EXPECT_EQ(row->workgroupName, "Font Library");
  EXPECT_EQ(row->foundry, "TEST");
  EXPECT_FALSE(row->checksum11);
  EXPECT_EQ(mReader->FontsOfFamily(row->familyID, personal).size(), 2u);
  EXPECT_FALSE(mReader->FontByID(4711));

  EXPECT_EQ(mReader->RawActivationState(inSystem, 1), 5u);
  EXPECT_EQ(mReader->RawActivationState(inLibrary, 1), 0u);
  EXPECT_EQ(mReader->ConflictingFont(inLibrary), inSystem);
  EXPECT_EQ(mReader->ConflictingFont(inSystem), 0u);
  EXPECT_EQ(mReader->CountAll().faces, 3u);
  EXPECT_EQ(mReader->CountAll().libraryFaces, 2u);
  EXPECT_EQ(mReader->CountAll().activeFaces, 1u);
}

TEST_F(Library, TellsWhoTurnedAFontOn) {
  BuildFont(mHome.LibraryPath("a.ttf"), "Acme-Regular");
  Scan();
  const std::uint32_t id = mHome.FontID("Acme-Regular");
  Database& database = mStore->Connection();
  const auto add = [&](int mode, int pid) {
    ASSERT_TRUE(
        database.Do("INSERT INTO activations SELECT file_id, ?, ?, 1, 'x', 'p' FROM fonts "
                    "WHERE id = ?",
                    mode, pid, id));
  };
  // Asked alone, and with the whole row.
  const auto state = [&](int pid) {
    const std::uint32_t alone = mReader->RawActivationState(id, pid);
    EXPECT_EQ(mReader->FontByID(id, pid)->rawActivationState, alone);
    return alone;
  };
  EXPECT_EQ(state(100), 0u);
  add(1, 100);
  EXPECT_EQ(state(100), 1u);
  EXPECT_EQ(state(200), 2u);
  add(1, 50);
  EXPECT_EQ(state(100), 1u);
  add(4, 0);
  EXPECT_EQ(state(100), 4u);
}

TEST_F(Library, RescanFollowsTheDisk) {
  BuildFont(mHome.LibraryPath("a.ttf"), "Acme-A");
  BuildFont(mHome.LibraryPath("b.ttf"), "Acme-B");
  // Names that are no UTF-8, files that are no fonts, links in a circle.
  BuildFont(mHome.LibraryPath("\xFF\xFE.ttf"), "Acme-C");
  mHome.Home().WriteFile("library/notes.txt", "no font");
  mHome.Home().WriteFile("library/empty.ttf", "");
  mHome.Home().WriteFile("library/._a.ttf", "resources");
  fs::create_symlink(mHome.LibraryPath(""), mHome.LibraryPath("again"));
  ASSERT_EQ(mkfifo(mHome.LibraryPath("pipe.ttf").c_str(), 0600), 0);
  ScanResult scan = Scan();
  EXPECT_EQ(scan.outcome.files, 4u);
  EXPECT_EQ(scan.outcome.broken, 1u);
  ASSERT_EQ(mReader->BrokenFiles().size(), 1u);
  EXPECT_EQ(mReader->BrokenFiles()[0].error, "empty file");
  const std::uint32_t a = mHome.FontID("Acme-A"), b = mHome.FontID("Acme-B");
  EXPECT_EQ(mReader->FontByID(mHome.FontID("Acme-C"))->path, mHome.LibraryPath("\xFF\xFE.ttf"));

  scan = Scan();
  EXPECT_EQ(scan.outcome.added + scan.outcome.removed, 0u);

  // Gone, and back with its ID.
  fs::rename(mHome.LibraryPath("a.ttf"), mHome.Home().Path() + "/a.ttf");
  scan = Scan();
  EXPECT_EQ(scan.outcome.removed, 1u);
  EXPECT_EQ(scan.missingFaces, IDs{a});
  EXPECT_EQ(mHome.FontID("Acme-A"), 0u);
  EXPECT_TRUE(mReader->FontByID(a)->missing);
  fs::rename(mHome.Home().Path() + "/a.ttf", mHome.LibraryPath("a.ttf"));
  EXPECT_EQ(Scan().outcome.added, 1u);
  EXPECT_EQ(mHome.FontID("Acme-A"), a);

  // A new version of a font keeps its ID; another font in its place does not.
  BuildFont(mHome.LibraryPath("a.ttf"),
            {"--family", "New", "--psname", "Acme-A", "--version", "9.5"});
  BuildFont(mHome.LibraryPath("b.ttf"), "Acme-Other");
  Scan();
  EXPECT_EQ(mReader->FontByID(a)->version, "9.5");
  EXPECT_FALSE(mReader->FontByID(b));
  EXPECT_GT(mHome.FontID("Acme-Other"), b);

  // The whole folder is not there: its fonts are missing, nothing is forgotten.
  fs::rename(mHome.Home().Path() + "/library", mHome.Home().Path() + "/elsewhere");
  Scan();
  EXPECT_TRUE(mReader->Folders().at(0).missing);
  EXPECT_EQ(mReader->CountAll().libraryFaces, 0u);
  fs::rename(mHome.Home().Path() + "/elsewhere", mHome.Home().Path() + "/library");
  Scan();
  EXPECT_FALSE(mReader->Folders().at(0).missing);
  EXPECT_EQ(mHome.FontID("Acme-A"), a);
}

TEST_F(Library, FoldersDoNotOverlap) {
  BuildFont(mHome.LibraryPath("in/a.ttf"), "Acme-A");
  BuildFont(mHome.LibraryPath("b.ttf"), "Acme-B");
  Scan("/in");
  const std::uint32_t a = mHome.FontID("Acme-A");
  EXPECT_EQ(Scan().outcome.files, 2u);
  ASSERT_EQ(mReader->Folders().size(), 1u);
  EXPECT_EQ(mReader->Folders()[0].faces, 2u);
  EXPECT_EQ(mHome.FontID("Acme-A"), a);
  ASSERT_TRUE(mStore->RemoveFolder(mStore->Folders().at(0).id));
  EXPECT_EQ(mReader->CountAll().faces, 0u);
  Scan();
  EXPECT_GT(mHome.FontID("Acme-A"), a);
}

TEST_F(Library, LeavesSystemFontsToTheSystem) {
  const std::string path = mHome.Home().MakeFolder(".local/share/fonts/mine") + "/a.ttf";
  BuildFont(path, "Acme-A");
  BuildFont(ActivationFolder() + "/07/7-x.ttf", "Acme-Copy");
  ScanSystem();
  EXPECT_EQ(mReader->RawActivationState(mHome.FontID("Acme-A"), 0), 5u);
  EXPECT_EQ(mHome.FontID("Acme-Copy"), 0u);
  ScanControl control;
  ScanResult result;
  const std::string data = mHome.Home().Path() + "/.local";
  LibraryScanner(*mStore, ActivationFolder())
      .ScanFolder({mStore->AddFolder(data), data}, control, result);
  EXPECT_EQ(result.systemFiles, 1u);
  EXPECT_EQ(result.outcome.files, 0u);
}

// More files than one batch and than readers may hold back; a stop in the middle keeps what is
// there.
TEST_F(Library, ScansInBatchesAndStops) {
  BuildFont(mHome.LibraryPath("0.ttf"), "Acme-A");
  for (int i = 1; i < 2600; ++i) {
    fs::create_hard_link(mHome.LibraryPath("0.ttf"), mHome.LibraryPath(std::to_string(i) + ".ttf"));
  }
  const StoredFolder folder{mStore->AddFolder(mHome.LibraryPath("")), mHome.LibraryPath("")};
  LibraryScanner scanner(*mStore, ActivationFolder());
  ScanControl stopping;
  stopping.progress = [&](std::uint64_t, std::uint64_t, const std::string&) {
    stopping.stopped = true;
  };
  ScanResult result;
  scanner.ScanFolder(folder, stopping, result);
  EXPECT_GT(result.outcome.files, 0u);
  EXPECT_LT(result.outcome.files, 2600u);
  ScanControl control;
  std::uint64_t done = 0, all = 0;
  control.progress = [&](std::uint64_t d, std::uint64_t a, const std::string&) {
    EXPECT_GT(d, done);
    done = d;
    all = a;
  };
  ScanResult second;
  scanner.ScanFolder(folder, control, second);
  EXPECT_EQ(done, all);
  EXPECT_EQ(second.outcome.files, 2600u);
  EXPECT_EQ(mReader->CountAll().libraryFaces, 2600u);
}

TEST(Paths, RefuseWhatOthersCanEnter) {
  const ScratchHome home;
  std::string error;
  EXPECT_EQ(RuntimeFolder(error), home.Path() + "/run/vendrel");
  // A runtime folder that others may enter is not used.
  ASSERT_EQ(chmod((home.Path() + "/run/vendrel").c_str(), 0755), 0);
  EXPECT_NE(RuntimeFolder(error), home.Path() + "/run/vendrel");
  ASSERT_EQ(chmod((home.Path() + "/run/vendrel").c_str(), 0700), 0);
  // A path that no socket can have is told.
  const std::string far = home.MakeFolder(std::string(120, 'x'));
  ASSERT_EQ(chmod(far.c_str(), 0700), 0);
  setenv("XDG_RUNTIME_DIR", far.c_str(), 1);
  EXPECT_EQ(SocketAddress(error), "");
  EXPECT_NE(error.find("too long"), std::string::npos);
}

}  // namespace
}  // namespace Nodrix
