// Deleting what is below a folder, on behalf of several operations.
#pragma once

#include <string>

#include "foundation/ErrorCodes.h"
#include "foundation/linux/FolderWalk.h"

// The folder `name` in `parent` with all that is in it, up to the first entry that can't be
// deleted; what is mounted there can't. Failures are recorded. `force` first lets the folders of
// our own unfinished copy be changed. A folder that is not the one `expected`, if one is, stays.
TModuleErrorCode DeleteTree(int parent, const std::string& name, bool force,
                            const FolderIdentity* expected = nullptr);
