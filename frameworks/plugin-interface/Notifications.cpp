#include "frameworks/plugin-interface/EntryPoint.h"
#include "frameworks/plugin-interface/Facade.h"

uint32_t RegisterForNotifications(PluginFacadeInstance instance, PluginInterfaceCallback callback) {
  return Answer([&]() -> std::uint32_t {
    if (instance == nullptr || callback == nullptr) return CoreErrorCodes::kNullPointer;
    instance->Notifications().Register(callback);
    return CoreErrorCodes::kSuccess;
  });
}

uint32_t UnregisterForNotifications(PluginFacadeInstance instance,
                                    PluginInterfaceCallback callback) {
  return Answer([&]() -> std::uint32_t {
    if (instance == nullptr || callback == nullptr) return CoreErrorCodes::kNullPointer;
    const bool known = instance->Notifications().Unregister(callback);
    return known ? CoreErrorCodes::kSuccess : CoreErrorCodes::kNotFound;
  });
}
