#include "foundation/PluginLog.h"

#include <atomic>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <memory>
#include <utility>

#include "foundation/GScopedLock.h"
#include "foundation/WallClock.h"

namespace {

constexpr std::size_t kFormatBufferSize = 0x10000;
// A text of this length has no room for a line feed any more.
constexpr std::size_t kFirstFullLength = 65534;

struct Sinks {
  PluginLogBegin begin;
  PluginLogSink log;
};

std::atomic<int> sLoggingStarted{0};

// Guards the pointer below; the sinks themselves are called without it.
GMutex& SinksMutex() {
  static GMutex& mutex = *new GMutex;
  return mutex;
}

std::shared_ptr<const Sinks>& SharedSinks() {
  static auto& sinks = *new std::shared_ptr<const Sinks>(std::make_shared<Sinks>());
  return sinks;
}

std::shared_ptr<const Sinks> CurrentSinks() {
  const GScopedLock lock(SinksMutex());
  return SharedSinks();
}

// `buffer` has room for a line feed behind a text that is not of full length.
void EndLineAndOutput(char* buffer, std::size_t length) {
  if (length < kFirstFullLength && (length == 0 || buffer[length - 1] != '\n')) {
    buffer[length] = '\n';
    buffer[length + 1] = '\0';
  }
  OutputSimpleDebugString(buffer);
}

void FormatAndOutput(const char* format, std::va_list arguments) {
  // Nearly every line is short, and a large block costs the allocator more than the text does.
  char line[1024] = "";
  std::va_list again;
  va_copy(again, arguments);
  const int needed = std::vsnprintf(line, sizeof line, format, arguments);
  if (needed < 0) {
    EndLineAndOutput(line, 0);
  } else if (static_cast<std::size_t>(needed) + 2 <= sizeof line) {
    EndLineAndOutput(line, std::strlen(line));
  } else {
    const auto buffer = std::make_unique_for_overwrite<char[]>(kFormatBufferSize);
    if (std::vsnprintf(buffer.get(), kFormatBufferSize, format, again) < 0) buffer[0] = '\0';
    EndLineAndOutput(buffer.get(), std::strlen(buffer.get()));
  }
  va_end(again);
}

}  // namespace

void SetPluginLogSinks(PluginLogBegin begin, PluginLogSink sink) {
  std::shared_ptr<const Sinks> next =
      std::make_shared<Sinks>(Sinks{std::move(begin), std::move(sink)});
  const GScopedLock lock(SinksMutex());
  SharedSinks().swap(next);
}

void InitLogging(const char* name) {
  const std::shared_ptr<const Sinks> sinks = CurrentSinks();
  if (!sinks->begin) return;
  sinks->begin(name);
  if (!sinks->log) return;
  const std::time_t now = WallClock::Now();
  char timeText[64] = "";  // ctime_r asks for 26
  if (ctime_r(&now, timeText) == nullptr) std::strcpy(timeText, "\n");
  sinks->log("\n=======\n");
  sinks->log(timeText);
  sinks->log("=======\n");
}

void StartLogging() { sLoggingStarted = 1; }

void StopLogging() { sLoggingStarted = 0; }

void OutputSimpleDebugString(const char* text) {
  if (text == nullptr) return;
  std::printf("%s", text);
  if (sLoggingStarted != 1) return;
  const std::shared_ptr<const Sinks> sinks = CurrentSinks();
  if (sinks->log) sinks->log(text);
}

void OutputFormattedDebugString(const char* format, ...) {
  std::va_list arguments;
  va_start(arguments, format);
  FormatAndOutput(format, arguments);
  va_end(arguments);
}

constinit int gIndentationLevel = 0;

#ifdef AUTOACTIVATION_TRACE
void OutputIndentedAndFormattedString(int, const char* format, ...) {
  std::va_list arguments;
  va_start(arguments, format);
  FormatAndOutput(format, arguments);
  va_end(arguments);
}
#endif
