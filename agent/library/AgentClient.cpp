#include "agent/library/AgentClient.h"

#include <span>

#include "agent/library/AgentInterface.h"
#include "agent/library/GLibOwners.h"
#include "agent/library/Paths.h"

namespace Nodrix {
namespace {

// Bounds of calls in milliseconds. A scan has none: it ends with the connection.
constexpr int kQuickCall = 10'000;
constexpr int kActivationCall = 120'000;
constexpr int kScanCall = G_MAXINT;
// Between two attempts to reach the socket of an agent that is starting.
constexpr gulong kConnectPauseMicroseconds = 20'000;

GVariant* IDArray(std::span<const std::uint32_t> ids) {
  return g_variant_new_fixed_array(G_VARIANT_TYPE_UINT32, ids.data(), ids.size(),
                                   sizeof(std::uint32_t));
}

std::vector<std::uint32_t> IDsAt(GVariant* tuple, gsize index) {
  const VariantOwner array(g_variant_get_child_value(tuple, index));
  gsize count = 0;
  const auto* ids = static_cast<const std::uint32_t*>(
      g_variant_get_fixed_array(array.get(), &count, sizeof(std::uint32_t)));
  return {ids, ids + count};
}

std::string BytesAt(GVariant* tuple, gsize index) {
  const VariantOwner child(g_variant_get_child_value(tuple, index));
  return BytesOf(child.get());
}

std::string TextAt(GVariant* tuple, gsize index) {
  const VariantOwner child(g_variant_get_child_value(tuple, index));
  return g_variant_get_string(child.get(), nullptr);
}

CallResult ResultOf(const GError* error) {
  if (error == nullptr) return CallResult::eOk;
  if (g_error_matches(error, G_IO_ERROR, G_IO_ERROR_TIMED_OUT)) return CallResult::eTimedOut;
  if (g_dbus_error_is_remote_error(error)) return CallResult::eRefused;
  return CallResult::eGone;
}

// The agent's own words of an error, without D-Bus's prefix.
std::string MessageOf(const GError* error) {
  if (error == nullptr) return {};
  GError* copy = g_error_copy(error);
  g_dbus_error_strip_remote_error(copy);
  std::string message = copy->message;
  g_error_free(copy);
  return message;
}

// A main context that is this thread's own while the object lives, so that waiting turns nothing
// of the host's.
class PrivateContext {
 public:
  PrivateContext() : mContext(g_main_context_new()), mLoop(g_main_loop_new(mContext.get(), FALSE)) {
    g_main_context_push_thread_default(mContext.get());
  }
  ~PrivateContext() { g_main_context_pop_thread_default(mContext.get()); }
  PrivateContext(const PrivateContext&) = delete;
  PrivateContext& operator=(const PrivateContext&) = delete;

  GMainContext* Context() { return mContext.get(); }
  void Run() { g_main_loop_run(mLoop.get()); }
  void Quit() { g_main_loop_quit(mLoop.get()); }

 private:
  ContextOwner mContext;
  LoopOwner mLoop;
};

// One asynchronous call that is waited for in a private context.
struct Pending {
  PrivateContext context;
  GObjectOwner<GDBusConnection> connection;
  VariantOwner reply;
  ErrorOwner error;
};

GObjectOwner<GDBusConnection> OpenConnection(const std::string& address, int milliseconds,
                                             std::string& reason) {
  Pending pending;
  const GObjectOwner<GCancellable> cancellable(g_cancellable_new());
  // An agent that took the connection and does not speak must not hold us.
  GSource* bound = g_timeout_source_new(static_cast<guint>(std::max(milliseconds, 1)));
  g_source_set_callback(
      bound,
      [](gpointer data) -> gboolean {
        g_cancellable_cancel(static_cast<GCancellable*>(data));
        return G_SOURCE_REMOVE;
      },
      cancellable.get(), nullptr);
  g_source_attach(bound, pending.context.Context());
  g_dbus_connection_new_for_address(
      address.c_str(), G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT, nullptr, cancellable.get(),
      [](GObject*, GAsyncResult* result, gpointer data) {
        auto& done = *static_cast<Pending*>(data);
        done.connection.reset(g_dbus_connection_new_for_address_finish(result, done.error.Out()));
        done.context.Quit();
      },
      &pending);
  pending.context.Run();
  g_source_destroy(bound);
  g_source_unref(bound);
  if (!pending.connection) reason = pending.error.Text();
  return std::move(pending.connection);
}

struct SignalName {
  const char* name;
  AgentSignal signal;
};
constexpr SignalName kSignals[] = {{"FontActivated", AgentSignal::eFontActivated},
                                   {"FontDeactivated", AgentSignal::eFontDeactivated},
                                   {"FontMissing", AgentSignal::eFontMissing},
                                   {"LibraryChanged", AgentSignal::eLibraryChanged},
                                   {"ShuttingDown", AgentSignal::eShuttingDown}};

}  // namespace

struct AgentClient::Connection {
  using Handler = std::function<void(AgentSignal, std::uint32_t)>;

