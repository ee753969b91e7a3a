// The foundation's log: levels by identifier, pluggable appenders, one line per call:
// [ISO 8601 time]\t[identifier]\t[Level]\ttext. Identifiers have no case.
//
// [any-thread] Whole lines are serialised; an appender that logs is dropped, not recursed into.
#pragma once

#include <cstdarg>
#include <cstdint>
#include <map>
#include <memory>
#include <string>

#include "foundation/GMutex.h"
#include "foundation/GSingleton.h"

class GKVTree;

class GLogAppender {
 public:
  virtual ~GLogAppender() = default;
  virtual void Log(const std::string& line) = 0;
};

// Writes to standard output.
class GStdOutLogAppender : public GLogAppender {
 public:
  void Log(const std::string& line) override;
};

class GLogger {
 public:
  enum LoggingLevel : std::uint32_t {
    eNone = 0,
    eError = 1,
    eWarning = 2,
    eInfo = 3,
    eDebug = 4,
    eUnknown = 0xFFFFFFFF
  };

  GLogger();
  static GLogger* GetSharedInstance() { return GSingleton<GLogger>::GetSharedInstance(); }

  // Case is ignored; "Warn" is a warning too; eUnknown for any other text.
  static LoggingLevel StringToLevel(const std::string& text);
  static std::string LevelToString(LoggingLevel level);

  void Log(const char* identifier, LoggingLevel level, const char* format, ...)
      __attribute__((format(printf, 4, 5)));
  void Logv(const char* identifier, LoggingLevel level, const char* format, std::va_list arguments);
  void LogError(const char* identifier, const char* format, ...)
      __attribute__((format(printf, 3, 4)));
  void LogWarning(const char* identifier, const char* format, ...)
      __attribute__((format(printf, 3, 4)));
  void LogInfo(const char* identifier, const char* format, ...)
      __attribute__((format(printf, 3, 4)));
  void LogDebug(const char* identifier, const char* format, ...)
      __attribute__((format(printf, 3, 4)));
  // Without a level test.
  void LogString(const char* format, ...) __attribute__((format(printf, 2, 3)));
  void LogvString(const char* format, std::va_list arguments);

  bool ShouldLog(const std::string& identifier, LoggingLevel level);
  std::string GetDefaultLoggingIdentifier() const { return "default"; }
  std::string GetDefaultAppenderIdentifier() const { return "default"; }
  void SetDefaultLoggingLevel(LoggingLevel level);
  LoggingLevel GetDefaultLoggingLevel();
  void SetLoggingLevelForIdentifier(const std::string& identifier, LoggingLevel level);
  LoggingLevel GetLoggingLevelForIdentifier(const std::string& identifier);
  // Sets the level of each key whose value is of string type and whose text StringToLevel knows; of
  // an array the first element counts. All else is skipped. Defined with the trees.
  void SetLoggingLevelsFromKVTree(const GKVTree& levels);
  // Leaves only "default", at warning.
  void ResetAllLoggingLevels();

  // Takes ownership; replaces an appender of that name; null removes it.
  void SetAppender(const std::string& identifier, GLogAppender* appender);
  // Lent; null if there is none.
  GLogAppender* GetAppender(const std::string& identifier);
  void RemoveAllAppenders();
  void OSRegisterDefaultAppender();

 private:
  GMutex mAppendersMutex;
  std::map<std::string, std::unique_ptr<GLogAppender>> mAppenders;
  GMutex mLevelsMutex;
  std::map<std::string, LoggingLevel> mLevels;
};
