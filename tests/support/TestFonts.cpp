#include "support/TestFonts.h"

#include <unistd.h>

#include <filesystem>
#include <functional>
#include <stdexcept>

#include "support/RunProgram.h"
#include "support/ScratchHome.h"

namespace fs = std::filesystem;

void BuildFont(const std::string& path, const std::vector<std::string>& arguments) {
  const std::string script = TEST_SOURCE_DIR "/tools/fonts/make_font.py";
  std::string key = ReadWholeFile(script);
  for (const std::string& argument : arguments) key += '\0' + argument;
  const fs::path kept =
      fs::path(TEST_BUILD_DIR "/test-fonts") / std::to_string(std::hash<std::string>()(key));
  if (!fs::exists(kept)) {
    fs::create_directories(kept.parent_path());
    const fs::path made = kept.string() + "." + std::to_string(getpid());
    std::vector<std::string> command{"/usr/bin/python3", script};
    command.insert(command.end(), arguments.begin(), arguments.end());
    command.push_back(made.string());
    const ProgramResult result = RunProgram(command);
    if (result.exitCode != 0) throw std::runtime_error("no font was built: " + result.error);
    fs::rename(made, kept);
  }
  fs::create_directories(fs::path(path).parent_path());
  fs::copy_file(kept, path, fs::copy_options::overwrite_existing);
}

void BuildFont(const std::string& path, const std::string& postScriptName) {
  BuildFont(path, {"--family", "Test " + postScriptName, "--psname", postScriptName});
}

std::string MatchedFile(const std::string& postScriptName) {
  const ProgramResult result = RunProgram(
      {"fc-match", "--format=%{postscriptname}\t%{file}", ":postscriptname=" + postScriptName});
  const std::string start = postScriptName + "\t";
  return result.output.starts_with(start) ? result.output.substr(start.size()) : std::string();
}
