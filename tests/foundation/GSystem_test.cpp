#include "foundation/GSystem.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>

#include "foundation/WallClock.h"
#include "foundation/linux/SystemFacts.h"
#include "support/RecordingAppender.h"
#include "support/ScratchHome.h"

namespace {

using Bytes = std::vector<unsigned char>;

struct SelectionRow {
  const char* name;
  std::vector<NetworkInterface> interfaces;
  std::string address;
};

// Class name, name, primary, has a device, address.
const SelectionRow kSelections[] = {
    {"no interface", {}, ""},
    {"nothing usable", {{"e", "a", true, false, {1}}, {"e", "b", true, true, {}}}, ""},
    {"lacking a primary one the first",
     {{"e", "a", false, true, {0x0A, 0xB0}}, {"e", "b", false, true, {2}}},
     "0a:b0"},
    {"a second that is primary",
     {{"e", "a", false, true, {1}}, {"e", "b", true, true, {2}}, {"e", "c", false, true, {3}}},
     "02"},
    {"the last primary one", {{"e", "a", true, true, {1}}, {"e", "b", true, true, {2}}}, "02"},
    {"a primary one without device, and zeros are none",
     {{"e", "a", true, false, {1}}, {"e", "b", false, true, {0, 0}}, {"e", "c", false, true, {3}}},
     "03"},
    {"a primary one without address changes nothing",
     {{"e", "a", false, true, {1}}, {"e", "b", true, true, {}}},
     "01"},
};

TEST(GSystem, SelectsThePrimaryAddress) {
  for (const SelectionRow& row : kSelections) {
    EXPECT_EQ(SelectPrimaryMACAddress(row.interfaces), row.address) << row.name;
  }
}

TEST(GSystem, SelectionLogsItsSteps) {
  GLogger::GetSharedInstance()->SetLoggingLevelForIdentifier("System", GLogger::eInfo);
  const RecordingAppender& log = RecordingAppender::Install();
  const NetworkInterface interfaces[] = {{"kind", "en0", true, false, {1}},
                                         {"kind", "en1", false, true, {}},
                                         {"kind", "en2", false, true, {2}},
                                         {"kind", "en3", false, true, {3}}};
  EXPECT_EQ(SelectPrimaryMACAddress(interfaces), "02");
  const char* const ends[] = {
      "Examining service: class name = 'kind', BSD name = 'en0', primary = 1\n",
      "Failed to get parent service, skipping: class name = 'kind', BSD name = 'en0', primary = "
      "1\n",
      "Examining service: class name = 'kind', BSD name = 'en1', primary = 0\n",
      "Expression='[addressData length] == 0'",
      "Examining service: class name = 'kind', BSD name = 'en2', primary = 0\n",
      "Examining service: class name = 'kind', BSD name = 'en3', primary = 0\n",
      "Skipping service, already have address and new one is not primary interface, cur addr = "
      "'02'\n"};
  ASSERT_EQ(log.Lines().size(), std::size(ends));
  for (std::size_t i = 0; i < std::size(ends); ++i) {
    EXPECT_NE(log.Lines()[i].find(ends[i]), std::string::npos) << log.Lines()[i];
  }
}

class MadeUpMachine : public testing::Test {
 protected:
  void AddInterface(const std::string& name, const char* type, const char* index,
                    const char* address, bool device) const {
    const std::string folder = "sys/class/net/" + name + "/";
    mRoot.WriteFile(folder + "type", std::string(type) + "\n");
    mRoot.WriteFile(folder + "ifindex", std::string(index) + "\n");
    mRoot.WriteFile(folder + "address", std::string(address) + "\n");
    if (device) mRoot.MakeFolder(folder + "device");
  }
  std::string PrimaryAddress() const {
    std::vector<NetworkInterface> interfaces;
    EXPECT_TRUE(SystemFacts::ListEthernetInterfaces(mRoot.Path(), interfaces));
    return SelectPrimaryMACAddress(interfaces);
  }

