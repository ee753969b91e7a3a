#include <gtest/gtest.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <thread>

#include "platform/linux/FontconfigFontLookup.h"
#include "platform/linux/StderrMessageBox.h"
#include "support/RunProgram.h"
#include "support/ScratchHome.h"
#include "support/TestFonts.h"

namespace fs = std::filesystem;

namespace {

// A font file outside the folders that fontconfig looks at.
std::string BuildUnseenFont(const ScratchHome& home, const std::string& postScriptName) {
  const std::string path = home.MakeFolder("built") + "/" + postScriptName + ".ttf";
  BuildFont(path, postScriptName);
  return path;
}

TEST(FontLookup, TheNextQuestionSeesEveryChange) {
  ScratchHome home;
  const std::string first = BuildUnseenFont(home, "LookupTest-One");
  const std::string second = BuildUnseenFont(home, "LookupTest-Two");
  const std::string third = BuildUnseenFont(home, "LookupTest-Three");
  FontconfigFontLookup lookup;
  EXPECT_FALSE(lookup.IsVisible("LookupTest-One"));

  // The user's font folder, and a shard in it, come to be.
  const std::string shard = home.MakeFolder(".local/share/fonts/vendrel/ab");
  fs::rename(first, shard + "/one.ttf");
  EXPECT_TRUE(lookup.IsVisible("LookupTest-One"));
  EXPECT_FALSE(lookup.IsVisible("lookuptest-one"));
  EXPECT_FALSE(lookup.IsVisible("Test LookupTest-One"));
  EXPECT_FALSE(lookup.IsVisible("LookupTest-Two"));

  // Long after the last change the times alone must tell.
  std::this_thread::sleep_for(std::chrono::milliseconds(50));
  EXPECT_FALSE(lookup.IsVisible("LookupTest-Two"));
  // Another program does it.
  RunProgram({"mv", second, shard + "/two.ttf"});
  EXPECT_TRUE(lookup.IsVisible("LookupTest-Two"));
  fs::rename(third, home.MakeFolder(".local/share/fonts/vendrel/cd") + "/three.ttf");
  EXPECT_TRUE(lookup.IsVisible("LookupTest-Three"));

  RunProgram({"rm", shard + "/one.ttf"});
  EXPECT_FALSE(lookup.IsVisible("LookupTest-One"));
  EXPECT_TRUE(lookup.IsVisible("LookupTest-Two"));
}

// A copy takes its time, and fontconfig remembers what it saw in the middle of it.
TEST(FontLookup, SeesAFontWhoseCopyWasAskedAboutInTheMiddle) {
  ScratchHome home;
  const std::string bytes = ReadWholeFile(BuildUnseenFont(home, "LookupTest-Slow"));
  const std::string folder = home.MakeFolder(".local/share/fonts");
  FontconfigFontLookup lookup;
  EXPECT_FALSE(lookup.IsVisible("LookupTest-Slow"));
  {
    std::ofstream copy(folder + "/slow.ttf", std::ios::binary);
    copy << bytes.substr(0, bytes.size() / 2) << std::flush;
    EXPECT_FALSE(lookup.IsVisible("LookupTest-Slow"));
    copy << bytes.substr(bytes.size() / 2);
  }
  EXPECT_TRUE(lookup.IsVisible("LookupTest-Slow"));
}

TEST(StderrMessageBox, WritesOneLineAndSurvivesAClosedPipe) {
  int ends[2];
  ASSERT_EQ(pipe(ends), 0);
  const int before = dup(STDERR_FILENO);
  dup2(ends[1], STDERR_FILENO);
  close(ends[1]);
  StderrMessageBox box;
  box.ShowMessage("first\nsecond");
  char buffer[64];
  const ssize_t count = read(ends[0], buffer, sizeof buffer);
  close(ends[0]);
  box.ShowMessage("nobody reads this");
  dup2(before, STDERR_FILENO);
  close(before);
  ASSERT_GT(count, 0);
  EXPECT_EQ(std::string(buffer, static_cast<std::size_t>(count)), "first second\n");
}

}  // namespace
