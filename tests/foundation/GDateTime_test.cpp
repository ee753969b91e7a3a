#include "foundation/GDateTime.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <ctime>
#include <locale>
#include <tuple>

#include "foundation/WallClock.h"
#include "support/ErrorRecords.h"

namespace {

TEST(GDateTime, TextsThatAreDates) {
  const std::pair<const char*, const char*> rows[] = {
      {"2024-02-30", "2024-02-30T00:00:00.000Z"},  // a day is not held against its month
      {"2024-01-02T03:04", "2024-01-02T03:04:00.000Z"},
      {"2024-01-02T03:04:05", "2024-01-02T03:04:05.000Z"},
      {"2024-01-02T03:04.6", "2024-01-02T03:04:00.006Z"},
      {"2024-01-02T03:04:05.5Z", "2024-01-02T03:04:05.005Z"},
      {"2024-01-02T03:04:05.1234Z", "2024-01-02T03:04:05.999Z"},
      {"2024-01-02T03:04:05.99999999999999999999", "2024-01-02T03:04:05.999Z"},
      {"2024-01-02T03:04:05+02:00 and more", "2024-01-02T03:04:05.000Z"},
      {"0-1-1", "0000-01-01T00:00:00.000Z"},
      {"-0-+1- \t31T 0: 0", "0000-01-31T00:00:00.000Z"},
      {"9999-12-31T23:59:59.999", "9999-12-31T23:59:59.999Z"},
      {"", ""}};
  for (const auto& [text, expected] : rows) {
    const GDateTime dateTime{std::string(text)};
    EXPECT_EQ(dateTime.GetAsISO8601String(true), expected) << text;
    EXPECT_EQ(dateTime.GetAsISO8601String(false), std::string(expected).substr(0, 10)) << text;
  }
  const std::string longYear = std::string(1'000'000, '0') + "2024-01-01";
  EXPECT_EQ(GDateTime(longYear).GetAsISO8601String(false), "2024-01-01");
}

TEST(GDateTime, TextsThatAreNone) {
  const auto outside = [](const char* of, const char* field) {
    const std::string name = of;
    return "(nValue < static_cast<TSInt32>(nMin) || nValue > "
           "static_cast<TSInt32>(nMax))\nAssignField(kMin" +
           name + ", kMax" + name + ", nOriginalValue, dateTime." + field + ")\n";
  };
  const std::string format = "!bFormatOK\n";
  const std::string digits(1'000'000, '9');
  const std::pair<std::string, std::vector<std::string>> rows[] = {
      {outside("Year", "nYear"),
       {"10000-01-01", "-1-01-01", "99999999999999999999-01-01", "-99999999999999999999-01-01",
        digits}},
      {outside("Month", "nMonth"), {"2024-13-01", "2024--1-01", "2024-x"}},
      {outside("Day", "nDay"), {"2024-01-32", "2024-01-00"}},
      {outside("Hour", "nHour"), {"2024-01-01T24:00"}},
      {outside("Minute", "nMinute"), {"2024-01-01T23:60"}},
      {outside("Second", "nSecond"), {"2024-01-01T23:59:60"}},
      {outside("Millisecond", "nMillisecond"), {"2024-01-01T23:59:59.-1"}},
      {format,
       {"2024/01/01", "2024", "2024-01", "2024-01-02 03:04", "2024-01-02T03",
        "2024-01-02T03:", "2024-01-02T03:04:", "2024-01-02T03:04:05.Z", "2024-01-02T:04", "Monday",
        " ", "+-5-01-01", std::string("2024\0-01-01", 11)}}};
  for (const auto& [expressions, texts] : rows) {
    for (const std::string& text : texts) {
      const RecordingAppender& log = RecordingAppender::Install();
      GDateTime dateTime = GDateTime::kMaxDateTime;
      EXPECT_EQ(dateTime.SetFromISO8601String(text), GDateTime::kParsingError) << text;
      EXPECT_EQ(dateTime.Compare(GDateTime::kMaxDateTime), 1) << text;
      EXPECT_EQ(ExpressionsOf(log), expressions) << text;
    }
  }
  RecordingAppender& last = RecordingAppender::Install();
  EXPECT_TRUE(GDateTime(std::string("2024")).IsEmpty());
  EXPECT_EQ(ExpressionsOf(last), format + "SetFromISO8601String(dateString)\n");
}

TEST(GDateTime, SecondsAndDatesAgree) {
  const std::tuple<unsigned long long, const char*, int> rows[] = {
      {0, "1970-01-01T00:00:00.000Z", 4},
      {31'535'999, "1970-12-31T23:59:59.000Z", 4},
      {68'169'600, "1972-02-29T00:00:00.000Z", 2},
      {951'868'800, "2000-03-01T00:00:00.000Z", 3},
      {1'794'766'857, "2026-11-15T18:20:57.000Z", 0},
      {4'102'444'799, "2099-12-31T23:59:59.000Z", 4}};
  for (const auto& [seconds, text, dayOfWeek] : rows) {
    EXPECT_EQ(GDateTime(seconds).GetAsISO8601String(true), text);
    unsigned long long back = 1;
    EXPECT_EQ(GDateTime(std::string(text)).GetSecondsSince1970(back), 0U);
    EXPECT_EQ(back, seconds);
    WallClock::SetForTest([&now = seconds] { return static_cast<std::int64_t>(now) * 1000 + 7; });
    EXPECT_EQ(GDateTime::OSGetCurrentDateTime().nDayOfWeek, dayOfWeek);
    EXPECT_EQ(GDateTime::OSGetCurrentDateTime().nMillisecond, 7);
    EXPECT_EQ(GDateTime().GetAsISO8601String(false), std::string(text).substr(0, 10));
    WallClock::SetForTest({});
  }
  EXPECT_EQ(GDateTime::kMaxDateTime.GetAsISO8601String(true), "2099-12-31T23:59:59.999Z");
}

TEST(GDateTime, ConversionsRefuseWhatTheyCannotTell) {
  const std::string years = "currentYear >= kFirstIllegalYear || currentYear < 1970\n";
  const std::string fields = "!HasFieldsInLimits()\n";
  const std::pair<SDateTime, std::string> rows[] = {
      {{2100, 1, 5, 1, 0, 0, 0, 0}, years},      {{1969, 12, 3, 31, 23, 59, 59, 999}, years},
      {{0, 0, 0, 0, 0, 0, 0, 0}, years},         {{2024, 0, 0, 1, 0, 0, 0, 0}, fields},
      {{2024, 13, 0, 1, 0, 0, 0, 0}, fields},    {{1970, 1, 0, 0, 0, 0, 0, 0}, fields},
      {{2024, 1, 0, 32, 0, 0, 0, 0}, fields},    {{2099, 12, 0, 31, 24, 0, 0, 0}, fields},
      {{2024, 65535, 0, 1, 0, 0, 0, 0}, fields},
  };
  for (const auto& [dateTime, expressions] : rows) {
    RecordingAppender& log = RecordingAppender::Install();
    unsigned long long seconds = 7;
    EXPECT_EQ(GDateTime(dateTime).GetSecondsSince1970(seconds), CoreErrorCodes::kInvalidParam);
    EXPECT_EQ(seconds, 7U);
    EXPECT_EQ(ExpressionsOf(log), expressions);
  }
  for (const unsigned long long seconds : {4'102'444'800ULL, ~0ULL}) {
    RecordingAppender& log = RecordingAppender::Install();
    EXPECT_TRUE(GDateTime(seconds).IsEmpty());
    EXPECT_EQ(ExpressionsOf(log),
              "year >= kFirstIllegalYear\nSetFromSecondsSince1970(secsSince1970)\n");
  }
}

TEST(GDateTime, DayOfWeekCountsForEmptinessAlone) {
  const GDateTime dayOnly(SDateTime{0, 0, 3, 0, 0, 0, 0, 0});
  EXPECT_FALSE(dayOnly.IsEmpty());
  EXPECT_EQ(dayOnly.GetAsISO8601String(true), "");
  EXPECT_EQ(dayOnly.Compare(GDateTime::kEmptyDateTime), 1);
  EXPECT_EQ(GDateTime(SDateTime{0, 0, 0, 0, 0, 0, 0, 1}).GetAsISO8601String(true),
            "0000-00-00T00:00:00.001Z");
  // Each field decides only where those before it are equal.
  const char* ascending[] = {"2023-12-31T23:59:59.999", "2024-01-31T23:59:59.999",
                             "2024-02-01T23:59:59.999", "2024-02-02T01:59:59.999",
                             "2024-02-02T02:01:59.999", "2024-02-02T02:02:01.999",
                             "2024-02-02T02:02:02.001", "2024-02-02T02:02:02.002"};
  for (int i = 0; i < 64; ++i) {
    const GDateTime a{std::string(ascending[i / 8])};
    const GDateTime b{std::string(ascending[i % 8])};
    EXPECT_EQ(a.Compare(b), i / 8 < i % 8 ? 0 : i / 8 == i % 8 ? 1 : 2);
  }
}

TEST(GDateTime, ShortFormIsLocalAndNeedsSeconds) {
  setenv("LC_ALL", "C", 1);
  setenv("TZ", "EST5", 1);  // west of Greenwich it is still the day before
  tzset();
  std::string text;
  EXPECT_EQ(GDateTime(std::string("2024-01-02T03:04")).GetLocalizedShortString(text), 0U);
  EXPECT_EQ(text, "01/01/24");
  setenv("LC_ALL", "no_SUCH.locale", 1);
  EXPECT_EQ(GDateTime(std::string("2024-01-02T06:04")).GetLocalizedShortString(text), 0U);
  EXPECT_EQ(text, "01/02/24");
  EXPECT_EQ(GDateTime::kEmptyDateTime.GetLocalizedShortString(text), CoreErrorCodes::kInvalidParam);
  EXPECT_EQ(text, "01/02/24");
}

TEST(GDateTime, ProcessLocaleDoesNotMatter) {
  struct Grouping : std::numpunct<char> {
    char do_thousands_sep() const override { return '-'; }
    std::string do_grouping() const override { return "\1"; }
  };
  const std::locale before = std::locale::global(std::locale(std::locale::classic(), new Grouping));
  EXPECT_EQ(GDateTime(std::string("2024-01-02")).GetAsISO8601String(false), "2024-01-02");
  std::locale::global(before);
}

}  // namespace
