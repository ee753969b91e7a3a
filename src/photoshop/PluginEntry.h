// The plug-in's contact with the host's loader. The bundle exports AutoPluginMain, which only calls
// this.
//
// Threads: [main-thread].
#pragma once

#include "sdk/HostActions.h"
#include "sdk/HostBasic.h"

// Serves one call of the host:
//
//   "SP Interface"  "About"     shows the about box
//   "SP Interface"  "Startup"   StartupPlugin
//   "SP Interface"  "Shutdown"  ShutdownPlugin
//   "PS Photoshop"  "Do It"     DoIt
//
// Anything else, and a null message, gives 0. All suites are released on every return; nothing is
// raised to the host: an error that was thrown becomes the result.
SPErr HandlePluginMain(const char* caller, const char* selector, SPMessageData* message);

// "Parm" without parameters. Otherwise the parameters are cleared and nothing is done: the question
// for the panel's socket ("Oper" 4) and the command box come with their rooms.
SPErr DoIt(SPMessageData* message, PIActionDescriptor parameters);
