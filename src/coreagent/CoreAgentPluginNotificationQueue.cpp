#include <utility>
#include <vector>

#include "coreagent/CoreAgentPluginNotification.h"
#include "foundation/GScopedLock.h"

namespace {

using NotificationPointer = std::unique_ptr<CoreAgentPluginNotification>;

// Entries that outlived their queue; never destroyed.
std::vector<NotificationPointer>& ParkedNotifications() {
  static auto& parked = *new std::vector<NotificationPointer>;
  return parked;
}

}  // namespace

CoreAgentPluginNotificationQueue::~CoreAgentPluginNotificationQueue() {
  GScopedLock lock(mutex, true, new GBlockingLockStrategy);
  for (auto& notification : queue) ParkedNotifications().push_back(std::move(notification));
  queue.clear();
}

void CoreAgentPluginNotificationQueue::EnqueueNotification(NotificationPointer notification) {
  if (!notification) return;
  GScopedLock lock(mutex, true, new GBlockingLockStrategy);
  queue.push_back(std::move(notification));
  mCount.store(queue.size(), std::memory_order_release);
}

NotificationPointer CoreAgentPluginNotificationQueue::DequeueNotification() {
  if (mCount.load(std::memory_order_acquire) == 0) return nullptr;
  GScopedLock lock(mutex, true, new GBlockingLockStrategy);
  NotificationPointer notification = std::move(queue.front());
  queue.pop_front();
  mCount.store(queue.size(), std::memory_order_release);
  return notification;
}

int CoreAgentPluginNotificationQueue::ProcessAllNotifications() {
  int handled = 0;
  NotificationPointer inHand = DequeueNotification();
  while (inHand) {
    NotificationPointer next = DequeueNotification();
    inHand->Respond();
    ++handled;
    inHand.reset();
    // Responding may have queued more behind the last entry.
    inHand = next ? std::move(next) : DequeueNotification();
  }
  return handled;
}
