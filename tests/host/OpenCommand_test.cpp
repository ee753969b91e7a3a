// The main job, end to end: real programs, a real library, fontconfig asked by a program of its
// own.
#include <signal.h>

#include <filesystem>
#include <nlohmann/json.hpp>

#include "host/KestraneFixture.h"

namespace {

namespace fs = std::filesystem;
using OpenCommandTest = KestraneTest;

constexpr const char* kRegular = "HarbourGrid-Regular";
constexpr const char* kBold = "HarbourGrid-Bold";
constexpr const char* kLantern = "LanternGrid-Regular";

TEST_F(OpenCommandTest, TurnsFontsOnWhileACommandRunsAndGivesThemBack) {
  AddExampleFonts();
  const std::string document = WriteDocument("a.psd", {kRegular, kLantern});
  EXPECT_EQ(MatchedFile(kRegular), "");
  const ProgramResult open = Run({"open", document, "--", "fc-match", "--format=%{file}",
                                  ":postscriptname=" + std::string(kRegular)});
  EXPECT_EQ(open.exitCode, 0) << open.error;
  EXPECT_NE(open.output.find("activated  " + std::string(kRegular)), std::string::npos)
      << open.output;
  EXPECT_NE(open.output.find("/fonts/vendrel/"), std::string::npos) << open.output;
  EXPECT_EQ(MatchedFile(kRegular), "");
  EXPECT_EQ(MatchedFile(kLantern), "");
}

TEST_F(OpenCommandTest, StaysUntilInterruptedAndTellsWhatIsActive) {
  AddExampleFonts();
  const std::string document = WriteDocument("a.psd", {kBold});
  Program open(Kestrane({"open", "--json", document}));
  ASSERT_TRUE(open.WaitForOutput("]\n"));
  EXPECT_TRUE(Eventually([&] { return IsActivated(kBold); }));
  const auto status = nlohmann::json::parse(Run({"status", "--json"}).output);
  ASSERT_EQ(status.size(), 1u);
  EXPECT_EQ(status[0]["postScriptName"], kBold);
  EXPECT_EQ(status[0]["pid"], open.Pid());
  EXPECT_EQ(status[0]["documents"], nlohmann::json::array({document}));
  open.Signal(SIGINT);
  const ProgramResult result = open.Wait();
  EXPECT_EQ(result.exitCode, 130) << result.error;
  EXPECT_EQ(MatchedFile(kBold), "");
  const auto report = nlohmann::json::parse(result.output);
  EXPECT_EQ(report[0]["fonts"][0]["status"], "activated");
  EXPECT_EQ(report[0]["activated"], 1);
  EXPECT_EQ(report[0]["fonts"][0]["path"], ExampleFonts() + "/HarbourGrid-Bold.ttf");
}

TEST_F(OpenCommandTest, LeavesAFontOnThatWasOnBefore) {
  AddExampleFonts();
  fs::copy(ExampleFonts() + "/HarbourGrid-Bold.ttf", mHome.SystemFonts());
  ASSERT_EQ(Run({"library", "scan"}).exitCode, 0);
  const std::string document = WriteDocument("a.psd", {kBold});
  const ProgramResult open = Run({"open", "--json", document, "--", "true"});
  EXPECT_EQ(open.exitCode, 0) << open.error;
  EXPECT_EQ(nlohmann::json::parse(open.output)[0]["fonts"][0]["status"], "active") << open.output;
  EXPECT_EQ(MatchedFile(kBold), mHome.SystemFonts() + "/HarbourGrid-Bold.ttf");
}

TEST_F(OpenCommandTest, TwoHostsShareAFontUntilBothAreGone) {
  AddExampleFonts();
  const std::string a = WriteDocument("a.psd", {kRegular});
  const std::string b = WriteDocument("b.psd", {kRegular, kBold});
  Program first(Kestrane({"open", a}));
  ASSERT_TRUE(first.WaitForOutput(kRegular));
  Program second(Kestrane({"open", b}));
  ASSERT_TRUE(second.WaitForOutput(kBold));
  first.Signal(SIGTERM);
  EXPECT_EQ(first.Wait().exitCode, 128 + SIGTERM);
  EXPECT_TRUE(IsActivated(kRegular)) << "the second host still needs it";
  second.Signal(SIGKILL);
  second.Wait();
  EXPECT_TRUE(
      Eventually([&] { return MatchedFile(kRegular).empty() && MatchedFile(kBold).empty(); }));
}

TEST_F(OpenCommandTest, AnAgentThatIsKilledLeavesNothingBehind) {
  AddExampleFonts();
  const std::string document = WriteDocument("a.psd", {kRegular});
  Program open(Kestrane({"open", document}));
  ASSERT_TRUE(open.WaitForOutput(kRegular));
  const pid_t agent = AgentPid();
  ASSERT_GT(agent, 0);
  kill(agent, SIGKILL);
  EXPECT_TRUE(Eventually([&] { return AgentPid() != agent; }));
  open.Signal(SIGINT);
  EXPECT_EQ(open.Wait().exitCode, 130);
  ASSERT_EQ(Run({"agent", "start"}).exitCode, 0);
  EXPECT_TRUE(Eventually([&] { return MatchedFile(kRegular).empty(); }));
}

TEST_F(OpenCommandTest, TellsWhatIsMissingAndOpensTheRest) {
  AddExampleFonts();
  const std::string document =
      WriteDocument("a.psd", {kRegular, "Nowhere-Bold", "MyriadPro-Regular"});
  const ProgramResult check = Run({"check", "--json", document});
  EXPECT_EQ(check.exitCode, 1);
  const auto report = nlohmann::json::parse(check.output)[0];
  EXPECT_EQ(report["missing"], 1);
  EXPECT_EQ(report["fonts"][0]["status"], "inactive");
  EXPECT_EQ(report["fonts"][1]["status"], "missing");
  EXPECT_TRUE(report["fonts"][2].contains("note")) << report;
  const ProgramResult open = Run({"open", document, mHome.Path() + "/gone.psd", "--", "true"});
  EXPECT_EQ(open.exitCode, 3);
  EXPECT_NE(open.error.find("gone.psd: no such file\n"), std::string::npos) << open.error;
  EXPECT_NE(open.output.find("activated"), std::string::npos) << open.output;
}

TEST_F(OpenCommandTest, ACommandsFailureIsOurs) {
  const std::string document = WriteDocument("a.psd", {});
  EXPECT_EQ(Run({"open", document, "--", "sh", "-c", "exit 7"}).exitCode, 7);
  const ProgramResult missing = Run({"open", document, "--", "no-such-program"});
  EXPECT_EQ(missing.exitCode, 2);
  EXPECT_NE(missing.error.find("no-such-program can't be started"), std::string::npos);
}

TEST_F(OpenCommandTest, WithoutAnAgentToStartThereIsNoFontManager) {
  const std::string program = mHome.MakeFolder("elsewhere/bin") + "/kestrane";
  fs::copy(ProgramPath(), program);
  fs::create_directory_symlink(TEST_BUILD_DIR "/plugins", mHome.Path() + "/elsewhere/plugins");
  const std::string document = WriteDocument("a.psd", {kRegular});
  for (const char* command : {"check", "open"}) {
    const ProgramResult result = RunProgram({program, command, document});
    EXPECT_EQ(result.exitCode, 4) << command;
    EXPECT_EQ(result.output, "") << command;
    EXPECT_TRUE(result.error.starts_with("kestrane: no font manager: ")) << result.error;
    EXPECT_EQ(std::count(result.error.begin(), result.error.end(), '\n'), 1) << result.error;
  }
}

}  // namespace
