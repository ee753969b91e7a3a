// A walk through the tree below a folder, in the order of the names' bytes. However deep the tree,
// one descriptor is open; links are never followed, also when they take a folder's place meanwhile,
// and the way up is checked to be the way down.
#pragma once

#include <sys/types.h>

#include <cstddef>
#include <string>
#include <vector>

#include "foundation/linux/FileDescriptor.h"

struct FolderEntry {
  std::string name;
  unsigned char type;  // DT_REG and so on, never DT_UNKNOWN
};

struct FolderIdentity {
  dev_t device;
  ino_t inode;
  bool operator==(const FolderIdentity&) const = default;
};

// These three are false with errno set.
bool ListFolder(int folder, std::vector<FolderEntry>& outEntries);
bool GetFolderIdentity(int folder, FolderIdentity& outIdentity);
// From `folder` to its folder `name`; no link.
bool OpenFolderIn(int folder, const std::string& name, FileDescriptor& outFolder);

// A place in a tree, and the way back up to where it was begun.
class FolderTrail {
 public:
  explicit FolderTrail(FileDescriptor top) : mFolder(std::move(top)) {}

  int Get() const { return mFolder.Get(); }
  std::size_t Depth() const { return mAbove.size(); }
  // To a folder in this one. False with errno set; the place is then still the same.
  [[nodiscard]] bool Descend(const std::string& name);
  [[nodiscard]] bool Descend(FileDescriptor below);
  // ESTALE if the folder was moved elsewhere meanwhile.
  [[nodiscard]] bool Ascend();

 private:
  FileDescriptor mFolder;
  std::vector<FolderIdentity> mAbove;
};

class FolderWalk {
 public:
  enum class EStep { eEntry, eLeft, eEnd, eFailed };

  explicit FolderWalk(FileDescriptor top) : mTrail(std::move(top)) {}

  // To the next entry of the folder, and at its end back up: eLeft, with the folder as Entry().
  // eFailed has errno.
  EStep Next();
  // Into the folder that is Entry(). False with errno set; Next then passes it by.
  [[nodiscard]] bool Enter();

  // Where Entry() is.
  int Folder() const { return mTrail.Get(); }
  const FolderEntry& Entry() const { return mLevels.back().entries[mLevels.back().next - 1]; }

 private:
  struct Level {
    std::vector<FolderEntry> entries;
    std::size_t next = 0;
  };

  FolderTrail mTrail;
  std::vector<Level> mLevels;
  int mLost = 0;  // errno, once the way back up is gone
};
