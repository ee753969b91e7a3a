#include <algorithm>
#include <charconv>
#include <regex>

#include "foundation/GStringUtils.h"

namespace {

// The library matches by recursion over the pattern's states; as many as this fit a stack of
// 512 KiB, also with address sanitizer.
constexpr std::size_t kMostStates = 256;
constexpr std::size_t kMostGroups = 32;
// States by groups by characters of the text.
constexpr std::size_t kMostSteps = std::size_t{1} << 22;

// One more than the larger number of "3}", "3,}" or "3,5}": how often the library copies at most.
std::size_t RepeatsOf(std::string_view bounds) {
  std::size_t most = 1;
  for (const std::string& bound : GStringUtils::OSTokenizeString(
           bounds.substr(0, std::min(bounds.find('}'), bounds.size())), ",")) {
    std::size_t repeats = kMostStates;  // for a number beyond all bounds
    std::from_chars(bound.data(), bound.data() + bound.size(), repeats);
    most = std::max(most, std::min(repeats, kMostStates) + 1);
  }
  return most;
}

// An upper bound, by the rule that every term is one, and that what is counted is copied. A count
// behind a group or another quantifier is taken to copy the whole pattern.
std::size_t CountStates(std::string_view pattern) {
  std::size_t terms = pattern.size();
  std::size_t copies = 1;
  for (std::size_t at = pattern.find('{'); at != std::string_view::npos && copies <= kMostStates;
       at = pattern.find('{', at + 1)) {
    const std::size_t repeats = RepeatsOf(pattern.substr(at + 1));
    if (at > 0 && std::string_view(")}*+?").find(pattern[at - 1]) != std::string_view::npos) {
      copies *= repeats;
    } else {
      terms += repeats;
    }
  }
  return terms * copies;
}

// A look-ahead walks the rest of the text at each of its characters.
std::size_t CountLookAheads(std::string_view pattern) {
  std::size_t count = 0;
  for (std::size_t at = pattern.find("(?"); at != std::string_view::npos;
       at = pattern.find("(?", at + 1)) {
    const std::string_view kind = pattern.substr(at + 2, 1);
    if (kind == "=" || kind == "!") ++count;
  }
  return count;
}

bool IsBounded(std::string_view text, std::string_view pattern) {
  if (pattern.size() > kMostStates) return false;
  const auto groups = static_cast<std::size_t>(std::count(pattern.begin(), pattern.end(), '('));
  std::size_t steps = CountStates(pattern);
  if (groups > kMostGroups || steps > kMostStates) return false;
  steps *= groups + 1;
  for (std::size_t i = 0; i <= CountLookAheads(pattern); ++i) {
    if (text.size() >= kMostSteps) return false;
    steps *= text.size() + 1;
    if (steps > kMostSteps) return false;
  }
  return true;
}

}  // namespace

bool GStringUtils::IsRegExMatch(const std::string& text, const std::string& pattern) {
  if (!IsBounded(text, pattern)) return false;
  try {
    std::regex expression;
    expression.imbue(std::locale::classic());
    // Breadth first: without the default's exponential time and recursion over the text.
    expression.assign(pattern, std::regex::ECMAScript | std::regex_constants::__polynomial);
    return std::regex_match(text, expression);
  } catch (const std::regex_error&) {
    return false;
  }
}
