#include <algorithm>
#include <vector>

#include "frameworks/plugin-interface/EntryPoint.h"
#include "frameworks/plugin-interface/Facade.h"

namespace {

// Where a caller wants font IDs; `list` may be null.
struct FontsOut {
  std::uint32_t* list;
  std::uint32_t capacity;
  std::uint32_t* count;

  void Clear() const {
    if (count != nullptr) *count = 0;
  }
  void Fill(const std::vector<std::uint32_t>& fonts) const {
    const std::size_t room = list == nullptr ? 0 : capacity;
    const std::size_t filled = std::min(room, fonts.size());
    std::copy_n(fonts.begin(), filled, list);
    if (count != nullptr) *count = static_cast<std::uint32_t>(filled);
  }
};

std::vector<std::uint32_t> Copy(std::span<const std::uint32_t> fonts) {
  return {fonts.begin(), fonts.end()};
}

std::uint32_t Activate(PluginFacade& facade, std::span<const std::uint32_t> fonts, FontsOut failed,
                       FontsOut restricted) {
  Nodrix::AgentClient* const client = facade.Client();
  if (client == nullptr) return kPluginInterface_ServiceUnavailable;
  Nodrix::ActivationOutcome outcome;
  const auto result = client->Activate(Copy(fonts), Nodrix::ActivationMode::eAuto, outcome);
  if (result == Nodrix::CallResult::eOk) {
    failed.Fill(outcome.failed);
    restricted.Fill(outcome.restricted);
  }
  return facade.CodeOf(result);
}

std::uint32_t Preview(PluginFacade& facade, std::span<const std::uint32_t> fonts) {
  Nodrix::LibraryReader* const reader = facade.Reader();
  if (reader == nullptr) return CoreErrorCodes::kDatabaseError;
  std::uint32_t code = CoreErrorCodes::kSuccess;
  for (const std::uint32_t id : fonts) {
    const auto row = reader->FontByID(id);
    if (!row || row->missing) {
      code = CoreErrorCodes::kNotFound;
    } else if (!facade.Local().Add(id, row->path)) {
      code = CoreErrorCodes::kError;
    }
  }
  return code;
}

std::uint32_t CodeOfSchema(PluginFacade::Schema schema) {
  switch (schema) {
    case PluginFacade::Schema::eFits:
      return CoreErrorCodes::kSuccess;
    case PluginFacade::Schema::eDiffers:
      return CoreErrorCodes::kVersionMismatch;
    case PluginFacade::Schema::eUnreadable:
      break;
  }
  return CoreErrorCodes::kDatabaseError;
}

}  // namespace

PluginFacadeInstance GetPluginFacadeInstance(void) {
  return BehindWall<PluginFacadeInstance>(nullptr, [] { return &PluginFacade::Instance(); });
}

uint32_t ResetPluginFacadeInstance(void) {
  return Answer([] {
    PluginFacade::Instance().Reset();
    return CoreErrorCodes::kSuccess;
  });
}

uint32_t InitAppInstance(PluginFacadeInstance instance, int32_t, int32_t) {
  return Answer([&]() -> std::uint32_t {
    if (instance == nullptr) return CoreErrorCodes::kNullPointer;
    return CodeOfSchema(PluginFacade::CheckSchema());
  });
}

uint32_t InitThreadInstance(PluginFacadeInstance instance) {
  return Answer([&]() -> std::uint32_t {
    if (instance == nullptr) return CoreErrorCodes::kNullPointer;
    return instance->Client() ? CoreErrorCodes::kSuccess : kPluginInterface_AgentNotFound;
  });
}

uint32_t DestroyThreadInstance(PluginFacadeInstance instance) {
  return Answer([&]() -> std::uint32_t {
    if (instance == nullptr) return CoreErrorCodes::kNullPointer;
    instance->Disconnect();
    return CoreErrorCodes::kSuccess;
  });
}

uint32_t CleanUpOnShutdown(PluginFacadeInstance instance) {
  return Answer([&]() -> std::uint32_t {
    if (instance == nullptr) return CoreErrorCodes::kNullPointer;
    instance->Notifications().Stop();
    instance->Disconnect();
    return CoreErrorCodes::kSuccess;
  });
}

// Design activation is always on here: there is no edition without it.
uint32_t EnableDesignActivation(PluginFacadeInstance instance) {
  return instance == nullptr ? CoreErrorCodes::kNullPointer : CoreErrorCodes::kSuccess;
}

uint32_t ActivateFonts(PluginFacadeInstance instance, uint32_t count, const uint32_t* fontIDs,
                       uint32_t, uint32_t, uint32_t, uint32_t, uint32_t failedCapacity,
                       uint32_t secondCapacity, uint32_t* outFailed, uint32_t* outSecond,
                       uint32_t* outFailedCount, uint32_t* outSecondCount) {
  return Answer([&]() -> std::uint32_t {
    const FontsOut failed{outFailed, failedCapacity, outFailedCount};
    const FontsOut restricted{outSecond, secondCapacity, outSecondCount};
    failed.Clear();
    restricted.Clear();
    if (instance == nullptr || IsListBroken(fontIDs, count)) return CoreErrorCodes::kNullPointer;
    return Activate(*instance, ListIn(fontIDs, count), failed, restricted);
  });
}

uint32_t DeactivateFonts(PluginFacadeInstance instance, uint32_t count, const uint32_t* fontIDs,
                         uint32_t) {
  return Answer([&]() -> std::uint32_t {
    if (instance == nullptr || IsListBroken(fontIDs, count)) return CoreErrorCodes::kNullPointer;
    Nodrix::AgentClient* const client = instance->Client();
    if (client == nullptr) return kPluginInterface_ServiceUnavailable;
    const auto fonts = Copy(ListIn(fontIDs, count));
    return instance->CodeOf(client->Deactivate(fonts, Nodrix::ActivationMode::eAuto));
  });
}

uint32_t PreviewActivateFonts(PluginFacadeInstance instance, uint32_t count,
                              const uint32_t* fontIDs, uint32_t) {
  return Answer([&]() -> std::uint32_t {
    if (instance == nullptr || IsListBroken(fontIDs, count)) return CoreErrorCodes::kNullPointer;
    return Preview(*instance, ListIn(fontIDs, count));
  });
}
