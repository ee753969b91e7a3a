#include "foundation/GDateTime.h"

#include <algorithm>
#include <charconv>
#include <compare>
#include <cstdio>
#include <limits>
#include <string_view>

#include "foundation/ErrorChecks.h"

namespace {

using TSInt32 = std::int32_t;

constexpr unsigned int kFirstYear = 1970;
constexpr unsigned int kSecondsPerDay = 86'400;

// Without the rule for centuries: 2000 is a leap year, and 2100 is out of reach.
bool IsLeapYear(unsigned int year) { return year % 4 == 0; }

unsigned int DaysOfYear(unsigned int year) { return IsLeapYear(year) ? 366 : 365; }

const std::array<std::uint16_t, 12>& MonthDaysOfYear(unsigned int year) {
  return IsLeapYear(year) ? GDateTime::kLeapYearMonthDays : GDateTime::kMonthDays;
}

bool IsDigit(char character) { return character >= '0' && character <= '9'; }

TModuleErrorCode AssignField(short nMin, short nMax, TSInt32 nValue, std::uint16_t& nField) {
  G_CHECK_CONDITION((nValue < static_cast<TSInt32>(nMin) || nValue > static_cast<TSInt32>(nMax)),
                    GDateTime::kParsingError);
  nField = static_cast<std::uint16_t>(nValue);
  return 0;
}

}  // namespace

// Integers with one character between them.
class GDateTime::TextReader {
 public:
  explicit TextReader(std::string_view text) : mRest(text) {}

  // Each ends at the first separator that is missing, and IsFormatOK says so. A field outside its
  // limits is a code.
  TModuleErrorCode ReadDate(SDateTime& dateTime);
  TModuleErrorCode ReadTime(SDateTime& dateTime);
  bool AtEnd() const { return mRest.empty(); }
  bool IsFormatOK() const { return mIsFormatOK; }

 private:
  bool SkipIf(char separator);
  bool Skip(char separator) { return mIsFormatOK = mIsFormatOK && SkipIf(separator); }
  // Of a number beyond 32 bits, the nearest that fits. Where no number stands, 0, and the format is
  // not OK.
  TSInt32 ReadNumber();

  std::string_view mRest;
  bool mIsFormatOK = true;
};

bool GDateTime::TextReader::SkipIf(char separator) {
  if (!mRest.starts_with(separator)) return false;
  mRest.remove_prefix(1);
  return true;
}

TSInt32 GDateTime::TextReader::ReadNumber() {
  mRest.remove_prefix(std::min(mRest.find_first_not_of(" \t\n\v\f\r"), mRest.size()));
  const bool isNegative = !SkipIf('+') && mRest.starts_with('-');
  const std::size_t digits = isNegative ? 1 : 0;
  mIsFormatOK = mRest.size() > digits && IsDigit(mRest[digits]);
  if (!mIsFormatOK) return 0;
  using Limits = std::numeric_limits<TSInt32>;
  TSInt32 value = isNegative ? Limits::min() : Limits::max();  // stays if the number is beyond
  const char* end = mRest.data() + mRest.size();
  mRest = {std::from_chars(mRest.data(), end, value).ptr, end};
  return value;
}

TModuleErrorCode GDateTime::TextReader::ReadDate(SDateTime& dateTime) {
  TSInt32 nOriginalValue = ReadNumber();
  G_CHECK_CALL(AssignField(kMinYear, kMaxYear, nOriginalValue, dateTime.nYear));
  if (!Skip('-')) return 0;
  nOriginalValue = ReadNumber();
  G_CHECK_CALL(AssignField(kMinMonth, kMaxMonth, nOriginalValue, dateTime.nMonth));
  if (!Skip('-')) return 0;
  nOriginalValue = ReadNumber();
  G_CHECK_CALL(AssignField(kMinDay, kMaxDay, nOriginalValue, dateTime.nDay));
  return 0;
}

TModuleErrorCode GDateTime::TextReader::ReadTime(SDateTime& dateTime) {
  if (!Skip('T')) return 0;
  TSInt32 nOriginalValue = ReadNumber();
  G_CHECK_CALL(AssignField(kMinHour, kMaxHour, nOriginalValue, dateTime.nHour));
  if (!Skip(':')) return 0;
  nOriginalValue = ReadNumber();
  G_CHECK_CALL(AssignField(kMinMinute, kMaxMinute, nOriginalValue, dateTime.nMinute));
  if (mIsFormatOK && SkipIf(':')) {
    nOriginalValue = ReadNumber();
    G_CHECK_CALL(AssignField(kMinSecond, kMaxSecond, nOriginalValue, dateTime.nSecond));
  }
  if (mIsFormatOK && SkipIf('.')) {
    nOriginalValue = std::min<TSInt32>(ReadNumber(), kMaxMillisecond);
    G_CHECK_CALL(
        AssignField(kMinMillisecond, kMaxMillisecond, nOriginalValue, dateTime.nMillisecond));
  }
  return 0;
}

