#include "host/KestraneFixture.h"

#include <nlohmann/json.hpp>

KestraneTest::~KestraneTest() { Run({"agent", "stop"}); }

std::vector<std::string> KestraneTest::Kestrane(std::vector<std::string> arguments) {
  arguments.insert(arguments.begin(), ProgramPath());
  return arguments;
}

ProgramResult KestraneTest::Run(std::vector<std::string> arguments, const std::string& input) {
  return RunProgram(Kestrane(std::move(arguments)), input);
}

std::string KestraneTest::WriteDocument(const std::string& name,
                                        const std::vector<std::string>& fonts) const {
  std::string bytes = "8BPS layers /FontSet [";
  for (const std::string& font : fonts) {
    bytes += " << /Name (\xFE\xFF";
    for (const char character : font) bytes += {'\0', character};
    bytes += ") /Script 0 >>";
  }
  return mHome.WriteFile(name, bytes + " ] image");
}

void KestraneTest::AddExampleFonts() const {
  const ProgramResult result = Run({"library", "add", ExampleFonts()});
  ASSERT_EQ(result.exitCode, 0) << result.error;
}

std::string KestraneTest::MatchedFile(const std::string& postScriptName) {
  const ProgramResult result = RunProgram(
      {"fc-match", "--format=%{postscriptname}\t%{file}", ":postscriptname=" + postScriptName});
  const std::string start = postScriptName + "\t";
  return result.output.starts_with(start) ? result.output.substr(start.size()) : std::string();
}

bool KestraneTest::IsActivated(const std::string& postScriptName) const {
  return MatchedFile(postScriptName).starts_with(mHome.Path() + "/.local/share/fonts/vendrel/");
}

pid_t KestraneTest::AgentPid() {
  const ProgramResult result = Run({"agent", "status", "--json"});
  const auto status = nlohmann::json::parse(result.output, nullptr, false);
  return status.is_object() ? status.value("pid", 0) : 0;
}
