// Where something stands or is to stand, held by its folder.
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

// Both are false with errno set. What is in the place goes; or EEXIST if the place is not free.
bool RenameOver(int fromFolder, const std::string& fromName, const Place& to);
bool RenameWithoutReplacing(int fromFolder, const std::string& fromName, const Place& to,
                            bool isFolder);
