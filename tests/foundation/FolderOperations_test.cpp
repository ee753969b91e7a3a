// What GFileSystem does with whole folders and with copies.
#include <fcntl.h>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <sys/syscall.h>

#include <filesystem>

#include "foundation/GEnumFolderContentsCallback.h"
#include "foundation/GFileSystem.h"
#include "foundation/GStopCallback.h"
#include "tests/foundation/FileTestSupport.h"

namespace fs = std::filesystem;

namespace {

using Names = std::vector<std::string>;
constexpr TModuleErrorCode kExists = GFileSystem::kFileOrDirectoryAlreadyExists;
constexpr TModuleErrorCode kNoFolder = GFileSystem::kDirectoryNotFound;
constexpr TModuleErrorCode kNoFile = GFileSystem::kFileNotFound;

class ListingCallback : public GEnumFolderContentsCallback {
 public:
  explicit ListingCallback(const std::string& top) : mTopSize(top.size() + 1) {}
  bool OnEntry(const GFileSystemSpec& spec, EKind kind) override {
    static constexpr const char* kMarks[] = {"", "/", "@", "?"};
    mNames.push_back(spec.GetPath().substr(mTopSize) + kMarks[kind]);
    return mNames.size() < mMost;
  }
  std::size_t mTopSize;
  Names mNames;
  std::size_t mMost = 1'000'000;
};

class CountingStop : public GStopCallback {
 public:
  explicit CountingStop(int stopsAt = -1) : mStopsAt(stopsAt) {}
  bool ShouldStop() override { return mQuestions++ == mStopsAt; }
  int mQuestions = 0;
  int mStopsAt;
};

class FolderOperations : public FileTest {
 protected:
  // A folder with something of every kind that can be copied.
  std::string MakeTree() {
    mHome.WriteFile("tree/a.txt", "alpha");
    mHome.WriteFile("tree/sub/b.txt", "beta");
    mHome.MakeFolder("tree/sub/empty");
    fs::create_symlink("../..", Path("tree/sub/loop"));
    fs::create_symlink("nowhere", Path("tree/dangling"));
    chmod(Path("tree/a.txt").c_str(), 0751);
    chmod(Path("tree/sub").c_str(), 0555);
    return Path("tree");
  }
  static Names List(const std::string& folder, bool recursive = true) {
    ListingCallback callback(folder);
    EXPECT_EQ(GFileSystem::OSEnumFolderContents(folder, callback, recursive), 0U);
    return callback.mNames;
  }
  void TearDown() override { chmod(Path("tree/sub").c_str(), 0755); }

  static inline const Names kTree = {"a.txt",     "dangling@",  "sub/",
                                     "sub/b.txt", "sub/empty/", "sub/loop@"};
};

mode_t BitsOf(const std::string& path) {
  return static_cast<mode_t>(fs::symlink_status(path).permissions());
}

// Makes one system call fail in this process for ever.
void Refuse(unsigned call, unsigned error) {
  sock_filter rows[] = {
      BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr)),
      BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, call, 0, 1),
      BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ERRNO | error),
      BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW),
  };
  const sock_fprog program{4, rows};
  if (prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) != 0 ||
      prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &program) != 0) {
    _exit(2);
  }
}

TEST_F(FolderOperations, EnumerationIsSortedAndDoesNotFollowLinks) {
  const std::string tree = MakeTree();
  EXPECT_EQ(List(tree, false), (Names{"a.txt", "dangling@", "sub/"}));
  fs::create_symlink(tree, Path("link"));
  EXPECT_EQ(List(Path("link")), kTree);  // the folder itself may be a link
  ListingCallback callback(tree);
  callback.mMost = 4;
  EXPECT_EQ(GFileSystem::OSEnumFolderContents(tree, callback, true),
            GFileSystem::kEnumFolderContentsCanceled);
  EXPECT_EQ(callback.mNames.size(), 4U);
  EXPECT_TRUE(mLog.Lines().empty());
  for (const char* none : {"none", "tree/a.txt"}) {
    EXPECT_EQ(GFileSystem::OSEnumFolderContents(Path(none), callback, true), kNoFolder);
  }
}

