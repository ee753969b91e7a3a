// Keeps the lines of the shared logger instead of printing them.
#pragma once

#include <string>
#include <vector>

#include "foundation/GLogger.h"

class RecordingAppender : public GLogAppender {
 public:
  // Takes the place of the default appender; lives as long as that name is not set again.
  static RecordingAppender& Install() {
    auto* appender = new RecordingAppender;
    GLogger* logger = GLogger::GetSharedInstance();
    logger->SetAppender(logger->GetDefaultAppenderIdentifier(), appender);
    return *appender;
  }

  void Log(const std::string& line) override { mLines.push_back(line); }
  const std::vector<std::string>& Lines() const { return mLines; }

 private:
  std::vector<std::string> mLines;
};
