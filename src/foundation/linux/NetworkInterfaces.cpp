#include "foundation/NetworkInterfaces.h"

#include <net/route.h>

#include <algorithm>
#include <charconv>
#include <filesystem>
#include <optional>

#include "foundation/ErrorChecks.h"
#include "foundation/GStringUtils.h"
#include "foundation/GSystem.h"
#include "foundation/linux/SystemFacts.h"

namespace fs = std::filesystem;

namespace {

constexpr unsigned long kEthernetType = 1;                  // ARPHRD_ETHER
constexpr std::size_t kRoutesLimit = std::size_t{1} << 20;  // a router's table may be long

std::optional<unsigned long> Number(std::string_view text, int base) {
  unsigned long number = 0;
  const char* const end = text.data() + text.size();
  const auto [behind, error] = std::from_chars(text.data(), end, number, base);
  if (error != std::errc() || behind != end) return std::nullopt;
  return number;
}

// The columns of one of the kernel's two tables of routes.
struct RouteTable {
  const char* path;
  std::size_t interface;
  std::size_t metric;
  int metricBase;
  std::size_t flags;
  std::size_t columns;
  std::size_t zeros[2];  // destination and its mask or length
};

constexpr RouteTable kRouteTables[] = {
    {"/proc/net/route", 0, 6, 10, 3, 8, {1, 7}},
    {"/proc/net/ipv6_route", 9, 5, 16, 8, 10, {0, 1}},
};

bool IsDefaultRoute(const RouteTable& table, const std::vector<std::string>& row) {
  if (row.size() < table.columns) return false;
  for (const std::size_t column : table.zeros) {
    if (row[column].find_first_not_of('0') != std::string::npos) return false;
  }
  const unsigned long flags = Number(row[table.flags], 16).value_or(0);
  return (flags & RTF_UP) != 0 && (flags & RTF_REJECT) == 0;
}

// The interface of the cheapest default route; empty if there is none.
std::string DefaultInterface(const std::string& root, const RouteTable& table) {
  std::string found;
  unsigned long cheapest = 0;
  const std::string routes = SystemFacts::ReadFile(root + table.path, kRoutesLimit);
  for (const std::string& line : GStringUtils::OSTokenizeString(routes, "\n")) {
    const std::vector<std::string> row = GStringUtils::OSTokenizeString(line, " \t");
    if (!IsDefaultRoute(table, row)) continue;
    const std::optional<unsigned long> metric = Number(row[table.metric], table.metricBase);
    if (!metric || (!found.empty() && *metric >= cheapest)) continue;
    cheapest = *metric;
    found = row[table.interface];
  }
  return found;
}

// "00:1b:21:3a:4f:5e"; empty for anything else.
std::vector<unsigned char> ParseAddress(const std::string& text) {
  std::vector<unsigned char> address;
  for (const std::string& pair : GStringUtils::OSTokenizeString(text, ":")) {
    const std::optional<unsigned long> byte = Number(pair, 16);
    if (!byte || *byte > 0xFF || pair.size() != 2) return {};
    address.push_back(static_cast<unsigned char>(*byte));
  }
  return address;
}

std::string ReadLine(const fs::path& file) {
  return GStringUtils::StripWhitespace(SystemFacts::ReadFile(file.string(), 256));
}

}  // namespace

bool SystemFacts::ListEthernetInterfaces(const std::string& root,
                                         std::vector<NetworkInterface>& interfaces) {
  std::string primary;
  for (const RouteTable& table : kRouteTables) {
    if (primary.empty()) primary = DefaultInterface(root, table);
  }
  std::error_code error;
  std::vector<std::pair<unsigned long, NetworkInterface>> found;
  fs::directory_iterator entry(root + "/sys/class/net", error);
  for (; !error && entry != fs::directory_iterator(); entry.increment(error)) {
    const fs::path& folder = entry->path();
    if (Number(ReadLine(folder / "type"), 10) != kEthernetType) continue;
    std::error_code noDevice;
    const std::string name = folder.filename().string();
    found.emplace_back(
        Number(ReadLine(folder / "ifindex"), 10).value_or(0),
        NetworkInterface{"ethernet", name, name == primary, fs::exists(folder / "device", noDevice),
                         ParseAddress(ReadLine(folder / "address"))});
  }
  std::ranges::stable_sort(found, {}, [](const auto& pair) { return pair.first; });
  interfaces.clear();
  for (auto& [index, interface] : found) interfaces.push_back(std::move(interface));
  return !error;
}

TModuleErrorCode GSystem::OSGetPrimaryMACAddress(std::string& address) {
  address.clear();
  std::vector<NetworkInterface> interfaces;
  G_CHECK_CONDITION(!SystemFacts::ListEthernetInterfaces("", interfaces), CoreErrorCodes::kError);
  address = SelectPrimaryMACAddress(interfaces);
  return 0;
}