TEST_F(FolderOperations, EnumerationGoesOnPastWhatItCannotTell) {
  for (const char* name : {"b\xFF", "c\xC3\xA9", "a\xFF/inside"}) {
    mHome.WriteFile(std::string("tree/") + name, "");
  }
  ListingCallback readable(Path("tree"));
  EXPECT_EQ(GFileSystem::OSEnumFolderContents(Path("tree"), readable, true),
            GFileSystem::kCouldNotDecodeInput);
  EXPECT_EQ(readable.mNames, (Names{"c\xC3\xA9"}));
  ASSERT_EQ(mLog.Lines().size(), 2U);
  EXPECT_NE(mLog.Lines()[0].find("GFileSystem::kCouldNotDecodeInput"), std::string::npos);

  for (const char* name : {"closed", "listed", "open"}) {
    mHome.WriteFile("other/" + std::string(name) + "/file", "");
  }
  const std::pair<const char*, mode_t> rights[] = {
      {"", 0755},
      {"other", 0755},
      {"other/open", 0755},
      {"other/closed", 0},
      {"other/listed", 0744}};  // names can be seen, but nobody gets in
  for (const auto& [name, mode] : rights) chmod(Path(name).c_str(), mode);
  ListingCallback callback(Path("other"));
  const Until nobody = AsNobody();
  EXPECT_EQ(GFileSystem::OSEnumFolderContents(Path("other"), callback, true),
            CoreErrorCodes::kError);
  EXPECT_EQ(callback.mNames, (Names{"closed/", "listed/", "open/", "open/file"}));
}

TEST_F(FolderOperations, DeletingRemovesLinksAndNotWhereTheyLead) {
  const std::string tree = MakeTree();
  chmod(Path("tree/sub").c_str(), 0755);
  const std::string kept = mHome.WriteFile("kept/file", "");
  fs::create_symlink(Path("kept"), Path("tree/sub/aside"));
  fs::create_symlink(tree, Path("link"));
  EXPECT_EQ(GFileSystem::OSDeleteDirectory(tree, false), GFileSystem::kDirectoryNotEmpty);
  for (const bool recursive : {false, true}) {
    for (const char* none : {"link", "none", "kept/file", "none/x"}) {
      EXPECT_EQ(GFileSystem::OSDeleteDirectory(Path(none), recursive), kNoFolder) << none;
    }
    EXPECT_EQ(GFileSystem::OSDeleteDirectory("/", recursive), GFileSystem::kInvalidPath);
  }
  EXPECT_EQ(List(tree).size(), kTree.size() + 1);
  EXPECT_EQ(GFileSystem::OSDeleteDirectory(tree, true), 0U);
  EXPECT_FALSE(fs::exists(tree));
  EXPECT_TRUE(fs::exists(kept));
  EXPECT_EQ(GFileSystem::OSDeleteFile(Path("link")), 0U);
}

TEST_F(FolderOperations, DepthCostsNoDescriptorsAndNoLongPaths) {
  constexpr std::size_t kDepth = 2100;  // the path is longer than any call takes
  const std::string top = mHome.MakeFolder("deep");
  int folder = open(top.c_str(), O_RDONLY | O_DIRECTORY);
  for (std::size_t i = 0; i < kDepth; ++i) {
    ASSERT_EQ(mkdirat(folder, "d", 0700), 0);
    const int below = openat(folder, "d", O_RDONLY | O_DIRECTORY);
    close(std::exchange(folder, below));
  }
  close(folder);
  const Until few = Limited(RLIMIT_NOFILE, 32);
  EXPECT_EQ(GFileSystem::OSCopyDirectory(top, Path("copy")), 0U);
  EXPECT_EQ(List(Path("copy")).size(), kDepth);
  EXPECT_EQ(GFileSystem::OSDeleteDirectory(top, true), 0U);
  EXPECT_EQ(GFileSystem::OSDeleteDirectory(Path("copy"), true), 0U);
}