  ScratchHome mRoot;
};

TEST_F(MadeUpMachine, HasInterfacesInTheOrderOfTheirIndexes) {
  std::vector<NetworkInterface> interfaces;
  EXPECT_FALSE(SystemFacts::ListEthernetInterfaces(mRoot.Path(), interfaces));
  mRoot.MakeFolder("sys/class/net");
  EXPECT_EQ(PrimaryAddress(), "");
  AddInterface("lo", "772", "1", "00:00:00:00:00:00", false);
  AddInterface("docker0", "1", "2", "02:42:00:00:00:01", false);
  AddInterface("tun0", "65534", "3", "", false);
  EXPECT_EQ(PrimaryAddress(), "");
  AddInterface("aa", "1", "10", "00:1b:21:3a:4f:10", true);
  AddInterface("zz", "1", "9", "00:1B:21:3A:4F:09", true);
  EXPECT_EQ(PrimaryAddress(), "00:1b:21:3a:4f:09");
  AddInterface("broken", "1", "4", "00:1b:2:", true);
  EXPECT_EQ(PrimaryAddress(), "00:1b:21:3a:4f:09");
}

TEST_F(MadeUpMachine, PrimaryInterfaceIsThatOfTheDefaultRoute) {
  constexpr const char* kZeros = "00000000000000000000000000000000";
  const std::string noRoute = std::string(kZeros) + " 00 " + kZeros + " 00 " + kZeros;
  AddInterface("a", "1", "1", "0a", true);
  AddInterface("b", "1", "2", "0b", true);
  AddInterface("c", "1", "3", "0c", true);
  mRoot.WriteFile("proc/net/ipv6_route",
                  noRoute + " ffffffff 00000001 00000000 00200200       lo\n" + noRoute +
                      " 00000400 00000001 00000000 00000003        b\n" + noRoute +
                      " 00000064 00000001 00000000 00000003        c\nshort 00\n");
  EXPECT_EQ(PrimaryAddress(), "0c");
  const std::string header = "Iface\tDestination\tGateway \tFlags\tRefCnt\tUse\tMetric\tMask\n";
  const std::string nets = header +
                           "a\t000200C0\t00000000\t0001\t0\t0\t0\t00FFFFFF\t0\t0\t0\n"
                           "a\t00000000\t00000000\t0001\t0\t0\t0\t00000080\t0\t0\t0\n"
                           "a\t00000000\t00000000\t0200\t0\t0\t0\t00000000\t0\t0\t0\n";
  mRoot.WriteFile("proc/net/route", nets);
  EXPECT_EQ(PrimaryAddress(), "0c");
  mRoot.WriteFile("proc/net/route", nets +
                                        "a\t00000000\t010200C0\t0003\t0\t0\t600\t00000000\t0\n"
                                        "b\t00000000\t010200C0\t0003\t0\t0\t100\t00000000\t0\n"
                                        "c\t00000000\t010200C0\t0003\t0\t0\t100\t00000000\t0\n");
  EXPECT_EQ(PrimaryAddress(), "0b");
}

TEST_F(MadeUpMachine, HasAnIdentifier) {
  const std::string valid = "0123456789abcdef0123456789abcdef";
  const std::pair<const char*, const char*> noneOf[] = {
      {"", ""},
      {"uninitialized\n", "00000000000000000000000000000000\n"},
      {"0123456789abcdef0123456789abcde\n", "0123456789abcdef0123456789abcdefa\n"},
      {"0123456789abcdef0123456789abcdeg\n", "01234567-89ab-cdef-0123-456789abcdef\n"}};
  EXPECT_EQ(SystemFacts::ReadMachineID(mRoot.Path()), "");
  for (const auto& [first, second] : noneOf) {
    mRoot.WriteFile("etc/machine-id", first);
    mRoot.WriteFile("var/lib/dbus/machine-id", second);
    EXPECT_EQ(SystemFacts::ReadMachineID(mRoot.Path()), "") << first;
  }
  mRoot.WriteFile("var/lib/dbus/machine-id", valid);
  EXPECT_EQ(SystemFacts::ReadMachineID(mRoot.Path()), valid);
  mRoot.WriteFile("etc/machine-id", "FEDCBA9876543210FEDCBA9876543210\n");
  EXPECT_EQ(SystemFacts::ReadMachineID(mRoot.Path()), "fedcba9876543210fedcba9876543210");
}

TEST_F(MadeUpMachine, HasACPUSpeed) {
  EXPECT_EQ(SystemFacts::ReadCPUSpeed(mRoot.Path()), 0U);
  mRoot.WriteFile("proc/cpuinfo", "processor\t: 0\ncpu MHz\t\t: 2596.130\n\ncpu MHz\t\t: 1.0\n");
  EXPECT_EQ(SystemFacts::ReadCPUSpeed(mRoot.Path()), 2'596'130'000U);
  mRoot.WriteFile("sys/devices/system/cpu/cpu0/cpufreq/cpuinfo_max_freq", "3600000\n");
  EXPECT_EQ(SystemFacts::ReadCPUSpeed(mRoot.Path()), 3'600'000'000U);
}

TEST(GSystem, Releases) {
  const struct {
    const char* release;
    bool known;
    unsigned int numbers[3];
  } rows[] = {{"6.1.0-18-amd64", true, {6, 1, 0}},
              {"5.15", true, {5, 15, 0}},
              {"4", true, {4, 0, 0}},
              {"6.1-rc2", true, {6, 1, 0}},
              {"6.x.3", true, {6, 0, 0}},
              {"", false, {0, 0, 0}},
              {"v6.1", false, {0, 0, 0}},
              {"99999999999.1", false, {0, 0, 0}}};
  for (const auto& row : rows) {
    unsigned int numbers[3] = {9, 9, 9};
    EXPECT_EQ(SystemFacts::ParseRelease(row.release, numbers), row.known) << row.release;
    EXPECT_EQ(std::memcmp(numbers, row.numbers, sizeof numbers), 0) << row.release;
  }
}

TEST(GSystem, Languages) {
  const struct {
    const char* locale;
    const char* language;
    std::vector<std::string> tags;
  } rows[] = {{"", "de", {"en"}},
              {"C", "de", {"en"}},
              {"C.UTF-8", "", {"en"}},
              {"POSIX", "", {"en"}},
              {"../../etc", "", {"en"}},
              {"de", "", {"de"}},
              {"de_AT.UTF-8@euro", "", {"de-AT"}},
              {"sr_RS@latin", "", {"sr-RS"}},
              {"es_419", "", {"es-419"}},
              {"de_at", "", {"de"}},
              {"en_US.UTF-8", "pt_BR:pt::C:en_US", {"pt-BR", "pt", "en-US"}}};
  for (const auto& row : rows) {
    EXPECT_EQ(SystemFacts::PreferredLanguages(row.locale, row.language), row.tags) << row.locale;
  }
  std::string code;
  for (const char* name : {"LC_ALL", "LC_MESSAGES", "LANG"}) unsetenv(name);
  EXPECT_EQ(GSystem::OSGetLanguageCode(code), 0U);
  EXPECT_EQ(code, "en");
  setenv("LANG", "fr_FR.UTF-8", 1);
  setenv("LC_ALL", "", 1);
  GSystem::OSGetLanguageCode(code);
  EXPECT_EQ(code, "fr");
  setenv("LC_MESSAGES", "it_CH", 1);
  GSystem::OSGetLanguageCode(code);
  EXPECT_EQ(code, "it");
}

TEST(GSystem, SocketsAreCounted) {
  const RecordingAppender& log = RecordingAppender::Install();
  GSystem::InitializeSockets();
  GSystem::InitializeSockets();
  EXPECT_EQ(GSystem::UninitializeSockets(), 0U);
  EXPECT_TRUE(GSystem::AreSocketsInitialized());
  EXPECT_EQ(GSystem::UninitializeSockets(), 0U);
  EXPECT_FALSE(GSystem::AreSocketsInitialized());
  EXPECT_TRUE(log.Lines().empty());
  EXPECT_EQ(GSystem::UninitializeSockets(), CoreErrorCodes::kNotInitialized);
  ASSERT_EQ(log.Lines().size(), 1U);
  EXPECT_NE(log.Lines()[0].find("Expression='s_nInitCount < 0'"), std::string::npos);
  EXPECT_EQ(GSystem::InitializeSockets(), 0U);
  EXPECT_TRUE(GSystem::AreSocketsInitialized());
}

TEST(GSystem, FactsOfThisMachine) {
  EXPECT_FALSE(GSystem::IsMacOSX() || GSystem::IsWindows() || GSystem::IsWindows64());
  unsigned int numbers[3] = {};
  EXPECT_EQ(GSystem::OSGetVersion(numbers[0], numbers[1], numbers[2]), 0U);
  EXPECT_GE(numbers[0], 2U);
  std::string text;
  EXPECT_EQ(GSystem::OSGetVersionString(text), 0U);
  EXPECT_EQ(text.find(std::to_string(numbers[0]) + "." + std::to_string(numbers[1]) + "."), 0U);
  EXPECT_EQ(GSystem::OSGetNumCPUCores(numbers[0]), 0U);
  EXPECT_GE(numbers[0], 1U);
  unsigned long long bytes = 0;
  EXPECT_EQ(GSystem::OSGetTotalMemory(bytes), 0U);
  EXPECT_GE(bytes, 1ULL << 24);
  EXPECT_EQ(GSystem::OSGetHostname(text), 0U);
  EXPECT_FALSE(text.empty());
  EXPECT_EQ(GSystem::OSGetLocalIPAddress(text), 0U);
  EXPECT_EQ(text.find("127."), std::string::npos);
  EXPECT_EQ(GSystem::GetPrimaryMACAddress(text), 0U);
  EXPECT_TRUE(text.empty() || text.size() % 3 == 2);
  const TModuleErrorCode code = GSystem::GetMachineID(text);
  EXPECT_TRUE(code == 0 ? text.size() == 32 : code == CoreErrorCodes::kNotFound && text.empty());
  EXPECT_EQ(GSystem::OSGetProcessIdentifier(), static_cast<unsigned int>(getpid()));
  setenv("XDG_SESSION_ID", "c7", 1);
  EXPECT_EQ(GSystem::OSGetUserSessionIdentifier(), "c7");
  unsetenv("XDG_SESSION_ID");
  EXPECT_FALSE(GSystem::OSGetUserSessionIdentifier().empty());
  EXPECT_EQ(GSystem::OSGetRegistryStringValue("key", "name", text), CoreErrorCodes::kNotSupported);
}

TEST(GSystem, TimeAndByteOrder) {
  const std::uint64_t before = GSystem::OSTimeStamp();
  GSystem::OSSleep(20);
  EXPECT_GE(GSystem::OSTimeStamp() - before, 19U);  // whole milliseconds
  WallClock::SetForTest([] { return 1'600'000'000'999; });
  EXPECT_EQ(GSystem::OSGetSecondsSince1970(), 1'600'000'000);
  WallClock::SetForTest({});
  const std::uint32_t wide = GSystem::OSSwapBytesToNetwork(std::uint32_t{0x01020304});
  const std::uint16_t narrow = GSystem::OSSwapBytesToNetwork(std::uint16_t{0x0102});
  EXPECT_EQ(std::memcmp(&wide, "\1\2\3\4", 4), 0);
  EXPECT_EQ(std::memcmp(&narrow, "\1\2", 2), 0);
  EXPECT_EQ(GSystem::OSSwapBytesToHost(wide), 0x01020304U);
  EXPECT_EQ(GSystem::OSSwapBytesToHost(narrow), 0x0102);
}

}  // namespace
