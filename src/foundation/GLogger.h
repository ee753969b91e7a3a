// The foundation's log: levels by identifier, pluggable appenders, one line per call:
// [ISO 8601 time]\t[identifier]\t[Level]\ttext. Formats are those of printf.
//
// An identifier is a constant of the program: its case does not matter, which holds for ASCII
// letters only, and it becomes part of the format, so a "%" in it counts as a conversion.
//
// A message at level 0 is never written: whoever wants it seen writes it to the plug-in log.
//
// [any-thread] Whole lines are serialised. What an appender logs itself is dropped, and so is a
// line whose lock can't be had. An appender that throws a std::exception loses its line, and the
// others still get theirs; nothing stays locked, whatever it throws. An appender must not wait for
// another thread that logs.
#pragma once

#include <array>
#include <atomic>
#include <cstdarg>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>

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

  // Does the identifier's level reach `level`? At once false if no identifier's does; else a lock
  // and a look-up, without an allocation for an identifier of up to 64 bytes.
  bool ShouldLog(std::string_view identifier, LoggingLevel level);
  const std::string& GetDefaultLoggingIdentifier() const { return mDefaultIdentifier; }
  const std::string& GetDefaultAppenderIdentifier() const { return mDefaultIdentifier; }
  void SetDefaultLoggingLevel(LoggingLevel level);
  LoggingLevel GetDefaultLoggingLevel();
  void SetLoggingLevelForIdentifier(const std::string& identifier, LoggingLevel level);
  // That of "default" for an identifier without a level; eUnknown without that one too.
  LoggingLevel GetLoggingLevelForIdentifier(std::string_view identifier);
  // Sets the level of each key whose value is of string type and whose text StringToLevel knows; of
  // an array the first element counts. All else is skipped. Defined with the trees.
  void SetLoggingLevelsFromKVTree(const GKVTree& levels);
  // Leaves only "default", at warning.
  void ResetAllLoggingLevels();

  // Takes ownership; deletes and replaces an appender of that name; null removes it. Not from
  // within an appender, where the lock is refused and the new one deleted.
  void SetAppender(const std::string& identifier, GLogAppender* appender);
  // Lent; null if there is none.
  GLogAppender* GetAppender(const std::string& identifier);
  void RemoveAllAppenders();
  void OSRegisterDefaultAppender();

 private:
  friend class GSingleton<GLogger>;  // the format buffer is one, so there is one logger
  GLogger();

  LoggingLevel LevelOfLowerCase(std::string_view identifier);
  // The levels lock is held. Gives the place in mLevels.
  const LoggingLevel* StoreLevel(const std::string& identifier, LoggingLevel level);

  GMutex mAppendersMutex;
  std::map<std::string, std::unique_ptr<GLogAppender>> mAppenders;
  GMutex mLevelsMutex;
  std::map<std::string, LoggingLevel, std::less<>> mLevels;  // by lower-case identifier
  const std::string mDefaultIdentifier = "default";
  const LoggingLevel* mDefaultLevel = nullptr;  // that of "default" in mLevels
  // The highest level that an identifier of the bucket can have: what is above needs no look-up.
  std::array<std::atomic<LoggingLevel>, 64> mHighestLevels{};
};
