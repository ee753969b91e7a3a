#include "platform/linux/GLibRunLoop.h"

#include <glib.h>

#include <algorithm>

namespace {

constexpr gint64 kShortestInterval = 1000;  // microseconds

gint64 Microseconds(double seconds) {
  return static_cast<gint64>(std::max(seconds, 0.0) * G_USEC_PER_SEC);
}

struct TimerState {
  gint64 due;       // monotonic time, microseconds
  gint64 interval;  // microseconds
  RunLoop::Mode mode;
  std::function<void()> callback;
};

// GLib allocates the source; what it can't construct hangs on it.
struct TimerSource {
  GSource base;
  TimerState* state;  // owned, deleted by Finalize
};

TimerState& StateOf(GSource* source) { return *reinterpret_cast<TimerSource*>(source)->state; }

bool MayFire(const TimerState& state) {
  return state.mode == RunLoop::Mode::eCommon || g_main_depth() == 0;
}

gboolean Prepare(GSource* source, gint* timeout) {
  const TimerState& state = StateOf(source);
  *timeout = -1;
  if (!MayFire(state)) return FALSE;
  const gint64 wait = state.due - g_source_get_time(source);
  if (wait <= 0) return TRUE;
  *timeout = static_cast<gint>(std::min<gint64>((wait + 999) / 1000, G_MAXINT));
  return FALSE;
}

gboolean Check(GSource* source) {
  const TimerState& state = StateOf(source);
  return MayFire(state) && state.due <= g_source_get_time(source);
}

// The next fire is set before the callback, which may run the loop itself or move the fire. GLib
// holds the source meanwhile, so that a callback may destroy its own timer.
gboolean Dispatch(GSource* source, GSourceFunc, gpointer) {
  TimerState& state = StateOf(source);
  const gint64 now = g_source_get_time(source);
  state.due += state.interval;
  if (state.due <= now) state.due = now + state.interval;
  state.callback();
  return G_SOURCE_CONTINUE;
}

void Finalize(GSource* source) { delete reinterpret_cast<TimerSource*>(source)->state; }

GSourceFuncs sTimerFunctions = {Prepare, Check, Dispatch, Finalize, nullptr, nullptr};

class GLibTimer : public RunLoop::Timer {
 public:
  // Takes over the caller's count.
  explicit GLibTimer(GSource* source) : mSource(source) {}
  ~GLibTimer() override {
    g_source_destroy(mSource);
    g_source_unref(mSource);
  }
  GLibTimer(const GLibTimer&) = delete;
  GLibTimer& operator=(const GLibTimer&) = delete;

  void SetNextFire(double seconds) override {
    StateOf(mSource).due = g_get_monotonic_time() + Microseconds(seconds);
  }

 private:
  GSource* mSource;
};

}  // namespace

std::unique_ptr<RunLoop::Timer> GLibRunLoop::CreateRepeatingTimer(double firstFire, double interval,
                                                                  Mode mode,
                                                                  std::function<void()> callback) {
  auto state = std::make_unique<TimerState>();
  state->due = g_get_monotonic_time() + Microseconds(firstFire);
  state->interval = std::max(Microseconds(interval), kShortestInterval);
  state->mode = mode;
  state->callback = std::move(callback);

  GSource* source = g_source_new(&sTimerFunctions, sizeof(TimerSource));
  reinterpret_cast<TimerSource*>(source)->state = state.release();
  g_source_set_static_name(source, "automatic font activation");
  g_source_set_can_recurse(source, mode == Mode::eCommon ? TRUE : FALSE);
  g_source_attach(source, nullptr);
  return std::make_unique<GLibTimer>(source);
}
