// A calendar value in universal time, with a text form in ISO 8601 and a conversion to seconds
// since 1970. It has calendar arithmetic of its own for the years 1970 to 2099 and knows no time
// zones.
//
// A value may hold any numbers: a day is tested against 31 and never against its month, and an
// SDateTime is taken as it is. An operation that fails leaves the value, or its result, as it was,
// and logs an error record. [any-thread, as long as nobody changes the value meanwhile]
#pragma once

#include <array>
#include <cstdint>
#include <string>

#include "foundation/ErrorCodes.h"

struct SDateTime {
  std::uint16_t nYear;
  std::uint16_t nMonth;      // from 1
  std::uint16_t nDayOfWeek;  // 0 is Sunday
  std::uint16_t nDay;        // from 1
  std::uint16_t nHour;
  std::uint16_t nMinute;
  std::uint16_t nSecond;
  std::uint16_t nMillisecond;

  bool operator==(const SDateTime&) const = default;
};

class GDateTime {
 public:
  static constexpr TModuleErrorCode kParsingError = MakeErrorCode(0x001014, 1);

  static constexpr short kMinYear = 0;
  static constexpr short kMaxYear = 9999;
  static constexpr short kMinMonth = 1;
  static constexpr short kMaxMonth = 12;
  static constexpr short kMinDay = 1;
  static constexpr short kMaxDay = 31;
  static constexpr short kMinHour = 0;
  static constexpr short kMaxHour = 23;
  static constexpr short kMinMinute = 0;
  static constexpr short kMaxMinute = 59;
  static constexpr short kMinSecond = 0;
  static constexpr short kMaxSecond = 59;
  static constexpr short kMinMillisecond = 0;
  static constexpr short kMaxMillisecond = 999;
  // The first year that the conversions to and from seconds refuse.
  static constexpr short kFirstIllegalYear = 2100;

  static constexpr std::array<std::uint16_t, 12> kMonthDays = {31, 28, 31, 30, 31, 30,
                                                               31, 31, 30, 31, 30, 31};
  static constexpr std::array<std::uint16_t, 12> kLeapYearMonthDays = {31, 29, 31, 30, 31, 30,
                                                                       31, 31, 30, 31, 30, 31};

  // Constant expressions: they exist before any code runs.
  static const GDateTime kEmptyDateTime;
  static const GDateTime kMaxDateTime;  // 2099-12-31T23:59:59.999Z

  // The present time.
  GDateTime();
  constexpr explicit GDateTime(const SDateTime& dateTime) : mDateTime(dateTime) {}
  // Both are empty if their argument is refused.
  explicit GDateTime(const std::string& dateString);
  explicit GDateTime(unsigned long long secsSince1970);
  GDateTime(const GDateTime&) = default;
  GDateTime& operator=(const GDateTime&) = default;
  constexpr virtual ~GDateTime() {}  // a defaulted one keeps GCC from making the constants

  // YYYY-MM-DD or YYYY-MM-DDTHH:MM, then ":" and seconds, then "." and milliseconds if they are
  // there; what follows is ignored, a time zone too. kParsingError for any other text and for a
  // number outside its limits; an empty text changes nothing and is no failure. The day of the week
  // becomes 0.
  //
  // Numbers are read as a stream of the classic locale reads them, whatever locale the process has:
  // blanks before a number and a sign are taken, and any count of digits. A number too large for 32
  // bits is outside every limit. The digits behind the point are a whole number of milliseconds
  // (".5" is 5), and 1000 and more counts as 999.
  TModuleErrorCode SetFromISO8601String(const std::string& text);
  // "2024-01-02", or with the time "2024-01-02T03:04:05.006Z". Empty if all fields are 0, the day
  // of the week not counting.
  [[nodiscard]] std::string GetAsISO8601String(bool withTime) const;

  // kInvalidParam for a time of 2100 or later.
  TModuleErrorCode SetFromSecondsSince1970(unsigned long long seconds);
  // kInvalidParam for a year before 1970 or after 2099 and for fields outside their limits. A day
  // behind the end of its month counts on into the next; milliseconds are dropped.
  TModuleErrorCode GetSecondsSince1970(unsigned long long& seconds) const;

  // All eight fields are 0.
  [[nodiscard]] bool IsEmpty() const { return mDateTime == SDateTime{}; }
  // 0 if this value is earlier, 1 if equal, 2 if later; the day of the week does not count.
  [[nodiscard]] int Compare(const GDateTime& other) const;

  // The date alone in the user's short form, in UTF-8: by the locale that the environment names
  // (the process's own is neither asked nor changed) and in the local time zone. Fails as
  // GetSecondsSince1970 does.
  TModuleErrorCode GetLocalizedShortString(std::string& text) const;

  // The present time in universal time, with the day of the week, by WallClock.
  [[nodiscard]] static SDateTime OSGetCurrentDateTime();

 private:
  class TextReader;

  [[nodiscard]] static std::string OSFormatShortDate(unsigned long long secsSince1970);
  [[nodiscard]] bool HasFieldsInLimits() const;

  SDateTime mDateTime{};
};

inline constexpr GDateTime GDateTime::kEmptyDateTime{SDateTime{}};
inline constexpr GDateTime GDateTime::kMaxDateTime{SDateTime{2099, 12, 0, 31, 23, 59, 59, 999}};
