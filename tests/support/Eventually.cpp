#include "support/Eventually.h"

#include <glib.h>

bool Eventually(const std::function<bool()>& condition) {
  const gint64 end = g_get_monotonic_time() + 30 * G_USEC_PER_SEC;
  while (!condition()) {
    if (g_get_monotonic_time() > end) return false;
    while (g_main_context_iteration(nullptr, FALSE)) {
    }
    g_usleep(10'000);
  }
  return true;
}
