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

  bool HasPart(const std::string& part) const {
    return std::any_of(lines.begin(), lines.end(), [&](const std::string& line) {
      return line.find(part) != std::string::npos;
    });
  }

  std::vector<std::string> lines;
};