TEST_F(FolderOperations, CopiesOfFiles) {
  const std::string text(300'000, 'x');
  chmod(mHome.WriteFile("source", text).c_str(), 04754);
  mHome.WriteFile("there", "old");
  fs::create_symlink("source", Path("link"));
  fs::create_symlink("nowhere", Path("dangling"));
  ASSERT_EQ(mkfifo(Path("fifo").c_str(), 0600), 0);
  const std::tuple<const char*, const char*, TModuleErrorCode> rows[] = {
      {"source", "copy", 0},
      {"link", "copy2", 0},
      {"source", "there", kExists},
      {"source", "source", kExists},
      {"source", "dangling", kExists},
      {"source", "none/x", kNoFolder},
      {"source", "there/x", kNoFolder},
      {"none", "x", kNoFile},
      {"", "x", kNoFile},
      {"fifo", "x", CoreErrorCodes::kNotSupported}};
  for (const auto& [from, to, code] : rows) {
    EXPECT_EQ(GFileSystem::OSCopyFile(Path(from), Path(to)), code) << from << " " << to;
  }
  for (const char* copy : {"copy", "copy2"}) {
    EXPECT_TRUE(ReadWholeFile(Path(copy)) == text);
    EXPECT_EQ(BitsOf(Path(copy)), 0754U);
  }
  EXPECT_EQ(ReadWholeFile(Path("there")), "old");
  EXPECT_FALSE(fs::exists(Path("x")) || fs::exists(Path("nowhere")));
  EXPECT_EQ(GFileSystem::OSCopyFile("/proc/self/status", Path("status")), 0U);
  EXPECT_NE(ReadWholeFile(Path("status")).find("\nPid:"), std::string::npos);
}

TEST_F(FolderOperations, CopiesOfFolders) {
  const std::string tree = MakeTree();
  EXPECT_EQ(GFileSystem::OSCopyDirectory(tree, Path("copy")), 0U);
  EXPECT_EQ(List(Path("copy")), kTree);
  EXPECT_EQ(ReadWholeFile(Path("copy/sub/b.txt")), "beta");
  for (const char* name : {"", "/a.txt", "/sub"}) {
    EXPECT_EQ(BitsOf(Path("copy") + name), BitsOf(tree + name)) << name;
  }
  EXPECT_EQ(fs::read_symlink(Path("copy/sub/loop")), "../..");

  chmod(Path("tree/sub").c_str(), 0755);
  fs::create_symlink(Path("tree/sub"), Path("aside"));
  ASSERT_EQ(mkfifo(Path("tree/sub/fifo").c_str(), 0600), 0);
  const std::tuple<const char*, const char*, TModuleErrorCode> rows[] = {
      {"tree", "tree/x", GFileSystem::kInvalidPath},
      {"tree", "aside/x", GFileSystem::kInvalidPath},
      {"tree", "copy", kExists},
      {"tree/a.txt", "x", kNoFolder},
      {"tree", "x", CoreErrorCodes::kNotSupported}};
  for (const auto& [from, to, code] : rows) {
    EXPECT_EQ(GFileSystem::OSCopyDirectory(Path(from), Path(to)), code) << from << " " << to;
    EXPECT_EQ(fs::exists(Path(to)), code == kExists);
  }
}

TEST_F(FolderOperations, StoppedAtAnyPointNothingIsLeft) {
  const std::string tree = MakeTree();
  fs::resize_file(mHome.WriteFile("tree/large", ""), 20ULL << 20);
  CountingStop counting;
  EXPECT_EQ(GFileSystem::OSCopyDirectory(tree, Path("copy"), &counting), 0U);
  EXPECT_GE(counting.mQuestions, 7 + 3);  // entries, and chunks of the large file
  fs::permissions(Path("copy/sub"), fs::perms::owner_all);
  fs::remove_all(Path("copy"));
  const Names before = List(mHome.Path());
  for (int i = 0; i < counting.mQuestions; ++i) {
    CountingStop stop(i);
    EXPECT_EQ(GFileSystem::OSCopyDirectory(tree, Path("copy"), &stop), CoreErrorCodes::kStopped);
    EXPECT_EQ(List(mHome.Path()), before) << i;
  }
  CountingStop stop(2);
  EXPECT_EQ(GFileSystem::OSCopyFile(Path("tree/large"), Path("copy"), &stop),
            CoreErrorCodes::kStopped);
  EXPECT_EQ(List(mHome.Path()), before);
}

TEST_F(FolderOperations, FullDiskLeavesNothing) {
  const std::string tree = MakeTree();
  const std::string large = mHome.WriteFile("tree/large", std::string(100'000, 'x'));
  const std::string folder = mHome.MakeFolder("disk");
  const auto meetsTheEnd = [&] {
    EXPECT_EQ(GFileSystem::OSCopyFile(large, folder + "/x"), GFileSystem::kDiskFull);
    EXPECT_EQ(GFileSystem::OSCopyDirectory(tree, folder + "/x"), GFileSystem::kDiskFull);
    EXPECT_EQ(List(folder), Names());
  };
  {
    const Until limit = Limited(RLIMIT_FSIZE, 8192);
    meetsTheEnd();
  }
  const Until disk = SmallDisk(folder);
  if (!disk) GTEST_SKIP() << "no right to mount a small disk";
  meetsTheEnd();
  EXPECT_EQ(GFileSystem::OSMoveFile(large, folder + "/x"), GFileSystem::kDiskFull);
  EXPECT_EQ(GFileSystem::OSMoveDirectory(tree, folder + "/x"), GFileSystem::kDiskFull);
  EXPECT_EQ(List(folder), Names());
  EXPECT_EQ(List(tree).size(), kTree.size() + 1);
  EXPECT_EQ(GFileSystem::OSDeleteDirectory(folder, true), GFileSystem::kFileIsLocked);
}

TEST_F(FolderOperations, MovesNeverReplace) {
  const std::string tree = MakeTree();
  mHome.WriteFile("file", "text");
  mHome.MakeFolder("empty");
  fs::create_symlink(tree, Path("link"));
  const auto folder = GFileSystem::OSMoveDirectory;
  const auto file = GFileSystem::OSMoveFile;
  const std::tuple<decltype(file), const char*, const char*, TModuleErrorCode> rows[] = {
      {folder, "tree", "empty", kExists}, {folder, "tree", "tree/x", GFileSystem::kInvalidPath},
      {folder, "file", "x", kNoFolder},   {folder, "link", "x", kNoFolder},
      {file, "tree", "x", kNoFile},       {file, "none", "x", kNoFile},
      {file, "file", "link", kExists},    {file, "file", "none/x", kNoFolder},
      {file, "link", "moved-link", 0},    {file, "file", "moved", 0},
      {folder, "tree", "empty/tree", 0}};
  for (const auto& [move, from, to, code] : rows) {
    EXPECT_EQ(move(Path(from), Path(to)), code) << from << " " << to;
  }
  EXPECT_EQ(fs::read_symlink(Path("moved-link")), tree);
  EXPECT_EQ(ReadWholeFile(Path("moved")), "text");
  EXPECT_EQ(List(Path("empty/tree")), kTree);
  EXPECT_FALSE(fs::exists(tree));
  chmod(mHome.Path().c_str(), 0755);
  const Until nobody = AsNobody();
  EXPECT_EQ(file(Path("moved"), Path("again")), GFileSystem::kMoveFailed);
}

TEST_F(FolderOperations, MovesToAnotherFileSystem) {
  const std::string tree = MakeTree();
  const std::string disk = mHome.MakeFolder("disk");
  const Until other = SmallDisk(disk);
  if (!other) GTEST_SKIP() << "no right to mount a small disk";
  fs::create_symlink("nowhere", Path("link"));
  EXPECT_EQ(GFileSystem::OSMoveDirectory(tree, disk + "/tree"), 0U);
  EXPECT_EQ(List(disk + "/tree"), kTree);
  EXPECT_EQ(GFileSystem::OSMoveFile(Path("link"), disk + "/link"), 0U);
  EXPECT_EQ(GFileSystem::OSMoveFile(disk + "/tree/a.txt", Path("a.txt")), 0U);
  EXPECT_EQ(List(disk, false), (Names{"link@", "tree/"}));
  EXPECT_EQ(ReadWholeFile(Path("a.txt")), "alpha");
  EXPECT_EQ(BitsOf(Path("a.txt")), 0751U);
  EXPECT_FALSE(fs::exists(tree) || fs::exists(disk + "/tree/a.txt"));
}

TEST_F(FolderOperations, FileSystemsMayLackCalls) {
  testing::GTEST_FLAG(death_test_style) = "fast";
  const std::string tree = MakeTree();
  const std::string file = mHome.WriteFile("file", "text");
  mHome.WriteFile("there", "old");
  mHome.MakeFolder("empty");
  const auto inChild = [](unsigned call, unsigned error, const std::function<bool()>& works) {
    EXPECT_EXIT((Refuse(call, error), _exit(works() ? 0 : 1)), testing::ExitedWithCode(0), "");
  };
  inChild(SYS_copy_file_range, EXDEV, [&] {
    return GFileSystem::OSCopyFile(file, Path("copy")) == 0 &&
           ReadWholeFile(Path("copy")) == "text";
  });
  // The plain rename is a call of its own.
  inChild(SYS_renameat2, EINVAL, [&] {
    return GFileSystem::OSMoveFile(file, Path("there")) == kExists &&
           GFileSystem::OSMoveDirectory(tree, Path("empty")) == kExists &&
           GFileSystem::OSMoveFile(file, Path("moved")) == 0 &&
           GFileSystem::OSMoveDirectory(tree, Path("moved-tree")) == 0 &&
           GFileSystem::OSCopyDirectory(Path("moved-tree"), Path("copied-tree")) == 0;
  });
  EXPECT_EQ(ReadWholeFile(Path("moved")), "text");
  EXPECT_EQ(List(Path("copied-tree")), kTree);
  EXPECT_FALSE(fs::exists(file) || fs::exists(tree));
}

}  // namespace
