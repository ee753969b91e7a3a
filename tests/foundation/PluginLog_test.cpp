#include "foundation/PluginLog.h"

#include <gtest/gtest.h>

#include <thread>
#include <vector>

#include "foundation/WallClock.h"

namespace {

class PluginLogTest : public testing::Test {
 protected:
  void SetUp() override {
    SetPluginLogSinks([this](const char* name) { mBegun.emplace_back(name); },
                      [this](const char* text) { mTexts.emplace_back(text); });
    testing::internal::CaptureStdout();
  }
  void TearDown() override {
    SetPluginLogSinks({}, {});
    StopLogging();
    WallClock::SetForTest({});
  }
  static std::string Printed() { return testing::internal::GetCapturedStdout(); }

  std::vector<std::string> mBegun;
  std::vector<std::string> mTexts;
};

TEST_F(PluginLogTest, SinkGetsLinesOnlyWhileStarted) {
  OutputFormattedDebugString("%d", 1);
  StartLogging();
  OutputFormattedDebugString("%s\n", "2");
  OutputSimpleDebugString("100%");
  OutputFormattedDebugString("%s", "");
  OutputIndentedAndFormattedString(1, "Entering %s", "Here");
  StopLogging();
  OutputSimpleDebugString("4");
#ifdef AUTOACTIVATION_TRACE
  EXPECT_EQ(Printed(), "1\n2\n100%\nEntering Here\n4");
#else
  EXPECT_EQ(Printed(), "1\n2\n100%\n4");
#endif
  mTexts.resize(3);  // a trace goes to the sink too
  EXPECT_EQ(mTexts, (std::vector<std::string>{"2\n", "100%", "\n"}));
}

TEST_F(PluginLogTest, BannerFollowsTheOpening) {
  setenv("TZ", "UTC", 1);
  tzset();
  WallClock::SetForTest([] { return std::int64_t{0}; });
  InitLogging("Host.log");
  EXPECT_EQ(mBegun, std::vector<std::string>{"Host.log"});
  std::string banner;
  for (const std::string& text : mTexts) banner += text;
  EXPECT_EQ(banner, "\n=======\nThu Jan  1 00:00:00 1970\n=======\n");
  SetPluginLogSinks({}, [this](const char* text) { mTexts.emplace_back(text); });
  InitLogging("Again.log");
  EXPECT_EQ(mTexts.size(), 3U);
  EXPECT_EQ(Printed(), "");
}

TEST_F(PluginLogTest, LongTextsAreCutAt64KiB) {
  StartLogging();
  for (const std::size_t given : {65533, 65534, 65535, 70000}) {
    const std::string text(given, 'x');
    OutputFormattedDebugString("%s", text.c_str());
    // The first is the last that gets its line feed.
    EXPECT_EQ(mTexts.back(), given == 65533 ? text + "\n" : text.substr(0, 65535));
  }
  Printed();
}

TEST_F(PluginLogTest, SinksMayBeExchangedWhileThreadsLog) {
  StartLogging();
  std::thread writer([] {
    for (int i = 0; i < 200; ++i) OutputFormattedDebugString("line %d", i);
  });
  for (int i = 0; i < 200; ++i) SetPluginLogSinks({}, [](const char*) {});
  writer.join();
  EXPECT_EQ(Printed().substr(0, 14), "line 0\nline 1\n");
}

}  // namespace
