// Promise: whatever text is read as a date, what was read prints as a text that reads as the same
// date; a text that is none leaves the value as it was. Seconds of a date that can be told in them
// give back a date of the same seconds.
#include "foundation/GDateTime.h"

#include <cstdint>
#include <cstdlib>
#include <string>

#include "foundation/GLogger.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  GLogger::GetSharedInstance()->SetDefaultLoggingLevel(GLogger::eNone);
  const std::string text(data, data + size);
  GDateTime dateTime = GDateTime::kMaxDateTime;
  if (dateTime.SetFromISO8601String(text) != 0 || text.empty()) {
    if (dateTime.Compare(GDateTime::kMaxDateTime) != 1) std::abort();
    return 0;
  }
  const std::string printed = dateTime.GetAsISO8601String(true);
  GDateTime again = GDateTime::kEmptyDateTime;
  if (again.SetFromISO8601String(printed) != 0 || again.Compare(dateTime) != 1) std::abort();
  if (again.GetAsISO8601String(true) != printed || printed.size() != 24) std::abort();
  unsigned long long seconds = 0;
  unsigned long long secondsAgain = 1;
  if (dateTime.GetSecondsSince1970(seconds) != 0) return 0;
  if (again.SetFromSecondsSince1970(seconds) != 0) std::abort();
  if (again.GetSecondsSince1970(secondsAgain) != 0 || secondsAgain != seconds) std::abort();
  return 0;
}
