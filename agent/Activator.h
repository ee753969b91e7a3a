// The folder of activated files: copies that every application of the user sees. A file appears
// whole or not at all, and one that is there is never written to.
//
// Threads: main.
#pragma once

#include <cstdint>
#include <set>
#include <string>
#include <vector>

namespace Nodrix {

class Activator {
 public:
  enum class Result { eDone, eNoSource, eFailed };

  explicit Activator(std::string folder) : mFolder(std::move(folder)) {}
  const std::string& Folder() const { return mFolder; }

  // Where this file's copy lies: <folder>/<hh>/<file ID>-<name>.
  std::string PathFor(std::int64_t file, const std::string& name) const;
  // Puts a copy of `source` at `path`; done if there is one already. After a failure nothing is
  // left behind and the reason stands in `error`.
  Result Install(const std::string& source, const std::string& path, std::string& error);
  // Takes a copy out, and its shard when it was the last one there.
  void Remove(const std::string& path);
  // Removes everything in the shard folders but these copies, temporary files included.
  void RemoveAllBut(const std::set<std::string>& paths);
  // Gives the shard folders of the last installs and removals the present time. Once more a second
  // later, since an application that looked in the same second would never notice the change.
  void TouchChanged();
  bool HasChanged() const { return !mChanged.empty(); }
  void ForgetChanged() { mChanged.clear(); }

 private:
  const std::string mFolder;
  std::set<std::string> mChanged;
};

}  // namespace Nodrix
