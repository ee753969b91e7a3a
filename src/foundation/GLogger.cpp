#include "foundation/GLogger.h"

#include <array>
#include <cstdio>
#include <ctime>
#include <string_view>
#include <thread>
#include <utility>
#include <vector>

#include "foundation/ErrorChecks.h"
#include "foundation/GStringUtils.h"
#include "foundation/WallClock.h"

namespace {

struct LevelName {
  const char* text;
  GLogger::LoggingLevel level;
};

constexpr LevelName kLevelTexts[] = {
    {"Error", GLogger::eError}, {"Warning", GLogger::eWarning}, {"Warn", GLogger::eWarning},
    {"Info", GLogger::eInfo},   {"Debug", GLogger::eDebug},     {"None", GLogger::eNone},
};

constexpr std::size_t kFirstStringBufferSize = 256;

bool IsSilent(GLogger::LoggingLevel level) {
  return level == GLogger::eNone || level == GLogger::eUnknown;
}

std::string PresentTimeText() {
  const std::int64_t milliseconds = WallClock::NowMilliseconds();
  const std::time_t seconds = static_cast<std::time_t>(milliseconds / 1000);
  std::tm fields{};
  gmtime_r(&seconds, &fields);
  std::array<char, 96> text{};
  std::snprintf(text.data(), text.size(), "%04d-%02d-%02dT%02d:%02d:%02d.%03dZ",
                fields.tm_year + 1900, fields.tm_mon + 1, fields.tm_mday, fields.tm_hour,
                fields.tm_min, fields.tm_sec, static_cast<int>(milliseconds % 1000));
  return text.data();
}

// The thread that is writing a line just now: what it logs meanwhile comes from within an appender.
class CurrentLogThread {
 public:
  static bool IsThisThread() {
    const GScopedLock lock(Mutex());
    return sCurrentLogThread == std::this_thread::get_id();
  }

  CurrentLogThread() { Set(std::this_thread::get_id()); }
  ~CurrentLogThread() { Set({}); }
  CurrentLogThread(const CurrentLogThread&) = delete;
  CurrentLogThread& operator=(const CurrentLogThread&) = delete;

 private:
  static GMutex& Mutex() {
    static GMutex& mutex = *new GMutex;
    return mutex;
  }

  static void Set(std::thread::id thread) {
    const GScopedLock lock(Mutex());
    sCurrentLogThread = thread;
  }

  static std::thread::id sCurrentLogThread;
};

std::thread::id CurrentLogThread::sCurrentLogThread;

// Formats into a buffer that is kept from call to call; the caller holds the appenders lock.
std::string_view FormatIntoStringBuffer(const char* format, std::va_list arguments) {
  static std::vector<char>& sStringBuffer = *new std::vector<char>(kFirstStringBufferSize);
  std::va_list again;
  va_copy(again, arguments);
  int length = std::vsnprintf(sStringBuffer.data(), sStringBuffer.size(), format, arguments);
  if (length >= 0 && static_cast<std::size_t>(length) >= sStringBuffer.size()) {
    sStringBuffer.resize((static_cast<std::size_t>(length) + 257) & ~std::size_t{255});
    length = std::vsnprintf(sStringBuffer.data(), sStringBuffer.size(), format, again);
  }
  va_end(again);
  if (length < 0) return {};
  return {sStringBuffer.data(), static_cast<std::size_t>(length)};
}

std::string FileNameWithoutEnding(std::string_view path) {
  path.remove_prefix(path.rfind('/') + 1);  // npos + 1 is 0
  return std::string(path.substr(0, path.rfind('.')));
}

}  // namespace

void GStdOutLogAppender::Log(const std::string& line) {
  std::fwrite(line.data(), 1, line.size(), stdout);
}

GLogger::GLogger() {
  ResetAllLoggingLevels();
  OSRegisterDefaultAppender();
}

GLogger::LoggingLevel GLogger::StringToLevel(const std::string& text) {
  for (const LevelName& row : kLevelTexts) {
    if (GStringUtils::AsciiEqualsNoCase(text, row.text)) return row.level;
  }
  return eUnknown;
}

std::string GLogger::LevelToString(LoggingLevel level) {
  switch (level) {
    case eNone:
      return "None";
    case eError:
      return "Error";
    case eWarning:
      return "Warning";
    case eInfo:
      return "Info";
    case eDebug:
      return "Debug";
    default:
      return {};
  }
}

void GLogger::Log(const char* identifier, LoggingLevel level, const char* format, ...) {
  std::va_list arguments;
  va_start(arguments, format);
  Logv(identifier, level, format, arguments);
  va_end(arguments);
}

void GLogger::Logv(const char* identifier, LoggingLevel level, const char* format,
                   std::va_list arguments) {
  if (!ShouldLog(identifier, level)) return;
  const std::string lineFormat =
      std::string("[") + identifier + "]\t[" + LevelToString(level) + "]\t" + format;
  LogvString(lineFormat.c_str(), arguments);
}

