// One private connection to the agent, synchronous. Every call has a bound; a call that runs out of
// time is not the same as an agent that has gone.
//
// Threads: calls from one thread; signals arrive on the main context that was the thread's default
// when the connection was made, see Subscribe.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "agent/library/LibraryReader.h"

namespace Nodrix {

// How a call went.
enum class CallResult {
  eOk,
  eGone,      // no agent, or it went away during the call
  eTimedOut,  // it is there and did not answer within the bound
  eRefused    // it answered with an error; the text says which
};

struct ActivationOutcome {
  std::vector<std::uint32_t> failed;      // could not be turned on
  std::vector<std::uint32_t> restricted;  // this user may not use them
  std::vector<std::uint32_t> shadowed;    // on, but a font of the same name comes first
};

struct ScanOutcome {
  std::uint64_t files = 0, faces = 0;    // there are now, broken files included
  std::uint64_t added = 0, removed = 0;  // files that are new, and that have gone
  std::uint64_t broken = 0;              // files recorded with an error
};

// One font that is on for one client.
struct ActiveFont {
  std::uint32_t fontID = 0;
  std::string postScriptName;
  std::string path;  // the activated file
  ActivationMode mode = ActivationMode::eAuto;
  std::int64_t pid = 0;  // 0 for the user
  std::string client;
  std::vector<std::string> documents;
};

struct AgentInfo {
  std::int64_t pid = 0;
  std::string version;
  int schemaVersion = 0;
};

enum class AgentSignal {
  eFontActivated,
  eFontDeactivated,
  eFontMissing,
  eLibraryChanged,
  eShuttingDown
};

class AgentClient {
 public:
  // Waits up to `milliseconds` for the agent's socket. Null with a reason if there is no agent.
  static std::unique_ptr<AgentClient> Connect(const std::string& clientName, int milliseconds,
                                              std::string& error);
  ~AgentClient();
  AgentClient(const AgentClient&) = delete;
  AgentClient& operator=(const AgentClient&) = delete;

  // False once the agent closed the connection.
  bool IsConnected() const;
  const AgentInfo& Info() const;

  CallResult Activate(const std::vector<std::uint32_t>& fontIDs, ActivationMode mode,
                      ActivationOutcome& outcome);
  // Gives this client's (or the user's) activations back.
  CallResult Deactivate(const std::vector<std::uint32_t>& fontIDs, ActivationMode mode);
  // Which fonts the documents of this process use, so that the status can tell and a font that
  // another client gives back stays on for us. Replaces what was declared before.
  CallResult DeclareDocuments(
      const std::vector<std::pair<std::string, std::vector<std::uint32_t>>>& documents);
  // Scans; `progress` (may be empty) is called with files done, files in all and the current path.
  // False from it stops the scan; what was found so far stays.
  using Progress = std::function<bool(std::uint64_t, std::uint64_t, const std::string&)>;
  CallResult AddFolder(const std::string& path, const Progress& progress, ScanOutcome& outcome,
                       std::string& message);
  CallResult RemoveFolder(const std::string& path, std::string& message);
  CallResult Rescan(const Progress& progress, ScanOutcome& outcome, std::string& message);
  CallResult Status(std::vector<ActiveFont>& fonts);
  // Asks the agent to give all activations of automatic activation back and to end.
  CallResult Stop();

  // Calls `handler` with a signal and its font ID (0 without one), on the main context that was the
  // connecting thread's default. Replaces an earlier handler.
  void Subscribe(std::function<void(AgentSignal, std::uint32_t)> handler);

 private:
  struct Connection;
  explicit AgentClient(std::unique_ptr<Connection> connection);
  std::unique_ptr<Connection> mConnection;
};

}  // namespace Nodrix
