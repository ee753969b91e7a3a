#include <algorithm>
#include <charconv>
#include <vector>

#include "facade/FacadeCall.h"
#include "fonts/MatchRules.h"
#include "fonts/RecordAccess.h"
#include "foundation/GStringUtils.h"
#include "foundation/PluginLog.h"
#include "sdk/FontRecordKeys.h"

namespace FaceprintSupport {
namespace {

constexpr int kFirst = -1;
constexpr int kTie = 0;
constexpr int kSecond = 1;

// Decides for the one that has what the other lacks.
int PickTheOneThatHas(bool firstHas, bool secondHas) {
  if (firstHas == secondHas) return kTie;
  return firstHas ? kFirst : kSecond;
}

int Decided(int result, const char* reason) {
  if (result != kTie) OutputFormattedDebugString("%s", reason);
  return result;
}

int LogActiveChoice(int result) {
  if (result == kTie) return kTie;
  return Decided(result, result == kFirst
                             ? "...Choosing fontRef1 because it's active and fontRef2 isn't."
                             : "...Choosing fontRef2 because it's active and fontRef1 isn't.");
}

// Two active versions are there because the user overrode a system font, which then yields.
int PickByActiveKey(const FontRecord& first, const FontRecord& second) {
  const bool firstActive = KeyValueIs(first, kFP_IsActiveKey, "1");
  const bool secondActive = KeyValueIs(second, kFP_IsActiveKey, "1");
  if (!firstActive || !secondActive) {
    return LogActiveChoice(PickTheOneThatHas(firstActive, secondActive));
  }
  OutputFormattedDebugString("...Two active fonts - one must be a system font.");
  if (!KeyValueIs(first, kFP_IsSystemKey, "1")) {
    return Decided(kFirst,
                   "...Choosing non-system fontRef1 since user has explicitly overridden system "
                   "version.");
  }
  if (KeyValueIs(second, kFP_IsSystemKey, "1")) return kTie;
  return Decided(kSecond,
                 "...Choosing non-system fontRef2 since user has explicitly overridden system "
                 "version.");
}

// What the font manager says at this moment; the records are as old as their delivery.
int PickByLiveState(const FontRecord& first, const FontRecord& second) {
  const std::uint32_t ids[2] = {RecordDatabaseID(first), RecordDatabaseID(second)};
  if (ids[0] == 0 || ids[1] == 0) return kTie;
  std::int32_t states[2] = {0, 0};
  if (FacadeCall::WithInstance(&SkerryLoader::pfGetFontIsActivated, 2, ids, states) != 0) {
    return kTie;
  }
  return LogActiveChoice(PickTheOneThatHas(states[0] != 0, states[1] != 0));
}

bool IsPlainKind(const FontRecord& record) {
  return KeyValueIs(record, kFP_KindKey, kFP_Kind_Postscript) ||
         KeyValueIs(record, kFP_KindKey, kFP_Kind_TrueType);
}

int PickByKindRank(const FontRecord& first, const FontRecord& second) {
  if (KeyValueContains(first, kFP_KindKey, kFP_Kind_OpenType) && IsPlainKind(second)) return kFirst;
  if (KeyValueContains(second, kFP_KindKey, kFP_Kind_OpenType) && IsPlainKind(first)) {
    return kSecond;
  }
  const bool firstPostScript = KeyValueIs(first, kFP_KindKey, kFP_Kind_Postscript);
  const bool secondPostScript = KeyValueIs(second, kFP_KindKey, kFP_Kind_Postscript);
  if (firstPostScript && KeyValueIs(second, kFP_KindKey, kFP_Kind_TrueType)) return kFirst;
  if (secondPostScript && KeyValueIs(first, kFP_KindKey, kFP_Kind_TrueType)) return kSecond;
  return kTie;
}

bool IsAdobeFont(const FontRecord& record) {
  const std::string* foundry = FindString(record, kFP_FoundryKey);
  return foundry != nullptr && foundry->find("Adobe") != std::string::npos;
}

// The decimal number at the start of a text; 0 if there is none. Independent of the locale.
double LeadingNumber(std::string_view text) {
  text.remove_prefix(std::min(text.find_first_not_of(" \t\n\v\f\r"), text.size()));
  const double sign = text.starts_with('-') ? -1 : 1;
  if (text.starts_with('+') || text.starts_with('-')) text.remove_prefix(1);
  // from_chars would also read words such as "inf", and a second sign.
  const std::size_t digit = text.starts_with('.') ? 1 : 0;
  if (digit >= text.size() || text[digit] < '0' || text[digit] > '9') return 0;
  double number = 0;
  const auto [end, code] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (code != std::errc::result_out_of_range) return sign * number;
  return sign * GStringUtils::UTF8StringToTFloat64(std::string(text.data(), end));
}

std::string_view TakeDigits(std::string_view& text) {
  const std::size_t length = std::min(text.find_first_not_of("0123456789"), text.size());
  std::string_view digits = text.substr(0, length);
  text.remove_prefix(length);
  digits.remove_prefix(std::min(digits.find_first_not_of('0'), digits.size()));
  return digits;
}

int Sign(int value) { return (value > 0) - (value < 0); }

// Byte by byte, runs of digits as numbers of any length: "Version 2" is below "Version 10".
int CompareNumerically(std::string_view a, std::string_view b) {
  constexpr auto isDigit = [](char c) { return c >= '0' && c <= '9'; };
  while (!a.empty() && !b.empty()) {
    if (isDigit(a.front()) && isDigit(b.front())) {
      const std::string_view first = TakeDigits(a);
      const std::string_view second = TakeDigits(b);
      if (first.size() != second.size()) return first.size() < second.size() ? -1 : 1;
      if (const int order = first.compare(second)) return Sign(order);
    } else {
      const auto first = static_cast<unsigned char>(a.front());
      const auto second = static_cast<unsigned char>(b.front());
      if (first != second) return first < second ? -1 : 1;
      a.remove_prefix(1);
      b.remove_prefix(1);
    }
  }
  return static_cast<int>(!a.empty()) - static_cast<int>(!b.empty());
}

// Versions that are numbers prefer the higher one, all others the lower text.
int PickByVersion(const FontRecord& first, const FontRecord& second) {
  const std::string* firstVersion = FindString(first, kFP_VersionKey);
  const std::string* secondVersion = FindString(second, kFP_VersionKey);
  if (firstVersion == nullptr || secondVersion == nullptr) {
    return PickTheOneThatHas(firstVersion != nullptr, secondVersion != nullptr);
  }
  const double a = LeadingNumber(*firstVersion);
  const double b = LeadingNumber(*secondVersion);
  if (a != 0 && b != 0) return PickTheOneThatHas(a > b, b > a);
  return CompareNumerically(*firstVersion, *secondVersion);
}

// "1" against "0"; an absent flag decides nothing.
int PickByFlag(const FontRecord& first, const FontRecord& second, const char* key) {
  if (KeyValueIs(first, key, "1") && KeyValueIs(second, key, "0")) return kFirst;
  if (KeyValueIs(second, key, "1") && KeyValueIs(first, key, "0")) return kSecond;
  return kTie;
}

int PickBySource(const FontRecord& first, const FontRecord& second, const FontRecord& source) {
  if (!source) return kTie;
  if (const int result = KeyValueStringMatch(source, first, second, kFP_KindKey)) {
    return Decided(result, "Choosing a same-named font with the same type according to Faceprint.");
  }
  return Decided(KeyValueStringMatch(source, first, second, kFP_FoundryKey),
                 "Choice based on kFP_FoundryKey.");
}

}  // namespace

int PickBestMatchCallBack(const FontRecord& first, const FontRecord& second,
                          const FontRecord& source) {
  if (const int result = PickByActiveKey(first, second)) return result;
  if (const int result = PickByLiveState(first, second)) return result;
  if (const int result = PickBySource(first, second, source)) return result;
  if (const int result = PickByKindRank(first, second)) {
    return Decided(result, "Choice based on kFP_KindKey.");
  }
  if (const int result = PickTheOneThatHas(IsAdobeFont(first), IsAdobeFont(second))) {
    return Decided(result, "Choice based on kFP_FoundryKey.");
  }
  if (const int result = PickByVersion(first, second)) {
    return Decided(result, "Choice based on kFP_VersionKey.");
  }
  if (const int result = PickByFlag(first, second, kFP_IsTempKey)) {
    return Decided(result, "Choice based on kFP_IsTempKey.");
  }
  return Decided(PickByFlag(first, second, kFP_IsVaultKey), "Choice based on kFP_IsVaultKey.");
}

// A merge from the bottom up: n log n comparisons, each index bounded by the array, whatever the
// comparator answers. The library's sorts promise neither for a comparator that is no ordering.
void SortByBestMatch(const FontRecordArray& fonts, const FontRecord& source) {
  struct Entry {
    FontRecord record;
    PropertyList::Value value;
  };
  const std::size_t count = CountOf(fonts);
  if (count < 2) return;
  std::vector<Entry> from;
  for (std::size_t i = 0; i < count; ++i) from.push_back({fonts->DictionaryAt(i), fonts->At(i)});
  std::vector<Entry> to(count);
  for (std::size_t width = 1; width < count; width *= 2) {
    for (std::size_t begin = 0; begin < count; begin += 2 * width) {
      const std::size_t middle = std::min(begin + width, count);
      const std::size_t end = std::min(middle + width, count);
      std::size_t left = begin;
      std::size_t right = middle;
      for (std::size_t place = begin; place < end; ++place) {
        const bool takeRight =
            left == middle ||
            (right < end &&
             PickBestMatchCallBack(from[left].record, from[right].record, source) > 0);
        to[place] = std::move(from[takeRight ? right++ : left++]);
      }
    }
    from.swap(to);
  }
  for (std::size_t i = 0; i < count; ++i) fonts->Set(i, std::move(from[i].value));
}

}  // namespace FaceprintSupport
