// Tells whether files or folders changed since they were read. A question costs one system call
// while nothing happens: the kernel's notifications tell of changes made on this machine. Paths
// that don't exist yet are looked at each time; so is every path once a second, which catches what
// another machine does on a shared disk, and at each question where notifications can't be had.
//
// Threads: one.
#pragma once

#include <cstdint>
#include <ctime>
#include <map>
#include <set>
#include <string>
#include <vector>

class PathWatch {
 public:
  PathWatch() = default;
  ~PathWatch();
  PathWatch(const PathWatch&) = delete;
  PathWatch& operator=(const PathWatch&) = delete;

  // The wall clock, for Start.
  static timespec Now();
  // Watches these paths and no others. The caller began to read them at `readingStarted`; a change
  // from then on counts.
  void Start(const std::set<std::string>& paths, const timespec& readingStarted);
  // Stays true until the next Start.
  bool HasChanged();
  // The watched paths in which (or at which) a file was written to its end since the last call: a
  // folder's own time does not tell of it. Empty where notifications can't be had; all of them
  // where so many came that some were lost.
  std::set<std::string> TakeWritten();

 private:
  struct Path {
    std::string name;
    timespec modified;  // zero if it is not there
  };

  bool RenewNotifications();
  void CloseNotifications();
  bool ReadNotifications();
  void NoteWritten(int watch, std::uint32_t mask);
  static bool IsUnchanged(const std::vector<Path>& paths);

  std::vector<Path> mExisting;
  std::vector<Path> mMissing;
  int mNotifications = -1;  // the kernel's descriptor; -1 where there is none
  // One watch may stand for several names of one folder.
  std::multimap<int, std::string> mNamesByWatch;
  std::set<std::string> mWritten;
  std::int64_t mLastFullLook = 0;
  bool mChanged = true;
};
