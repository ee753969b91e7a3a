#include "agent/MainThread.h"

#include <glib.h>

#include <deque>
#include <mutex>
#include <utility>

namespace Nodrix {
namespace {

using Work = std::function<void()>;

// The work waits here, under a lock of ours; the main loop is only woken.
struct WaitingWork {
  std::mutex mutex;
  std::deque<Work> queue;
};

WaitingWork& Waiting() {
  static WaitingWork& waiting = *new WaitingWork;  // threads may end after the statics
  return waiting;
}

gboolean RunOne(gpointer) {
  Work work;
  {
    const std::lock_guard lock(Waiting().mutex);
    work = std::move(Waiting().queue.front());
    Waiting().queue.pop_front();
  }
  work();
  return G_SOURCE_REMOVE;
}

}  // namespace

void RunOnMainThread(std::function<void()> work) {
  {
    const std::lock_guard lock(Waiting().mutex);
    Waiting().queue.push_back(std::move(work));
  }
  g_idle_add_full(G_PRIORITY_DEFAULT, RunOne, nullptr, nullptr);
}

}  // namespace Nodrix
