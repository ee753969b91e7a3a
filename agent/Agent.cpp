#include "agent/Agent.h"

#include <glib-unix.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>

#include "agent/MainThread.h"
#include "agent/library/Paths.h"

namespace Nodrix {
namespace {

// fontconfig compares times in seconds.
constexpr guint kTouchAfterMilliseconds = 1100;
constexpr guint kWatchSeconds = 5;
constexpr char kSystemScanned[] = "systemScanned";

std::string LogPath() {
  std::string ignored;
  MakeFolder(StateFolder(), ignored);
  return StateFolder() + "/Nodrix.log";
}

gboolean QuitLoop(gpointer loop) {
  g_main_loop_quit(static_cast<GMainLoop*>(loop));
  return G_SOURCE_CONTINUE;
}

}  // namespace

Agent::Agent()
    : mLog(LogPath()), mLoop(g_main_loop_new(nullptr, FALSE)), mActivator(ActivationFolder()) {}

Agent::~Agent() {
  *mIsHere = false;
  // The thread first: it works with the store.
  mScans.reset();
  mServer.reset();
  if (mTouchTimer != 0) g_source_remove(mTouchTimer);
  if (mWatchTimer != 0) g_source_remove(mWatchTimer);
}

int Agent::Run() {
  std::string error;
  const std::string lockPath = LockPath(error);
  auto lock = lockPath.empty() ? nullptr : AgentLock::Take(lockPath, error);
  if (!lock) {
    if (error.empty()) {
      std::fprintf(stderr, "Nodrix: the agent of this user is running already\n");
      return eEnded;
    }
    std::fprintf(stderr, "Nodrix: %s\n", error.c_str());
    return eCannotStart;
  }
  Agent agent;
  agent.mLock = std::move(lock);
  if (!agent.Open(error) || !agent.Serve(error)) {
    agent.mLog.Write("can't start: " + error);
    std::fprintf(stderr, "Nodrix: %s\n", error.c_str());
    return eCannotStart;
  }
  agent.Loop();
  return eEnded;
}

bool Agent::Open(std::string& error) {
  const std::string path = DatabasePath();
  if (!MakeFolder(path.substr(0, path.find_last_of('/')), error)) return false;
  mStore = LibraryStore::Open(path, error);
  if (!mStore) return false;
  mBooks = std::make_unique<ActivationBooks>(*mStore, mActivator, mClients);
  ScanSystemOnce();
  ActivationChanges changes;
  mBooks->Reconcile(changes);
  Tell(changes);
  WatchUnconnected();
  return true;
}

// The first client of a new library must not find a system without fonts.
void Agent::ScanSystemOnce() {
  if (!mStore->Setting(kSystemScanned).empty()) return;
  ScanControl control;
  ScanResult result;
  LibraryScanner(*mStore, mActivator.Folder()).ScanSystem(control, result);
  if (result.failed || !mStore->SetSetting(kSystemScanned, "1")) {
    mLog.Write("the system's fonts could not be recorded");
  }
}

bool Agent::Serve(std::string& error) {
  const std::string path = SocketPath(error);
  if (path.empty()) return false;
  // What a killed agent left; the lock says that nobody listens there.
  unlink(path.c_str());
  mServer = std::make_unique<AgentServer>(*this);
  if (!mServer->Start(SocketAddress(error), error)) return false;
  mScans = std::make_unique<ScanQueue>(*mStore, mActivator.Folder());
  Scan({nullptr, 0},
       [](LibraryScanner& scanner, ScanControl& control, ScanResult& result) {
         scanner.ScanSystem(control, result);
       },
       {});
  mLog.Write("started, version " AUTOACTIVATION_VERSION);
  return true;
}

void Agent::Loop() {
  const guint signals[] = {g_unix_signal_add(SIGTERM, QuitLoop, mLoop.get()),
                           g_unix_signal_add(SIGINT, QuitLoop, mLoop.get()),
                           g_unix_signal_add(SIGHUP, QuitLoop, mLoop.get())};
  g_main_loop_run(mLoop.get());
  for (const guint source : signals) g_source_remove(source);
  mServer->Emit("ShuttingDown");
  mServer->Close();
  std::string ignored;
  unlink(SocketPath(ignored).c_str());
  mLog.Write("ended");
}

void Agent::Later(std::function<void()> work) {
  RunOnMainThread([isHere = mIsHere, work = std::move(work)] {
    if (*isHere) work();
  });
}

void Agent::Tell(const ActivationChanges& changes) {
  for (const std::string& problem : changes.problems) mLog.Write(problem);
  TouchLater();
  if (!mServer) return;
  mServer->Emit("FontDeactivated", changes.deactivated);
  mServer->Emit("FontActivated", changes.activated);
  mServer->Emit("FontMissing", changes.missing);
}

void Agent::TouchLater() {
  if (!mActivator.HasChanged()) return;
  if (mTouchTimer != 0) g_source_remove(mTouchTimer);
  mTouchTimer = g_timeout_add(
      kTouchAfterMilliseconds,
      [](gpointer data) -> gboolean {
        auto& self = *static_cast<Agent*>(data);
        self.mActivator.TouchChanged();
        self.mActivator.ForgetChanged();
        self.mTouchTimer = 0;
        return G_SOURCE_REMOVE;
      },
      this);
}

// Processes that used fonts before this agent was started have no connection whose end would tell.
void Agent::WatchUnconnected() {
  if (mWatchTimer != 0 || !LookAfterUnconnected()) return;
  mWatchTimer = g_timeout_add_seconds(
      kWatchSeconds,
      [](gpointer data) -> gboolean {
        auto& self = *static_cast<Agent*>(data);
        if (self.LookAfterUnconnected()) return G_SOURCE_CONTINUE;
        self.mWatchTimer = 0;
        return G_SOURCE_REMOVE;
      },
      this);
}

bool Agent::LookAfterUnconnected() {
  bool some = false;
  ActivationChanges changes;
  for (const ClientIdentity& process : mBooks->Unconnected()) {
    if (IsAlive(process)) {
      some = true;
    } else {
      mBooks->ReleaseProcess(process.pid, changes);
    }
  }
  Tell(changes);
  return some;
}

void Agent::Greet(Key key, ClientIdentity client) {
  ActivationChanges changes;
  mBooks->ReleaseFormer(client, changes);
  Tell(changes);
  mClients.Add(key, std::move(client));
}

bool Agent::IsKnown(Key key) const { return mClients.Find(key) != nullptr; }

void Agent::Forget(Key key) {
  for (const auto& [scan, control] : mRunning) {
    if (scan.first == key) control->stopped = true;
  }
  const ClientIdentity* known = mClients.Find(key);
  if (known == nullptr) return;
  const std::int64_t pid = known->pid;
  mClients.Remove(key);
  if (mClients.IsConnected(pid)) return;
  ActivationChanges changes;
  mBooks->ReleaseProcess(pid, changes);
  Tell(changes);
}

ActivationOutcome Agent::Activate(Key key, std::span<const std::uint32_t> fonts,
                                  ActivationMode mode) {
  ActivationChanges changes;
  const ActivationOutcome outcome = mBooks->Activate(fonts, mode, *mClients.Find(key), changes);
  Tell(changes);
  return outcome;
}

void Agent::Deactivate(Key key, std::span<const std::uint32_t> fonts, ActivationMode mode) {
  ActivationChanges changes;
  mBooks->Deactivate(fonts, mode, *mClients.Find(key), changes);
  Tell(changes);
}

void Agent::Declare(Key key, DeclaredDocuments documents) {
  mClients.Declare(key, std::move(documents));
}

std::vector<ActiveFont> Agent::Status() { return mBooks->Status(); }

void Agent::Stop() {
  ActivationChanges changes;
  mBooks->ReleaseAutomatic(changes);
  Tell(changes);
  // After the answer has been written.
  Later([this] { g_main_loop_quit(mLoop.get()); });
}

}  // namespace Nodrix
