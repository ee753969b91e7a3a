// What the shells of several hosts have in common: who the plug-in is, its start and its end.
//
// Threads: the load-time initialiser runs while the library loads, and neither starts nor awaits a
// thread; Startup and Shutdown may be called from any thread of a front end, this host's shell
// calls on the main thread.
#pragma once

#include <string>

#include "foundation/ErrorCodes.h"

namespace CommonFunctionality {

// Its construction tells KestraneGlobals who the plug-in is, and puts the shell in place through
// which the bridge speaks to the host. One static object of a plug-in's bundle, so that all this is
// known before the first entry call.
//
// An identifier that does not begin with "com.vendrel." is the path of the plug-in's executable.
// A plug-in without a bundle has version "x.x.x.x". Binding the facade for its version may start
// the font manager's agent. Nothing is thrown.
class StaticPluginInitializer {
 public:
  explicit StaticPluginInitializer(const std::string& bundleIdentifier);
};

// Results of Startup beside 0 and the codes of the font manager's start.
inline constexpr TModuleErrorCode kStartupNoTarnInterface = 2;
inline constexpr TModuleErrorCode kStartupNotLoggedIn = 3;
inline constexpr TModuleErrorCode kStartupNoWorkgroups = 4;

// Font manager, logging, login and workgroup checks; a failure leaves the services disabled. Once
// only: CoreErrorCodes::kUnknownError later on. The toolkit behind the fonts' identity in files is
// not started here yet, nor ended by a shutdown.
TModuleErrorCode Startup(bool allowDialogs);

// For front ends of other hosts. Once only, as above.
TModuleErrorCode Shutdown();

// Writes the defaults; false, and nothing written, if there are preferences already.
bool InitializeCommonPreferences();

}  // namespace CommonFunctionality
