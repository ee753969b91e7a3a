// A home of its own for one test: every XDG folder points into a new temporary folder, which goes
// with the object. Nothing of the machine's user is read or written. fontconfig sees two folders
// only: SystemFonts(), which stands for the system's, and the user's own.
#pragma once

#include <string>

class ScratchHome {
 public:
  ScratchHome();
  ~ScratchHome();
  ScratchHome(const ScratchHome&) = delete;
  ScratchHome& operator=(const ScratchHome&) = delete;

  const std::string& Path() const { return mPath; }
  std::string SystemFonts() const { return mPath + "/system-fonts"; }
  // A file below the home; folders on the way are made.
  std::string WriteFile(const std::string& name, const std::string& contents) const;
  std::string MakeFolder(const std::string& name) const;

 private:
  std::string mPath;
};

std::string ReadWholeFile(const std::string& path);
