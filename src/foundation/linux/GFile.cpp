#include "foundation/GFile.h"

#include <unistd.h>

#include "foundation/ErrorChecks.h"

// Always binary here; "e" keeps the file from programs that the process starts.
std::string GFile::OSGetModeString(int mode) {
  const std::string modeString = GetModeString(mode);
  return modeString.empty() ? modeString : modeString + "be";
}

TModuleErrorCode GFile::OSSetFileSize(unsigned long long size) {
  G_CHECK_CONDITION(0 != ftruncate(fileno(mpFile), static_cast<off_t>(size)),
                    CoreErrorCodes::kError);
  return 0;
}
