// Opening files of which nothing is known yet.
#pragma once

#include <sys/types.h>

#include "foundation/linux/FileDescriptor.h"

// As openat with O_CLOEXEC, but waits for no other end of a FIFO and for no device; for somebody's
// lease on a regular file it waits, as long as the system grants that. Not open, with errno set.
FileDescriptor OpenWithoutWaiting(int folder, const char* path, int flags, mode_t newMode = 0);
