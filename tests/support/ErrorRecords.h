// What the error records in a log say.
#pragma once

#include <string>

#include "support/RecordingAppender.h"

// The expressions of the records, one a line; of other lines nothing.
inline std::string ExpressionsOf(const RecordingAppender& log) {
  const std::string start = "Expression='";
  std::string all;
  for (const std::string& line : log.Lines()) {
    const std::size_t begin = line.find(start);
    if (begin == std::string::npos) continue;
    const std::size_t first = begin + start.size();
    all += line.substr(first, line.find("'  Code", first) - first) + "\n";
  }
  return all;
}
