// The plug-in log's lines, while the object lives.
#pragma once

#include <algorithm>
#include <string>
#include <vector>

#include "foundation/PluginLog.h"

class LogCapture {
 public:
  LogCapture() {
    SetPluginLogSinks({}, [this](const char* text) { lines.emplace_back(text); });
    StartLogging();
  }
  ~LogCapture() {
    StopLogging();
    SetPluginLogSinks({}, {});
  }
  LogCapture(const LogCapture&) = delete;
  LogCapture& operator=(const LogCapture&) = delete;

  // `line` without its line feed.
  bool Has(const std::string& line) const {
    return std::find(lines.begin(), lines.end(), line + "\n") != lines.end();
  }

  std::vector<std::string> lines;
};
