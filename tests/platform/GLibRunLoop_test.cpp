#include "platform/linux/GLibRunLoop.h"

#include <glib.h>
#include <gtest/gtest.h>

namespace {

using Mode = RunLoop::Mode;

// ctest ends a run that never comes there.
template <typename Question>
void RunUntil(Question question) {
  while (!question()) g_main_context_iteration(nullptr, TRUE);
}

TEST(GLibRunLoop, NestedRunTicksCommonTimersOnly) {
  GLibRunLoop loop;
  int common = 0;
  int plain = 0;
  int plainInModalRun = 0;
  bool inModalRun = false;
  const auto plainTimer = loop.CreateRepeatingTimer(0, 0.001, Mode::eDefault, [&] {
    ++plain;
    if (inModalRun) ++plainInModalRun;
  });
  const auto commonTimer = loop.CreateRepeatingTimer(0.001, 0.001, Mode::eCommon, [&] {
    if (++common != 1) return;
    inModalRun = true;
    RunUntil([&] { return common >= 20; });
    inModalRun = false;
  });
  RunUntil([&] { return common >= 20; });
  EXPECT_EQ(plainInModalRun, 0);
  const int before = plain;
  RunUntil([&] { return plain >= before + 3; });
}

TEST(GLibRunLoop, ADefaultTimerDoesNotEnterItself) {
  GLibRunLoop loop;
  int depth = 0;
  int deepest = 0;
  int ticks = 0;
  int others = 0;
  const auto other = loop.CreateRepeatingTimer(0, 0.001, Mode::eCommon, [&] { ++others; });
  const auto timer = loop.CreateRepeatingTimer(0, 0.001, Mode::eDefault, [&] {
    ++ticks;
    deepest = std::max(deepest, ++depth);
    const int before = others;
    RunUntil([&] { return others >= before + 5; });
    --depth;
  });
  RunUntil([&] { return ticks >= 3; });
  EXPECT_EQ(deepest, 1);
}

TEST(GLibRunLoop, ATimerMayDestroyItselfWhileItsCallbackRuns) {
  GLibRunLoop loop;
  const std::string captured = "still readable";
  std::string seen;
  int ticks = 0;
  int others = 0;
  std::unique_ptr<RunLoop::Timer> timer;
  timer = loop.CreateRepeatingTimer(0, 0.001, Mode::eCommon, [&, captured] {
    ++ticks;
    timer.reset();
    seen = captured;
  });
  const auto other = loop.CreateRepeatingTimer(0, 0.001, Mode::eCommon, [&] { ++others; });
  RunUntil([&] { return ticks == 1 && others >= 5; });
  EXPECT_EQ(ticks, 1);
  EXPECT_EQ(seen, "still readable");
}

TEST(GLibRunLoop, SetNextFireMovesTheFireAlsoFromWithinTheCallback) {
  GLibRunLoop loop;
  constexpr double kNever = 1e6;
  int ticks = 0;
  int others = 0;
  std::unique_ptr<RunLoop::Timer> timer;
  timer = loop.CreateRepeatingTimer(kNever, 0.001, Mode::eCommon, [&] {
    if (++ticks == 2) timer->SetNextFire(kNever);
  });
  const auto other = loop.CreateRepeatingTimer(0, 0.001, Mode::eCommon, [&] { ++others; });
  RunUntil([&] { return others >= 5; });
  EXPECT_EQ(ticks, 0);
  timer->SetNextFire(0);
  RunUntil([&] { return ticks >= 2; });
  const int before = others;
  RunUntil([&] { return others >= before + 5; });
  EXPECT_EQ(ticks, 2);
}

}  // namespace
