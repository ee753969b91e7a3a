// Ends the process for an error of the caller, in every kind of build; never for an error of data.
#pragma once

#include <cstdlib>

#include "foundation/PluginLog.h"

// `expression` is what should have held; the plug-in log gets it first. [any-thread]
inline void AssertOfCaller(bool holds, const char* expression) {
  if (holds) return;
  OutputFormattedDebugString("ASSERTION FAILED:  %s", expression);
  std::abort();
}
