#include "agent/AgentServer.h"

#include <unistd.h>

#include <string_view>

#include "agent/library/AgentInterface.h"

namespace Nodrix {
namespace {

// The description of the interface, made once and kept to the end of the process.
GDBusInterfaceInfo* Interface() {
  static GDBusNodeInfo* node = g_dbus_node_info_new_for_xml(kAgentIntrospection, nullptr);
  return g_dbus_node_info_lookup_interface(node, kAgentInterfaceName);
}

std::vector<std::uint32_t> IDs(GVariant* array) {
  gsize count = 0;
  const auto* ids = static_cast<const std::uint32_t*>(
      g_variant_get_fixed_array(array, &count, sizeof(std::uint32_t)));
  return {ids, ids + count};
}

GVariant* IDArray(std::span<const std::uint32_t> ids) {
  return g_variant_new_fixed_array(G_VARIANT_TYPE_UINT32, ids.data(), ids.size(),
                                   sizeof(std::uint32_t));
}

VariantOwner Child(GVariant* tuple, gsize index) {
  return VariantOwner(g_variant_get_child_value(tuple, index));
}

std::uint32_t Number(GVariant* tuple, gsize index) {
  return g_variant_get_uint32(Child(tuple, index).get());
}

void Refuse(GDBusMethodInvocation* invocation, GDBusError code, const std::string& message) {
  g_dbus_method_invocation_return_error_literal(invocation, G_DBUS_ERROR, code,
                                                ValidText(message).c_str());
}

AgentCommands::ScanAnswer AnswerTo(GDBusMethodInvocation* invocation) {
  return [invocation](const AgentCommands::ScanReply& reply) {
    if (reply.refused) return Refuse(invocation, G_DBUS_ERROR_FAILED, reply.message);
    const ScanOutcome& outcome = reply.outcome;
    g_dbus_method_invocation_return_value(
        invocation, g_variant_new("((ttttt)s)", guint64{outcome.files}, guint64{outcome.faces},
                                  guint64{outcome.added}, guint64{outcome.removed},
                                  guint64{outcome.broken}, ValidText(reply.message).c_str()));
  };
}

// The same for an answer of words alone.
AgentCommands::ScanAnswer MessageTo(GDBusMethodInvocation* invocation) {
  return [invocation](const AgentCommands::ScanReply& reply) {
    if (reply.refused) return Refuse(invocation, G_DBUS_ERROR_FAILED, reply.message);
    g_dbus_method_invocation_return_value(invocation,
                                          g_variant_new("(s)", ValidText(reply.message).c_str()));
  };
}

}  // namespace

AgentServer::~AgentServer() { Close(); }

bool AgentServer::Start(const std::string& address, std::string& error) {
  ErrorOwner failure;
  const StringOwner guid(g_dbus_generate_guid());
  mServer.reset(g_dbus_server_new_sync(address.c_str(),
                                       G_DBUS_SERVER_FLAGS_AUTHENTICATION_REQUIRE_SAME_USER,
                                       guid.get(), nullptr, nullptr, failure.Out()));
  if (!mServer) {
    error = failure.Text();
    return false;
  }
  g_signal_connect(mServer.get(), "new-connection", G_CALLBACK(OnConnection), this);
  g_dbus_server_start(mServer.get());
  return true;
}

gboolean AgentServer::OnConnection(GDBusServer*, GDBusConnection* connection, gpointer data) {
  static const GDBusInterfaceVTable kTable = {OnCall, nullptr, nullptr, {}};
  auto& self = *static_cast<AgentServer*>(data);
  if (g_dbus_connection_register_object(connection, kAgentObjectPath, Interface(), &kTable, data,
                                        nullptr, nullptr) == 0) {
    return FALSE;
  }
  g_signal_connect(connection, "closed", G_CALLBACK(OnClosed), data);
  self.mConnections[connection].reset(G_DBUS_CONNECTION(g_object_ref(connection)));
  return TRUE;
}

void AgentServer::OnClosed(GDBusConnection* connection, gboolean, GError*, gpointer data) {
  auto& self = *static_cast<AgentServer*>(data);
  self.mCommands.Forget(connection);
  self.mConnections.erase(connection);
}

void AgentServer::OnCall(GDBusConnection* connection, const gchar*, const gchar*, const gchar*,
                         const gchar* methodName, GVariant* arguments,
                         GDBusMethodInvocation* invocation, gpointer data) {
  auto& self = *static_cast<AgentServer*>(data);
  AgentCommands& commands = self.mCommands;
  const std::string_view method = methodName;
  if (method == "Hello") return self.Hello(connection, arguments, invocation);
  if (!commands.IsKnown(connection)) {
    return Refuse(invocation, G_DBUS_ERROR_ACCESS_DENIED, "Hello comes first");
  }
  if (method == "Activate" || method == "Deactivate") {
    return self.Turn(connection, method == "Activate", arguments, invocation);
  }
  if (method == "DeclareDocuments") return self.Declare(connection, arguments, invocation);
  if (method == "AddFolder") {
    return commands.AddFolder(connection, BytesOf(Child(arguments, 0).get()), Number(arguments, 1),
                              AnswerTo(invocation));
  }
  if (method == "RemoveFolder") {
    return commands.RemoveFolder(BytesOf(Child(arguments, 0).get()), MessageTo(invocation));
  }
  if (method == "Rescan") {
    return commands.Rescan(connection, Number(arguments, 0), AnswerTo(invocation));
  }
  if (method == "Status") return self.Status(invocation);
  if (method == "StopScan") {
    commands.StopScan(connection, Number(arguments, 0));
  } else if (method == "Stop") {
    commands.Stop();
  }
  g_dbus_method_invocation_return_value(invocation, nullptr);
}

void AgentServer::Hello(GDBusConnection* connection, GVariant* arguments,
                        GDBusMethodInvocation* invocation) {
  GCredentials* credentials = g_dbus_connection_get_peer_credentials(connection);
  const pid_t pid = credentials != nullptr ? g_credentials_get_unix_pid(credentials, nullptr) : -1;
  if (pid <= 0) {
    return Refuse(invocation, G_DBUS_ERROR_ACCESS_DENIED, "The process of this client is unknown");
  }
  const VariantOwner name = Child(arguments, 0);
  mCommands.Greet(connection, {pid, ProcessStart(pid), g_variant_get_string(name.get(), nullptr)});
  g_dbus_method_invocation_return_value(
      invocation, g_variant_new("(xsi)", gint64{getpid()}, AUTOACTIVATION_VERSION, kSchemaVersion));
}

void AgentServer::Turn(GDBusConnection* connection, bool on, GVariant* arguments,
                       GDBusMethodInvocation* invocation) {
  const std::vector<std::uint32_t> fonts = IDs(Child(arguments, 0).get());
  const auto mode = static_cast<ActivationMode>(Number(arguments, 1));
  if (mode != ActivationMode::eAuto && mode != ActivationMode::eUser) {
    return Refuse(invocation, G_DBUS_ERROR_INVALID_ARGS, "There is no such mode of activation");
  }
  if (!on) {
    mCommands.Deactivate(connection, fonts, mode);
    return g_dbus_method_invocation_return_value(invocation, nullptr);
  }
  const ActivationOutcome outcome = mCommands.Activate(connection, fonts, mode);
  g_dbus_method_invocation_return_value(
      invocation, g_variant_new("(@au@au@au)", IDArray(outcome.failed), IDArray(outcome.restricted),
                                IDArray(outcome.shadowed)));
}

void AgentServer::Declare(GDBusConnection* connection, GVariant* arguments,
                          GDBusMethodInvocation* invocation) {
  DeclaredDocuments documents;
  const VariantOwner rows = Child(arguments, 0);
  const gsize count = g_variant_n_children(rows.get());
  for (gsize i = 0; i < count; ++i) {
    const VariantOwner row = Child(rows.get(), i);
    documents.emplace_back(BytesOf(Child(row.get(), 0).get()), IDs(Child(row.get(), 1).get()));
  }
  mCommands.Declare(connection, std::move(documents));
  g_dbus_method_invocation_return_value(invocation, nullptr);
}

void AgentServer::Status(GDBusMethodInvocation* invocation) {
  GVariantBuilder rows;
  g_variant_builder_init(&rows, G_VARIANT_TYPE("a(usayuxsaay)"));
  for (const ActiveFont& font : mCommands.Status()) {
    GVariantBuilder documents;
    g_variant_builder_init(&documents, G_VARIANT_TYPE("aay"));
    for (const std::string& path : font.documents) {
      g_variant_builder_add_value(&documents, g_variant_new_bytestring(path.c_str()));
    }
    g_variant_builder_add(
        &rows, "(us@ayuxsaay)", guint32{font.fontID}, ValidText(font.postScriptName).c_str(),
        g_variant_new_bytestring(font.path.c_str()), static_cast<guint32>(font.mode),
        gint64{font.pid}, ValidText(font.client).c_str(), &documents);
  }
  g_dbus_method_invocation_return_value(invocation, g_variant_new("(a(usayuxsaay))", &rows));
}

void AgentServer::Send(GDBusConnection* connection, const char* signal, GVariant* arguments) {
  g_dbus_connection_emit_signal(connection, nullptr, kAgentObjectPath, kAgentInterfaceName, signal,
                                arguments, nullptr);
}

void AgentServer::SendToAll(const char* signal, GVariant* arguments) {
  const VariantOwner kept(arguments != nullptr ? g_variant_ref_sink(arguments) : nullptr);
  for (const auto& [connection, owner] : mConnections) Send(connection, signal, kept.get());
}

void AgentServer::Emit(const char* signal) { SendToAll(signal, nullptr); }

void AgentServer::Emit(const char* signal, std::span<const std::uint32_t> fonts) {
  if (!fonts.empty()) SendToAll(signal, g_variant_new("(@au)", IDArray(fonts)));
}

void AgentServer::EmitProgress(Clients::Key key, std::uint32_t token, std::uint64_t done,
                               std::uint64_t all, const std::string& path) {
  for (const auto& [connection, owner] : mConnections) {
    if (connection != key) continue;
    Send(connection, "ScanProgress",
         g_variant_new("(utt@ay)", token, guint64{done}, guint64{all},
                       g_variant_new_bytestring(path.c_str())));
  }
}

void AgentServer::Close() {
  if (mServer) g_dbus_server_stop(mServer.get());
  mServer.reset();
  for (const auto& [connection, owner] : mConnections) {
    g_signal_handlers_disconnect_by_data(connection, this);
    g_dbus_connection_flush_sync(connection, nullptr, nullptr);
    g_dbus_connection_close_sync(connection, nullptr, nullptr);
  }
  mConnections.clear();
}

}  // namespace Nodrix
