#include "frameworks/plugin-interface/Facade.h"

#include <sys/stat.h>
#include <unistd.h>

#include <string>

#include "agent/library/Database.h"
#include "agent/library/Paths.h"
#include "foundation/ErrorCodes.h"
#include "frameworks/plugin-interface/ClientName.h"

namespace {

// Milliseconds to wait for the agent's socket.
constexpr int kQuickWait = 50;     // is anybody there?
constexpr int kCommandWait = 500;  // a command without a connection
constexpr int kRelaunchWait = 5000;

constexpr std::uint32_t kReplyTimeout = MakeErrorCode(0x00100E, 2);  // GIPCClient::kReplyTimeout

}  // namespace

PluginFacade& PluginFacade::Instance() {
  static PluginFacade* const instance = new PluginFacade;  // parked for the process's life
  return *instance;
}

Nodrix::LibraryReader* PluginFacade::Reader() {
  const std::string path = Nodrix::DatabasePath();
  struct stat info {};
  if (stat(path.c_str(), &info) != 0) {
    mReader.reset();
    return nullptr;
  }
  if (mReader && (info.st_dev != mReaderDevice || info.st_ino != mReaderInode)) mReader.reset();
  if (!mReader) {
    std::string ignored;
    mReader = Nodrix::LibraryReader::Open(path, ignored);
    mReaderDevice = info.st_dev;
    mReaderInode = info.st_ino;
  }
  return mReader.get();
}

PluginFacade::Schema PluginFacade::CheckSchema() {
  const std::string path = Nodrix::DatabasePath();
  if (access(path.c_str(), F_OK) != 0) return Schema::eFits;
  std::string ignored;
  const auto database = Nodrix::Database::Open(path, Nodrix::Database::Access::eRead, ignored);
  if (!database) return Schema::eUnreadable;
  Nodrix::Query question = database->Ask("PRAGMA user_version");
  if (!question.Next()) return Schema::eUnreadable;
  // 0 is a file that the agent has just made and not filled yet.
  const std::int64_t version = question.Integer(0);
  return version == 0 || version == Nodrix::kSchemaVersion ? Schema::eFits : Schema::eDiffers;
}

bool PluginFacade::Connect(int milliseconds) {
  if (mClient && mClient->IsConnected()) return true;
  mClient.reset();
  std::string ignored;
  mClient = Nodrix::AgentClient::Connect(ClientName(), milliseconds, ignored);
  if (mClient) mAwaitAgent = false;
  return mClient != nullptr;
}

Nodrix::AgentClient* PluginFacade::Client() {
  const int wait = mAwaitAgent ? kRelaunchWait : kCommandWait;
  Connect(wait);
  mAwaitAgent = false;
  return mClient.get();
}

bool PluginFacade::IsAgentRunning() { return Connect(kQuickWait); }

std::uint32_t PluginFacade::CodeOf(Nodrix::CallResult result) {
  switch (result) {
    case Nodrix::CallResult::eOk:
      return CoreErrorCodes::kSuccess;
    case Nodrix::CallResult::eGone:
      mClient.reset();
      return kPluginInterface_ServiceUnavailable;
    case Nodrix::CallResult::eTimedOut:
      return kReplyTimeout;
    case Nodrix::CallResult::eRefused:
      break;
  }
  return CoreErrorCodes::kError;
}

std::optional<Nodrix::FontRow> PluginFacade::Font(Nodrix::LibraryReader& reader,
                                                  std::uint32_t fontID) const {
  auto row = reader.FontByID(fontID, getpid());
  if (row && row->rawActivationState == kRawActivationState_Inactive && mLocalFonts.Has(fontID)) {
    row->rawActivationState = kRawActivationState_Preview;
  }
  return row;
}

void PluginFacade::Reset() {
  mReader.reset();
  if (mClient && !mClient->IsConnected()) mClient.reset();
  mAwaitAgent = mClient == nullptr;
  mNotifications.Reconnect();
}

void PluginFacade::Disconnect() {
  mClient.reset();
  mReader.reset();
}
