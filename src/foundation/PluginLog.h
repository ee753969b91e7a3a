// The plug-in log: plain lines that go to standard output and, once logging has been started, to a
// sink. The facade's loader sets the sinks when it has bound the facade's log; this room knows no
// facade.
//
// Formats are those of printf. A line is cut at 64 KiB; one of 65534 bytes and more gets no line
// feed.
//
// [any-thread] The sinks are called without a lock, from whatever thread logs.
#pragma once

#include <functional>
#include <string>

// Opens the log file `name`; the folder is the sink's concern.
using PluginLogBegin = std::function<void(const char* name)>;
// Takes one piece of text, written as it is.
using PluginLogSink = std::function<void(const char* text)>;

// Either may be empty, which unbinds it.
void SetPluginLogSinks(PluginLogBegin begin, PluginLogSink sink);

// Opens the log and writes a banner. Does nothing without a bound begin sink.
void InitLogging(const char* name);
void StartLogging();
void StopLogging();

void OutputSimpleDebugString(const char* text);

// Formats and ends the text with a line feed, unless it has one.
void OutputFormattedDebugString(const char* format, ...) __attribute__((format(printf, 1, 2)));

// Traces entry (1), exit (-1) and results (0) of main operations. A build for diagnosis defines
// AUTOACTIVATION_TRACE and gets the lines of OutputFormattedDebugString. Any other build writes and
// formats nothing: a call vanishes, except for work that its arguments do, so those should be
// values at hand.
// For an indentation that nobody makes yet: stays 0. Of this library alone.
extern int gIndentationLevel __attribute__((visibility("hidden")));
#ifdef AUTOACTIVATION_TRACE
void OutputIndentedAndFormattedString(int indentChange, const char* format, ...)
    __attribute__((format(printf, 2, 3)));
#else
inline void OutputIndentedAndFormattedString(int indentChange, const char* format, ...)
    __attribute__((format(printf, 2, 3)));
inline void OutputIndentedAndFormattedString(int, const char*, ...) {}
#endif

// Traces a main operation over its scope: "Entering NAME()", "Exiting NAME()" and, for results that
// are given through it, "NAME() returns 0". Nothing in a normal build.
class [[maybe_unused]] OperationTrace {
 public:
  // `name` is lent: __func__.
  explicit OperationTrace(const char* name) : mName(name) {
    OutputIndentedAndFormattedString(1, "Entering %s()", mName);
  }
  ~OperationTrace() { OutputIndentedAndFormattedString(-1, "Exiting %s()", mName); }
  OperationTrace(const OperationTrace&) = delete;
  OperationTrace& operator=(const OperationTrace&) = delete;

  template <typename Result>
  Result Return(Result result) const {
    OutputIndentedAndFormattedString(0, "%s() returns %lld", mName, static_cast<long long>(result));
    return result;
  }

 private:
  const char* mName;
};
