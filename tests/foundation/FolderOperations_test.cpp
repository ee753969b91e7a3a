// What GFileSystem does with whole folders and with copies.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cstddef>
#include <filesystem>
#include <functional>

#include "foundation/GEnumFolderContentsCallback.h"
#include "foundation/GFile.h"
#include "foundation/GFileSystem.h"
#include "foundation/GStopCallback.h"
#include "support/RecordingAppender.h"
#include "support/ScratchHome.h"
#include "tests/foundation/FileTestSupport.h"

namespace fs = std::filesystem;

namespace {

using Names = std::vector<std::string>;

class ListingCallback : public GEnumFolderContentsCallback {
 public:
  explicit ListingCallback(std::string top) : mTop(std::move(top) + "/") {}
  bool OnEntry(const GFileSystemSpec& spec, EKind kind) override {
    static constexpr const char* kMarks[] = {"", "/", "@", "?"};
    mNames.push_back(spec.GetPath().substr(mTop.size()) + kMarks[kind]);
    return mNames.size() < mMost;
  }
  std::string mTop;
  Names mNames;
  std::size_t mMost = 1'000'000;
};

class CountingStop : public GStopCallback {
 public:
  bool ShouldStop() override { return mQuestions++ == mStopsAt; }
  int mQuestions = 0;
  int mStopsAt = -1;
};

class FolderOperations : public testing::Test {
 protected:
  // A folder with something of every kind that can be copied.
  std::string MakeTree(const std::string& name) {
    mHome.WriteFile(name + "/a.txt", "alpha");
    mHome.WriteFile(name + "/sub/b.txt", "beta");
    const std::string tree = mHome.MakeFolder(name + "/sub/empty");
    fs::create_symlink("../..", Path(name + "/sub/loop"));
    fs::create_symlink("nowhere", Path(name + "/dangling"));
    chmod(Path(name + "/a.txt").c_str(), 0751);
    chmod(Path(name + "/sub").c_str(), 0555);
    return Path(name);
  }
  std::string Path(const std::string& name) const { return mHome.Path() + "/" + name; }
  static Names List(const std::string& folder, bool recursive = true) {
    ListingCallback callback(folder);
    EXPECT_EQ(GFileSystem::OSEnumFolderContents(folder, callback, recursive), 0U);
    return callback.mNames;
  }
  void TearDown() override { chmod(Path("tree/sub").c_str(), 0755); }

