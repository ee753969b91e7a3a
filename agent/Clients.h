// Who is connected, and which fonts their documents use.
//
// Threads: main.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

namespace Nodrix {

// A process, so that a number that was given anew is not taken for the one that had it before.
struct ClientIdentity {
  std::int64_t pid = 0;     // 0 for the user
  std::uint64_t start = 0;  // field 22 of /proc/<pid>/stat
  std::string name;
};

// When this process began, in the kernel's ticks; 0 if there is none, or only its remains.
std::uint64_t ProcessStart(std::int64_t pid);
inline bool IsAlive(const ClientIdentity& client) {
  return client.start != 0 && ProcessStart(client.pid) == client.start;
}

using DeclaredDocuments = std::vector<std::pair<std::string, std::vector<std::uint32_t>>>;

class Clients {
 public:
  using Key = const void*;  // a connection

  void Add(Key key, ClientIdentity identity) { mClients[key] = {std::move(identity), {}}; }
  // Null for a connection that did not say its name.
  const ClientIdentity* Find(Key key) const;
  void Declare(Key key, DeclaredDocuments documents);
  void Remove(Key key) { mClients.erase(key); }

  bool IsConnected(std::int64_t pid) const;
  // A connected process, other than `except`, with a document that uses one of these faces; null if
  // there is none.
  const ClientIdentity* UserOf(std::span<const std::uint32_t> faces, std::int64_t except) const;
  // The documents of this process that use the face.
  std::vector<std::string> DocumentsOf(std::int64_t pid, std::uint32_t face) const;

 private:
  struct Client {
    ClientIdentity identity;
    DeclaredDocuments documents;
  };
  std::unordered_map<Key, Client> mClients;
};

}  // namespace Nodrix
