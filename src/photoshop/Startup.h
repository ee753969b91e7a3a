// Start and end of the plug-in in this host, and the heartbeat between them.
//
// Threads: [main-thread].
#pragma once

#include "photoshop/AutoSuite.h"

// The plug-in's own reference, out of the message of the latest entry call; names it to the host
// when notifiers are added and removed.
extern SPPluginRef gPlugInRef;

// A block of the host's memory, from start to shutdown; also in the message's globals.
struct PluginGlobals {
  void* zero;
  SPPluginRef plugin;
};
extern PluginGlobals* gGlobals;

// True once all four notifiers are registered; stays so.
extern bool gNotifierOn;

// Delays of the reopen of a document, in milliseconds; the first key is that of an older delay.
inline constexpr const char* kTarnPreference_OlderRMFDelayMilliseconds = "RMF4";
inline constexpr const char* kTarnPreference_PhotoshopRMFDelayMilliseconds = "RMF5";
inline constexpr long kPhotoshopDefaultRMFDelayMilliseconds = 4000;

// Acts at the first call only. The notifiers are registered even if the start fails: every handler
// asks whether the plug-in is ready, so that a failed start leaves it silent and harmless. The
// result is 0, or the 16-bit error of a notifier that could not be registered.
//
// The watch over the host's windows and the panel's socket come with those rooms, before the timer.
SPErr StartupPlugin(SPMessageData* message);

// A second start in the same process is not supported. The result is 0, or the error with which the
// sequence ended; -1 for an exception that is no error number.
SPErr ShutdownPlugin(SPMessageData* message);

// The timer's callback, a hundred times a second. Lets the font manager work through what its agent
// told it.
void processNotifications();
