#include "platform/linux/LinuxProcess.h"

#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cerrno>
#include <filesystem>

#include "platform/VendrelFileUtils.h"
#include "support/Eventually.h"
#include "support/RunProgram.h"
#include "support/ScratchHome.h"

namespace fs = std::filesystem;

namespace {

std::string WriteScript(const ScratchHome& home, const std::string& name,
                        const std::string& lines) {
  const std::string path = home.WriteFile(name, "#!/bin/sh\n" + lines + "\n");
  fs::permissions(path, fs::perms::owner_exec, fs::perm_options::add);
  return path;
}

TEST(LinuxProcess, ARunningProgramIsFoundByTheFileItRuns) {
  ScratchHome home;
  LinuxProcess process;
  std::string folder = "untouched";
  const std::string bin = home.MakeFolder("some bin");
  const std::string exe = bin + "/a-name-longer-than-the-kernel-keeps";
  const std::string name = fs::path(exe).filename();
  EXPECT_FALSE(process.GetPathToRunningProcessExe(name, folder));
  EXPECT_EQ(folder, "untouched");

  fs::copy_file("/bin/sleep", exe);
  const Program running({exe, "600"});
  const auto isFound = [&] { return process.GetPathToRunningProcessExe(name, folder); };
  ASSERT_TRUE(Eventually(isFound));
  EXPECT_EQ(folder, bin + "/");
  EXPECT_FALSE(process.GetPathToRunningProcessExe("a-name-longer-t", folder));

  fs::permissions(bin, fs::perms::others_write, fs::perm_options::add);
  EXPECT_FALSE(isFound());
  fs::permissions(bin, fs::perms::others_write, fs::perm_options::remove);
  fs::copy_file("/bin/sleep", exe + ".new");
  fs::rename(exe + ".new", exe);  // updated in place while it runs
  EXPECT_TRUE(isFound());
  fs::remove(exe);
  EXPECT_FALSE(isFound());
}

TEST(LinuxProcess, ALaunchedProgramStandsAlone) {
  ScratchHome home;
  LinuxProcess process;
  const std::string answer = home.Path() + "/answer";
  // Its arguments, its folder, and whether it leads its session.
  const std::string script =
      WriteScript(home, "agent",
                  "session=$(cut -d' ' -f6 /proc/$$/stat)\n"
                  "[ $session = $$ ] && leads=yes || leads=no\n"
                  "echo \"$#|$1|$(pwd)|$leads\" > '" +
                      answer + ".part'\nmv '" + answer + ".part' '" + answer + "'");
  ASSERT_TRUE(process.LaunchDetached(script, {"one argument; $HOME"}));
  ASSERT_TRUE(Eventually([&] { return VendrelFileUtils::FileExistsAtPath(answer); }));
  EXPECT_EQ(ReadWholeFile(answer), "1|one argument; $HOME|/|yes\n");
  EXPECT_EQ(waitpid(-1, nullptr, WNOHANG), -1);
  EXPECT_EQ(errno, ECHILD);
  EXPECT_FALSE(process.LaunchDetached(home.Path() + "/missing", {}));
}

TEST(LinuxProcess, WaitingGivesTheExitStatus) {
  ScratchHome home;
  LinuxProcess process;
  EXPECT_EQ(process.LaunchAndWait(WriteScript(home, "seven", "exit $1"), {"7"}), 7);
  EXPECT_EQ(process.LaunchAndWait(WriteScript(home, "killed", "kill -9 $$"), {}), 128 + 9);
  EXPECT_EQ(process.LaunchAndWait(home.Path() + "/missing", {}), -1);
}

TEST(VendrelFileUtils, DatesOfFiles) {
  ScratchHome home;
  const std::string file = home.WriteFile("file", "x");
  EXPECT_TRUE(VendrelFileUtils::SetFileModificationDate(file, 1'000'000'000));
  EXPECT_EQ(VendrelFileUtils::GetFileModificationDate(file), 1'000'000'000);
  EXPECT_EQ(VendrelFileUtils::GetFileModificationDate(home.Path() + "/missing"), 0);
  EXPECT_FALSE(VendrelFileUtils::SetFileModificationDate(home.Path() + "/missing", 1));
}

}  // namespace