  static inline const Names kTree = {"a.txt",     "dangling@",  "sub/",
                                     "sub/b.txt", "sub/empty/", "sub/loop@"};
  RecordingAppender& mLog = RecordingAppender::Install();
  ScratchHome mHome;
};

mode_t BitsOf(const std::string& path) {
  struct stat status {};
  return lstat(path.c_str(), &status) == 0 ? status.st_mode & 07777 : 0;
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
  const std::string tree = MakeTree("tree");
  EXPECT_EQ(List(tree), kTree);
  EXPECT_EQ(List(tree, false), (Names{"a.txt", "dangling@", "sub/"}));
  fs::create_symlink(tree, Path("link"));
  EXPECT_EQ(List(Path("link")), kTree);  // the folder itself may be a link

  ListingCallback callback(tree);
  callback.mMost = 4;
  EXPECT_EQ(GFileSystem::OSEnumFolderContents(tree, callback, true),
            GFileSystem::kEnumFolderContentsCanceled);
  EXPECT_EQ(callback.mNames.size(), 4U);
  EXPECT_TRUE(mLog.Lines().empty());
  for (const char* none : {"/none", "/tree/a.txt"}) {
    EXPECT_EQ(GFileSystem::OSEnumFolderContents(mHome.Path() + none, callback, true),
              GFileSystem::kDirectoryNotFound);
  }
}

TEST_F(FolderOperations, EnumerationGoesOnPastWhatItCannotTell) {
  mHome.WriteFile("tree/b\xFF", "");
  mHome.WriteFile("tree/c\xC3\xA9", "");
  mHome.WriteFile("tree/a\xFF/inside", "");
  EXPECT_EQ(List(Path("tree")), (Names{"c\xC3\xA9"}));
  ASSERT_EQ(mLog.Lines().size(), 2U);
  EXPECT_NE(mLog.Lines()[0].find("GFileSystem::kCouldNotDecodeInput"), std::string::npos);

  const std::string folder = mHome.MakeFolder("other");
  for (const char* name : {"closed", "listed", "open"}) {
    mHome.WriteFile("other/" + std::string(name) + "/file", "");
  }
  for (const std::string& path : {mHome.Path(), folder, folder + "/open"}) {
    chmod(path.c_str(), 0755);
  }
  chmod((folder + "/closed").c_str(), 0);
  chmod((folder + "/listed").c_str(), 0744);  // names can be seen, but nobody gets in
  ListingCallback callback(folder);
  const AsNobody nobody;
  EXPECT_EQ(GFileSystem::OSEnumFolderContents(folder, callback, true), CoreErrorCodes::kError);
  EXPECT_EQ(callback.mNames, (Names{"closed/", "listed/", "open/", "open/file"}));
}

TEST_F(FolderOperations, DeletingRemovesLinksAndNotWhereTheyLead) {
  const std::string tree = MakeTree("tree");
  chmod(Path("tree/sub").c_str(), 0755);
  const std::string kept = mHome.WriteFile("kept/file", "");
  fs::create_symlink(Path("kept"), Path("tree/sub/aside"));
  fs::create_symlink(tree, Path("link"));
  EXPECT_EQ(GFileSystem::OSDeleteDirectory(tree, false), GFileSystem::kDirectoryNotEmpty);
  for (const bool recursive : {false, true}) {
    for (const char* none : {"link", "none", "kept/file", "none/x"}) {
      EXPECT_EQ(GFileSystem::OSDeleteDirectory(Path(none), recursive),
                GFileSystem::kDirectoryNotFound)
          << none;
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
  constexpr int kDepth = 2100;  // the path is longer than any call takes
  const std::string top = mHome.MakeFolder("deep");
  int folder = open(top.c_str(), O_RDONLY | O_DIRECTORY);
  for (int i = 0; i < kDepth; ++i) {
    ASSERT_EQ(mkdirat(folder, "d", 0700), 0);
    const int below = openat(folder, "d", O_RDONLY | O_DIRECTORY);
    close(folder);
    folder = below;
  }
  close(folder);
  rlimit before{};
  getrlimit(RLIMIT_NOFILE, &before);
  const rlimit few{32, before.rlim_max};
  setrlimit(RLIMIT_NOFILE, &few);
  EXPECT_EQ(GFileSystem::OSCopyDirectory(top, Path("copy")), 0U);
  EXPECT_EQ(List(Path("copy")).size(), static_cast<std::size_t>(kDepth));
  EXPECT_EQ(GFileSystem::OSDeleteDirectory(top, true), 0U);
  EXPECT_EQ(GFileSystem::OSDeleteDirectory(Path("copy"), true), 0U);
  setrlimit(RLIMIT_NOFILE, &before);
}

TEST_F(FolderOperations, CopiesOfFiles) {
  const std::string source = mHome.WriteFile("files/source", std::string(300'000, 'x'));
  chmod(source.c_str(), 04754);
  mHome.WriteFile("files/there", "old");
  fs::create_symlink("source", Path("files/link"));
  fs::create_symlink("nowhere", Path("files/dangling"));
  ASSERT_EQ(mkfifo(Path("files/fifo").c_str(), 0600), 0);
  const struct {
    const char* from;
    const char* to;
    TModuleErrorCode code;
  } rows[] = {
      {"source", "copy", 0},
      {"link", "copy2", 0},
      {"source", "there", GFileSystem::kFileOrDirectoryAlreadyExists},
      {"source", "source", GFileSystem::kFileOrDirectoryAlreadyExists},
      {"source", "dangling", GFileSystem::kFileOrDirectoryAlreadyExists},
      {"source", "none/x", GFileSystem::kDirectoryNotFound},
      {"source", "there/x", GFileSystem::kDirectoryNotFound},
      {"none", "x", GFileSystem::kFileNotFound},
      {"", "x", GFileSystem::kFileNotFound},
      {"fifo", "x", CoreErrorCodes::kNotSupported},
  };
  for (const auto& [from, to, code] : rows) {
    EXPECT_EQ(GFileSystem::OSCopyFile(Path("files/") + from, Path("files/") + to), code)
        << from << " " << to;
  }
  for (const char* copy : {"files/copy", "files/copy2"}) {
    EXPECT_EQ(ReadWholeFile(Path(copy)), std::string(300'000, 'x'));
    EXPECT_EQ(BitsOf(Path(copy)), 0754U);
  }
  EXPECT_EQ(ReadWholeFile(Path("files/there")), "old");
  EXPECT_EQ(GFileSystem::OSCopyFile("/proc/self/status", Path("files/status")), 0U);
  EXPECT_NE(ReadWholeFile(Path("files/status")).find("\nPid:"), std::string::npos);
  EXPECT_EQ(List(Path("files")),
            (Names{"copy", "copy2", "dangling@", "fifo?", "link@", "source", "status", "there"}));
}

TEST_F(FolderOperations, CopiesOfFolders) {
  const std::string tree = MakeTree("tree");
  EXPECT_EQ(GFileSystem::OSCopyDirectory(tree, Path("copy")), 0U);
  EXPECT_EQ(List(Path("copy")), kTree);
  EXPECT_EQ(ReadWholeFile(Path("copy/sub/b.txt")), "beta");
  EXPECT_EQ(BitsOf(Path("copy/a.txt")), 0751U);
  EXPECT_EQ(BitsOf(Path("copy/sub")), 0555U);
  EXPECT_EQ(BitsOf(Path("copy")), BitsOf(tree));
  EXPECT_EQ(fs::read_symlink(Path("copy/sub/loop")), "../..");

  fs::create_symlink(Path("tree/sub"), Path("aside"));
  chmod(Path("tree/sub").c_str(), 0755);
  EXPECT_EQ(GFileSystem::OSCopyDirectory(tree, Path("tree/x")), GFileSystem::kInvalidPath);
  EXPECT_EQ(GFileSystem::OSCopyDirectory(tree, Path("aside/x")), GFileSystem::kInvalidPath);
  EXPECT_EQ(GFileSystem::OSCopyDirectory(tree, Path("copy")),
            GFileSystem::kFileOrDirectoryAlreadyExists);
  EXPECT_EQ(GFileSystem::OSCopyDirectory(Path("tree/a.txt"), Path("x")),
            GFileSystem::kDirectoryNotFound);
  ASSERT_EQ(mkfifo(Path("tree/sub/fifo").c_str(), 0600), 0);
  EXPECT_EQ(GFileSystem::OSCopyDirectory(tree, Path("x")), CoreErrorCodes::kNotSupported);
  EXPECT_FALSE(fs::exists(Path("x")));
}

TEST_F(FolderOperations, StoppedAtAnyPointNothingIsLeft) {
  const std::string tree = MakeTree("tree");
  GFile file;
  ASSERT_EQ(file.Open(Path("tree/large"), GFile::eWrite | GFile::eTruncate), 0U);
  ASSERT_EQ(file.SetFileSize(20ULL << 20), 0U);
  ASSERT_EQ(file.Close(), 0U);
  CountingStop counting;
  EXPECT_EQ(GFileSystem::OSCopyDirectory(tree, Path("copy"), &counting), 0U);
  EXPECT_GE(counting.mQuestions, 7 + 3);  // entries, and chunks of the large file
  fs::permissions(Path("copy/sub"), fs::perms::owner_all);
  fs::remove_all(Path("copy"));
  const Names before = List(mHome.Path());
  for (int i = 0; i < counting.mQuestions; ++i) {
    CountingStop stop;
    stop.mStopsAt = i;
    EXPECT_EQ(GFileSystem::OSCopyDirectory(tree, Path("copy"), &stop), CoreErrorCodes::kStopped);
    EXPECT_EQ(List(mHome.Path()), before) << i;
  }
  CountingStop stop;
  stop.mStopsAt = 2;
  EXPECT_EQ(GFileSystem::OSCopyFile(Path("tree/large"), Path("copy"), &stop),
            CoreErrorCodes::kStopped);
  EXPECT_EQ(List(mHome.Path()), before);
}

TEST_F(FolderOperations, FullDiskLeavesNothing) {
  const std::string tree = MakeTree("tree");
  mHome.WriteFile("tree/large", std::string(100'000, 'x'));
  const auto meetsTheEnd = [&](const std::string& folder) {
    EXPECT_EQ(GFileSystem::OSCopyFile(Path("tree/large"), folder + "/x"), GFileSystem::kDiskFull);
    EXPECT_EQ(GFileSystem::OSCopyDirectory(tree, folder + "/x"), GFileSystem::kDiskFull);
    EXPECT_EQ(List(folder), Names());
  };
  const std::string folder = mHome.MakeFolder("disk");
  {
    const FileSizeLimit limit(8192);
    meetsTheEnd(folder);
  }
  const SmallDisk disk(folder);
  if (!disk.IsThere()) GTEST_SKIP() << "no right to mount a small disk";
  meetsTheEnd(folder);
  EXPECT_EQ(GFileSystem::OSMoveFile(Path("tree/large"), folder + "/x"), GFileSystem::kDiskFull);
  EXPECT_EQ(GFileSystem::OSMoveDirectory(tree, folder + "/x"), GFileSystem::kDiskFull);
  EXPECT_EQ(List(folder), Names());
  EXPECT_EQ(List(tree).size(), kTree.size() + 1);
  EXPECT_EQ(GFileSystem::OSDeleteDirectory(folder, true), GFileSystem::kFileIsLocked);
}

TEST_F(FolderOperations, MovesNeverReplace) {
  const std::string tree = MakeTree("tree");
  const std::string file = mHome.WriteFile("file", "text");
  mHome.MakeFolder("empty");
  fs::create_symlink(tree, Path("link"));
  const auto move = [this](bool isFolder, const char* from, const char* to) {
    const auto operation = isFolder ? GFileSystem::OSMoveDirectory : GFileSystem::OSMoveFile;
    return operation(Path(from), Path(to));
  };
  EXPECT_EQ(move(true, "tree", "empty"), GFileSystem::kFileOrDirectoryAlreadyExists);
  EXPECT_EQ(move(true, "tree", "tree/x"), GFileSystem::kInvalidPath);
  EXPECT_EQ(move(true, "file", "x"), GFileSystem::kDirectoryNotFound);
  EXPECT_EQ(move(true, "link", "x"), GFileSystem::kDirectoryNotFound);
  EXPECT_EQ(move(false, "tree", "x"), GFileSystem::kFileNotFound);
  EXPECT_EQ(move(false, "none", "x"), GFileSystem::kFileNotFound);
  EXPECT_EQ(move(false, "file", "link"), GFileSystem::kFileOrDirectoryAlreadyExists);
  EXPECT_EQ(move(false, "file", "none/x"), GFileSystem::kDirectoryNotFound);
  EXPECT_EQ(move(false, "link", "moved-link"), 0U);
  EXPECT_EQ(fs::read_symlink(Path("moved-link")), tree);
  EXPECT_EQ(move(false, "file", "moved"), 0U);
  EXPECT_EQ(ReadWholeFile(Path("moved")), "text");
  EXPECT_EQ(move(true, "tree", "empty/tree"), 0U);
  EXPECT_EQ(List(Path("empty/tree")), kTree);
  EXPECT_FALSE(fs::exists(tree));
  chmod(mHome.Path().c_str(), 0755);
  const AsNobody nobody;
  EXPECT_EQ(move(false, "moved", "again"), GFileSystem::kMoveFailed);
}

TEST_F(FolderOperations, MovesToAnotherFileSystem) {
  const std::string tree = MakeTree("tree");
  const std::string disk = mHome.MakeFolder("disk");
  const SmallDisk other(disk);
  if (!other.IsThere()) GTEST_SKIP() << "no right to mount a small disk";
  fs::create_symlink("nowhere", Path("link"));
  EXPECT_EQ(GFileSystem::OSMoveDirectory(tree, disk + "/tree"), 0U);
  EXPECT_EQ(GFileSystem::OSMoveFile(Path("link"), disk + "/link"), 0U);
  EXPECT_EQ(GFileSystem::OSMoveFile(disk + "/tree/a.txt", Path("a.txt")), 0U);
  EXPECT_EQ(List(disk), (Names{"link@", "tree/", "tree/dangling@", "tree/sub/", "tree/sub/b.txt",
                               "tree/sub/empty/", "tree/sub/loop@"}));
  EXPECT_EQ(ReadWholeFile(Path("a.txt")), "alpha");
  EXPECT_EQ(BitsOf(Path("a.txt")), 0751U);
  EXPECT_FALSE(fs::exists(tree));
}

TEST_F(FolderOperations, FileSystemsMayLackCalls) {
  testing::GTEST_FLAG(death_test_style) = "fast";
  MakeTree("tree");
  mHome.WriteFile("file", "text");
  mHome.WriteFile("there", "old");
  mHome.MakeFolder("empty");
  const auto inChild = [](unsigned call, unsigned error, const std::function<bool()>& works) {
    EXPECT_EXIT(
        {
          Refuse(call, error);
          _exit(works() ? 0 : 1);
        },
        testing::ExitedWithCode(0), "");
  };
  inChild(SYS_copy_file_range, EXDEV, [this] {
    return GFileSystem::OSCopyFile(Path("file"), Path("copy")) == 0 &&
           ReadWholeFile(Path("copy")) == "text";
  });
  // The plain rename is a call of its own.
  inChild(SYS_renameat2, EINVAL, [this] {
    constexpr TModuleErrorCode kExists = GFileSystem::kFileOrDirectoryAlreadyExists;
    return GFileSystem::OSMoveFile(Path("file"), Path("there")) == kExists &&
           GFileSystem::OSMoveDirectory(Path("tree"), Path("empty")) == kExists &&
           GFileSystem::OSMoveFile(Path("file"), Path("moved")) == 0 &&
           GFileSystem::OSMoveDirectory(Path("tree"), Path("moved-tree")) == 0 &&
           GFileSystem::OSCopyDirectory(Path("moved-tree"), Path("copied-tree")) == 0;
  });
  EXPECT_EQ(ReadWholeFile(Path("moved")), "text");
  EXPECT_EQ(List(Path("copied-tree")), kTree);
  EXPECT_FALSE(fs::exists(Path("file")) || fs::exists(Path("tree")));
}

}  // namespace
