// The whole agent as a process of its own, with its clients; what other programs see is asked with
// fc-match.
#include <gio/gunixsocketaddress.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <fstream>

#include "agent/library/AgentInterface.h"
#include "agent/library/GLibOwners.h"
#include "agent/library/Paths.h"
#include "support/AgentHome.h"
#include "support/TestFonts.h"

namespace fs = std::filesystem;

namespace Nodrix {
namespace {

using IDs = std::vector<std::uint32_t>;

std::vector<std::string> ActivatedFiles() {
  std::vector<std::string> files;
  if (!fs::exists(ActivationFolder())) return files;
  for (const auto& entry : fs::recursive_directory_iterator(ActivationFolder())) {
    if (entry.is_regular_file()) files.push_back(entry.path().string());
  }
  return files;
}

// A second process with a connection of its own.
class OtherClient {
 public:
  OtherClient(std::uint32_t font, const std::string& task)
      : mProgram({TEST_BUILD_DIR "/tests/other-client", task, std::to_string(font)}) {}
  bool IsReady() { return mProgram.WaitForOutput("ready\n"); }
  void Kill() {
    mProgram.Signal(SIGKILL);
    mProgram.Wait();
  }
  pid_t Pid() const { return mProgram.Pid(); }

 private:
  Program mProgram;
};

class AgentTest : public testing::Test {
 protected:
  // Starts the agent with fonts of these names in the library.
  void Start(const std::vector<std::string>& names) {
    for (const std::string& name : names) BuildFont(mHome.LibraryPath(name + ".ttf"), name);
    mHome.StartAgent();
    mClient = mHome.Connect();
    ASSERT_TRUE(mClient);
    mClient->Subscribe([this](AgentSignal signal, std::uint32_t font) {
      if (signal == AgentSignal::eFontActivated) mTold += "+" + std::to_string(font);
      if (signal == AgentSignal::eFontDeactivated) mTold += "-" + std::to_string(font);
      if (signal == AgentSignal::eFontMissing) mTold += "?" + std::to_string(font);
      if (signal == AgentSignal::eShuttingDown) mTold += "end";
    });
    mHome.AddLibrary(*mClient);
  }
  ActivationOutcome Activate(const IDs& ids, ActivationMode mode = ActivationMode::eAuto) {
    ActivationOutcome outcome;
    EXPECT_EQ(mClient->Activate(ids, mode, outcome), CallResult::eOk);
    return outcome;
  }
  void Deactivate(const IDs& ids, ActivationMode mode = ActivationMode::eAuto) {
    EXPECT_EQ(mClient->Deactivate(ids, mode), CallResult::eOk);
  }
  std::uint32_t State(std::uint32_t id) { return mHome.Reader()->RawActivationState(id, getpid()); }
  bool IsTold(const std::string& text) {
    return Eventually([&] { return mTold == text; });
  }