GDateTime::GDateTime() : mDateTime(OSGetCurrentDateTime()) {}

GDateTime::GDateTime(const std::string& dateString) {
  const auto set = [&]() -> TModuleErrorCode {
    G_CHECK_CALL(SetFromISO8601String(dateString));
    return 0;
  };
  static_cast<void>(set());
}

GDateTime::GDateTime(unsigned long long secsSince1970) {
  const auto set = [&]() -> TModuleErrorCode {
    G_CHECK_CALL(SetFromSecondsSince1970(secsSince1970));
    return 0;
  };
  static_cast<void>(set());
}

TModuleErrorCode GDateTime::SetFromISO8601String(const std::string& text) {
  if (text.empty()) return 0;
  SDateTime dateTime{};
  TextReader reader(text);
  if (const TModuleErrorCode code = reader.ReadDate(dateTime)) return code;
  if (reader.IsFormatOK() && !reader.AtEnd()) {
    if (const TModuleErrorCode code = reader.ReadTime(dateTime)) return code;
  }
  const bool bFormatOK = reader.IsFormatOK();
  G_CHECK_CONDITION(!bFormatOK, kParsingError);
  mDateTime = dateTime;
  return 0;
}

std::string GDateTime::GetAsISO8601String(bool withTime) const {
  SDateTime fields = mDateTime;
  fields.nDayOfWeek = 0;
  if (fields == SDateTime{}) return {};
  std::array<char, 64> text{};  // eight fields of at most 5 digits
  int length = std::snprintf(text.data(), text.size(), "%04u-%02u-%02u", fields.nYear,
                             fields.nMonth, fields.nDay);
  if (withTime) {
    length += std::snprintf(text.data() + length, text.size() - static_cast<std::size_t>(length),
                            "T%02u:%02u:%02u.%03uZ", fields.nHour, fields.nMinute, fields.nSecond,
                            fields.nMillisecond);
  }
  return {text.data(), static_cast<std::size_t>(length)};
}

TModuleErrorCode GDateTime::SetFromSecondsSince1970(unsigned long long seconds) {
  const unsigned long long allDays = seconds / kSecondsPerDay;
  unsigned long long days = allDays;
  unsigned int year = kFirstYear;
  while (year < kFirstIllegalYear && days >= DaysOfYear(year)) days -= DaysOfYear(year++);
  G_CHECK_CONDITION(year >= kFirstIllegalYear, CoreErrorCodes::kInvalidParam);
  std::size_t month = 0;
  while (days >= MonthDaysOfYear(year)[month]) days -= MonthDaysOfYear(year)[month++];
  const auto field = [](unsigned long long value) { return static_cast<std::uint16_t>(value); };
  const unsigned long long ofDay = seconds % kSecondsPerDay;
  mDateTime = {
      field(year),         field(month + 1),       field((allDays + 4) % 7), field(days + 1),
      field(ofDay / 3600), field(ofDay / 60 % 60), field(ofDay % 60),        0};
  return 0;
}

bool GDateTime::HasFieldsInLimits() const {
  return mDateTime.nMonth >= kMinMonth && mDateTime.nMonth <= kMaxMonth &&
         mDateTime.nDay >= kMinDay && mDateTime.nDay <= kMaxDay && mDateTime.nHour <= kMaxHour &&
         mDateTime.nMinute <= kMaxMinute && mDateTime.nSecond <= kMaxSecond;
}

TModuleErrorCode GDateTime::GetSecondsSince1970(unsigned long long& seconds) const {
  const unsigned int currentYear = mDateTime.nYear;
  G_CHECK_CONDITION(currentYear >= kFirstIllegalYear || currentYear < 1970,
                    CoreErrorCodes::kInvalidParam);
  G_CHECK_CONDITION(!HasFieldsInLimits(), CoreErrorCodes::kInvalidParam);
  unsigned long long days = mDateTime.nDay - 1U;
  for (unsigned int year = kFirstYear; year < currentYear; ++year) days += DaysOfYear(year);
  for (std::size_t month = 1; month < mDateTime.nMonth; ++month) {
    days += MonthDaysOfYear(currentYear)[month - 1];
  }
  const unsigned int minutes = mDateTime.nHour * 60U + mDateTime.nMinute;
  seconds = days * kSecondsPerDay + minutes * 60ULL + mDateTime.nSecond;
  return 0;
}

int GDateTime::Compare(const GDateTime& other) const {
  const auto key = [](const SDateTime& of) {
    return std::array{of.nYear,   of.nMonth,  of.nDay,        of.nHour,
                      of.nMinute, of.nSecond, of.nMillisecond};
  };
  const auto order = key(mDateTime) <=> key(other.mDateTime);
  return order < 0 ? 0 : order == 0 ? 1 : 2;
}

TModuleErrorCode GDateTime::GetLocalizedShortString(std::string& text) const {
  unsigned long long secsSince1970 = 0;
  G_CHECK_CALL(GetSecondsSince1970(secsSince1970));
  text = OSFormatShortDate(secsSince1970);
  return 0;
}