void GLogger::LogError(const char* identifier, const char* format, ...) {
  std::va_list arguments;
  va_start(arguments, format);
  Logv(identifier, eError, format, arguments);
  va_end(arguments);
}

void GLogger::LogWarning(const char* identifier, const char* format, ...) {
  std::va_list arguments;
  va_start(arguments, format);
  Logv(identifier, eWarning, format, arguments);
  va_end(arguments);
}

void GLogger::LogInfo(const char* identifier, const char* format, ...) {
  std::va_list arguments;
  va_start(arguments, format);
  Logv(identifier, eInfo, format, arguments);
  va_end(arguments);
}

void GLogger::LogDebug(const char* identifier, const char* format, ...) {
  std::va_list arguments;
  va_start(arguments, format);
  Logv(identifier, eDebug, format, arguments);
  va_end(arguments);
}

void GLogger::LogString(const char* format, ...) {
  std::va_list arguments;
  va_start(arguments, format);
  LogvString(format, arguments);
  va_end(arguments);
}

void GLogger::LogvString(const char* format, std::va_list arguments) {
  if (CurrentLogThread::IsThisThread()) return;
  const GScopedLock lock(mAppendersMutex);
  if (!lock.IsLocked()) return;
  const CurrentLogThread logging;
  if (mAppenders.empty()) return;
  const std::string_view text = FormatIntoStringBuffer(format, arguments);
  std::string line = "[" + PresentTimeText() + "]\t";
  line.append(text).append("\n");
  for (const auto& [identifier, appender] : mAppenders) appender->Log(line);
}

bool GLogger::ShouldLog(const std::string& identifier, LoggingLevel level) {
  if (IsSilent(level)) return false;
  const LoggingLevel threshold = GetLoggingLevelForIdentifier(identifier);
  return !IsSilent(threshold) && threshold >= level;
}

void GLogger::SetDefaultLoggingLevel(LoggingLevel level) {
  SetLoggingLevelForIdentifier(GetDefaultLoggingIdentifier(), level);
}

GLogger::LoggingLevel GLogger::GetDefaultLoggingLevel() {
  return GetLoggingLevelForIdentifier(GetDefaultLoggingIdentifier());
}

void GLogger::SetLoggingLevelForIdentifier(const std::string& identifier, LoggingLevel level) {
  const GScopedLock lock(mLevelsMutex);
  if (lock.IsLocked()) mLevels[GStringUtils::AsciiToLowerCase(identifier)] = level;
}

GLogger::LoggingLevel GLogger::GetLoggingLevelForIdentifier(const std::string& identifier) {
  const GScopedLock lock(mLevelsMutex);
  if (!lock.IsLocked()) return eUnknown;
  auto found = mLevels.find(GStringUtils::AsciiToLowerCase(identifier));
  if (found == mLevels.end() && identifier != GetDefaultLoggingIdentifier()) {
    found = mLevels.find(GetDefaultLoggingIdentifier());
  }
  return found == mLevels.end() ? eUnknown : found->second;
}

void GLogger::ResetAllLoggingLevels() {
  {
    const GScopedLock lock(mLevelsMutex);
    if (!lock.IsLocked()) return;
    mLevels.clear();
  }
  SetDefaultLoggingLevel(eWarning);
}

void GLogger::SetAppender(const std::string& identifier, GLogAppender* appender) {
  std::unique_ptr<GLogAppender> owned(appender);
  const GScopedLock lock(mAppendersMutex);
  if (!lock.IsLocked()) return;
  if (owned) {
    mAppenders[identifier] = std::move(owned);
  } else {
    mAppenders.erase(identifier);
  }
}

GLogAppender* GLogger::GetAppender(const std::string& identifier) {
  const GScopedLock lock(mAppendersMutex);
  if (!lock.IsLocked()) return nullptr;
  const auto found = mAppenders.find(identifier);
  return found == mAppenders.end() ? nullptr : found->second.get();
}

void GLogger::RemoveAllAppenders() {
  const GScopedLock lock(mAppendersMutex);
  if (lock.IsLocked()) mAppenders.clear();
}

void GLogger::OSRegisterDefaultAppender() {
  SetAppender(GetDefaultAppenderIdentifier(), new GStdOutLogAppender);
}

void WriteErrorRecord(int level, const char* file, int line, const char* expression,
                      TModuleErrorCode code, const char* identifier) {
  GLogger* logger = GLogger::GetSharedInstance();
  const auto loggingLevel = static_cast<GLogger::LoggingLevel>(level);
  if (!logger->ShouldLog(identifier, loggingLevel)) return;
  logger->Log(identifier, loggingLevel,
              "Error='%s'  File='%s'  Line=%d  Expression='%s'  Code='%u'  ",
              GetNameForErrorCode(code).c_str(), FileNameWithoutEnding(file).c_str(), line,
              expression, code);
}
