#include "frameworks/FakeAgent.h"

#include <algorithm>
#include <chrono>
#include <stdexcept>
#include <utility>

#include "agent/library/AgentInterface.h"
#include "agent/library/Paths.h"

namespace {

GVariant* IDs(const std::vector<std::uint32_t>& ids) {
  return g_variant_new_fixed_array(G_VARIANT_TYPE_UINT32, ids.data(), ids.size(), sizeof(guint32));
}

std::string Describe(const gchar* method, GVariant* arguments) {
  gchar* const text = g_variant_print(arguments, FALSE);
  std::string call = std::string(method) + text;
  g_free(text);
  return call;
}

}  // namespace

FakeAgent::FakeAgent() {
  std::string error;
  const std::string address = Nodrix::SocketAddress(error);
  const std::string path = Nodrix::SocketPath(error);
  Nodrix::MakeFolder(path.substr(0, path.rfind('/')), error);
  gchar* const guid = g_dbus_generate_guid();
  g_main_context_push_thread_default(mContext);
  mServer =
      g_dbus_server_new_sync(address.c_str(), G_DBUS_SERVER_FLAGS_AUTHENTICATION_REQUIRE_SAME_USER,
                             guid, nullptr, nullptr, nullptr);
  g_free(guid);
  if (mServer == nullptr) throw std::runtime_error("no socket at " + address);
  g_signal_connect(mServer, "new-connection", G_CALLBACK(OnClient), this);
  g_dbus_server_start(mServer);
  g_main_context_pop_thread_default(mContext);
  mThread = std::thread([this] { Serve(); });
}

FakeAgent::~FakeAgent() {
  g_dbus_server_stop(mServer);
  g_main_loop_quit(mLoop);
  mThread.join();
  for (GDBusConnection* client : mClients) {
    g_dbus_connection_close_sync(client, nullptr, nullptr);
    g_object_unref(client);
  }
  g_object_unref(mServer);
  g_main_loop_unref(mLoop);
  g_main_context_unref(mContext);
}

void FakeAgent::Serve() {
  g_main_context_push_thread_default(mContext);
  g_main_loop_run(mLoop);
  g_main_context_pop_thread_default(mContext);
}

gboolean FakeAgent::OnClient(GDBusServer*, GDBusConnection* client, gpointer self) {
  auto* const agent = static_cast<FakeAgent*>(self);
  static GDBusNodeInfo* const node =
      g_dbus_node_info_new_for_xml(Nodrix::kAgentIntrospection, nullptr);
  static const GDBusInterfaceVTable table{OnCall, nullptr, nullptr, {}};
  g_dbus_connection_register_object(client, Nodrix::kAgentObjectPath, node->interfaces[0], &table,
                                    self, nullptr, nullptr);
  const std::lock_guard lock(agent->mMutex);
  agent->mClients.push_back(static_cast<GDBusConnection*>(g_object_ref(client)));
  return TRUE;
}

void FakeAgent::OnCall(GDBusConnection*, const gchar*, const gchar*, const gchar*,
                       const gchar* method, GVariant* arguments, GDBusMethodInvocation* invocation,
                       gpointer self) {
  auto* const agent = static_cast<FakeAgent*>(self);
  const std::string_view name(method);
  const std::lock_guard lock(agent->mMutex);
  agent->mCalls.push_back(Describe(method, arguments));
  if (name == "Hello") {
    g_dbus_method_invocation_return_value(invocation, g_variant_new("(xsi)", gint64{1}, "1", 1));
  } else if (agent->mAnswers.refuses) {
    g_dbus_method_invocation_return_dbus_error(invocation, "com.vendrel.Nodrix.Refused", "no");
  } else if (name == "Activate") {
    g_dbus_method_invocation_return_value(invocation,
                                          g_variant_new("(@au@au@au)", IDs(agent->mAnswers.failed),
                                                        IDs(agent->mAnswers.restricted), IDs({})));
  } else {
    g_dbus_method_invocation_return_value(invocation, nullptr);
  }
}

void FakeAgent::SetAnswers(Answers answers) {
  const std::lock_guard lock(mMutex);
  mAnswers = std::move(answers);
}

void FakeAgent::Emit(const char* signal, const std::vector<std::uint32_t>& fonts) {
  const std::lock_guard lock(mMutex);
  for (GDBusConnection* client : mClients) {
    GVariant* const arguments = fonts.empty() ? nullptr : g_variant_new("(@au)", IDs(fonts));
    g_dbus_connection_emit_signal(client, nullptr, Nodrix::kAgentObjectPath,
                                  Nodrix::kAgentInterfaceName, signal, arguments, nullptr);
  }
}

void FakeAgent::AwaitClients(std::size_t count) {
  for (;;) {
    {
      const std::lock_guard lock(mMutex);
      const auto said = std::count_if(mCalls.begin(), mCalls.end(), [](const std::string& call) {
        return call.starts_with("Hello");
      });
      if (static_cast<std::size_t>(said) >= count) return;
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(2));
  }
}

std::vector<std::string> FakeAgent::Calls() {
  const std::lock_guard lock(mMutex);
  return mCalls;
}
