#include "agent/MainThread.h"

#include <glib.h>

#include <utility>

namespace Nodrix {

void RunOnMainThread(std::function<void()> work) {
  using Work = std::function<void()>;
  g_idle_add_full(
      G_PRIORITY_DEFAULT,
      [](gpointer data) -> gboolean {
        (*static_cast<Work*>(data))();
        return G_SOURCE_REMOVE;
      },
      new Work(std::move(work)), [](gpointer data) { delete static_cast<Work*>(data); });
}

}  // namespace Nodrix
