#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>

#include "platform/linux/FontconfigFontLookup.h"
#include "platform/linux/StderrMessageBox.h"
#include "support/RunProgram.h"
#include "support/ScratchHome.h"

namespace fs = std::filesystem;

namespace {

// A font file outside the folders that fontconfig looks at.
std::string BuildFont(const ScratchHome& home, const std::string& postScriptName) {
  const std::string path = home.MakeFolder("built") + "/" + postScriptName + ".ttf";
  const ProgramResult result =
      RunProgram({"/usr/bin/python3", TEST_SOURCE_DIR "/tools/fonts/make_font.py", "--family",
                  "Lookup Test", "--psname", postScriptName, "--format", "ttf", path});
  EXPECT_EQ(result.exitCode, 0) << result.error;
  return path;
}

TEST(FontLookup, TheNextQuestionSeesEveryChange) {
  ScratchHome home;
  const std::string first = BuildFont(home, "LookupTest-One");
  const std::string second = BuildFont(home, "LookupTest-Two");
  const std::string third = BuildFont(home, "LookupTest-Three");
  FontconfigFontLookup lookup;
  EXPECT_FALSE(lookup.IsVisible("LookupTest-One"));

  // The user's font folder, and a shard in it, come to be.
  const std::string shard = home.MakeFolder(".local/share/fonts/vendrel/ab");
  fs::rename(first, shard + "/one.ttf");
  EXPECT_TRUE(lookup.IsVisible("LookupTest-One"));
  EXPECT_FALSE(lookup.IsVisible("lookuptest-one"));
  EXPECT_FALSE(lookup.IsVisible("Lookup Test"));
  EXPECT_FALSE(lookup.IsVisible("LookupTest-Two"));

  fs::rename(second, shard + "/two.ttf");
  EXPECT_TRUE(lookup.IsVisible("LookupTest-Two"));
  fs::rename(third, home.MakeFolder(".local/share/fonts/vendrel/cd") + "/three.ttf");
  EXPECT_TRUE(lookup.IsVisible("LookupTest-Three"));

  fs::remove(shard + "/one.ttf");
  EXPECT_FALSE(lookup.IsVisible("LookupTest-One"));
  EXPECT_TRUE(lookup.IsVisible("LookupTest-Two"));
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
