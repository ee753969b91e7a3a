// A program that a test runs; it does not outlive the object.
#pragma once

#include <sys/types.h>

#include <string>
#include <vector>

class ChildProcess {
 public:
  // Starts the program at command[0] in the present environment. With an output path, standard
  // output goes there.
  explicit ChildProcess(const std::vector<std::string>& command, const std::string& output = {});
  ~ChildProcess();
  ChildProcess(const ChildProcess&) = delete;
  ChildProcess& operator=(const ChildProcess&) = delete;

  pid_t Pid() const { return mPid; }
  void Signal(int number) const;
  // Waits for its end: the exit status, or minus the signal that ended it.
  int Wait();

 private:
  pid_t mPid = -1;
};

// What the program writes to standard output.
std::string OutputOf(const std::vector<std::string>& command);
