// A path as a value: UTF-8, absolute, always expanded; empty is legal.
#pragma once

#include <string>
#include <vector>

class GFileSystemSpec {
 public:
  GFileSystemSpec() = default;
  // Expands "~" and ".." first; a path that is no full path leaves it empty and is recorded.
  GFileSystemSpec(const std::string& path);  // NOLINT(google-explicit-constructor): a path value
  GFileSystemSpec(const char* path) : GFileSystemSpec(std::string(path)) {}

  static const GFileSystemSpec& GetEmptyFileSpec();

  const std::string& GetPath() const { return mPath; }
  bool IsEmpty() const { return mPath.empty(); }

  // Components don't hold the root; trailing slashes are ignored.
  std::string GetLastPathComponent() const;
  void RemoveLastPathComponent();
  void AppendPathComponent(const std::string& component);
  // The text after the last "." of the last component; empty if there is none.
  std::string GetPathExtension() const;
  void RemovePathExtension();
  std::vector<std::string> GetPathComponents() const;
  // Is `candidate` longer than this path, and does it begin with it? Ignores case.
  bool IsSubpath(const GFileSystemSpec& candidate) const;

  bool operator==(const GFileSystemSpec& other) const = default;

 private:
  std::string mPath;
};
