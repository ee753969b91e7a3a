// Other programs under test: started without a terminal, their output caught.
#pragma once

#include <sys/types.h>

#include <string>
#include <vector>

struct ProgramResult {
  int exitCode = -1;  // 128+n after signal n
  std::string output;
  std::string error;
};

// One program from its start to its end; killed with the object. It is looked for in PATH, gets the
// present environment and a session of its own; one that can't be started ends with 127. What it
// writes is read by the waiting functions only: one that writes more than a pipe holds stops until
// then.
class Program {
 public:
  struct Options {
    std::string input;    // given on standard input, which then ends
    bool asUser = false;  // as somebody who is not root, where we are root
  };

  explicit Program(const std::vector<std::string>& arguments) : Program(arguments, Options{}) {}
  Program(const std::vector<std::string>& arguments, const Options& options);
  ~Program();
  Program(const Program&) = delete;
  Program& operator=(const Program&) = delete;

  pid_t Pid() const { return mPid; }
  void Signal(int signal) const;
  // Waits until standard output holds the text; false if the program ended or 30 seconds passed
  // before.
  bool WaitForOutput(const std::string& text);
  // Waits for the end, at most 200 seconds; then it is killed. Once it has ended, what it left.
  ProgramResult Wait();

 private:
  // Reads what there is for up to `milliseconds`; false once both streams have ended.
  bool Pump(int milliseconds);

  pid_t mPid = -1;
  int mOutput = -1;
  int mError = -1;
  ProgramResult mResult;
};

ProgramResult RunProgram(const std::vector<std::string>& arguments, const std::string& input = {});
