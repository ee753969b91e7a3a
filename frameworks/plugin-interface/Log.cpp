#include "frameworks/plugin-interface/EntryPoint.h"
#include "frameworks/plugin-interface/Facade.h"

uint32_t BeginLogging(PluginFacadeInstance instance, const char* logName) {
  return Answer([&]() -> std::uint32_t {
    if (instance == nullptr || logName == nullptr) return CoreErrorCodes::kNullPointer;
    return instance->Log().Begin(logName);
  });
}

uint32_t Log(PluginFacadeInstance instance, const char* text) {
  return Answer([&]() -> std::uint32_t {
    if (instance == nullptr || text == nullptr) return CoreErrorCodes::kNullPointer;
    return instance->Log().Append(text);
  });
}
