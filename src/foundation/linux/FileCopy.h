// Copying, on behalf of copies and of moves to another file system. Failures are recorded; a stop
// is none, it is CoreErrorCodes::kStopped.
#pragma once

#include <sys/types.h>

#include <cstddef>
#include <string>

#include "foundation/ErrorCodes.h"
#include "foundation/linux/FileDescriptor.h"
#include "foundation/linux/Place.h"

class GStopCallback;

struct CopyOptions {
  GStopCallback* stop = nullptr;  // may be null
  bool waitsForDisk = false;      // the copy is on the disk when it's done
};

// Not the bits that lend a program its owner's rights: the copy may have another owner.
inline constexpr mode_t kCopiedBits = 0777;

bool IsStopped(const CopyOptions& options);

// Opens what is to be copied for reading, without waiting. `flags` may add O_NOFOLLOW.
TModuleErrorCode OpenCopySource(int folder, const std::string& name, int flags,
                                FileDescriptor& outFile);
// All bytes and the permission bits.
TModuleErrorCode CopyOpenFile(int from, int to, const CopyOptions& options);
// These two are false with errno set.
bool WriteAll(int to, const char* bytes, std::size_t count);
bool ReadLink(int folder, const std::string& name, std::string& outTarget);

// Gives a file or folder of ours its permission bits, where the file system has any. False with
// errno set.
bool SetPermissions(int file, mode_t bits);

// To a free place; whole or not at all.
TModuleErrorCode CopyFileTo(int from, const Place& to, const CopyOptions& options);
TModuleErrorCode CopyLinkTo(const Place& from, const Place& to, const CopyOptions& options);
TModuleErrorCode CopyFolderTo(FileDescriptor from, const Place& to, const CopyOptions& options);

// What was published, or deleted, in the place's folder is on the disk then, as far as it can be
// told.
void WaitForDisk(const Place& place);
