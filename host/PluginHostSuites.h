// The suites that need a host behind them, and the basic suite that finds all of them.
#pragma once

#include "host/PluginHost.h"

// The one host of this process, for C functions without a context.
struct PluginHostSuites {
  static PluginHost* sHost;

  static const SPBasicSuite& Basic();

  static SPErr Acquire(const char* name, std::int32_t version, const void** suite);
  static SPErr Release(const char* name, std::int32_t version);
  static SPErr AllocateBlock(std::size_t size, const char* debugName, void** block);
  static SPErr FreeBlock(void* block);
  static SPErr Get(PIActionDescriptor* out, PIActionReference reference);
  static SPErr Play(PIActionDescriptor* out, DescriptorEventID event, PIActionDescriptor descriptor,
                    std::int32_t options);
  static std::int16_t AddNotify(SPPluginRef plugin, DescriptorEventID event,
                                PSEventNotifyProc procedure, void* userData);
  static std::int16_t RemoveNotify(SPPluginRef plugin, DescriptorEventID event);
};
