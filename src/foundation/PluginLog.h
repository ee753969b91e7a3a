// The plug-in log: plain lines that go to standard output and, once logging has been started, to a
// sink. The facade's loader sets the sinks when it has bound the facade's log; this room knows no
// facade.
//
// Formats are those of printf. A line is cut at 64 KiB.
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

// Traces entry (1), exit (-1) and results (0) of main operations. Writes nothing in normal builds;
// a build for diagnosis defines AUTOACTIVATION_TRACE and gets the lines of
// OutputFormattedDebugString.
#ifdef AUTOACTIVATION_TRACE
void OutputIndentedAndFormattedString(int indentChange, const char* format, ...)
    __attribute__((format(printf, 2, 3)));
#else
template <typename... Arguments>
inline void OutputIndentedAndFormattedString(int, const char*, Arguments&&...) {}
#endif
