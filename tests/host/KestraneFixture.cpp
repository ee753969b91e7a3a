#include "host/KestraneFixture.h"

#include <nlohmann/json.hpp>

#include "support/FontNamingDocument.h"

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
  return mHome.WriteFile(name, DocumentNaming(fonts));
}

void KestraneTest::AddExampleFonts() const {
  const ProgramResult result = Run({"library", "add", ExampleFonts()});
  ASSERT_EQ(result.exitCode, 0) << result.error;
}

bool KestraneTest::IsActivated(const std::string& postScriptName) const {
  return MatchedFile(postScriptName).starts_with(mHome.Path() + "/.local/share/fonts/vendrel/");
}

pid_t KestraneTest::AgentPid() {
  const ProgramResult result = Run({"agent", "status", "--json"});
  const auto status = nlohmann::json::parse(result.output, nullptr, false);
  return status.is_object() ? status.value("pid", 0) : 0;
}
