#include "foundation/GStringUtils.h"

#include <algorithm>

namespace {

constexpr std::string_view kWhitespace = " \t\n\v\f\r";

char AsciiToLower(char character) {
  return character >= 'A' && character <= 'Z' ? static_cast<char>(character - 'A' + 'a')
                                              : character;
}

}  // namespace

namespace GStringUtils {

std::vector<std::string> OSTokenizeString(std::string_view text, std::string_view delimiters) {
  std::vector<std::string> tokens;
  std::size_t start = text.find_first_not_of(delimiters);
  while (start != std::string_view::npos) {
    const std::size_t end = std::min(text.find_first_of(delimiters, start), text.size());
    tokens.emplace_back(text.substr(start, end - start));
    start = text.find_first_not_of(delimiters, end);
  }
  return tokens;
}

std::string StripWhitespace(std::string_view text) {
  const std::size_t first = text.find_first_not_of(kWhitespace);
  if (first == std::string_view::npos) return {};
  const std::size_t last = text.find_last_not_of(kWhitespace);
  return std::string(text.substr(first, last - first + 1));
}

std::string AsciiToLowerCase(std::string_view text) {
  std::string lower(text);
  std::transform(lower.begin(), lower.end(), lower.begin(), AsciiToLower);
  return lower;
}

bool AsciiEqualsNoCase(std::string_view a, std::string_view b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                    [](char x, char y) { return AsciiToLower(x) == AsciiToLower(y); });
}

bool BeginsWith(std::string_view text, std::string_view prefix) { return text.starts_with(prefix); }

bool EndsWith(std::string_view text, std::string_view suffix) { return text.ends_with(suffix); }

std::string StringReplace(std::string_view text, std::string_view from, std::string_view to,
                          int count) {
  if (from.empty()) return std::string(text);
  std::string replaced;
  std::size_t done = 0;
  for (; count != 0; count -= count > 0 ? 1 : 0) {
    const std::size_t found = text.find(from, done);
    if (found == std::string_view::npos) break;
    replaced.append(text.substr(done, found - done)).append(to);
    done = found + from.size();
  }
  return replaced.append(text.substr(done));
}

}  // namespace GStringUtils
