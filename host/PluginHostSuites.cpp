#include "host/PluginHostSuites.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <string_view>

#include "host/ActionSuites.h"

PluginHost* PluginHostSuites::sHost = nullptr;

namespace {

// Run-time types: their number counts from 1, below every four-character code.
std::vector<std::string>& RuntimeTypes() {
  static std::vector<std::string> types;
  return types;
}

SPErr StringIDToTypeID(const char* stringID, DescriptorTypeID* out) {
  if (stringID == nullptr || out == nullptr) return kSPBadParameterError;
  auto& types = RuntimeTypes();
  auto found = std::find(types.begin(), types.end(), stringID);
  if (found == types.end()) found = types.insert(types.end(), stringID);
  *out = static_cast<DescriptorTypeID>(found - types.begin() + 1);
  return 0;
}

SPErr TypeIDToStringID(DescriptorTypeID type, char* out, std::uint32_t size) {
  const auto& types = RuntimeTypes();
  if (out == nullptr || size == 0 || type == 0 || type > types.size()) return kPSItemMissingError;
  const std::string& text = types[type - 1];
  const std::size_t length = std::min<std::size_t>(text.size(), size - 1);
  std::memcpy(out, text.data(), length);
  out[length] = 0;
  return 0;
}

// The host's own way of showing a window, which a plug-in's procedure passes on to.
void OrderWindow(HostWindowRef window) {
  if (PluginHostSuites::sHost) PluginHostSuites::sHost->Windows().OrderFromSuite(window);
}

const HostWindowSuite kWindowSuite = {
    .ExchangeOrderWindow = [](HostOrderWindowProc procedure) -> HostOrderWindowProc {
      if (PluginHostSuites::sHost == nullptr) return OrderWindow;
      const auto before = PluginHostSuites::sHost->Windows().Exchange(procedure);
      return before ? before : OrderWindow;
    },
    .GetTitle = [](HostWindowRef window, char* out, std::uint32_t size) -> SPErr {
      if (window == nullptr || out == nullptr || size == 0) return kSPBadParameterError;
      const std::size_t length = std::min<std::size_t>(window->title.size(), size - 1);
      std::memcpy(out, window->title.data(), length);
      out[length] = 0;
      return 0;
    },
    .GetSubviewCount = [](HostWindowRef window, std::uint32_t* out) -> SPErr {
      if (window == nullptr || out == nullptr) return kSPBadParameterError;
      *out = static_cast<std::uint32_t>(window->subviews.size());
      return 0;
    },
    .GetSubviewKind = [](HostWindowRef window, std::uint32_t index, std::int32_t* out) -> SPErr {
      if (window == nullptr || out == nullptr) return kSPBadParameterError;
      if (index >= window->subviews.size()) return kPSItemMissingError;
      *out = window->subviews[index];
      return 0;
    },
    .SendKey = [](HostWindowRef window, std::uint32_t keyCode) -> SPErr {
      if (window == nullptr) return kSPBadParameterError;
      if (keyCode == kHostKeyEscape) window->dismissed = true;
      return 0;
    },
    .HasModalWindow =
        [] { return PluginHostSuites::sHost && PluginHostSuites::sHost->Windows().IsModal(); },
};

const SPBlocksSuite kBlocksSuite = {PluginHostSuites::AllocateBlock, PluginHostSuites::FreeBlock};

const PSActionControlProcs kControlSuite = {
    PluginHostSuites::Get, PluginHostSuites::Play,      StringIDToTypeID,
    TypeIDToStringID,      PluginHostSuites::AddNotify, PluginHostSuites::RemoveNotify};

struct SuiteRow {
  std::string_view name;
  std::int32_t version;
  const void* suite;
};

const SuiteRow* FindSuite(const char* name, std::int32_t version) {
  static const SuiteRow kRows[] = {
      {kSPBlocksSuite, kSPBlocksSuiteVersion, &kBlocksSuite},
      {kPSActionDescriptorSuite, kPSActionDescriptorSuiteVersion, &ActionDescriptorSuite()},
      {kPSActionListSuite, kPSActionListSuiteVersion, &ActionListSuite()},
      {kPSActionReferenceSuite, kPSActionReferenceSuiteVersion, &ActionReferenceSuite()},
      {kPSActionControlSuite, kPSActionControlSuiteVersion, &kControlSuite},
      {kPSAliasSuite, kPSAliasSuiteVersion, &AliasSuite()},
      {kHostWindowSuite, kHostWindowSuiteVersion, &kWindowSuite},
  };
  for (const SuiteRow& row : kRows) {
    if (name && row.name == name && row.version == version) return &row;
  }
  return nullptr;
}

}  // namespace

const SPBasicSuite& PluginHostSuites::Basic() {
  static const SPBasicSuite suite = {Acquire, Release, [](const char* a, const char* b) {
                                       return a == b || (a && b && std::strcmp(a, b) == 0);
                                     }};
  return suite;
}

SPErr PluginHostSuites::Acquire(const char* name, std::int32_t version, const void** suite) {
  if (suite == nullptr) return kSPBadParameterError;
  const SuiteRow* row = FindSuite(name, version);
  *suite = row ? row->suite : nullptr;
  if (row == nullptr) return kSPSuiteNotFoundError;
  if (sHost) ++sHost->mAcquiredSuites;
  return 0;
}

SPErr PluginHostSuites::Release(const char* name, std::int32_t version) {
  if (FindSuite(name, version) == nullptr) return kSPSuiteNotFoundError;
  if (sHost) --sHost->mAcquiredSuites;
  return 0;
}

SPErr PluginHostSuites::AllocateBlock(std::size_t size, const char*, void** block) {
  if (block == nullptr) return kSPBadParameterError;
  *block = std::malloc(size);
  if (*block == nullptr) return kSPOutOfMemoryError;
  if (sHost) ++sHost->mLiveBlocks;
  return 0;
}

SPErr PluginHostSuites::FreeBlock(void* block) {
  std::free(block);
  if (sHost && block) --sHost->mLiveBlocks;
  return 0;
}

SPErr PluginHostSuites::Get(PIActionDescriptor* out, PIActionReference reference) {
  if (sHost == nullptr || out == nullptr || reference == nullptr) return kSPBadParameterError;
  return sHost->Get(out, *reference);
}

SPErr PluginHostSuites::Play(PIActionDescriptor* out, DescriptorEventID event,
                             PIActionDescriptor descriptor, std::int32_t) {
  if (out) *out = nullptr;
  return sHost ? sHost->Play(event, descriptor) : kSPBadParameterError;
}

std::int16_t PluginHostSuites::AddNotify(SPPluginRef, DescriptorEventID event,
                                         PSEventNotifyProc procedure, void* userData) {
  if (sHost == nullptr || procedure == nullptr) return -50;
  sHost->mNotifiers.push_back({event, procedure, userData});
  return 0;
}

std::int16_t PluginHostSuites::RemoveNotify(SPPluginRef, DescriptorEventID event) {
  if (sHost == nullptr) return -50;
  std::erase_if(sHost->mNotifiers, [event](const auto& row) { return row.event == event; });
  return 0;
}
