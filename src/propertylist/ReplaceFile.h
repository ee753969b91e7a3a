// Writing a file so that a half-written one never stands.
#pragma once

#include <span>

#include "foundation/ErrorCodes.h"

class GFileSystemSpec;

// Puts the bytes in place of a file, or makes it: they go to a temporary file beside it, to the
// disk, and then take its name; whatever fails, the old file stands and no other is left. A link
// stays a link, and what it names is replaced. The mode stays that of the old file; a new one is
// for its owner alone. The folder must exist.
// GFileSystem::kInvalidPath for an empty path and for what is no regular file, kDiskFull when there
// is no room, CoreErrorCodes::kError otherwise. Of several writers the last one wins. [any-thread]
[[nodiscard]] TModuleErrorCode OSReplaceFile(const GFileSystemSpec& spec,
                                             std::span<const unsigned char> bytes);
