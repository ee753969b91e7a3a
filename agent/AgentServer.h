// The agent's socket: takes connections of the same user, turns messages into commands and answers
// into messages. What is malformed is answered with an error of D-Bus.
//
// Threads: main.
#pragma once

#include <gio/gio.h>

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "agent/Clients.h"
#include "agent/library/AgentClient.h"
#include "agent/library/GLibOwners.h"

namespace Nodrix {

// What the agent does for its clients.
class AgentCommands {
 public:
  using Key = Clients::Key;
  struct ScanReply {
    bool refused = false;
    ScanOutcome outcome;
    std::string message;  // the reason of a refusal, or a remark
  };
  using ScanAnswer = std::function<void(const ScanReply&)>;

  virtual ~AgentCommands() = default;
  virtual void Greet(Key key, ClientIdentity client) = 0;
  virtual bool IsKnown(Key key) const = 0;
  virtual void Forget(Key key) = 0;
  virtual ActivationOutcome Activate(Key key, std::span<const std::uint32_t> fonts,
                                     ActivationMode mode) = 0;
  virtual void Deactivate(Key key, std::span<const std::uint32_t> fonts, ActivationMode mode) = 0;
  virtual void Declare(Key key, DeclaredDocuments documents) = 0;
  // Answers later, on the main thread.
  virtual void AddFolder(Key key, const std::string& path, std::uint32_t token,
                         ScanAnswer answer) = 0;
  virtual void RemoveFolder(const std::string& path, ScanAnswer answer) = 0;
  virtual void Rescan(Key key, std::uint32_t token, ScanAnswer answer) = 0;
  virtual void StopScan(Key key, std::uint32_t token) = 0;
  virtual std::vector<ActiveFont> Status() = 0;
  virtual void Stop() = 0;
};

class AgentServer {
 public:
  explicit AgentServer(AgentCommands& commands) : mCommands(commands) {}
  ~AgentServer();
  AgentServer(const AgentServer&) = delete;
  AgentServer& operator=(const AgentServer&) = delete;

  bool Start(const std::string& address, std::string& error);
  // A signal to every client; without fonts it has no argument.
  void Emit(const char* signal);
  void Emit(const char* signal, std::span<const std::uint32_t> fonts);
  void EmitProgress(Clients::Key key, std::uint32_t token, std::uint64_t done, std::uint64_t all,
                    const std::string& path);
  // Waits until everything is sent and closes.
  void Close();

 private:
  static gboolean OnConnection(GDBusServer*, GDBusConnection* connection, gpointer data);
  static void OnClosed(GDBusConnection* connection, gboolean, GError*, gpointer data);
  static void OnCall(GDBusConnection* connection, const gchar*, const gchar*, const gchar*,
                     const gchar* method, GVariant* arguments, GDBusMethodInvocation* invocation,
                     gpointer data);
  void Hello(GDBusConnection* connection, GVariant* arguments, GDBusMethodInvocation* invocation);
  void Turn(GDBusConnection* connection, bool on, GVariant* arguments,
            GDBusMethodInvocation* invocation);
  void Declare(GDBusConnection* connection, GVariant* arguments, GDBusMethodInvocation* invocation);
  void Status(GDBusMethodInvocation* invocation);
  void Send(GDBusConnection* connection, const char* signal, GVariant* arguments);
  void SendToAll(const char* signal, GVariant* arguments);

  AgentCommands& mCommands;
  GObjectOwner<GDBusServer> mServer;
  std::map<GDBusConnection*, GObjectOwner<GDBusConnection>> mConnections;
};

}  // namespace Nodrix
