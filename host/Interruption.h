// Ctrl-C and the like. The first signal asks everything to end in order; the second ends at once.
#pragma once

#include <functional>

class Interruption {
 public:
  // Handles SIGINT, SIGTERM and SIGHUP while it lives, and ignores SIGPIPE. One at a time.
  Interruption();
  ~Interruption();
  Interruption(const Interruption&) = delete;
  Interruption& operator=(const Interruption&) = delete;

  // The signal that came, 0 for none. [any-thread]
  static int Signal();
  // Runs the main loop until `done` says so or a signal came; `done` is asked after every turn.
  static void RunLoopUntil(const std::function<bool()>& done);
};
