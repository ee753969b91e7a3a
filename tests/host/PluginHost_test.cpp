// The host by itself: windows, suites, and a plug-in that is no plug-in.
#include "host/PluginHost.h"

#include <gtest/gtest.h>

#include "host/PluginHostSuites.h"
#include "sdk/HostWindows.h"
#include "support/ScratchHome.h"

namespace {

const HostWindowSuite* AcquireWindows() {
  const void* suite = nullptr;
  PluginHostSuites::Basic().AcquireSuite(kHostWindowSuite, kHostWindowSuiteVersion, &suite);
  return static_cast<const HostWindowSuite*>(suite);
}

HostOrderWindowProc gNext = nullptr;
bool gDismiss = false;
std::vector<std::string> gOrdered;

void Order(HostWindowRef window) {
  char title[64];
  AcquireWindows()->GetTitle(window, title, sizeof title);
  gOrdered.push_back(title);
  if (gDismiss) AcquireWindows()->SendKey(window, kHostKeyEscape);
  gNext(window);
}

TEST(PluginHost, OrdersItsMissingFontsWindowThroughWhoeverStandsInFront) {
  std::vector<std::string> shown;
  PluginHost host({[&](const HostWindow& window) { shown.push_back(window.text); },
                   [](const std::string&) {
                     return std::vector<std::string>{"A", "B"};
                   },
                   nullptr});
  gNext = AcquireWindows()->ExchangeOrderWindow(Order);
  host.OpenDocument("/a.psd");
  EXPECT_EQ(gOrdered, std::vector<std::string>{"Missing Fonts"});
  EXPECT_EQ(shown, std::vector<std::string>{"A, B"});
  gDismiss = true;
  host.OpenDocument("/b.psd");
  host.OpenDocument("/b.psd");
  EXPECT_EQ(gOrdered.size(), 2u) << "a document that is open already is only brought to the front";
  EXPECT_EQ(shown.size(), 1u);
}

TEST(PluginHost, FindsSuitesByNameAndVersionOnly) {
  PluginHost host;
  const void* suite = &host;
  EXPECT_EQ(PluginHostSuites::Basic().AcquireSuite(kSPBlocksSuite, 3, &suite),
            kSPSuiteNotFoundError);
  EXPECT_EQ(suite, nullptr);
  EXPECT_EQ(PluginHostSuites::Basic().AcquireSuite("No Suite", 1, &suite), kSPSuiteNotFoundError);
  EXPECT_EQ(host.CountAcquiredSuites(), 0);
}

TEST(PluginHost, RefusesWhatIsNoPlugin) {
  const ScratchHome home;
  PluginHost host;
  std::string error;
  EXPECT_FALSE(host.LoadPlugin(home.Path() + "/gone.plugin", error));
  EXPECT_NE(error.find("gone.plugin is no plug-in bundle"), std::string::npos) << error;
  EXPECT_EQ(host.Startup(), kSPBadParameterError);
}

}  // namespace
