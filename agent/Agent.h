// The agent: one per user, the single writer of the font library, the owner of the folder of
// activated fonts.
//
// Threads: main; scans run on a thread of their own and report back to it.
#pragma once

#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "agent/ActivationBooks.h"
#include "agent/AgentLock.h"
#include "agent/AgentLog.h"
#include "agent/AgentServer.h"
#include "agent/ScanQueue.h"

namespace Nodrix {

class Agent : public AgentCommands {
 public:
  // Exit codes of the program.
  enum ExitCode { eEnded = 0, eCannotStart = 1, eBadUsage = 2 };

  // Runs until it is stopped or a signal ends it. Another agent of this user that runs already is
  // no failure: what was asked for is there.
  static int Run();
  ~Agent() override;

  void Greet(Key key, ClientIdentity client) override;
  bool IsKnown(Key key) const override;
  void Forget(Key key) override;
  ActivationOutcome Activate(Key key, std::span<const std::uint32_t> fonts,
                             ActivationMode mode) override;
  void Deactivate(Key key, std::span<const std::uint32_t> fonts, ActivationMode mode) override;
  void Declare(Key key, DeclaredDocuments documents) override;
  void AddFolder(Key key, const std::string& path, std::uint32_t token, ScanAnswer answer) override;
  void RemoveFolder(const std::string& path, ScanAnswer answer) override;
  void Rescan(Key key, std::uint32_t token, ScanAnswer answer) override;
  void StopScan(Key key, std::uint32_t token) override;
  std::vector<ActiveFont> Status() override;
  void Stop() override;

 private:
  using ScanKey = std::pair<Key, std::uint32_t>;

  Agent();
  bool Open(std::string& error);
  bool Serve(std::string& error);
  void ScanSystemOnce();
  void Loop();
  void Tell(const ActivationChanges& changes);
  void TouchLater();
  void WatchUnconnected();
  bool LookAfterUnconnected();
  std::string WhyNotAFolder(const std::string& path);
  // Queues a scan; progress and answer (may be empty) go to the client on the main thread.
  void Scan(ScanKey key, std::function<void(LibraryScanner&, ScanControl&, ScanResult&)> work,
            ScanAnswer answer);
  void Finished(const ScanResult& result);
  void RemoveFolderNow(const std::string& path, const ScanAnswer& answer);
  // Work for the main thread that is dropped when the agent has gone by then.
  void Later(std::function<void()> work);

  AgentLog mLog;
  LoopOwner mLoop;
  std::unique_ptr<AgentLock> mLock;
  std::unique_ptr<LibraryStore> mStore;
  Clients mClients;
  Activator mActivator;
  std::unique_ptr<ActivationBooks> mBooks;
  std::unique_ptr<AgentServer> mServer;
  std::unique_ptr<ScanQueue> mScans;
  std::map<ScanKey, std::shared_ptr<ScanControl>> mRunning;
  std::shared_ptr<bool> mIsHere = std::make_shared<bool>(true);
  guint mTouchTimer = 0;
  guint mWatchTimer = 0;
};

}  // namespace Nodrix
