#include "foundation/GFileSystem.h"

#include <sys/stat.h>

#include <filesystem>

#include "tests/foundation/FileTestSupport.h"

namespace fs = std::filesystem;

namespace {

using GFileSystemTest = FileTest;

TEST_F(GFileSystemTest, PathsAreExpandedByText) {
  const std::pair<const char*, std::string> rows[] = {{"", ""},
                                                      {"/", "/"},
                                                      {"//a///b/", "/a/b"},
                                                      {"/../..", "/"},
                                                      {"/a/...", "/a/..."},
                                                      {"/a/./b/../c", "/a/c"},
                                                      {"/~", "/~"},
                                                      {"~", mHome.Path()},
                                                      {"~/x/..", mHome.Path()},
                                                      {"a/../b", "a/../b"},
                                                      {"~other/x", "~other/x"}};
  for (const auto& [path, expanded] : rows) {
    EXPECT_EQ(GFileSystem::OSExpandPath(path), expanded) << path;
  }
}

TEST_F(GFileSystemTest, NamesHave255BytesAtMost) {
  const GFileSystemSpec file(mHome.WriteFile("file", "text"));
  for (const std::size_t size : {256U, 255U}) {
    const GFileSystemSpec name(Path(std::string(size, 'n')));
    const TModuleErrorCode code = size == 255 ? 0 : GFileSystem::kInvalidPath;
    EXPECT_EQ(GFileSystem::OSCreateDirectory(name, false), code);
    EXPECT_EQ(GFileSystem::OSDeleteDirectory(name, true), code);
    EXPECT_EQ(GFileSystem::OSCopyFile(file, name), code);
    EXPECT_EQ(GFileSystem::OSDeleteFile(name), code);
    EXPECT_EQ(GFileSystem::OSMoveFile(file, name), code);
  }
}

TEST_F(GFileSystemTest, OnlyFullPathsMakeASpec) {
  EXPECT_TRUE(GFileSystemSpec("").IsEmpty());
  EXPECT_TRUE(mLog.Lines().empty());
  for (const std::string& path : {std::string("relative"), std::string("/a\0b", 4)}) {
    EXPECT_TRUE(GFileSystemSpec(path).IsEmpty());
    EXPECT_TRUE(IsRecorded("!(strCopy.empty() || GFileSystem::OSIsValidFullPath(strCopy))"));
  }
  EXPECT_EQ(mLog.Lines().size(), 2U);
}

TEST_F(GFileSystemTest, PartsOfASpec) {
  GFileSystemSpec spec("/a.b/c.tar.gz/");
  EXPECT_EQ(spec.GetLastPathComponent(), "c.tar.gz");
  EXPECT_EQ(spec.GetPathExtension(), "gz");
  EXPECT_EQ(spec.GetPathComponents(), (std::vector<std::string>{"a.b", "c.tar.gz"}));
  spec.RemovePathExtension();
  EXPECT_EQ(spec, "/a.b/c.tar");
  spec.AppendPathComponent("../d");
  EXPECT_EQ(spec, "/a.b/d");
  EXPECT_EQ(spec.GetPathExtension(), "");
  for (int i = 0; i < 3; ++i) spec.RemoveLastPathComponent();
  EXPECT_EQ(spec, "/");
  EXPECT_EQ(spec.GetLastPathComponent(), "");
  EXPECT_EQ(GFileSystemSpec("/a/.profile").GetPathExtension(), "profile");
  for (const char* path : {"/a/.profile", "/a/...", "/a/..x", "/a/...ttf"}) {
    GFileSystemSpec dots(path);
    dots.RemovePathExtension();
    EXPECT_EQ(dots, path) << "nothing, or a way up, would be left";
  }
  GFileSystemSpec empty;
  empty.AppendPathComponent("x");
  EXPECT_TRUE(empty.IsEmpty());
}

TEST_F(GFileSystemTest, SubpathIsLongerAndBeginsTheSame) {
  const std::tuple<const char*, const char*, bool> rows[] = {
      {"/Fonts", "/fonts/x", true},
      {"/Fonts", "/fonts", false},
      {"/Fonts", "/other/fonts", false},
      {"/Fonts", "/fonts2", true},  // by text, not by component
      {"/SCHRÄGE", "/schräge/x", true}};
  for (const auto& [folder, path, isSubpath] : rows) {
    EXPECT_EQ(GFileSystemSpec(folder).IsSubpath(path), isSubpath) << path;
  }
}

TEST_F(GFileSystemTest, MakesAndFindsFoldersAndFiles) {
  const GFileSystemSpec deep(Path("a/b/c"));
  EXPECT_EQ(GFileSystem::OSCreateDirectory(deep, false), GFileSystem::kDirectoryNotFound);
  for (const bool withParents : {true, true, false}) {
    EXPECT_EQ(GFileSystem::OSCreateDirectory(deep, withParents), 0U);
  }
  EXPECT_TRUE(GFileSystem::OSDoesDirectoryExist(deep));
  EXPECT_FALSE(GFileSystem::OSDoesFileExist(deep));
  EXPECT_EQ(GFileSystem::OSCreateDirectory(GFileSystemSpec(), true), GFileSystem::kInvalidPath);

  const GFileSystemSpec file(mHome.WriteFile("a/file", "12345"));
  EXPECT_EQ(GFileSystem::OSCreateDirectory(file, false),
            GFileSystem::kFileOrDirectoryAlreadyExists);
  EXPECT_TRUE(GFileSystem::OSDoesFileExist(file));
  EXPECT_FALSE(GFileSystem::OSIsExecutableFile(file));
  fs::permissions(file.GetPath(), fs::perms::owner_all);
  EXPECT_TRUE(GFileSystem::OSIsExecutableFile(file));
  EXPECT_FALSE(GFileSystem::OSIsExecutableFile(deep));

  unsigned long long size = 0;
  for (const auto measure :
       {GFileSystem::OSGetFileSize, GFileSystem::OSGetFileSizeWithoutResourceFork}) {
    EXPECT_EQ(measure(file, size), 0U);
    EXPECT_EQ(std::exchange(size, 0), 5U);
    EXPECT_EQ(measure(deep, size), GFileSystem::kFileNotFound);
  }
  EXPECT_FALSE(GFileSystem::OSHasResourceFork(file));
  EXPECT_EQ(GFileSystem::OSDeleteFile(deep), GFileSystem::kFileNotFound);
  EXPECT_EQ(GFileSystem::OSDeleteFile(file), 0U);
  EXPECT_EQ(GFileSystem::OSDeleteFile(file), GFileSystem::kFileNotFound);
}

TEST_F(GFileSystemTest, UserFoldersFollowTheVariables) {
  const std::string home = mHome.Path();
  using Folder = GFileSystemSpec (*)();
  // A null value: unset.
  const std::tuple<Folder, const char*, const char*, std::string> rows[] = {
      {GFileSystem::OSGetUsersRootDirectory, "-", nullptr, home},
      {GFileSystem::OSGetUsersLogDirectory, "-", nullptr, home + "/.local/state/vendrel"},
      {GFileSystem::OSGetUsersAppSupportDirectory, "-", nullptr, home + "/.local/share"},
      {GFileSystem::OSGetUsersAppDataDirectory, "XDG_DATA_HOME", "/elsewhere", "/elsewhere"},
      {GFileSystem::OSGetUsersAppDataDirectory, "XDG_DATA_HOME", "no", home + "/.local/share"},
      {GFileSystem::OSGetUsersRoamingAppDataDirectory, "XDG_CONFIG_HOME", nullptr,
       home + "/.config"},
      {GFileSystem::OSGetTempDirectory, "TMPDIR", home.c_str(), home},
      {GFileSystem::OSGetTempDirectory, "TMPDIR", nullptr, "/tmp"},
      {GFileSystem::OSGetSharedUserDirectory, "-", nullptr, home + "/usr/share"},
      {GFileSystem::OSGetSharedUserDirectory, "XDG_DATA_DIRS", "no::/opt/share:/b", "/opt/share"},
      {GFileSystem::OSGetSharedUserDirectory, "XDG_DATA_DIRS", nullptr, "/usr/local/share"},
      {GFileSystem::OSGetDocumentsDirectory, "-", nullptr, home + "/Documents"}};
  for (const auto& [folder, variable, value, expected] : rows) {
    value == nullptr ? unsetenv(variable) : setenv(variable, value, 1);
    EXPECT_EQ(folder().GetPath(), expected) << variable;
  }
}

TEST_F(GFileSystemTest, FoldersOfTheUser) {
  const std::string home = mHome.Path();
  const auto desktop = [] { return GFileSystem::OSGetDesktopDirectory().GetPath(); };
  EXPECT_EQ(desktop(), home + "/Desktop");
  EXPECT_TRUE(mLog.Lines().empty());
  const std::pair<std::string, std::string> rows[] = {
      {"# XDG_DESKTOP_DIR=\"/no\"\nXDG_DESKTOP_DIR=\"$HOME/Bureau\"\n", home + "/Bureau"},
      {" XDG_DESKTOP_DIR = \"/a \\\"b\\\"\" # c\r\n", "/a \"b\""},
      {"XDG_DESKTOP_DIR=\"/first\"\nXDG_DESKTOP_DIR=\"/last\"", "/last"},
      {"XDG_DESKTOP_DIR=\"$HOME/\"", home},
      {"XDG_DESKTOP_DIR=\"$HOMELESS\"\nXDG_DESKTOP_DIR=relative\n", home + "/Desktop"},
      {"XDG_DESKTOP_DIR=\"/a\"\n" + std::string(1 << 17, '#'), home + "/Desktop"},
      {"XDG_DESKTOP_DIR=\"/a\\", "/a\\"},
  };
  for (const auto& [text, folder] : rows) {
    mHome.WriteFile(".config/user-dirs.dirs", text);
    EXPECT_EQ(desktop(), folder) << text.substr(0, 80);
  }
}

TEST_F(GFileSystemTest, AttributesOfFiles) {
  const GFileSystemSpec file(mHome.WriteFile("file", "text"));
  const auto setReadable = [](bool isReadable) {
    return [=](const GFileSystemSpec& spec) {
      return GFileSystem::OSMakeFileReadable(spec, isReadable);
    };
  };
  using Change = std::function<TModuleErrorCode(const GFileSystemSpec&)>;
  const std::tuple<Change, mode_t, mode_t> rows[] = {
      {GFileSystem::OSMakeFileWritable, 0444, 0644},
      {GFileSystem::OSMakeFileWorldWritable, 0755, 0777},
      {GFileSystem::OSMakeFileReadOnly, 0777, 0555},
      {setReadable(true), 0200, 0600},
      {setReadable(false), 0644, 0200}};
  for (const auto& [change, before, after] : rows) {
    ASSERT_EQ(chmod(file.GetPath().c_str(), before), 0);
    EXPECT_EQ(change(file), 0U);
    EXPECT_EQ(fs::status(file.GetPath()).permissions(), fs::perms{after});
    EXPECT_EQ(change(mHome.Path()), GFileSystem::kFileNotFound);
    EXPECT_EQ(change(Path("missing")), GFileSystem::kFileNotFound);
  }
}

TEST_F(GFileSystemTest, TrustEndsWhereOthersMayWrite) {
  const std::string folder = mHome.MakeFolder("bin");
  const std::string program = mHome.WriteFile("bin/program", "");
  const std::string link = Path("link");
  fs::create_symlink(program, link);  // what counts is where it leads
  if (!GFileSystem::OSIsTrustedLocation(fs::temp_directory_path().parent_path().string())) {
    GTEST_SKIP() << "the temporary folder lies where others may write";
  }
  // A group of root's is private to root. A sticky folder may lie on the way.
  const bool isRoot = geteuid() == 0;
  const std::tuple<mode_t, mode_t, bool> rows[] = {{0755, 0755, true},   {0755, 0757, false},
                                                   {0755, 0775, isRoot}, {0757, 0755, false},
                                                   {0777, 0755, false},  {01777, 0755, isRoot}};
  for (const auto& [folderMode, programMode, isTrusted] : rows) {
    if (programMode == 0775 && !isRoot) continue;
    chmod(folder.c_str(), folderMode);
    chmod(program.c_str(), programMode);
    EXPECT_EQ(GFileSystem::OSIsTrustedLocation(program), isTrusted) << folderMode << programMode;
    EXPECT_EQ(GFileSystem::OSIsTrustedLocation(link), isTrusted) << folderMode << programMode;
  }
  EXPECT_FALSE(GFileSystem::OSIsTrustedLocation(folder));  // sticky, and so no place of ours
  EXPECT_FALSE(GFileSystem::OSIsTrustedLocation(Path("none")));
  EXPECT_TRUE(GFileSystem::OSIsTrustedLocation("/"));
  EXPECT_FALSE(GFileSystem::OSIsTrustedLocation(""));
  if (!isRoot) return;
  for (const auto& [owner, folderMode, programMode] :
       {std::tuple{0U, 0755U, 0775U}, std::tuple{65534U, 01777U, 0755U}}) {
    chmod(folder.c_str(), folderMode);
    ASSERT_EQ(chown(program.c_str(), owner, 65534), 0);
    chmod(program.c_str(), programMode);
    EXPECT_FALSE(GFileSystem::OSIsTrustedLocation(program)) << owner;
  }
}

}  // namespace
