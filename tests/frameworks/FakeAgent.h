// An agent that answers as it is told, on the socket of the scratch home and on a thread of its
// own.
#pragma once

#include <gio/gio.h>

#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

class FakeAgent {
 public:
  FakeAgent();
  // Gone without a word: every connection is cut and the socket is removed.
  ~FakeAgent();
  FakeAgent(const FakeAgent&) = delete;
  FakeAgent& operator=(const FakeAgent&) = delete;

  // To every client, with fonts if there are any.
  void Emit(const char* signal, const std::vector<std::uint32_t>& fonts = {});
  // Waits until so many clients have connected since the start.
  void AwaitClients(std::size_t count);
  std::vector<std::string> Calls();

  // What the next commands answer.
  struct Answers {
    std::vector<std::uint32_t> failed;
    std::vector<std::uint32_t> restricted;
    bool refuses = false;
  };
  void SetAnswers(Answers answers);

 private:
  static gboolean OnClient(GDBusServer*, GDBusConnection* client, gpointer self);
  static void OnCall(GDBusConnection*, const gchar*, const gchar*, const gchar*,
                     const gchar* method, GVariant* arguments, GDBusMethodInvocation* invocation,
                     gpointer self);
  void Serve();

  GMainContext* mContext = g_main_context_new();
  GMainLoop* mLoop = g_main_loop_new(mContext, FALSE);
  GDBusServer* mServer = nullptr;
  std::mutex mMutex;  // guards the next three
  std::vector<GDBusConnection*> mClients;
  std::vector<std::string> mCalls;
  Answers mAnswers;
  std::thread mThread;
};
