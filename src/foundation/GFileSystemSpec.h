// A path as a value: UTF-8, absolute, always expanded; empty is legal. One slash stands between
// components and none at the end, so equal texts are equal paths, as far as no link is on the way.
// The file system's bytes pass as they are, also where they are no UTF-8. [any-thread]
#pragma once

#include <string>
#include <vector>

class GFileSystemSpec {
 public:
  GFileSystemSpec() = default;
  // Expands "~", "." and ".." first (GFileSystem::OSExpandPath). What is no full path then, a
  // relative path for instance, leaves it empty and is recorded; an empty text is legal.
  GFileSystemSpec(const std::string& path);  // NOLINT(google-explicit-constructor): a path value
  GFileSystemSpec(const char* path) : GFileSystemSpec(std::string(path ? path : "")) {}

  static const GFileSystemSpec& GetEmptyFileSpec();

  const std::string& GetPath() const { return mPath; }
  bool IsEmpty() const { return mPath.empty(); }

  // The root is no component: that of "/" is empty, and "/" stays when its last one is removed.
  std::string GetLastPathComponent() const;
  void RemoveLastPathComponent();
  // An empty spec stays empty.
  void AppendPathComponent(const std::string& component);
  // The text after the last "." of the last component, "profile" of ".profile"; empty if there is
  // none.
  std::string GetPathExtension() const;
  // With its "."; a name stays that would have nothing, or only dots, left.
  void RemovePathExtension();
  std::vector<std::string> GetPathComponents() const;
  // Is `candidate` longer than this path, and does it begin with it? By text, so that "/fonts2" is
  // below "/fonts". Ignores case.
  bool IsSubpath(const GFileSystemSpec& candidate) const;

  bool operator==(const GFileSystemSpec& other) const = default;

 private:
  std::string mPath;
};
