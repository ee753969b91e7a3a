// Events of the font manager's library on their way to the main thread. The callback turns an event
// into a small dictionary and queues it; the main thread's timer drains the queue and acts.
//
// Which event an entry is depends on which key its dictionary holds; a key's string is its own
// name.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <memory>

#include "foundation/GMutex.h"
#include "propertylist/Value.h"

class CoreAgentInterface;

#define PLUGIN_NOTIFICATION_KEYS(X)                     \
  X(kPluginNotification_AgentShutdown)                  \
  X(kPluginNotification_OnlineStateChanged)             \
  X(kPluginNotification_LoggedInStateChanged)           \
  X(kPluginNotification_WorkgroupsChanged)              \
  X(kPluginNotification_UserPermissionsChanged)         \
  X(kPluginNotification_PanelDataChanged)               \
  X(kPluginNotification_FontActivated)                  \
  X(kPluginNotification_FontDeactivated)                \
  X(kPluginNotification_FontMissing)                    \
  X(kPluginNotification_DesignActivationNonCompliant)   \
  X(kPluginNotification_FontActivation_Font_ID)         \
  X(kPluginNotification_GoogleWebFontsEnabled)          \
  X(kPluginNotification_Enabled)                        \
  X(kPluginNotification_GoogleReplicationProgress)      \
  X(kPluginNotification_GoogleReplicationStopped)       \
  X(kPluginNotification_BulkReplicationProgress)        \
  X(kPluginNotification_BulkReplicationStopped)         \
  X(kPluginNotification_IncrementalReplicationProgress) \
  X(kPluginNotification_IncrementalReplicationStopped)  \
  X(kPluginNotification_FontServerReplicationProgress)  \
  X(kPluginNotification_FontServerReplicationStopped)   \
  X(kPluginNotification_PreviewPNGsRendered)            \
  X(kPluginNotification_FontPNGs)                       \
  X(kPluginNotification_SmartListsChanged)              \
  X(kPluginNotification_OfflineDownloadFinished)        \
  /* never queued */                                    \
  X(kPluginNotification_TaskStarted)                    \
  X(kPluginNotification_TaskProgress)                   \
  X(kPluginNotification_TaskProgress_FontID)            \
  X(kPluginNotification_TaskProgress_ProgressCount)     \
  X(kPluginNotification_TaskProgress_ProgressMax)       \
  X(kPluginNotification_TaskError)                      \
  X(kPluginNotification_TaskError_ErrorFontID)          \
  X(kPluginNotification_TaskFinished)                   \
  X(kPluginNotification_NumFonts)
#define PLUGIN_NOTIFICATION_KEY(name) inline constexpr const char* name = #name;
PLUGIN_NOTIFICATION_KEYS(PLUGIN_NOTIFICATION_KEY)
#undef PLUGIN_NOTIFICATION_KEY
#undef PLUGIN_NOTIFICATION_KEYS

class CoreAgentPluginNotification {
 public:
  // An entry with an empty dictionary. `owner` is lent and may be null.
  explicit CoreAgentPluginNotification(CoreAgentInterface* owner)
      : dictionary(PropertyList::Dictionary::Create()), coreAgent(owner) {}

  // Acts on the event: 0, or -1 if there is no font manager. [main-thread]
  int Respond();

  PropertyList::DictionaryRef dictionary;
  CoreAgentInterface* coreAgent;
};

class CoreAgentPluginNotificationQueue {
 public:
  CoreAgentPluginNotificationQueue() = default;
  // What is still queued is let go of, but lives to the end of the process.
  ~CoreAgentPluginNotificationQueue();
  CoreAgentPluginNotificationQueue(const CoreAgentPluginNotificationQueue&) = delete;
  CoreAgentPluginNotificationQueue& operator=(const CoreAgentPluginNotificationQueue&) = delete;

  // Null is ignored. [any-thread]
  void EnqueueNotification(std::unique_ptr<CoreAgentPluginNotification> notification);
  // The front entry, or null. An empty queue takes no lock: there is one consumer. [main-thread]
  std::unique_ptr<CoreAgentPluginNotification> DequeueNotification();
  // Responds to all entries, also to those that come meanwhile; gives their number. [main-thread]
  int ProcessAllNotifications();

 private:
  std::deque<std::unique_ptr<CoreAgentPluginNotification>> queue;
  std::atomic<std::size_t> mCount{0};  // of `queue`, so that emptiness can be seen without the lock
  GMutex mutex;
};

// What is registered with the facade. Comes in on a thread of the library's own and touches nothing
// but the queue. Always CoreErrorCodes::kUnknownError: the library does not read it. [any-thread]
std::uint32_t CoreAgentNotificationCallback(std::int32_t kind, const void* data);
