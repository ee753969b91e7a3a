// A font library of many faces in a home of its own, with an agent that serves it. Nothing of the
// machine's user is read or written. Aborts with a message when something can't be made.
#pragma once

#include <memory>
#include <vector>

#include "agent/library/AgentClient.h"
#include "agent/library/LibraryReader.h"
#include "support/RunProgram.h"
#include "support/ScratchHome.h"

class BenchLibrary {
 public:
  static constexpr std::size_t kFaceCount = 100'000;
  static constexpr std::size_t kStyleCount = 8;
  // Each face of every tenth family is there in two versions.
  static constexpr std::size_t kFamiliesPerDoubleOne = 10;

  BenchLibrary();
  ~BenchLibrary();

  // The PostScript name of one style of one family; kFaceCount faces of families from 0 on.
  static std::string NameOf(std::size_t family, std::size_t style);
  // The faces of a name as the database has them, by ascending ID.
  std::vector<Nodrix::FontRow> FacesOf(const std::string& postScriptName);

 private:
  static void Fill();

  ScratchHome mHome;
  Program mAgent;
  std::unique_ptr<Nodrix::LibraryReader> mReader;
};

// Ends the program with a message.
[[noreturn]] void Give(const std::string& reason);

// What is written to standard output while it lives goes nowhere: the log would be in the way.
class QuietOutput {
 public:
  QuietOutput();
  ~QuietOutput();
  QuietOutput(const QuietOutput&) = delete;
  QuietOutput& operator=(const QuietOutput&) = delete;

 private:
  int mBefore;
};
