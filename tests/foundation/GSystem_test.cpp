#include "foundation/GSystem.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <tuple>

#include "foundation/WallClock.h"
#include "foundation/linux/SystemFacts.h"
#include "support/ErrorRecords.h"
#include "support/ScratchHome.h"

namespace {

TEST(GSystem, SelectsThePrimaryAddress) {
  // Class name, name, primary, has a device, address.
  const NetworkInterface bare{"e", "a", true, false, {1}};
  const NetworkInterface blank{"e", "b", true, true, {}};
  const NetworkInterface zeros{"e", "c", false, true, {0, 0}};
  const NetworkInterface other{"e", "d", false, true, {0x0A, 0xB0}};
  const NetworkInterface third{"e", "e", false, true, {3}};
  const NetworkInterface first{"e", "f", true, true, {4}};
  const NetworkInterface last{"e", "g", true, true, {5}};
  const std::pair<std::vector<NetworkInterface>, const char*> rows[] = {
      {{}, ""},
      {{bare, blank}, ""},
      {{other, third}, "0a:b0"},
      {{third, first, other}, "04"},
      {{first, last}, "05"},
      {{bare, zeros, third}, "03"},
      {{third, blank}, "03"}};
  for (const auto& [interfaces, address] : rows) {
    EXPECT_EQ(SelectPrimaryMACAddress(interfaces), address) << &address - &rows[0].second;
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
  const std::string service = "class name = 'kind', BSD name = ";
  const std::string texts[] = {
      "Examining service: " + service + "'en0', primary = 1\n",
      "Failed to get parent service, skipping: " + service + "'en0', primary = 1\n",
      "Examining service: " + service + "'en1', primary = 0\n",
      "Expression='[addressData length] == 0'",
      "Examining service: " + service + "'en2', primary = 0\n",
      "Examining service: " + service + "'en3', primary = 0\n",
      "Skipping service, already have address and new one is not primary interface, cur addr = "
      "'02'\n"};
  ASSERT_EQ(log.Lines().size(), std::size(texts));
  for (std::size_t i = 0; i < std::size(texts); ++i) {
    EXPECT_NE(log.Lines()[i].find(texts[i]), std::string::npos) << log.Lines()[i];
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
  AddInterface("lo", "772", "1", "00:00:00:00:00:00", false);
  AddInterface("docker0", "1", "2", "02:42:00:00:00:01", false);
  AddInterface("tun0", "65534", "3", "01", true);
  EXPECT_EQ(PrimaryAddress(), "");
  AddInterface("broken", "1", "4", "00:1b:2:", true);
  AddInterface("aa", "1", "10", "00:1b:21:3a:4f:10", true);
  AddInterface("zz", "1", "9", "00:1B:21:3A:4F:09", true);
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
  const std::string nets =
      "Iface\tDestination\tGateway \tFlags\tRefCnt\tUse\tMetric\tMask\n"
      "a\t000200C0\t00000000\t0001\t0\t0\t0\t00FFFFFF\t0\t0\t0\n"
      "a\t00000000\t00000000\t0001\t0\t0\t0\t00000080\t0\t0\t0\n"
      "a\t00000000\t00000000\t0200\t0\t0\t0\t00000000\t0\t0\t0\n";
  mRoot.WriteFile("proc/net/route", nets);
  EXPECT_EQ(PrimaryAddress(), "0c");
  const std::string fields = "\t00000000\t010200C0\t0003\t0\t0\t";
  mRoot.WriteFile("proc/net/route", nets + "a" + fields + "600\t00000000\t0\nb" + fields +
                                        "100\t00000000\t0\nc" + fields + "100\t00000000\t0\n");
  EXPECT_EQ(PrimaryAddress(), "0b");
}

TEST_F(MadeUpMachine, HasAnIdentifier) {
  const std::string valid = "0123456789abcdef0123456789abcdef";
  for (const std::string& text :
       {std::string("uninitialized\n"), std::string(32, '0'), valid.substr(1), valid + "a",
        valid.substr(1) + "g", std::string("01234567-89ab-cdef-0123-456789abcdef")}) {
    EXPECT_EQ(SystemFacts::ReadMachineID(mRoot.Path()), "");
    mRoot.WriteFile("etc/machine-id", text);
    mRoot.WriteFile("var/lib/dbus/machine-id", text);
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
  const std::pair<std::string, std::vector<const char*>> rows[] = {
      {"6.1.0.", {"6.1.0-18-amd64", "6.1-rc2"}},
      {"5.15.0.", {"5.15"}},
      {"4.0.0.", {"4", "4.x.3"}},
      {"0.0.0.", {"", "v6.1", "99999999999.1"}}};
  for (const auto& [expected, releases] : rows) {
    for (const char* release : releases) {
      unsigned int numbers[3] = {9, 9, 9};
      EXPECT_EQ(SystemFacts::ParseRelease(release, numbers), expected != "0.0.0.") << release;
      std::string found;
      for (const unsigned int number : numbers) found += std::to_string(number) + ".";
      EXPECT_EQ(found, expected) << release;
    }
  }
}

TEST(GSystem, Languages) {
  const std::pair<const char*, std::vector<const char*>> rows[] = {
      {"en", {"", "C", "C.UTF-8", "POSIX", "../../etc"}},
      {"de", {"de", "de_at"}},
      {"de-AT", {"de_AT.UTF-8@euro"}},
      {"sr-RS", {"sr_RS@latin"}},
      {"es-419", {"es_419"}}};
  for (const auto& [tag, locales] : rows) {
    for (const char* locale : locales) {
      EXPECT_EQ(SystemFacts::PreferredLanguages(locale, ""), std::vector<std::string>{tag});
    }
  }
  EXPECT_EQ(SystemFacts::PreferredLanguages("C", "de"), std::vector<std::string>{"en"});
  EXPECT_EQ(SystemFacts::PreferredLanguages("en_US.UTF-8", "pt_BR:pt::C:en_US"),
            (std::vector<std::string>{"pt-BR", "pt", "en-US"}));
  std::string code;
  for (const char* name : {"LC_ALL", "LC_MESSAGES", "LANG"}) unsetenv(name);
  const std::tuple<const char*, const char*, const char*> environments[] = {
      {"LC_ALL", "", "en"}, {"LANG", "fr_FR.UTF-8", "fr"}, {"LC_MESSAGES", "it_CH", "it"}};
  for (const auto& [name, value, expected] : environments) {
    setenv(name, value, 1);
    EXPECT_EQ(GSystem::OSGetLanguageCode(code), 0U);
    EXPECT_EQ(code, expected);
  }
}

TEST(GSystem, SocketsAreCounted) {
  const RecordingAppender& log = RecordingAppender::Install();
  GSystem::InitializeSockets();
  GSystem::InitializeSockets();
  EXPECT_EQ(GSystem::UninitializeSockets(), 0U);
  EXPECT_TRUE(GSystem::AreSocketsInitialized());
  EXPECT_EQ(GSystem::UninitializeSockets(), 0U);
  EXPECT_FALSE(GSystem::AreSocketsInitialized());
  EXPECT_EQ(GSystem::UninitializeSockets(), CoreErrorCodes::kNotInitialized);
  EXPECT_EQ(ExpressionsOf(log), "s_nInitCount < 0\n");
  EXPECT_EQ(GSystem::InitializeSockets(), 0U);
  EXPECT_TRUE(GSystem::AreSocketsInitialized());
}

TEST(GSystem, FactsOfThisMachine) {
  unsigned int numbers[3] = {};
  std::string text;
  EXPECT_EQ(GSystem::OSGetVersion(numbers[0], numbers[1], numbers[2]), 0U);
  EXPECT_EQ(GSystem::OSGetVersionString(text), 0U);
  EXPECT_TRUE(text.starts_with(std::to_string(numbers[0]) + "." + std::to_string(numbers[1])));
  EXPECT_TRUE(GSystem::OSGetLocalIPAddress(text) == 0 && !text.starts_with("127."));
  EXPECT_TRUE(GSystem::GetPrimaryMACAddress(text) == 0 && (text.empty() || text.size() % 3 == 2));
  const TModuleErrorCode code = GSystem::GetMachineID(text);
  EXPECT_TRUE(code == 0 ? text.size() == 32 : code == CoreErrorCodes::kNotFound && text.empty());
  setenv("XDG_SESSION_ID", "c7", 1);
  EXPECT_EQ(GSystem::OSGetUserSessionIdentifier(), "c7");
  unsetenv("XDG_SESSION_ID");
  EXPECT_FALSE(GSystem::OSGetUserSessionIdentifier().empty());
}

TEST(GSystem, TimeAndByteOrder) {
  const std::uint64_t before = GSystem::OSTimeStamp();
  GSystem::OSSleep(20);
  EXPECT_GE(GSystem::OSTimeStamp() - before, 19U);  // whole milliseconds
  WallClock::SetForTest([] { return 1'600'000'000'999; });
  EXPECT_EQ(GSystem::OSGetSecondsSince1970(), 1'600'000'000);
  WallClock::SetForTest({});
  const std::uint32_t wide = GSystem::OSSwapBytesToNetwork(std::uint32_t{0x01020304});
  EXPECT_EQ(std::memcmp(&wide, "\1\2\3\4", 4), 0);
  EXPECT_EQ(GSystem::OSSwapBytesToHost(GSystem::OSSwapBytesToNetwork(std::uint16_t{258})), 258);
}

}  // namespace