  ~Connection();
  CallResult Call(const char* method, GVariant* arguments, int milliseconds,
                  VariantOwner* reply = nullptr, std::string* message = nullptr);
  CallResult Scan(const char* method, GVariant* arguments, std::uint32_t token,
                  const Progress& progress, ScanOutcome& outcome, std::string& message);
  static void OnSignal(GDBusConnection*, const gchar*, const gchar*, const gchar*,
                       const gchar* name, GVariant* arguments, gpointer data);

  GObjectOwner<GDBusConnection> bus;
  AgentInfo info;
  // Shared with the subscription, which may be delivering when the client goes.
  std::shared_ptr<Handler> handler = std::make_shared<Handler>();
  guint subscription = 0;
  std::uint32_t lastToken = 0;
};

AgentClient::Connection::~Connection() {
  if (!bus) return;
  if (subscription != 0) g_dbus_connection_signal_unsubscribe(bus.get(), subscription);
  g_dbus_connection_close_sync(bus.get(), nullptr, nullptr);
}

CallResult AgentClient::Connection::Call(const char* method, GVariant* arguments, int milliseconds,
                                         VariantOwner* reply, std::string* message) {
  ErrorOwner error;
  VariantOwner result(g_dbus_connection_call_sync(
      bus.get(), nullptr, kAgentObjectPath, kAgentInterfaceName, method, arguments, nullptr,
      G_DBUS_CALL_FLAGS_NONE, milliseconds, nullptr, error.Out()));
  if (message != nullptr) *message = MessageOf(error.Get());
  if (result && reply != nullptr) *reply = std::move(result);
  return ResultOf(error.Get());
}

void AgentClient::Connection::OnSignal(GDBusConnection*, const gchar*, const gchar*, const gchar*,
                                       const gchar* name, GVariant* arguments, gpointer data) {
  // A copy: the handler may replace itself.
  const Handler handler = **static_cast<std::shared_ptr<Handler>*>(data);
  if (!handler) return;
  for (const SignalName& known : kSignals) {
    if (std::string_view(known.name) != name) continue;
    if (!g_variant_is_of_type(arguments, G_VARIANT_TYPE("(au)"))) {
      handler(known.signal, 0);
      continue;
    }
    for (const std::uint32_t id : IDsAt(arguments, 0)) handler(known.signal, id);
  }
}

AgentClient::AgentClient(std::unique_ptr<Connection> connection)
    : mConnection(std::move(connection)) {}

AgentClient::~AgentClient() = default;

std::unique_ptr<AgentClient> AgentClient::Connect(const std::string& clientName, int milliseconds,
                                                  std::string& error) {
  const std::string address = SocketAddress(error);
  if (address.empty()) return nullptr;
  const gint64 end = g_get_monotonic_time() + gint64{1000} * milliseconds;
  auto connection = std::make_unique<Connection>();
  for (;;) {
    const gint64 left = (end - g_get_monotonic_time()) / 1000;
    // Even without waiting, an agent that is there has the time to answer.
    connection->bus =
        OpenConnection(address, static_cast<int>(std::max<gint64>(left, 1000)), error);
    if (connection->bus) break;
    if (left <= 0) return nullptr;
    g_usleep(kConnectPauseMicroseconds);
  }
  using SharedHandler = std::shared_ptr<Connection::Handler>;
  connection->subscription = g_dbus_connection_signal_subscribe(
      connection->bus.get(), nullptr, kAgentInterfaceName, nullptr, kAgentObjectPath, nullptr,
      G_DBUS_SIGNAL_FLAGS_NONE, Connection::OnSignal, new SharedHandler(connection->handler),
      [](gpointer data) { delete static_cast<SharedHandler*>(data); });
  VariantOwner reply;
  const CallResult result = connection->Call(
      "Hello", g_variant_new("(s)", ValidText(clientName).c_str()), kQuickCall, &reply, &error);
  if (result != CallResult::eOk) return nullptr;
  if (!g_variant_is_of_type(reply.get(), G_VARIANT_TYPE("(xsi)"))) {
    error = "the agent speaks another language";
    return nullptr;
  }
  gint64 pid = 0;
  gint32 schema = 0;
  const gchar* version = nullptr;
  g_variant_get(reply.get(), "(x&si)", &pid, &version, &schema);
  connection->info = {pid, version, schema};
  return std::unique_ptr<AgentClient>(new AgentClient(std::move(connection)));
}

bool AgentClient::IsConnected() const {
  return g_dbus_connection_is_closed(mConnection->bus.get()) == FALSE;
}

const AgentInfo& AgentClient::Info() const { return mConnection->info; }

CallResult AgentClient::Activate(const std::vector<std::uint32_t>& fontIDs, ActivationMode mode,
                                 ActivationOutcome& outcome) {
  VariantOwner reply;
  const CallResult result = mConnection->Call(
      "Activate", g_variant_new("(@auu)", IDArray(fontIDs), static_cast<guint32>(mode)),
      kActivationCall, &reply);
  if (result != CallResult::eOk) return result;
  if (!g_variant_is_of_type(reply.get(), G_VARIANT_TYPE("(auauau)"))) return CallResult::eRefused;
  outcome = {IDsAt(reply.get(), 0), IDsAt(reply.get(), 1), IDsAt(reply.get(), 2)};
  return result;
}

CallResult AgentClient::Deactivate(const std::vector<std::uint32_t>& fontIDs, ActivationMode mode) {
  return mConnection->Call("Deactivate",
                           g_variant_new("(@auu)", IDArray(fontIDs), static_cast<guint32>(mode)),
                           kActivationCall);
}

CallResult AgentClient::DeclareDocuments(
    const std::vector<std::pair<std::string, std::vector<std::uint32_t>>>& documents) {
  GVariantBuilder builder;
  g_variant_builder_init(&builder, G_VARIANT_TYPE("a(ayau)"));
  for (const auto& [path, fonts] : documents) {
    g_variant_builder_add(&builder, "(@ay@au)", g_variant_new_bytestring(path.c_str()),
                          IDArray(fonts));
  }
  return mConnection->Call("DeclareDocuments", g_variant_new("(a(ayau))", &builder), kQuickCall);
}

namespace {

// A scan that is waited for, with its progress.
struct PendingScan : Pending {
  GDBusConnection* bus = nullptr;
  std::uint32_t token = 0;
  const AgentClient::Progress* progress = nullptr;
  bool stopped = false;
};

void OnScanProgress(GDBusConnection*, const gchar*, const gchar*, const gchar*, const gchar*,
                    GVariant* arguments, gpointer data) {
  auto& scan = *static_cast<PendingScan*>(data);
  if (scan.stopped || !g_variant_is_of_type(arguments, G_VARIANT_TYPE("(uttay)"))) return;
  guint32 token = 0;
  guint64 done = 0, all = 0;
  g_variant_get(arguments, "(utt@ay)", &token, &done, &all, nullptr);
  if (token != scan.token || (*scan.progress)(done, all, BytesAt(arguments, 3))) return;
  scan.stopped = true;
  g_dbus_connection_call(scan.bus, nullptr, kAgentObjectPath, kAgentInterfaceName, "StopScan",
                         g_variant_new("(u)", token), nullptr, G_DBUS_CALL_FLAGS_NONE, kQuickCall,
                         nullptr, nullptr, nullptr);
}

}  // namespace

CallResult AgentClient::Connection::Scan(const char* method, GVariant* arguments,
                                         std::uint32_t token, const Progress& progress,
                                         ScanOutcome& outcome, std::string& message) {
  PendingScan scan;
  scan.bus = bus.get();
  scan.token = token;
  scan.progress = &progress;
  guint progressSubscription = 0;
  if (progress) {
    progressSubscription = g_dbus_connection_signal_subscribe(
        bus.get(), nullptr, kAgentInterfaceName, "ScanProgress", kAgentObjectPath, nullptr,
        G_DBUS_SIGNAL_FLAGS_NONE, OnScanProgress, &scan, nullptr);
  }
  g_dbus_connection_call(
      bus.get(), nullptr, kAgentObjectPath, kAgentInterfaceName, method, arguments,
      G_VARIANT_TYPE("((ttttt)s)"), G_DBUS_CALL_FLAGS_NONE, kScanCall, nullptr,
      [](GObject* source, GAsyncResult* result, gpointer data) {
        auto& done = *static_cast<PendingScan*>(data);
        done.reply.reset(
            g_dbus_connection_call_finish(G_DBUS_CONNECTION(source), result, done.error.Out()));
        done.context.Quit();
      },
      &scan);
  scan.context.Run();
  if (progressSubscription != 0) {
    g_dbus_connection_signal_unsubscribe(bus.get(), progressSubscription);
  }
  message = MessageOf(scan.error.Get());
  if (!scan.reply) return ResultOf(scan.error.Get());
  guint64 files = 0, faces = 0, added = 0, removed = 0, broken = 0;
  const gchar* text = nullptr;
  g_variant_get(scan.reply.get(), "((ttttt)&s)", &files, &faces, &added, &removed, &broken, &text);
  outcome = {files, faces, added, removed, broken};
  message = text;
  return CallResult::eOk;
}

CallResult AgentClient::AddFolder(const std::string& path, const Progress& progress,
                                  ScanOutcome& outcome, std::string& message) {
  const std::uint32_t token = ++mConnection->lastToken;
  return mConnection->Scan("AddFolder",
                           g_variant_new("(@ayu)", g_variant_new_bytestring(path.c_str()), token),
                           token, progress, outcome, message);
}

CallResult AgentClient::RemoveFolder(const std::string& path, std::string& message) {
  VariantOwner reply;
  const CallResult result = mConnection->Call(
      "RemoveFolder", g_variant_new("(@ay)", g_variant_new_bytestring(path.c_str())),
      kActivationCall, &reply, &message);
  if (reply && g_variant_is_of_type(reply.get(), G_VARIANT_TYPE("(s)"))) {
    message = TextAt(reply.get(), 0);
  }
  return result;
}

CallResult AgentClient::Rescan(const Progress& progress, ScanOutcome& outcome,
                               std::string& message) {
  const std::uint32_t token = ++mConnection->lastToken;
  return mConnection->Scan("Rescan", g_variant_new("(u)", token), token, progress, outcome,
                           message);
}

CallResult AgentClient::Status(std::vector<ActiveFont>& fonts) {
  fonts.clear();
  VariantOwner reply;
  const CallResult result = mConnection->Call("Status", nullptr, kQuickCall, &reply);
  if (result != CallResult::eOk) return result;
  if (!g_variant_is_of_type(reply.get(), G_VARIANT_TYPE("(a(usayuxsaay))"))) {
    return CallResult::eRefused;
  }
  const VariantOwner rows(g_variant_get_child_value(reply.get(), 0));
  const gsize count = g_variant_n_children(rows.get());
  for (gsize i = 0; i < count; ++i) {
    const VariantOwner row(g_variant_get_child_value(rows.get(), i));
    ActiveFont font;
    guint32 mode = 0;
    gint64 pid = 0;
    g_variant_get_child(row.get(), 0, "u", &font.fontID);
    font.postScriptName = TextAt(row.get(), 1);
    font.path = BytesAt(row.get(), 2);
    g_variant_get_child(row.get(), 3, "u", &mode);
    g_variant_get_child(row.get(), 4, "x", &pid);
    font.mode = static_cast<ActivationMode>(mode);
    font.pid = pid;
    font.client = TextAt(row.get(), 5);
    const VariantOwner documents(g_variant_get_child_value(row.get(), 6));
    for (gsize d = 0; d < g_variant_n_children(documents.get()); ++d) {
      font.documents.push_back(BytesAt(documents.get(), d));
    }
    fonts.push_back(std::move(font));
  }
  return result;
}

CallResult AgentClient::Stop() { return mConnection->Call("Stop", nullptr, kActivationCall); }

void AgentClient::Subscribe(std::function<void(AgentSignal, std::uint32_t)> handler) {
  *mConnection->handler = std::move(handler);
}

}  // namespace Nodrix
