// The bundle's one export, and the one thing that runs while it loads. All logic is in libkestrane.
#include "photoshop/CommonStartup.h"
#include "photoshop/PluginEntry.h"

static const CommonFunctionality::StaticPluginInitializer sInitializer(
    "com.vendrel.AutoActivationPlugin.PS22");

extern "C" __attribute__((visibility("default"))) SPErr AutoPluginMain(const char* caller,
                                                                       const char* selector,
                                                                       SPMessageData* message) {
  return HandlePluginMain(caller, selector, message);
}
