// Where something stands or is to stand, held by its folder, and how something new comes there.
#pragma once

#include <string>

#include "foundation/ErrorCodes.h"
#include "foundation/GFileSystemSpec.h"
#include "foundation/linux/FileDescriptor.h"

struct Place {
  FileDescriptor folder;  // for finding names in it only
  std::string name;
};

// Failures are recorded. `codeOfMissing` if the folder is missing; kInvalidPath for "/" and an
// empty spec.
TModuleErrorCode OpenPlace(const GFileSystemSpec& spec, TModuleErrorCode codeOfMissing,
                           Place& outPlace);
// The place must be free too: kFileOrDirectoryAlreadyExists.
TModuleErrorCode OpenFreePlace(const GFileSystemSpec& spec, Place& outPlace);

// False with errno set; EEXIST if the place is not free.
bool RenameWithoutReplacing(int fromFolder, const std::string& fromName, const Place& to,
                            bool isFolder);

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
