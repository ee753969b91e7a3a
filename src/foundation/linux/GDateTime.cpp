#include "foundation/GDateTime.h"

#include <langinfo.h>
#include <locale.h>

#include <array>
#include <chrono>
#include <ctime>
#include <stdexcept>
#include <string_view>

#include "foundation/GString.h"
#include "foundation/WallClock.h"
#include "foundation/iconv_string.h"

namespace {

// The locale that the environment names, for dates only; the C locale if it is not installed.
class UserDateLocale {
 public:
  UserDateLocale() : mLocale(newlocale(kMask, "", locale_t{})) {
    if (mLocale == locale_t{}) mLocale = newlocale(kMask, "C", locale_t{});
  }
  ~UserDateLocale() {
    if (mLocale != locale_t{}) freelocale(mLocale);
  }
  UserDateLocale(const UserDateLocale&) = delete;
  UserDateLocale& operator=(const UserDateLocale&) = delete;

  std::string ShortDate(const std::tm& fields) const {
    if (mLocale == locale_t{}) return {};
    std::array<char, 128> text{};
    std::string date(text.data(), strftime_l(text.data(), text.size(), "%x", &fields, mLocale));
    const char* encoding = nl_langinfo_l(CODESET, mLocale);
    if (std::string_view(encoding) == "UTF-8" || !NeedsConversion(date)) return date;
    try {
      return iconv_string(date, "UTF-8", encoding);
    } catch (const std::runtime_error&) {
      return {};
    }
  }

 private:
  static constexpr int kMask = LC_TIME_MASK | LC_CTYPE_MASK;

  static bool NeedsConversion(std::string_view text) {
    for (const char byte : text) {
      if (static_cast<unsigned char>(byte) >= 0x80) return true;
    }
    return false;
  }

  locale_t mLocale;
};

}  // namespace

SDateTime GDateTime::OSGetCurrentDateTime() {
  using std::chrono::milliseconds;
  using std::chrono::seconds;
  const milliseconds now{WallClock::NowMilliseconds()};
  const seconds whole = std::chrono::floor<seconds>(now);
  const std::time_t time = whole.count();
  std::tm fields{};
  if (gmtime_r(&time, &fields) == nullptr) return {};
  const auto field = [](auto value) { return static_cast<std::uint16_t>(value); };
  return {field(fields.tm_year + 1900), field(fields.tm_mon + 1),    field(fields.tm_wday),
          field(fields.tm_mday),        field(fields.tm_hour),       field(fields.tm_min),
          field(fields.tm_sec),         field((now - whole).count())};
}

std::string GDateTime::OSFormatShortDate(unsigned long long secsSince1970) {
  const auto time = static_cast<std::time_t>(secsSince1970);
  std::tm fields{};
  if (localtime_r(&time, &fields) == nullptr) return {};
  return UserDateLocale().ShortDate(fields);
}
