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
  StopLogging();
  OutputSimpleDebugString("4");
  EXPECT_EQ(Printed(), "1\n2\n100%\n4");
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
  const std::pair<std::size_t, std::size_t> lengths[] = {
      {65533, 65534},  // the last that gets its line feed
      {65534, 65534},
      {65535, 65535},
      {70000, 65535},
  };
  for (const auto& [given, written] : lengths) {
    OutputFormattedDebugString("%s", std::string(given, 'x').c_str());
    EXPECT_EQ(mTexts.back().size(), written);
    EXPECT_EQ(mTexts.back().back(), given == 65533 ? '\n' : 'x');
  }
  Printed();
}

TEST_F(PluginLogTest, TracesOnlyInABuildForDiagnosis) {
  StartLogging();
  OutputIndentedAndFormattedString(1, "Entering %s", "Here");
#ifdef AUTOACTIVATION_TRACE
  EXPECT_EQ(Printed(), "Entering Here\n");
  EXPECT_EQ(gIndentationLevel, 0);
#else
  EXPECT_EQ(Printed(), "");
#endif
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
