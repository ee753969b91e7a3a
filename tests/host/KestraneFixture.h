// The built command line in a home of its own, with the example's fonts as a library outside
// fontconfig's folders.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/Eventually.h"
#include "support/RunProgram.h"
#include "support/ScratchHome.h"
#include "support/TestFonts.h"

class KestraneTest : public testing::Test {
 protected:
  ~KestraneTest() override;

  static std::string ProgramPath() { return TEST_BUILD_DIR "/bin/kestrane"; }
  static std::string ExampleFonts() { return TEST_BUILD_DIR "/examples/fonts"; }
  static std::vector<std::string> Kestrane(std::vector<std::string> arguments);
  static ProgramResult Run(std::vector<std::string> arguments, const std::string& input = {});

  // A file that names these fonts as a Photoshop document does.
  std::string WriteDocument(const std::string& name, const std::vector<std::string>& fonts) const;
  // Fills the library with the example's fonts.
  void AddExampleFonts() const;
  // Do applications get a file that the agent put there for this name?
  bool IsActivated(const std::string& postScriptName) const;
  static pid_t AgentPid();

  ScratchHome mHome;
};
