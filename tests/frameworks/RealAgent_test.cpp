// The client library and the agent itself, from names to active fonts and back.
#include <gtest/gtest.h>

#include <algorithm>
#include <condition_variable>
#include <filesystem>
#include <mutex>
#include <vector>

#include "agent/library/Paths.h"
#include "frameworks/FrameworkLibraries.h"
#include "propertylist/FontRecord.h"
#include "sdk/FontRecordKeys.h"
#include "support/AgentHome.h"
#include "support/TestFonts.h"

namespace {

namespace fs = std::filesystem;

std::mutex sMutex;
std::condition_variable sChanged;
std::vector<std::pair<std::int32_t, std::uint32_t>> sHeard;

std::uint32_t Listen(std::int32_t kind, const void* data) {
  const std::lock_guard lock(sMutex);
  sHeard.emplace_back(kind, data ? *static_cast<const std::uint32_t*>(data) : 0);
  sChanged.notify_all();
  return 0;
}

void AwaitHeard(std::int32_t kind, std::uint32_t font) {
  std::unique_lock lock(sMutex);
  sChanged.wait(lock, [&] {
    return std::find(sHeard.begin(), sHeard.end(), std::pair(kind, font)) != sHeard.end();
  });
}

class RealAgent : public testing::Test {
 protected:
  RealAgent() {
    BuildFont(home.LibraryPath("one.ttf"), "Scratch-One");
    home.StartAgent();
  }
  ~RealAgent() override { facade.CleanUpOnShutdown(instance); }

  std::string State(std::uint32_t font) {
    PLDictionaryRef record = nullptr;
    facade.GetFontInfoByID(instance, nullptr, 0, nullptr, &font, &record);
    return RecordString(PropertyList::AdoptHandle(record), kFP_ActivationStateKey);
  }
  std::uint32_t Activate(std::uint32_t font) {
    std::uint32_t failed[1], second[1], failedCount = 9, secondCount = 9;
    const std::uint32_t code = facade.ActivateFonts(instance, 1, &font, 0, 1, 1, 1, 1, 1, failed,
                                                    second, &failedCount, &secondCount);
    EXPECT_EQ(failedCount + secondCount, 0u);
    return code;
  }
  std::size_t ActiveFiles() {
    std::size_t files = 0;
    if (!fs::exists(Nodrix::ActivationFolder())) return 0;
    for (const auto& entry : fs::recursive_directory_iterator(Nodrix::ActivationFolder())) {
      files += entry.is_regular_file() && entry.path().extension() == ".ttf" ? 1 : 0;
    }
    return files;
  }

  AgentHome home;
  FacadeTable facade;
  PluginFacadeInstance instance = facade.GetPluginFacadeInstance();
};

}  // namespace

TEST_F(RealAgent, ActivatesByNameAndSurvivesItsLoss) {
  const auto librarian = home.Connect();
  ASSERT_TRUE(librarian);
  home.AddLibrary(*librarian);

  EXPECT_EQ(facade.InitAppInstance(instance, 1, 21), 0u);
  EXPECT_EQ(facade.InitThreadInstance(instance), 0u);
  EXPECT_EQ(facade.RegisterForNotifications(instance, Listen), 0u);
  std::uint32_t font = 0, count = 0;
  ASSERT_EQ(facade.GetFontsByPostscriptName(instance, "Scratch-One", nullptr, 0, &font, 1, &count),
            0u);
  ASSERT_EQ(count, 1u);
  EXPECT_EQ(State(font), "0");
  EXPECT_EQ(Activate(font), 0u);
  EXPECT_EQ(State(font), "1");
  EXPECT_EQ(ActiveFiles(), 1u);
  EXPECT_EQ(facade.DeactivateFonts(instance, 1, &font, 0), 0u);
  EXPECT_EQ(State(font), "0");
  EXPECT_EQ(ActiveFiles(), 0u);

  home.KillAgent();
  EXPECT_EQ(Activate(font), kPluginInterface_ServiceUnavailable);
  std::int32_t running = 9;
  facade.GetIsCoreAgentProcessRunning(instance, &running);
  EXPECT_EQ(running, 0);
  home.StartAgent();
  facade.ResetPluginFacadeInstance();
  EXPECT_EQ(Activate(font), 0u) << "waits for the agent that is just starting";
  EXPECT_EQ(facade.DestroyThreadInstance(instance), 0u);
}

TEST_F(RealAgent, TellsOfOthersActivationsAndOfItsEnd) {
  const auto librarian = home.Connect();
  ASSERT_TRUE(librarian);
  // The scan's own signal comes to a library that is connected.
  facade.RegisterForNotifications(instance, Listen);
  Nodrix::ActivationOutcome activation;
  std::uint32_t font = 0, count = 0;
  home.AddLibrary(*librarian);
  facade.GetFontsByPostscriptName(instance, "Scratch-One", nullptr, 0, &font, 1, &count);
  ASSERT_EQ(count, 1u);
  // The thread's connection may come a moment later than ours: repeat until it hears.
  for (bool heard = false; !heard;) {
    librarian->Activate({font}, Nodrix::ActivationMode::eUser, activation);
    EXPECT_EQ(State(font), "4");
    librarian->Deactivate({font}, Nodrix::ActivationMode::eUser);
    const std::lock_guard lock(sMutex);
    heard = !sHeard.empty();
  }
  librarian->Activate({font}, Nodrix::ActivationMode::eUser, activation);
  AwaitHeard(kCallback_FontActivated, font);
  librarian->Deactivate({font}, Nodrix::ActivationMode::eUser);
  AwaitHeard(kCallback_FontDeactivated, font);
  librarian->Stop();
  AwaitHeard(kCallback_AgentShutdown, 0);
}
