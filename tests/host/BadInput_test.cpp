// Whatever is put in front of it, a command ends with one clear line and its exit code.
#include <sys/stat.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>
#include <random>

#include "host/KestraneFixture.h"

namespace {

namespace fs = std::filesystem;
using BadInputTest = KestraneTest;

std::ptrdiff_t CountLines(const std::string& text) {
  return std::count(text.begin(), text.end(), '\n');
}

TEST_F(BadInputTest, DocumentsThatCantBeRead) {
  const std::string fifo = mHome.Path() + "/pipe.psd";
  ASSERT_EQ(mkfifo(fifo.c_str(), 0600), 0);
  const struct {
    std::string path;
    const char* error;
  } kCases[] = {
      {mHome.Path() + "/gone.psd", "no such file"},
      {mHome.Path() + "/gone/too.psd", "no such file"},
      {mHome.Path(), "is a folder"},
      {fifo, "is no regular file"},
      {std::string(5000, 'x'), "File name too long"},
  };
  for (const auto& test : kCases) {
    const ProgramResult result = Run({"fonts", test.path});
    EXPECT_EQ(result.exitCode, 3) << test.path;
    EXPECT_EQ(result.output, "");
    EXPECT_EQ(result.error, "kestrane: " + test.path + ": " + test.error + "\n");
  }
}

TEST_F(BadInputTest, NoPermission) {
  const std::string document = WriteDocument("secret.psd", {"A-Font"});
  chmod(document.c_str(), 0);
  chmod(mHome.Path().c_str(), 0755);
  const ProgramResult result = Program(Kestrane({"fonts", document}), {"", true}).Wait();
  EXPECT_EQ(result.exitCode, 3);
  EXPECT_EQ(result.error, "kestrane: " + document + ": no permission to read it\n");
}

TEST_F(BadInputTest, DocumentsWithoutFonts) {
  std::string random(1 << 20, 0);
  std::mt19937 engine(7);
  std::generate(random.begin(), random.end(), [&] { return static_cast<char>(engine()); });
  const std::string sparse = mHome.WriteFile("sparse.psd", "");
  fs::resize_file(sparse, std::uintmax_t{8} << 30);
  for (const std::string& path :
       {mHome.WriteFile("empty.psd", ""), mHome.WriteFile("random.ai", random), sparse}) {
    const ProgramResult result = Run({"fonts", path});
    EXPECT_EQ(result.exitCode, 0) << path;
    EXPECT_EQ(result.output, "") << path;
    EXPECT_EQ(result.error, "kestrane: " + path + " names no fonts\n");
  }
}

TEST_F(BadInputTest, NamesThatAreNoText) {
  const std::string path = WriteDocument("caf\xE9\x1B[31m.psd", {"A-Font"});
  const ProgramResult words = Run({"fonts", path, path + "x"});
  EXPECT_EQ(words.exitCode, 3);
  EXPECT_EQ((words.output + words.error).find('\x1B'), std::string::npos);
  EXPECT_EQ((words.output + words.error).find('\xE9'), std::string::npos);
  const ProgramResult json = Run({"fonts", "--json", "-"}, path + "\n");
  EXPECT_EQ(json.exitCode, 0);
  const auto report = nlohmann::json::parse(json.output);
  EXPECT_EQ(report[0]["fonts"][0]["postScriptName"], "A-Font");
  const ProgramResult open = Run({"open", path, "--", "true"});
  EXPECT_EQ(open.exitCode, 3);
  EXPECT_EQ(CountLines(open.error), 1) << open.error;
}

TEST_F(BadInputTest, Usage) {
  const std::vector<std::vector<std::string>> kCases = {
      {},
      {"no-such-command"},
      {"fonts"},
      {"library"},
      {"library", "add"},
      {"library", "add", mHome.Path() + "/gone"},
      {"library", "add", WriteDocument("a.psd", {})},
      {"preferences", "NoSuchPreference"},
      {"preferences", "PickBestMatch", "perhaps"},
      {"preferences", "RMF5", "12x"},
      {"status", "--no-such-flag"},
  };
  for (const auto& arguments : kCases) {
    const ProgramResult result = Run(arguments);
    EXPECT_EQ(result.exitCode, 2) << testing::PrintToString(arguments);
    EXPECT_EQ(result.output, "") << testing::PrintToString(arguments);
    EXPECT_EQ(CountLines(result.error), 1) << result.error;
  }
}

TEST_F(BadInputTest, ALibraryWithABrokenFontAndAFolderThatVanishes) {
  const std::string folder = mHome.MakeFolder("fonts");
  fs::copy(ExampleFonts() + "/HarbourGrid-Bold.ttf", folder);
  std::ofstream(folder + "/broken.ttf", std::ios::binary)
      << std::string("\0\1\0\0\0\x20", 6) << "junk";
  const ProgramResult add = Run({"library", "add", "--json", folder});
  ASSERT_EQ(add.exitCode, 0) << add.error;
  EXPECT_EQ(nlohmann::json::parse(add.output)[0]["faces"], 1);
  EXPECT_EQ(nlohmann::json::parse(add.output)[0]["broken"], 1);
  fs::remove_all(folder);
  EXPECT_EQ(Run({"library", "scan"}).exitCode, 0);
  const auto list = nlohmann::json::parse(Run({"library", "list", "--json"}).output);
  EXPECT_EQ(list["folders"][0]["missing"], true);
  const ProgramResult check =
      Run({"check", "--json", WriteDocument("a.psd", {"HarbourGrid-Bold"})});
  EXPECT_EQ(check.exitCode, 1);
  EXPECT_EQ(nlohmann::json::parse(check.output)[0]["missing"], 1) << check.output;
}

TEST_F(BadInputTest, AFileThatGoesBetweenScanAndOpen) {
  const std::string folder = mHome.MakeFolder("fonts");
  fs::copy(ExampleFonts() + "/HarbourGrid-Bold.ttf", folder);
  ASSERT_EQ(Run({"library", "add", folder}).exitCode, 0);
  fs::remove(folder + "/HarbourGrid-Bold.ttf");
  const ProgramResult open =
      Run({"open", "--json", WriteDocument("a.psd", {"HarbourGrid-Bold"}), "--", "true"});
  EXPECT_EQ(open.exitCode, 1) << open.output << open.error;
  EXPECT_EQ(MatchedFile("HarbourGrid-Bold"), "");
}

TEST_F(BadInputTest, PreferencesLast) {
  EXPECT_EQ(Run({"preferences", "PickBestMatch"}).output, "true\n");
  EXPECT_EQ(Run({"preferences", "PickBestMatch", "no"}).exitCode, 0);
  EXPECT_EQ(Run({"preferences", "CurrentWorkgroup", "-2"}).exitCode, 0);
  EXPECT_EQ(Run({"preferences", "PickBestMatch"}).output, "false\n");
  EXPECT_EQ(Run({"preferences", "currentworkgroup"}).output, "-2\n");
}

}  // namespace
