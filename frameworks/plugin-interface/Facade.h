// The one instance of the client library in a process: the reader of the database, the connection
// for commands, the notification thread, the fonts shown to this process alone, and the log.
//
// Threads: [main-thread], except Log(), which locks for itself. Nothing is opened, connected or
// started before it is needed. The instance is never destroyed, since hosts end without telling.
#pragma once

#include <sys/types.h>

#include <cstdint>
#include <memory>
#include <optional>

#include "agent/library/AgentClient.h"
#include "agent/library/LibraryReader.h"
#include "frameworks/plugin-interface/LocalFonts.h"
#include "frameworks/plugin-interface/LogFile.h"
#include "frameworks/plugin-interface/NotificationThread.h"
#include "sdk/PluginInterface.h"

struct PluginFacade {
 public:
  static PluginFacade& Instance();
  PluginFacade(const PluginFacade&) = delete;
  PluginFacade& operator=(const PluginFacade&) = delete;

  // Null while there is no database that this library reads. It is opened anew after Reset, and
  // when the file was missing or has been replaced by another. Lent until the next call.
  Nodrix::LibraryReader* Reader();

  enum class Schema { eFits, eDiffers, eUnreadable };
  // A database that is not there yet fits: the agent makes it.
  static Schema CheckSchema();

  // The connection for commands, made if there is none; null if there is no agent. The first call
  // after Reset waits for an agent that is just starting.
  Nodrix::AgentClient* Client();
  // Is there an agent? Costs nothing while the connection is live, otherwise one short attempt.
  bool IsAgentRunning();
  // The code of a finished command; a connection that went away is dropped.
  std::uint32_t CodeOf(Nodrix::CallResult result);

  // A face with its raw activation state as this process sees it, previews included.
  std::optional<Nodrix::FontRow> Font(Nodrix::LibraryReader& reader, std::uint32_t fontID) const;

  // The next use opens the database and connects anew. A connection that is still live stays: the
  // agent takes back what a client activated when it leaves.
  void Reset();
  // Ends the connection for commands and closes the database.
  void Disconnect();

  LocalFonts& Local() { return mLocalFonts; }
  NotificationThread& Notifications() { return mNotifications; }
  LogFile& Log() { return mLog; }

 private:
  PluginFacade() = default;
  bool Connect(int milliseconds);

  std::unique_ptr<Nodrix::LibraryReader> mReader;
  dev_t mReaderDevice = 0;  // which file mReader has open
  ino_t mReaderInode = 0;
  std::unique_ptr<Nodrix::AgentClient> mClient;
  bool mAwaitAgent = false;  // Reset was called and nothing was connected since
  LocalFonts mLocalFonts;
  NotificationThread mNotifications;
  LogFile mLog;
};
