#include "host/Interruption.h"

#include <fcntl.h>
#include <glib-unix.h>
#include <glib.h>
#include <signal.h>
#include <unistd.h>

#include <atomic>

namespace {

constexpr int kSignals[] = {SIGINT, SIGTERM, SIGHUP};

std::atomic<int> gSignal{0};
int gWakePipe[2] = {-1, -1};
struct sigaction gBefore[std::size(kSignals)];

extern "C" void HandleSignal(int signal) {
  if (gSignal.exchange(signal) != 0) _exit(128 + signal);
  const char byte = 0;
  const ssize_t ignored = write(gWakePipe[1], &byte, 1);
  static_cast<void>(ignored);
}

gboolean KeepAwake(gint, GIOCondition, gpointer) { return G_SOURCE_REMOVE; }

}  // namespace

Interruption::Interruption() {
  gSignal = 0;
  if (pipe2(gWakePipe, O_CLOEXEC | O_NONBLOCK) != 0) gWakePipe[0] = gWakePipe[1] = -1;
  struct sigaction action = {};
  action.sa_handler = HandleSignal;
  for (std::size_t i = 0; i < std::size(kSignals); ++i) {
    sigaction(kSignals[i], &action, &gBefore[i]);
  }
  signal(SIGPIPE, SIG_IGN);
}

Interruption::~Interruption() {
  for (std::size_t i = 0; i < std::size(kSignals); ++i) {
    sigaction(kSignals[i], &gBefore[i], nullptr);
  }
  for (int& end : gWakePipe) {
    if (end >= 0) close(end);
    end = -1;
  }
}

int Interruption::Signal() { return gSignal.load(); }

void Interruption::RunLoopUntil(const std::function<bool()>& done) {
  const guint wake = g_unix_fd_add(gWakePipe[0], G_IO_IN, KeepAwake, nullptr);
  while (Signal() == 0 && !done()) g_main_context_iteration(nullptr, TRUE);
  if (GSource* source = g_main_context_find_source_by_id(nullptr, wake)) g_source_destroy(source);
}
