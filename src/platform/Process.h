// Other programs of this user.
#pragma once

#include <string>
#include <vector>

class Process {
 public:
  virtual ~Process() = default;
  // Looks for a running program of this name that belongs to this user and lies where nobody but
  // root and this user can write. `folder` is its folder with a trailing "/".
  virtual bool GetPathToRunningProcessExe(const std::string& name, std::string& folder) = 0;
  // Starts a program that outlives this one; its output goes nowhere. False if it can't be started.
  virtual bool LaunchDetached(const std::string& path,
                              const std::vector<std::string>& arguments) = 0;
  // Starts a program and waits; its exit status, -1 if it can't be started.
  virtual int LaunchAndWait(const std::string& path, const std::vector<std::string>& arguments) = 0;
};
