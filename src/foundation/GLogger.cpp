#include "foundation/GLogger.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <exception>
#include <string_view>
#include <thread>
#include <utility>
#include <vector>

#include "foundation/ErrorChecks.h"
#include "foundation/GDateTime.h"
#include "foundation/GStringUtils.h"

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
// Identifiers up to this length are looked up without an allocation.
constexpr std::size_t kUsualIdentifierSize = 64;
constexpr std::size_t kBuckets = 64;

// Cheap, and the same in either case.
std::size_t BucketOf(std::string_view identifier) {
  if (identifier.empty()) return 0;
  const auto lower = [](char c) { return std::size_t{static_cast<unsigned char>(c)} | 0x20U; };
  return (identifier.size() * 13 + lower(identifier.front()) * 7 + lower(identifier.back())) %
         kBuckets;
}

bool IsSilent(GLogger::LoggingLevel level) {
  return level == GLogger::eNone || level == GLogger::eUnknown;
}

// The thread that is writing a line just now: what it logs meanwhile comes from within an appender.
class CurrentLogThread {
 public:
  // Also true if that can't be found out.
  static bool IsThisThread() {
    Guarded& guarded = Shared();
    const GScopedLock lock(guarded.mutex);
    return !lock.IsLocked() || guarded.sCurrentLogThread == std::this_thread::get_id();
  }

  CurrentLogThread() : mIsSet(Set(std::this_thread::get_id())) {}
  ~CurrentLogThread() { Set({}); }
  CurrentLogThread(const CurrentLogThread&) = delete;
  CurrentLogThread& operator=(const CurrentLogThread&) = delete;
  bool IsSet() const { return mIsSet; }

 private:
  struct Guarded {
    GMutex mutex;
    std::thread::id sCurrentLogThread;
  };

  static Guarded& Shared() {
    static Guarded& guarded = *new Guarded;
    return guarded;
  }

  static bool Set(std::thread::id thread) {
    Guarded& guarded = Shared();
    const GScopedLock lock(guarded.mutex);
    if (lock.IsLocked()) guarded.sCurrentLogThread = thread;
    return lock.IsLocked();
  }

  bool mIsSet;
};

// The text's length, whatever fits, and `arguments` can be used again.
int FormatInto(std::vector<char>& buffer, const char* format, std::va_list arguments) {
  std::va_list copy;
  va_copy(copy, arguments);
  const int length = std::vsnprintf(buffer.data(), buffer.size(), format, copy);
  va_end(copy);
  return length;
}

// Formats into a buffer that is kept from call to call; the caller holds the appenders lock.
std::string_view FormatIntoStringBuffer(const char* format, std::va_list arguments) {
  static std::vector<char>& sStringBuffer = *new std::vector<char>(kFirstStringBufferSize);
  int length = FormatInto(sStringBuffer, format, arguments);
  if (length >= 0 && static_cast<std::size_t>(length) >= sStringBuffer.size()) {
    sStringBuffer.resize((static_cast<std::size_t>(length) + 257) & ~std::size_t{255});
    length = FormatInto(sStringBuffer, format, arguments);
  }
  if (length < 0) return {};
  // A text that another thread lengthens meanwhile is cut.
  return {sStringBuffer.data(),
          std::min(static_cast<std::size_t>(length), sStringBuffer.size() - 1)};
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
  if (!logging.IsSet() || mAppenders.empty()) return;
  const std::string_view text = FormatIntoStringBuffer(format, arguments);
  std::string line = "[" + GDateTime().GetAsISO8601String(true) + "]\t";
  line.append(text).append("\n");
  for (const auto& [identifier, appender] : mAppenders) {
    try {
      appender->Log(line);
    } catch (const std::exception&) {  // not for whoever logs; all else belongs to the thread's end
    }
  }
}

bool GLogger::ShouldLog(std::string_view identifier, LoggingLevel level) {
  if (IsSilent(level) ||
      level > mHighestLevels[BucketOf(identifier)].load(std::memory_order_relaxed)) {
    return false;
  }
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
  if (lock.IsLocked()) StoreLevel(GStringUtils::AsciiToLowerCase(identifier), level);
}

GLogger::LoggingLevel GLogger::GetLoggingLevelForIdentifier(std::string_view identifier) {
  if (identifier.size() > kUsualIdentifierSize) {
    return LevelOfLowerCase(GStringUtils::AsciiToLowerCase(identifier));
  }
  std::array<char, kUsualIdentifierSize> lower;
  for (std::size_t i = 0; i < identifier.size(); ++i) {
    const char character = identifier[i];
    const bool isUpper = character >= 'A' && character <= 'Z';
    lower[i] = static_cast<char>(character | (isUpper ? 0x20 : 0));
  }
  return LevelOfLowerCase({lower.data(), identifier.size()});
}

GLogger::LoggingLevel GLogger::LevelOfLowerCase(std::string_view identifier) {
  const GScopedLock lock(mLevelsMutex);
  if (!lock.IsLocked()) return eUnknown;
  const auto found = mLevels.find(identifier);
  if (found != mLevels.end()) return found->second;
  return mDefaultLevel == nullptr ? eUnknown : *mDefaultLevel;
}

void GLogger::ResetAllLoggingLevels() {
  const GScopedLock lock(mLevelsMutex);
  if (!lock.IsLocked()) return;
  mLevels.clear();
  mDefaultLevel = StoreLevel(mDefaultIdentifier, eWarning);
}

const GLogger::LoggingLevel* GLogger::StoreLevel(const std::string& identifier,
                                                 LoggingLevel level) {
  LoggingLevel& stored = mLevels[identifier];
  stored = level;
  const auto audible = [](LoggingLevel any) { return IsSilent(any) ? eNone : any; };
  std::array<LoggingLevel, kBuckets> highest;
  highest.fill(audible(mLevels[mDefaultIdentifier]));
  for (const auto& [name, any] : mLevels) {
    highest[BucketOf(name)] = std::max(highest[BucketOf(name)], audible(any));
  }
  std::copy(highest.begin(), highest.end(), mHighestLevels.begin());
  return &stored;
}

void GLogger::SetAppender(const std::string& identifier, GLogAppender* appender) {
  std::unique_ptr<GLogAppender> owned(appender);
  const GScopedLock lock(mAppendersMutex);
  if (!lock.IsLocked()) return;
  if (owned) {
    std::unique_ptr<GLogAppender>& slot = mAppenders[identifier];
    if (slot == owned) static_cast<void>(slot.release());  // set again: it stays
    slot = std::move(owned);
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