  AgentHome mHome;
  std::unique_ptr<AgentClient> mClient;
  std::string mTold;
};

TEST_F(AgentTest, TurnsAFontOnAndOffForEveryProgram) {
  Start({"Acme-A", "Acme-B"});
  EXPECT_EQ(mClient->Info().pid, mHome.Agent().Pid());
  EXPECT_EQ(mClient->Info().schemaVersion, kSchemaVersion);
  const std::uint32_t a = mHome.FontID("Acme-A");
  const std::string number = std::to_string(a);
  ASSERT_NE(a, 0u);
  EXPECT_EQ(State(a), 0u);
  const ActivationOutcome outcome = Activate({a, 4711});
  EXPECT_EQ(outcome.failed, IDs{4711});
  EXPECT_TRUE(outcome.shadowed.empty());
  EXPECT_EQ(State(a), 1u);
  std::vector<ActiveFont> status;
  ASSERT_EQ(mClient->Status(status), CallResult::eOk);
  ASSERT_EQ(status.size(), 1u);
  EXPECT_EQ(status[0].postScriptName, "Acme-A");
  EXPECT_EQ(status[0].pid, getpid());
  EXPECT_EQ(status[0].client, "test");
  EXPECT_EQ(MatchedFile("Acme-A"), status[0].path);
  EXPECT_EQ(ReadWholeFile(status[0].path), ReadWholeFile(mHome.LibraryPath("Acme-A.ttf")));
  EXPECT_EQ(fs::status(status[0].path).permissions(), fs::perms(0444));
  EXPECT_EQ(fs::status(fs::path(status[0].path).parent_path()).permissions(), fs::perms(0755));
  EXPECT_EQ(ActivatedFiles().size(), 1u);
  EXPECT_TRUE(IsTold("+" + number));
  // Once more is no change.
  Activate({a});
  Deactivate({a});
  EXPECT_EQ(State(a), 0u);
  EXPECT_NE(MatchedFile("Acme-A"), status[0].path);
  EXPECT_TRUE(ActivatedFiles().empty());
  EXPECT_TRUE(IsTold("+" + number + "-" + number));
}

TEST_F(AgentTest, TurnsWholeFilesOn) {
  BuildFont(mHome.LibraryPath("c.ttc"),
            {"--family", "Acme", "--psname", "Acme", "--format", "ttc"});
  BuildFont(mHome.LibraryPath("v.ttf"),
            {"--family", "Vario", "--psname", "Vario-Regular", "--format", "var"});
  BuildFont(mHome.LibraryPath("p.pfb"),
            {"--family", "Post", "--psname", "Post-Script", "--format", "pfb"});
  Start({});
  const std::uint32_t one = mHome.FontID("Acme-1"), two = mHome.FontID("Acme-2");
  const ActivationOutcome outcome =
      Activate({two, mHome.FontID("Vario-Bold"), mHome.FontID("Post-Script")});
  EXPECT_TRUE(outcome.failed.empty());
  EXPECT_TRUE(outcome.shadowed.empty());
  EXPECT_EQ(State(one), 1u);
  EXPECT_EQ(State(mHome.FontID("Vario-Light")), 1u);
  EXPECT_EQ(ActivatedFiles().size(), 3u);
  EXPECT_NE(MatchedFile("Acme-1").find("-c.ttc"), std::string::npos);
  EXPECT_NE(MatchedFile("Post-Script").find("-p.pfb"), std::string::npos);
  Deactivate({one});
  EXPECT_EQ(State(two), 0u);
}

TEST_F(AgentTest, ClientsGiveBackAndHandOver) {
  Start({"Acme-A", "Acme-B"});
  const std::uint32_t a = mHome.FontID("Acme-A"), b = mHome.FontID("Acme-B");
  OtherClient holder(a, "activate");
  ASSERT_TRUE(holder.IsReady());
  EXPECT_EQ(State(a), 2u);
  // Both: the other's end changes nothing for us.
  Activate({a, b});
  holder.Kill();
  ASSERT_TRUE(Eventually([&] {
    std::vector<ActiveFont> status;
    return mClient->Status(status) == CallResult::eOk && status.size() == 2;
  }));
  EXPECT_EQ(State(a), 1u);
  // The other has a document with it: what we give back goes over to it.
  OtherClient user(a, "declare");
  ASSERT_TRUE(user.IsReady());
  Deactivate({a, b});
  EXPECT_EQ(State(a), 2u);
  EXPECT_EQ(State(b), 0u);
  std::vector<ActiveFont> status;
  mClient->Status(status);
  ASSERT_EQ(status.size(), 1u);
  EXPECT_EQ(status[0].pid, user.Pid());
  EXPECT_EQ(status[0].documents, std::vector<std::string>{"/other.psd"});
  // It is killed: nobody is left.
  user.Kill();
  EXPECT_TRUE(Eventually([&] { return State(a) == 0; }));
  EXPECT_TRUE(ActivatedFiles().empty());
}

TEST_F(AgentTest, OneFaceOfANameIsOn) {
  BuildFont(mHome.LibraryPath("first.ttf"), {"--family", "Same", "--psname", "Same-Name"});
  BuildFont(mHome.LibraryPath("second.ttf"),
            {"--family", "Same", "--psname", "Same-Name", "--version", "2.0"});
  Start({});
  const IDs ids = mHome.Reader()->FontsByPostScriptName("Same-Name", {});
  ASSERT_EQ(ids.size(), 2u);
  Activate({ids[0]});
  EXPECT_EQ(mHome.Reader()->ConflictingFont(ids[1]), ids[0]);
  EXPECT_TRUE(Activate({ids[1]}).shadowed.empty());
  EXPECT_EQ(State(ids[0]), 0u);
  EXPECT_EQ(State(ids[1]), 1u);
  const std::string first = std::to_string(ids[0]), second = std::to_string(ids[1]);
  EXPECT_TRUE(IsTold("+" + first + "-" + first + "+" + second));
  // The user's own choice stays, and the other one is told as shadowed.
  Activate({ids[1]}, ActivationMode::eUser);
  EXPECT_EQ(State(ids[1]), 4u);
  EXPECT_EQ(Activate({ids[0]}).shadowed, IDs{ids[0]});
  EXPECT_EQ(State(ids[1]), 4u);
  EXPECT_EQ(State(ids[0]), 1u);
  Deactivate(ids, ActivationMode::eUser);
  Deactivate(ids);
  // Asked for together: the first one.
  EXPECT_EQ(Activate(ids).failed, IDs{ids[1]});
  EXPECT_EQ(ActivatedFiles().size(), 1u);
}

TEST_F(AgentTest, SystemFontsAreOnAndShadow) {
  BuildFont(mHome.SystemPath("s.ttf"),
            {"--family", "Test Acme-A", "--psname", "Acme-A", "--version", "7.5"});
  Start({"Acme-A"});
  const IDs ids = mHome.Reader()->FontsByPostScriptName("Acme-A", {});
  ASSERT_EQ(ids.size(), 2u);
  EXPECT_EQ(State(ids[0]), 5u);
  EXPECT_TRUE(Activate({ids[0]}).failed.empty());
  Deactivate({ids[0]});
  EXPECT_EQ(State(ids[0]), 5u);
  const ActivationOutcome outcome = Activate({ids[1]});
  EXPECT_TRUE(outcome.failed.empty());
  // What the agent says is what other programs see.
  const bool isShadowed = MatchedFile("Acme-A") == mHome.SystemPath("s.ttf");
  EXPECT_EQ(outcome.shadowed, isShadowed ? IDs{ids[1]} : IDs{});
  EXPECT_EQ(State(ids[1]), 1u);
}

TEST_F(AgentTest, FailuresLeaveNothingBehind) {
  Start({"Acme-A", "Acme-B", "Acme-C"});
  const std::uint32_t a = mHome.FontID("Acme-A"), b = mHome.FontID("Acme-B"),
                      c = mHome.FontID("Acme-C");
  fs::remove(mHome.LibraryPath("Acme-A.ttf"));
  // What fontconfig can't read is not on.
  mHome.Home().WriteFile("library/Acme-B.ttf", "no font any more");
  ActivationOutcome outcome = Activate({a, b, c});
  EXPECT_EQ(outcome.failed, (IDs{a, b}));
  EXPECT_EQ(ActivatedFiles().size(), 1u);
  EXPECT_TRUE(mHome.Reader()->FontByID(a)->missing);
  Deactivate({c});
  // A shard that can't be made.
  fs::remove_all(ActivationFolder());
  mHome.Home().WriteFile(".local/share/fonts/vendrel", "in the way");
  EXPECT_EQ(Activate({c}).failed, IDs{c});
  EXPECT_EQ(State(c), 0u);
}

TEST_F(AgentTest, ComesBackInLineAfterACrash) {
  Start({"Acme-A", "Acme-B", "Acme-C", "Acme-D"});
  const std::uint32_t a = mHome.FontID("Acme-A"), b = mHome.FontID("Acme-B"),
                      c = mHome.FontID("Acme-C"), d = mHome.FontID("Acme-D");
  OtherClient holder(b, "activate");
  ASSERT_TRUE(holder.IsReady());
  Activate({a});
  Activate({c, d}, ActivationMode::eUser);
  ASSERT_EQ(ActivatedFiles().size(), 4u);
  mHome.KillAgent();
  EXPECT_TRUE(Eventually([&] { return !mClient->IsConnected(); }));
  ActivationOutcome outcome;
  EXPECT_EQ(mClient->Activate({a}, ActivationMode::eAuto, outcome), CallResult::eGone);
  // Questions are answered without it.
  EXPECT_EQ(State(c), 4u);
  holder.Kill();
  for (const std::string& file : ActivatedFiles()) {
    if (file.ends_with("Acme-C.ttf")) fs::remove(file);
  }
  BuildFont(ActivationFolder() + "/aa/99-stray.ttf", "Stray");
  mHome.Home().WriteFile(".local/share/fonts/vendrel/aa/.new-abcdef", "half");
  fs::remove(mHome.LibraryPath("Acme-D.ttf"));

  mHome.StartAgent();
  mClient = mHome.Connect();
  ASSERT_TRUE(mClient);
  // Ours is alive, the other is not; the user's are back, from the copy where the original has
  // gone.
  EXPECT_EQ(State(a), 1u);
  EXPECT_EQ(State(b), 0u);
  EXPECT_EQ(State(c), 4u);
  EXPECT_EQ(State(d), 4u);
  EXPECT_EQ(ActivatedFiles().size(), 3u);
  EXPECT_NE(MatchedFile("Acme-C").find("-Acme-C.ttf"), std::string::npos);
  mClient.reset();
  EXPECT_TRUE(Eventually([&] { return State(a) == 0; }));
}

TEST_F(AgentTest, AClientThatStayedBehindIsNoticed) {
  Start({"Acme-A"});
  const std::uint32_t a = mHome.FontID("Acme-A");
  OtherClient holder(a, "activate");
  ASSERT_TRUE(holder.IsReady());
  mHome.KillAgent();
  mHome.StartAgent();
  mClient = mHome.Connect();
  ASSERT_TRUE(mClient);
  EXPECT_EQ(State(a), 2u);
  // It has no connection to this agent.
  holder.Kill();
  EXPECT_TRUE(Eventually([&] { return State(a) == 0; }));
}

TEST_F(AgentTest, IsOneAndEndsInOrder) {
  Start({"Acme-A", "Acme-B"});
  EXPECT_EQ(RunProgram({TEST_BUILD_DIR "/bin/Nodrix"}).exitCode, 0);
  EXPECT_TRUE(mClient->IsConnected());
  EXPECT_EQ(RunProgram({TEST_BUILD_DIR "/bin/Nodrix", "--nonsense"}).exitCode, 2);
  const std::uint32_t a = mHome.FontID("Acme-A"), b = mHome.FontID("Acme-B");
  Activate({a});
  Activate({b}, ActivationMode::eUser);
  ASSERT_EQ(mClient->Stop(), CallResult::eOk);
  EXPECT_EQ(mHome.Agent().Wait().exitCode, 0);
  EXPECT_TRUE(Eventually([&] { return mTold.ends_with("end"); })) << mTold;
  EXPECT_EQ(State(a), 0u);
  EXPECT_EQ(State(b), 4u);
  std::string error;
  EXPECT_FALSE(fs::exists(SocketPath(error)));
  EXPECT_FALSE(AgentClient::Connect("test", 0, error));
  // A signal is an orderly end too, and keeps what living clients use.
  mHome.StartAgent();
  mClient = mHome.Connect();
  ASSERT_TRUE(mClient);
  Activate({a});
  mHome.Agent().Signal(SIGTERM);
  EXPECT_EQ(mHome.Agent().Wait().exitCode, 0);
  EXPECT_EQ(State(a), 1u);
}

TEST_F(AgentTest, KeepsTheFoldersOfTheLibrary) {
  Start({"Acme-A", "Acme-B"});
  const std::uint32_t a = mHome.FontID("Acme-A");
  ScanOutcome outcome;
  std::string message;
  const auto refuses = [&](const std::string& path) {
    EXPECT_EQ(mClient->AddFolder(path, {}, outcome, message), CallResult::eRefused) << path;
    return message;
  };
  EXPECT_NE(refuses("relative").find("absolute"), std::string::npos);
  EXPECT_NE(refuses("/no/such/folder").find("no folder"), std::string::npos);
  EXPECT_NE(refuses(mHome.LibraryPath("Acme-A.ttf")).find("not a folder"), std::string::npos);
  mHome.Home().MakeFolder("library/below");
  EXPECT_NE(refuses(mHome.LibraryPath("below")).find("already"), std::string::npos);
  Activate({a});
  EXPECT_NE(refuses(ActivationFolder()).find("activated"), std::string::npos);

  BuildFont(mHome.LibraryPath("Acme-C.ttf"), "Acme-C");
  std::uint64_t reports = 0;
  EXPECT_EQ(mClient->Rescan(
                [&](std::uint64_t done, std::uint64_t all, const std::string& path) {
                  ++reports;
                  EXPECT_EQ(done, all);
                  EXPECT_EQ(path, mHome.LibraryPath("Acme-C.ttf"));
                  return true;
                },
                outcome, message),
            CallResult::eOk);
  EXPECT_EQ(reports, 1u);
  EXPECT_EQ(outcome.added, 1u);
  EXPECT_EQ(outcome.files, 3u);

  EXPECT_EQ(mClient->RemoveFolder(mHome.LibraryPath(""), message), CallResult::eOk) << message;
  EXPECT_EQ(mHome.Reader()->CountAll().faces, 0u);
  EXPECT_TRUE(ActivatedFiles().empty());
  EXPECT_EQ(mClient->RemoveFolder(mHome.LibraryPath(""), message), CallResult::eRefused);
}

TEST_F(AgentTest, AnswersMalformedMessagesWithErrors) {
  Start({});
  std::string error;
  ErrorOwner failure;
  const GObjectOwner<GDBusConnection> raw(g_dbus_connection_new_for_address_sync(
      SocketAddress(error).c_str(), G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT, nullptr, nullptr,
      failure.Out()));
  ASSERT_TRUE(raw) << failure.Text();
  const auto call = [&](const char* method, GVariant* arguments) {
    ErrorOwner refusal;
    const VariantOwner reply(g_dbus_connection_call_sync(
        raw.get(), nullptr, kAgentObjectPath, kAgentInterfaceName, method, arguments, nullptr,
        G_DBUS_CALL_FLAGS_NONE, 10'000, nullptr, refusal.Out()));
    return refusal ? refusal.Get()->code : -1;
  };
  EXPECT_EQ(call("Status", nullptr), G_DBUS_ERROR_ACCESS_DENIED);
  EXPECT_EQ(call("Hello", g_variant_new("(i)", 5)), G_DBUS_ERROR_INVALID_ARGS);
  EXPECT_EQ(call("Hello", g_variant_new("(s)", "raw")), -1);
  EXPECT_EQ(call("Activate", g_variant_new_parsed("([@u 1], @u 9)")), G_DBUS_ERROR_INVALID_ARGS);
  EXPECT_EQ(call("Nonsense", nullptr), G_DBUS_ERROR_UNKNOWN_METHOD);
  EXPECT_EQ(call("AddFolder", g_variant_new("(^ayu)", "", 1)), G_DBUS_ERROR_FAILED);
  // Neither this nor noise from something that speaks no D-Bus disturbs others.
  const GObjectOwner<GSocketClient> noise(g_socket_client_new());
  const GObjectOwner<GSocketAddress> address(g_unix_socket_address_new(SocketPath(error).c_str()));
  const GObjectOwner<GSocketConnection> stream(
      g_socket_client_connect(noise.get(), G_SOCKET_CONNECTABLE(address.get()), nullptr, nullptr));
  ASSERT_TRUE(stream);
  const std::string rubbish(5000, '\xA5');
  g_output_stream_write_all(g_io_stream_get_output_stream(G_IO_STREAM(stream.get())),
                            rubbish.data(), rubbish.size(), nullptr, nullptr, nullptr);
  std::vector<ActiveFont> status;
  EXPECT_EQ(mClient->Status(status), CallResult::eOk);
}

}  // namespace
}  // namespace Nodrix
