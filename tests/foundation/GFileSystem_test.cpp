#include "foundation/GFileSystem.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>

#include "support/RecordingAppender.h"
#include "support/ScratchHome.h"

namespace fs = std::filesystem;

namespace {

class GFileSystemTest : public testing::Test {
 protected:
  RecordingAppender& mLog = RecordingAppender::Install();
  ScratchHome mHome;
};

TEST_F(GFileSystemTest, PathsAreExpandedByText) {
  const std::pair<const char*, std::string> rows[] = {
      {"", ""},
      {"/", "/"},
      {"//a///b/", "/a/b"},
      {"/a/./b/../c", "/a/c"},
      {"/../..", "/"},
      {"/a/...", "/a/..."},
      {"~", mHome.Path()},
      {"~/x/..", mHome.Path()},
      {"/~", "/~"},
      {"~other/x", "~other/x"},
      {"a/../b", "a/../b"},
  };
  for (const auto& [path, expanded] : rows) {
    EXPECT_EQ(GFileSystem::OSExpandPath(path), expanded) << path;
  }
}

TEST_F(GFileSystemTest, NamesHave255BytesAtMost) {
  const GFileSystemSpec longest(mHome.Path() + "/" + std::string(255, 'n'));
  const GFileSystemSpec tooLong(mHome.Path() + "/" + std::string(256, 'n'));
  const GFileSystemSpec file(mHome.WriteFile("file", "text"));
  EXPECT_EQ(GFileSystem::OSCreateDirectory(longest, false), 0U);
  EXPECT_EQ(GFileSystem::OSDeleteDirectory(longest, false), 0U);
  EXPECT_EQ(GFileSystem::OSCopyFile(file, longest), 0U);
  EXPECT_EQ(GFileSystem::OSDeleteFile(longest), 0U);
  EXPECT_EQ(GFileSystem::OSCreateDirectory(tooLong, false), GFileSystem::kInvalidPath);
  EXPECT_EQ(GFileSystem::OSCopyFile(file, tooLong), GFileSystem::kInvalidPath);
  EXPECT_EQ(GFileSystem::OSMoveFile(file, tooLong), GFileSystem::kInvalidPath);
  EXPECT_EQ(GFileSystem::OSDeleteFile(tooLong), GFileSystem::kInvalidPath);
  EXPECT_EQ(GFileSystem::OSDeleteDirectory(tooLong, true), GFileSystem::kInvalidPath);
  EXPECT_TRUE(GFileSystem::OSDoesFileExist(file));
}

TEST_F(GFileSystemTest, OnlyFullPathsMakeASpec) {
  EXPECT_TRUE(GFileSystemSpec("").IsEmpty());
  EXPECT_TRUE(mLog.Lines().empty());
  EXPECT_TRUE(GFileSystemSpec("relative").IsEmpty());
  EXPECT_TRUE(GFileSystemSpec(std::string("/a\0b", 4)).IsEmpty());
  ASSERT_EQ(mLog.Lines().size(), 2U);
  EXPECT_NE(mLog.Lines()[0].find("Expression='!(strCopy.empty() || "
                                 "GFileSystem::OSIsValidFullPath(strCopy))'"),
            std::string::npos);
}

TEST_F(GFileSystemTest, PartsOfASpec) {
  GFileSystemSpec spec("/a.b/c.tar.gz/");
  EXPECT_EQ(spec.GetLastPathComponent(), "c.tar.gz");
  EXPECT_EQ(spec.GetPathExtension(), "gz");
  EXPECT_EQ(spec.GetPathComponents(), (std::vector<std::string>{"a.b", "c.tar.gz"}));
  spec.RemovePathExtension();
  EXPECT_EQ(spec, GFileSystemSpec("/a.b/c.tar"));
  spec.AppendPathComponent("../d");
  EXPECT_EQ(spec.GetPath(), "/a.b/d");
  EXPECT_EQ(spec.GetPathExtension(), "");
  EXPECT_EQ(GFileSystemSpec("/a/.profile").GetPathExtension(), "profile");
  GFileSystemSpec hidden("/a/.profile");
  hidden.RemovePathExtension();
  EXPECT_EQ(hidden, "/a/.profile");
  GFileSystemSpec empty;
  empty.AppendPathComponent("x");
  EXPECT_TRUE(empty.IsEmpty());
  for (int i = 0; i < 3; ++i) spec.RemoveLastPathComponent();
  EXPECT_EQ(spec.GetPath(), "/");
  EXPECT_EQ(spec.GetLastPathComponent(), "");
}

TEST_F(GFileSystemTest, SubpathIsLongerAndBeginsTheSame) {
  const GFileSystemSpec folder("/Fonts");
  EXPECT_TRUE(folder.IsSubpath("/fonts/x"));
  EXPECT_FALSE(folder.IsSubpath("/fonts"));
  EXPECT_FALSE(folder.IsSubpath("/other/fonts"));
  EXPECT_TRUE(folder.IsSubpath("/fonts2"));  // by text, not by component
  EXPECT_TRUE(GFileSystemSpec("/SCHRÄGE").IsSubpath("/schräge/x"));
  EXPECT_FALSE(GFileSystemSpec("/a").IsSubpath("/b/a"));
}

TEST_F(GFileSystemTest, MakesAndFindsFoldersAndFiles) {
  const GFileSystemSpec deep(mHome.Path() + "/a/b/c");
  EXPECT_EQ(GFileSystem::OSCreateDirectory(deep, false), GFileSystem::kDirectoryNotFound);
  EXPECT_EQ(GFileSystem::OSCreateDirectory(deep, true), 0U);
  EXPECT_EQ(GFileSystem::OSCreateDirectory(deep, true), 0U);
  EXPECT_EQ(GFileSystem::OSCreateDirectory(deep, false), 0U);
  EXPECT_TRUE(GFileSystem::OSDoesDirectoryExist(deep));
  EXPECT_FALSE(GFileSystem::OSDoesFileExist(deep));

  const GFileSystemSpec file(mHome.WriteFile("a/file", "12345"));
  EXPECT_EQ(GFileSystem::OSCreateDirectory(file, false),
            GFileSystem::kFileOrDirectoryAlreadyExists);
  EXPECT_EQ(GFileSystem::OSCreateDirectory(GFileSystemSpec(), true), GFileSystem::kInvalidPath);
  EXPECT_TRUE(GFileSystem::OSDoesFileExist(file));
  EXPECT_FALSE(GFileSystem::OSIsExecutableFile(file));
  fs::permissions(file.GetPath(), fs::perms::owner_all);
  EXPECT_TRUE(GFileSystem::OSIsExecutableFile(file));
  EXPECT_FALSE(GFileSystem::OSIsExecutableFile(deep));

  unsigned long long size = 0;
  EXPECT_EQ(GFileSystem::OSGetFileSize(file, size), 0U);
  EXPECT_EQ(size, 5U);
  EXPECT_EQ(GFileSystem::OSDeleteFile(deep), GFileSystem::kFileNotFound);
  EXPECT_EQ(GFileSystem::OSDeleteFile(file), 0U);
  EXPECT_EQ(GFileSystem::OSDeleteFile(file), GFileSystem::kFileNotFound);
  EXPECT_EQ(GFileSystem::OSGetFileSize(file, size), GFileSystem::kFileNotFound);
}

TEST_F(GFileSystemTest, UserFoldersFollowTheVariables) {
  const std::string home = mHome.Path();
  EXPECT_EQ(GFileSystem::OSGetUsersRootDirectory(), GFileSystemSpec(home));
  EXPECT_EQ(GFileSystem::OSGetUsersLogDirectory(), home + "/.local/state/vendrel");
  setenv("XDG_DATA_HOME", (home + "/elsewhere").c_str(), 1);
  EXPECT_EQ(GFileSystem::OSGetUsersAppDataDirectory(), home + "/elsewhere");
  setenv("XDG_DATA_HOME", "relative", 1);
  EXPECT_EQ(GFileSystem::OSGetUsersAppDataDirectory(), home + "/.local/share");
  unsetenv("XDG_CONFIG_HOME");
  EXPECT_EQ(GFileSystem::OSGetUsersRoamingAppDataDirectory(), home + "/.config");
  setenv("TMPDIR", home.c_str(), 1);
  EXPECT_EQ(GFileSystem::OSGetTempDirectory(), GFileSystemSpec(home));
  unsetenv("TMPDIR");
  EXPECT_EQ(GFileSystem::OSGetTempDirectory(), "/tmp");
}

TEST_F(GFileSystemTest, FoldersOfTheUser) {
  const std::string home = mHome.Path();
  const auto desktop = [] { return GFileSystem::OSGetDesktopDirectory().GetPath(); };
  EXPECT_EQ(desktop(), home + "/Desktop");
  EXPECT_EQ(GFileSystem::OSGetDocumentsDirectory(), home + "/Documents");
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
  EXPECT_EQ(GFileSystem::OSGetUsersAppSupportDirectory(), home + "/.local/share");
  EXPECT_EQ(GFileSystem::OSGetSharedUserDirectory(), home + "/usr/share");
  setenv("XDG_DATA_DIRS", "relative::/opt/share:/b", 1);
  EXPECT_EQ(GFileSystem::OSGetSharedUserDirectory(), "/opt/share");
  unsetenv("XDG_DATA_DIRS");
  EXPECT_EQ(GFileSystem::OSGetSharedUserDirectory(), "/usr/local/share");
  EXPECT_EQ(GFileSystem::OSGetPathSeparator(), "/");
}

TEST_F(GFileSystemTest, AttributesOfFiles) {
  const GFileSystemSpec file(mHome.WriteFile("file", "text"));
  const GFileSystemSpec folder(mHome.MakeFolder("folder"));
  const GFileSystemSpec missing(mHome.Path() + "/missing");
  const auto readable = [](const GFileSystemSpec& spec) {
    return GFileSystem::OSMakeFileReadable(spec, true);
  };
  const auto unreadable = [](const GFileSystemSpec& spec) {
    return GFileSystem::OSMakeFileReadable(spec, false);
  };
  const struct {
    TModuleErrorCode (*change)(const GFileSystemSpec&);
    mode_t before;
    mode_t after;
  } rows[] = {
      {&GFileSystem::OSMakeFileWritable, 0444, 0644},
      {&GFileSystem::OSMakeFileWorldWritable, 0755, 0777},
      {&GFileSystem::OSMakeFileReadOnly, 0777, 0555},
      {readable, 0200, 0600},
      {unreadable, 0644, 0200},
  };
  for (const auto& [change, before, after] : rows) {
    struct stat status {};
    ASSERT_EQ(chmod(file.GetPath().c_str(), before), 0);
    EXPECT_EQ(change(file), 0U);
    ASSERT_EQ(stat(file.GetPath().c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777, after);
    EXPECT_EQ(change(folder), GFileSystem::kFileNotFound);
    EXPECT_EQ(change(missing), GFileSystem::kFileNotFound);
  }
  unsigned long long size = 0;
  EXPECT_EQ(GFileSystem::OSGetFileSizeWithoutResourceFork(file, size), 0U);
  EXPECT_EQ(size, 4U);
  EXPECT_FALSE(GFileSystem::OSHasResourceFork(file));
  EXPECT_EQ(GFileSystem::OSGetFileSizeWithoutResourceFork(folder, size),
            GFileSystem::kFileNotFound);
}

TEST_F(GFileSystemTest, TrustEndsWhereOthersMayWrite) {
  const std::string folder = mHome.MakeFolder("bin");
  const std::string program = mHome.WriteFile("bin/program", "");
  const auto isTrusted = [&program](const char* path = nullptr) {
    return GFileSystem::OSIsTrustedLocation(path == nullptr ? program : path);
  };
  chmod(folder.c_str(), 0755);
  chmod(program.c_str(), 0755);
  if (!GFileSystem::OSIsTrustedLocation(fs::temp_directory_path().parent_path().string())) {
    GTEST_SKIP() << "the temporary folder lies where others may write";
  }
  EXPECT_TRUE(isTrusted());
  chmod(program.c_str(), 0757);
  EXPECT_FALSE(isTrusted());
  chmod(program.c_str(), 0775);
  if (geteuid() == 0) {
    // Root's group is private to root; a group of somebody else's is not.
    EXPECT_TRUE(isTrusted());
    ASSERT_EQ(chown(program.c_str(), 0, 65534), 0);
    EXPECT_FALSE(isTrusted());
  }
  chmod(program.c_str(), 0755);
  chmod(folder.c_str(), 0757);
  EXPECT_FALSE(isTrusted());
  chmod(folder.c_str(), 0755);

  const std::string link = mHome.Path() + "/link";
  fs::create_symlink(program, link);
  EXPECT_TRUE(isTrusted(link.c_str()));  // what counts is where it leads
  chmod(folder.c_str(), 0777);
  EXPECT_FALSE(isTrusted(link.c_str()));
  EXPECT_FALSE(isTrusted((mHome.Path() + "/none").c_str()));
  EXPECT_TRUE(isTrusted("/"));
  EXPECT_FALSE(isTrusted(""));

  // A sticky folder may lie on the way, but is itself no place of ours.
  chmod(folder.c_str(), 01777);
  EXPECT_FALSE(isTrusted(folder.c_str()));
  EXPECT_EQ(isTrusted(), geteuid() == 0);
  if (geteuid() == 0) {
    ASSERT_EQ(chown(program.c_str(), 65534, 65534), 0);
    EXPECT_FALSE(isTrusted());
  }
}

}  // namespace
