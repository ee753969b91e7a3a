// How something new comes to its place: built beside it, then renamed.
#pragma once

#include <string>

#include "foundation/linux/FileDescriptor.h"
#include "foundation/linux/Place.h"

// Something new beside its place, under a name of its own. It goes, with all that is in it, unless
// it is published. The place must outlive it.
class PendingEntry {
 public:
  explicit PendingEntry(const Place& place);
  ~PendingEntry();
  PendingEntry(const PendingEntry&) = delete;
  PendingEntry& operator=(const PendingEntry&) = delete;

  // One of these three, once. For this user alone. Not open, or false, with errno set.
  FileDescriptor MakeFile();
  FileDescriptor MakeFolder();
  bool MakeLink(const std::string& target);
  // Both give it its place, the second also one that is taken by a file; false with errno set.
  bool Publish();
  bool PublishInPlaceOfOld();

 private:
  enum class EState { eNone, eFile, eFolder };

  const Place& mPlace;
  std::string mName;
  EState mState = EState::eNone;
};
