// Promise: whatever the bytes, the pairs that are read from them, written to a file and read again,
// are the same pairs; no key is empty or has blanks at its ends, and no value has a "#", a line end
// or blanks at its ends.
#include <sys/mman.h>

#include <cstdint>
#include <cstdlib>
#include <map>
#include <string>

#include "foundation/GConfigurationFile.h"
#include "foundation/GLogger.h"
#include "foundation/GStringUtils.h"

namespace {

using Pairs = std::map<std::string, std::string>;

// A file in memory.
const std::string& ScratchFile() {
  static const std::string path = "/proc/self/fd/" + std::to_string(memfd_create("scratch", 0));
  return path;
}

bool IsPlain(const std::string& text) {
  return GStringUtils::StripWhitespace(text) == text &&
         text.find_first_of("#\r\n") == std::string::npos;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  GLogger::GetSharedInstance()->SetDefaultLoggingLevel(GLogger::eNone);
  Pairs values;
  Pairs again;
  const std::string text(reinterpret_cast<const char*>(data), size);
  if (GConfigurationFile::ParseString(text, values) != 0) std::abort();
  for (const auto& [key, value] : values) {
    if (key.empty() || !IsPlain(key) || !IsPlain(value)) std::abort();
  }
  if (GConfigurationFile::WriteFile(ScratchFile(), values) != 0) std::abort();
  if (GConfigurationFile::ParseFile(ScratchFile(), again) != 0) std::abort();
  if (again != values) std::abort();
  return 0;
}
