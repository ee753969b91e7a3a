// The client library and the agent itself, from names to active fonts and back.
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <condition_variable>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <mutex>
#include <vector>

#include "agent/library/AgentClient.h"
#include "agent/library/Paths.h"
#include "frameworks/FrameworkLibraries.h"
#include "propertylist/FontRecord.h"
#include "sdk/FontRecordKeys.h"
#include "support/ScratchHome.h"

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

// Nodrix as a child of this process.
class RunningAgent {
 public:
  RunningAgent() : mProcess(fork()) {
    if (mProcess == 0) {
      execl(TEST_BUILD_DIR "/bin/Nodrix", "Nodrix", "--foreground", nullptr);
      _exit(127);
    }
  }
  ~RunningAgent() { Kill(SIGTERM); }
  RunningAgent(const RunningAgent&) = delete;
  RunningAgent& operator=(const RunningAgent&) = delete;
  void Kill(int signal) {
    if (mProcess <= 0) return;
    kill(mProcess, signal);
    waitpid(mProcess, nullptr, 0);
    mProcess = -1;
  }

 private:
  pid_t mProcess;
};

class RealAgent : public testing::Test {
 protected:
  RealAgent() {
    const std::string command = "/usr/bin/python3 " TEST_SOURCE_DIR
                                "/tools/fonts/make_font.py --family Scratch --psname Scratch-One " +
                                home.MakeFolder("fonts") + "/one.ttf";
    EXPECT_EQ(std::system(command.c_str()), 0);
    // The machine's own fonts are none of this.
    setenv("FONTCONFIG_FILE",
           home.WriteFile("fonts.conf",
                          "<?xml version=\"1.0\"?><fontconfig><dir prefix=\"xdg\">"
                          "fonts</dir><cachedir prefix=\"xdg\">fontconfig</cachedir>"
                          "</fontconfig>")
               .c_str(),
           1);
  }
  ~RealAgent() override { facade.CleanUpOnShutdown(instance); }

  std::unique_ptr<Nodrix::AgentClient> Librarian() {
    std::string error;
    auto client = Nodrix::AgentClient::Connect("test", 20000, error);
    EXPECT_TRUE(client) << error;
    return client;
  }
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

  ScratchHome home;
  FacadeTable facade;
  PluginFacadeInstance instance = facade.GetPluginFacadeInstance();
};

}  // namespace

TEST_F(RealAgent, ActivatesByNameAndSurvivesItsLoss) {
  auto agent = std::make_unique<RunningAgent>();
  const auto librarian = Librarian();
  ASSERT_TRUE(librarian);
  Nodrix::ScanOutcome outcome;
  std::string message;
  ASSERT_EQ(librarian->AddFolder(home.Path() + "/fonts", {}, outcome, message),
            Nodrix::CallResult::eOk)
      << message;

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

  agent->Kill(SIGKILL);
  EXPECT_EQ(Activate(font), kPluginInterface_ServiceUnavailable);
  std::int32_t running = 9;
  facade.GetIsCoreAgentProcessRunning(instance, &running);
  EXPECT_EQ(running, 0);
  agent = std::make_unique<RunningAgent>();
  facade.ResetPluginFacadeInstance();
  EXPECT_EQ(Activate(font), 0u) << "waits for the agent that is just starting";
  EXPECT_EQ(facade.DestroyThreadInstance(instance), 0u);
}

TEST_F(RealAgent, TellsOfOthersActivationsAndOfItsEnd) {
  RunningAgent agent;
  const auto librarian = Librarian();
  ASSERT_TRUE(librarian);
  // The scan's own signal comes to a library that is connected.
  facade.RegisterForNotifications(instance, Listen);
  Nodrix::ScanOutcome outcome;
  std::string message;
  Nodrix::ActivationOutcome activation;
  std::uint32_t font = 0, count = 0;
  librarian->AddFolder(home.Path() + "/fonts", {}, outcome, message);
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
