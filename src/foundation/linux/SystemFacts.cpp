#include "foundation/linux/SystemFacts.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <fstream>

#include "foundation/GStringUtils.h"

namespace {

// "de", "pt", "haw".
bool IsLanguage(std::string_view text) {
  return text.size() >= 2 && text.size() <= 3 &&
         std::ranges::all_of(text, [](char c) { return c >= 'a' && c <= 'z'; });
}

// "BR", "419".
bool IsRegion(std::string_view text) {
  const auto all = [text](char first, char last) {
    return std::ranges::all_of(text, [=](char c) { return c >= first && c <= last; });
  };
  return (text.size() == 2 && all('A', 'Z')) || (text.size() == 3 && all('0', '9'));
}

bool IsMachineID(std::string_view text) {
  return text.size() == 32 &&
         text.find_first_not_of("0123456789abcdef") == std::string_view::npos &&
         text.find_first_not_of('0') != std::string_view::npos;
}

// The number at the text's begin times `scale`; 0 if there is none or it is absurd.
unsigned long long ScaledNumber(std::string_view text, double scale) {
  double number = 0;
  std::from_chars(text.data(), text.data() + text.size(), number);
  number *= scale;
  return number > 0 && number < 1e15 ? static_cast<unsigned long long>(std::llround(number)) : 0;
}

}  // namespace

namespace SystemFacts {

std::string ReadFile(const std::string& path, std::size_t limit) {
  std::ifstream in(path, std::ios::binary);
  std::string contents(limit, '\0');
  in.read(contents.data(), static_cast<std::streamsize>(limit));
  contents.resize(static_cast<std::size_t>(std::max<std::streamsize>(in.gcount(), 0)));
  return contents;
}

bool ParseRelease(std::string_view release, unsigned int (&numbers)[3]) {
  bool found = false;
  std::ranges::fill(numbers, 0U);
  const char* position = release.data();
  const char* const end = position + release.size();
  for (unsigned int& number : numbers) {
    const auto [behind, error] = std::from_chars(position, end, number);
    if (error != std::errc()) break;
    found = true;
    if (behind == end || *behind != '.') break;
    position = behind + 1;
  }
  return found;
}

unsigned long long ReadCPUSpeed(const std::string& root) {
  // Kilohertz in the one, megahertz in the other.
  const std::string highest =
      ReadFile(root + "/sys/devices/system/cpu/cpu0/cpufreq/cpuinfo_max_freq");
  if (const unsigned long long hertz = ScaledNumber(highest, 1e3)) return hertz;
  const std::string info = ReadFile(root + "/proc/cpuinfo");
  for (const std::string& line : GStringUtils::OSTokenizeString(info, "\n")) {
    const std::size_t colon = line.find(':');
    if (!line.starts_with("cpu MHz") || colon == std::string::npos) continue;
    return ScaledNumber(GStringUtils::StripWhitespace(line.substr(colon + 1)), 1e6);
  }
  return 0;
}

std::string ReadMachineID(const std::string& root) {
  for (const char* path : {"/etc/machine-id", "/var/lib/dbus/machine-id"}) {
    std::string text =
        GStringUtils::AsciiToLowerCase(GStringUtils::StripWhitespace(ReadFile(root + path, 256)));
    if (IsMachineID(text)) return text;
  }
  return {};
}

std::string TagOfLocale(std::string_view locale) {
  const std::string_view name = locale.substr(0, locale.find_first_of(".@"));
  const std::size_t underscore = name.find('_');
  const std::string_view language = name.substr(0, underscore);
  if (!IsLanguage(language)) return {};
  std::string tag(language);
  if (underscore == std::string_view::npos) return tag;
  const std::string_view region = name.substr(underscore + 1);
  if (IsRegion(region)) tag.append("-").append(region);
  return tag;
}

std::vector<std::string> PreferredLanguages(std::string_view locale, std::string_view language) {
  const std::string own = TagOfLocale(locale);
  if (own.empty()) return {"en"};
  std::vector<std::string> tags;
  const auto add = [&tags](const std::string& tag) {
    if (!tag.empty() && std::ranges::find(tags, tag) == tags.end()) tags.push_back(tag);
  };
  for (const std::string& wanted : GStringUtils::OSTokenizeString(language, ":")) {
    add(TagOfLocale(wanted));
  }
  add(own);
  return tags;
}

}  // namespace SystemFacts
