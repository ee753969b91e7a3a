#include "foundation/GLogger.h"

#include <gtest/gtest.h>

#include <set>
#include <stdexcept>
#include <thread>

#include "foundation/ErrorChecks.h"
#include "foundation/WallClock.h"
#include "support/RecordingAppender.h"

namespace {

// 2026-11-15T18:20:57.123Z: 20,772 days of 86,400 seconds, 66,057 seconds and 123 milliseconds.
constexpr std::int64_t kSomeTime = (20'772LL * 86'400 + 66'057) * 1000 + 123;

class GLoggerTest : public testing::Test {
 protected:
  void SetUp() override {
    WallClock::SetForTest([] { return kSomeTime; });
    mLogger->ResetAllLoggingLevels();
  }
  void TearDown() override { WallClock::SetForTest({}); }

  GLogger* mLogger = GLogger::GetSharedInstance();
  RecordingAppender& mLog = RecordingAppender::Install();
};

TEST_F(GLoggerTest, LineHasTimeIdentifierLevelAndText) {
  mLogger->LogWarning("Some", "%d of %s", 3, "four");
  mLogger->LogInfo("Some", "below the level");
  mLogger->Log("Some", GLogger::eNone, "never");
  WriteErrorRecord(1, "/some/where/GJSONUtils.cpp", 180, "!jsonValue.find(key, value)",
                   CoreErrorCodes::kNotFound);
  ASSERT_EQ(mLog.Lines().size(), 2U);
  EXPECT_EQ(mLog.Lines()[0] + mLog.Lines()[1],
            "[2026-11-15T18:20:57.123Z]\t[Some]\t[Warning]\t3 of four\n"
            "[2026-11-15T18:20:57.123Z]\t[Miscellaneous]\t[Error]\t"
            "Error='CoreErrorCodes::kNotFound'  File='GJSONUtils'  Line=180  "
            "Expression='!jsonValue.find(key, value)'  Code='117440512'  \n");
}

TEST_F(GLoggerTest, LevelTexts) {
  const std::pair<const char*, GLogger::LoggingLevel> rows[] = {
      {"error", GLogger::eError}, {"WARNING", GLogger::eWarning}, {"warn", GLogger::eWarning},
      {"Info", GLogger::eInfo},   {"debuG", GLogger::eDebug},     {"None", GLogger::eNone},
      {"", GLogger::eUnknown},    {"verbose", GLogger::eUnknown}, {"Warn ", GLogger::eUnknown},
  };
  for (const auto& [text, level] : rows) EXPECT_EQ(GLogger::StringToLevel(text), level) << text;
}

TEST_F(GLoggerTest, LevelsByIdentifierHaveNoCase) {
  mLogger->SetLoggingLevelForIdentifier("Miscellaneous", GLogger::eDebug);
  EXPECT_TRUE(mLogger->ShouldLog("MISCELLANEOUS", GLogger::eDebug));
  // Not found as a prefix, or by a character that only differs in the bit of case.
  mLogger->SetLoggingLevelForIdentifier("a@", GLogger::eDebug);
  EXPECT_TRUE(mLogger->ShouldLog("A@", GLogger::eDebug));
  for (const char* other : {"A`", "a", "a@b", "", "\xC1@", "other"}) {
    EXPECT_EQ(mLogger->GetLoggingLevelForIdentifier(other), GLogger::eWarning) << other;
  }
  const std::string longOne(100, 'L');
  mLogger->SetLoggingLevelForIdentifier("mute", GLogger::eNone);
  mLogger->SetLoggingLevelForIdentifier(longOne, GLogger::eInfo);
  EXPECT_FALSE(mLogger->ShouldLog("mute", GLogger::eError));
  EXPECT_TRUE(mLogger->ShouldLog(std::string(100, 'l'), GLogger::eInfo));
  EXPECT_FALSE(mLogger->ShouldLog(longOne + "l", GLogger::eInfo));
  mLogger->SetDefaultLoggingLevel(GLogger::eUnknown);
  EXPECT_FALSE(mLogger->ShouldLog("other", GLogger::eError));
  mLogger->SetDefaultLoggingLevel(GLogger::eError);
  EXPECT_TRUE(mLogger->ShouldLog("other", GLogger::eError));
  EXPECT_FALSE(mLogger->ShouldLog("other", GLogger::eWarning));
  mLogger->ResetAllLoggingLevels();
  EXPECT_FALSE(mLogger->ShouldLog("miscellaneous", GLogger::eInfo));
  EXPECT_TRUE(mLogger->ShouldLog("Mute", GLogger::eWarning));
}

TEST_F(GLoggerTest, TextsAroundTheBufferSizeAreWhole) {
  for (const std::size_t length : {0, 255, 256, 257, 511, 512, 100'000, 5}) {
    const std::string text(length, 'x');
    mLogger->LogString("%s", text.c_str());
    EXPECT_EQ(mLog.Lines().back(), "[2026-11-15T18:20:57.123Z]\t" + text + "\n");
  }
}

class TroublesomeAppender : public GLogAppender {
 public:
  void Log(const std::string& line) override {
    mCount += 1;
    GLogger::GetSharedInstance()->LogError("Chatty", "again");
    GLogger::GetSharedInstance()->SetAppender("other", nullptr);  // refused, not waited for
    if (line.ends_with("number\n")) throw 1;
    throw std::runtime_error("full");
  }
  int mCount = 0;
};

TEST_F(GLoggerTest, AppenderThatLogsAndThrowsLeavesNothingLocked) {
  auto* first = new TroublesomeAppender;
  mLogger->SetAppender("a first", first);
  mLogger->LogError("Some", "one");
  EXPECT_THROW(mLogger->LogError("Some", "number"), int);
  std::thread([this] { mLogger->LogError("Some", "two"); }).join();
  EXPECT_EQ(first->mCount, 3);
  EXPECT_EQ(mLog.Lines().size(), 2U);
}

TEST_F(GLoggerTest, AppendersAreReplacedAndRemoved) {
  EXPECT_EQ(mLogger->GetAppender("default"), &mLog);
  auto* second = new RecordingAppender;
  mLogger->SetAppender("a second", second);
  mLogger->LogError("Some", "both");
  EXPECT_EQ(second->Lines(), mLog.Lines());
  mLogger->SetAppender("a second", second);  // the same one again stays
  mLogger->LogError("Some", "both");
  EXPECT_EQ(second->Lines().size(), 2U);
  mLogger->SetAppender("a second", nullptr);
  EXPECT_EQ(mLogger->GetAppender("a second"), nullptr);
  mLogger->RemoveAllAppenders();
  EXPECT_EQ(mLogger->GetAppender("default"), nullptr);
}

TEST_F(GLoggerTest, LinesOfSeveralThreadsNeverMix) {
  const auto text = [](int thread, int line) {
    const std::string padding(static_cast<std::size_t>(thread) * 200, 'x');
    return std::to_string(thread) + "." + std::to_string(line) + padding;
  };
  std::multiset<std::string> expected;
  std::vector<std::thread> threads;
  for (int thread = 0; thread < 4; ++thread) {
    threads.emplace_back([this, thread, &text] {
      for (int line = 0; line < 300; ++line) {
        mLogger->LogError("Threads", "%s", text(thread, line).c_str());
        mLogger->SetLoggingLevelForIdentifier("level" + std::to_string(thread), GLogger::eInfo);
      }
    });
    for (int line = 0; line < 300; ++line) {
      expected.insert("[2026-11-15T18:20:57.123Z]\t[Threads]\t[Error]\t" + text(thread, line) +
                      "\n");
    }
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(std::multiset<std::string>(mLog.Lines().begin(), mLog.Lines().end()), expected);
}

}  // namespace
