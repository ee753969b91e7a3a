#include "foundation/GSystem.h"

#include <arpa/inet.h>
#include <ifaddrs.h>
#include <net/if.h>
#include <pwd.h>
#include <sys/utsname.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <cstdlib>
#include <memory>
#include <thread>

#include "foundation/ErrorChecks.h"
#include "foundation/GStringUtils.h"
#include "foundation/WallClock.h"
#include "foundation/linux/SystemFacts.h"

namespace {

std::string Variable(const char* name) {
  const char* value = std::getenv(name);
  return value == nullptr ? std::string() : value;
}

std::string MessagesLocale() {
  for (const char* name : {"LC_ALL", "LC_MESSAGES", "LANG"}) {
    if (std::string value = Variable(name); !value.empty()) return value;
  }
  return {};
}

}  // namespace

GSystem::ESystem GSystem::OSGetSystem() { return eLinux; }

TModuleErrorCode GSystem::OSGetVersion(unsigned int& major, unsigned int& minor,
                                       unsigned int& patch) {
  unsigned int numbers[3] = {};
  utsname names{};
  const bool known = uname(&names) == 0 && SystemFacts::ParseRelease(names.release, numbers);
  major = numbers[0];
  minor = numbers[1];
  patch = numbers[2];
  G_CHECK_CONDITION(!known, CoreErrorCodes::kError);
  return 0;
}

TModuleErrorCode GSystem::OSGetVersionString(std::string& version) {
  version.clear();
  unsigned int major = 0;
  unsigned int minor = 0;
  unsigned int patch = 0;
  G_CHECK_CALL(OSGetVersion(major, minor, patch));
  version = std::to_string(major) + "." + std::to_string(minor) + "." + std::to_string(patch);
  return 0;
}

TModuleErrorCode GSystem::OSGetNumCPUCores(unsigned int& cores) {
  cores = 0;
  const long online = sysconf(_SC_NPROCESSORS_ONLN);
  G_CHECK_CONDITION(online < 1, CoreErrorCodes::kError);
  cores = static_cast<unsigned int>(online);
  return 0;
}

TModuleErrorCode GSystem::OSGetCPUSpeed(unsigned long long& hertz) {
  hertz = SystemFacts::ReadCPUSpeed("");
  G_CHECK_CONDITION(hertz == 0, CoreErrorCodes::kNotFound);
  return 0;
}

TModuleErrorCode GSystem::OSGetTotalMemory(unsigned long long& bytes) {
  bytes = 0;
  const long pages = sysconf(_SC_PHYS_PAGES);
  const long pageSize = sysconf(_SC_PAGE_SIZE);
  G_CHECK_CONDITION(pages < 1 || pageSize < 1, CoreErrorCodes::kError);
  bytes = static_cast<unsigned long long>(pages) * static_cast<unsigned long long>(pageSize);
  return 0;
}

TModuleErrorCode GSystem::OSGetLanguageCode(std::string& code) {
  const std::string tag = SystemFacts::TagOfLocale(MessagesLocale());
  code = tag.empty() ? "en" : tag.substr(0, tag.find('-'));
  return 0;
}

std::vector<std::string> GSystem::OSGetPreferredLanguages() {
  return SystemFacts::PreferredLanguages(MessagesLocale(), Variable("LANGUAGE"));
}

std::string GSystem::OSGetUserName() {
  std::array<char, 16384> buffer{};
  passwd entry{};
  passwd* found = nullptr;
  getpwuid_r(getuid(), &entry, buffer.data(), buffer.size(), &found);
  return found == nullptr ? Variable("LOGNAME") : found->pw_name;
}

std::string GSystem::OSGetUserSessionIdentifier() {
  constexpr const char* kNoAuditSession = "4294967295";
  if (std::string session = Variable("XDG_SESSION_ID"); !session.empty()) return session;
  std::string audit =
      GStringUtils::StripWhitespace(SystemFacts::ReadFile("/proc/self/sessionid", 64));
  if (!audit.empty() && audit != kNoAuditSession) return audit;
  return std::to_string(getsid(0));
}

unsigned int GSystem::OSGetProcessIdentifier() { return static_cast<unsigned int>(getpid()); }

void GSystem::OSSleep(unsigned int milliseconds) {
  std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
}

std::uint64_t GSystem::OSTimeStamp() {
  const auto now = std::chrono::steady_clock::now().time_since_epoch();
  return static_cast<std::uint64_t>(
      std::chrono::duration_cast<std::chrono::milliseconds>(now).count());
}

std::int64_t GSystem::OSGetSecondsSince1970() { return WallClock::Now(); }

TModuleErrorCode GSystem::OSInitializeRuntime() { return 0; }

TModuleErrorCode GSystem::OSShutdownRuntime() { return 0; }

TModuleErrorCode GSystem::OSInitializeSockets() { return 0; }

TModuleErrorCode GSystem::OSUninitializeSockets() { return 0; }

TModuleErrorCode GSystem::OSGetLocalIPAddress(std::string& address) {
  address.clear();
  ifaddrs* first = nullptr;
  G_CHECK_CONDITION(getifaddrs(&first) != 0, CoreErrorCodes::kError);
  const std::unique_ptr<ifaddrs, decltype(&freeifaddrs)> owner(first, &freeifaddrs);
  for (const ifaddrs* entry = first; entry != nullptr; entry = entry->ifa_next) {
    const bool isOutside =
        (entry->ifa_flags & IFF_UP) != 0 && (entry->ifa_flags & IFF_LOOPBACK) == 0;
    if (!isOutside || entry->ifa_addr == nullptr || entry->ifa_addr->sa_family != AF_INET) continue;
    std::array<char, INET_ADDRSTRLEN> text{};
    const auto* socketAddress = reinterpret_cast<const sockaddr_in*>(entry->ifa_addr);
    if (inet_ntop(AF_INET, &socketAddress->sin_addr, text.data(), text.size()) == nullptr) continue;
    address = text.data();
    return 0;
  }
  return 0;
}

TModuleErrorCode GSystem::OSGetHostname(std::string& name) {
  name.clear();
  std::array<char, 257> buffer{};
  G_CHECK_CONDITION(gethostname(buffer.data(), buffer.size() - 1) != 0, CoreErrorCodes::kError);
  name = buffer.data();
  return 0;
}

std::uint16_t GSystem::OSSwapBytesToNetwork(std::uint16_t value) { return htons(value); }
std::uint32_t GSystem::OSSwapBytesToNetwork(std::uint32_t value) { return htonl(value); }
std::uint16_t GSystem::OSSwapBytesToHost(std::uint16_t value) { return ntohs(value); }
std::uint32_t GSystem::OSSwapBytesToHost(std::uint32_t value) { return ntohl(value); }

TModuleErrorCode GSystem::OSGetMachineID(std::string& machineID) {
  machineID = SystemFacts::ReadMachineID("");
  G_CHECK_CONDITION(machineID.empty(), CoreErrorCodes::kNotFound);
  return 0;
}

const char* GSystem::OSGetLineEnding() { return "\n"; }

TModuleErrorCode GSystem::OSGetRegistryStringValue(const std::string&, const std::string&,
                                                   std::string&) {
  return CoreErrorCodes::kNotSupported;
}

TModuleErrorCode GSystem::OSWriteRegistryStringValue(const std::string&, const std::string&,
                                                     const std::string&) {
  return CoreErrorCodes::kNotSupported;
}
