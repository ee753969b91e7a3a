// Programs of this user through /proc and GLib's spawn.
#pragma once

#include "platform/Process.h"

class LinuxProcess : public Process {
 public:
  // The program's path is the kernel's link to its file, never what the program says of itself. A
  // program whose file was replaced while it runs counts, one whose file is gone does not.
  bool GetPathToRunningProcessExe(const std::string& name, std::string& folder) override;
  // In a session of its own, in "/", with no signal blocked; init reaps it.
  bool LaunchDetached(const std::string& path, const std::vector<std::string>& arguments) override;
  // The program writes where this process writes. A program that a signal ended: 128 and the
  // signal.
  int LaunchAndWait(const std::string& path, const std::vector<std::string>& arguments) override;
};
