#include <algorithm>
#include <exception>
#include <iterator>

#include "coreagent/CoreAgentInterface.h"
#include "coreagent/CoreAgentPluginNotification.h"
#include "facade/SkerryLoader.h"
#include "foundation/ErrorCodes.h"
#include "foundation/PluginLog.h"

namespace {

// What an event's data pointer is, and what is stored of it beside the key.
enum class Payload {
  eNone,     // nothing; the key is true
  eState,    // a byte: the key's own value
  eEnabled,  // a byte, under kPluginNotification_Enabled
  eFontID,   // an unsigned 32-bit ID
  eEntries,  // a dictionary, copied entry by entry
  ePreviews  // a dictionary, stored whole
};

struct Event {
  std::int32_t kind;
  const char* key;
  Payload payload;
};

constexpr Event kEvents[] = {
    {kCallback_AgentShutdown, kPluginNotification_AgentShutdown, Payload::eNone},
    {kCallback_OnlineStateChanged, kPluginNotification_OnlineStateChanged, Payload::eState},
    {kCallback_LoggedInStateChanged, kPluginNotification_LoggedInStateChanged, Payload::eEntries},
    {kCallback_WorkgroupsChanged, kPluginNotification_WorkgroupsChanged, Payload::eNone},
    {kCallback_UserPermissionsChanged, kPluginNotification_UserPermissionsChanged, Payload::eNone},
    {kCallback_FontActivated, kPluginNotification_FontActivated, Payload::eFontID},
    {kCallback_FontDeactivated, kPluginNotification_FontDeactivated, Payload::eFontID},
    {kCallback_FontMissing, kPluginNotification_FontMissing, Payload::eFontID},
    {kCallback_GoogleWebFontsEnabled, kPluginNotification_GoogleWebFontsEnabled, Payload::eEnabled},
    {kCallback_GoogleReplicationProgress, kPluginNotification_GoogleReplicationProgress,
     Payload::eEntries},
    {kCallback_GoogleReplicationStopped, kPluginNotification_GoogleReplicationStopped,
     Payload::eNone},
    {kCallback_PreviewPNGsRendered, kPluginNotification_PreviewPNGsRendered, Payload::ePreviews},
    {kCallback_SmartListsChanged, kPluginNotification_SmartListsChanged, Payload::eNone},
    {kCallback_BulkReplicationProgress, kPluginNotification_BulkReplicationProgress,
     Payload::eEntries},
    {kCallback_BulkReplicationStopped, kPluginNotification_BulkReplicationStopped, Payload::eNone},
    {kCallback_IncrementalReplicationProgress, kPluginNotification_IncrementalReplicationProgress,
     Payload::eEntries},
    {kCallback_IncrementalReplicationStopped, kPluginNotification_IncrementalReplicationStopped,
     Payload::eNone},
    {kCallback_PanelDataChanged, kPluginNotification_PanelDataChanged, Payload::eNone},
    {kCallback_DesignActivationNonCompliant, kPluginNotification_DesignActivationNonCompliant,
     Payload::eFontID},
    {kCallback_OfflineDownloadFinished, kPluginNotification_OfflineDownloadFinished,
     Payload::eNone},
    {kCallback_FontServerReplicationProgress, kPluginNotification_FontServerReplicationProgress,
     Payload::eEntries},
    {kCallback_FontServerReplicationStopped, kPluginNotification_FontServerReplicationStopped,
     Payload::eNone},
};

bool ByteAt(const void* data) { return *static_cast<const std::uint8_t*>(data) != 0; }

PropertyList::DictionaryRef DictionaryAt(const void* data) {
  return PropertyList::FromHandle(static_cast<PLDictionaryRef>(const_cast<void*>(data)));
}

// `data` is lent for the length of the call and not null.
void StorePayload(PropertyList::Dictionary& dictionary, const Event& event, const void* data) {
  switch (event.payload) {
    case Payload::eNone:
      break;
    case Payload::eState:
      dictionary.Set(event.key, ByteAt(data));
      break;
    case Payload::eEnabled:
      dictionary.Set(kPluginNotification_Enabled, ByteAt(data));
      break;
    case Payload::eFontID:
      dictionary.Set(kPluginNotification_FontActivation_Font_ID,
                     std::int64_t{*static_cast<const std::uint32_t*>(data)});
      break;
    case Payload::eEntries:
      for (const auto& [key, value] : DictionaryAt(data)->Entries()) dictionary.Set(key, value);
      break;
    case Payload::ePreviews:
      dictionary.Set(kPluginNotification_FontPNGs, DictionaryAt(data));
      break;
  }
}

void QueueEvent(std::int32_t kind, const void* data) {
  FontManagerInterface* fontManager = FontManagerInterface::GetFontManager();
  if (!fontManager) {
    OutputFormattedDebugString("WARNING:  CoreAgentInterface::GetFontManager() returned NULL.");
    return;
  }
  auto* coreAgent = dynamic_cast<CoreAgentInterface*>(fontManager);
  const auto* event = std::ranges::find(kEvents, kind, &Event::kind);
  if (!coreAgent || event == std::end(kEvents)) return;

  auto notification = std::make_unique<CoreAgentPluginNotification>(coreAgent);
  PropertyList::Dictionary& dictionary = *notification->dictionary;
  if (data) StorePayload(dictionary, *event, data);
  if (event->payload != Payload::eState) dictionary.Set(event->key, true);
  coreAgent->EnqueueNotification(std::move(notification));
}

}  // namespace

std::uint32_t CoreAgentNotificationCallback(std::int32_t kind, const void* data) {
  constexpr std::uint32_t kResult = CoreErrorCodes::kUnknownError;
  try {
    QueueEvent(kind, data);
    if (kind != kCallback_PreviewPNGsRendered) {
      OutputFormattedDebugString(
          "CoreAgentNotificationCallback(callbackType=%d, pCallbackData=0x%08x) returning %d", kind,
          static_cast<unsigned>(reinterpret_cast<std::uintptr_t>(data)), static_cast<int>(kResult));
    }
  } catch (const std::exception&) {
    // Out of memory: the event is lost, the library's thread goes on.
  }
  return kResult;
}
