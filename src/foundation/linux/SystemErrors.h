// Codes of errno.
#pragma once

#include "foundation/ErrorCodes.h"

// `codeOfMissing` stands for a path that leads nowhere; CoreErrorCodes::kError for what has no code
// of its own.
TModuleErrorCode CodeOfSystemError(int error, TModuleErrorCode codeOfMissing);

// Is there no room: on the disk, in the quota or in a file of the largest size?
bool IsOutOfRoom(int error);
