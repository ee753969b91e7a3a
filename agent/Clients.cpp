#include "agent/Clients.h"

#include <algorithm>
#include <fstream>
#include <iterator>
#include <sstream>

namespace Nodrix {
namespace {

bool Uses(const std::vector<std::uint32_t>& fonts, std::uint32_t face) {
  return std::ranges::find(fonts, face) != fonts.end();
}

}  // namespace

std::uint64_t ProcessStart(std::int64_t pid) {
  if (pid <= 0) return 0;
  std::ifstream in("/proc/" + std::to_string(pid) + "/stat");
  const std::string text{std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
  // The second field is the program's name in parentheses, which may hold anything.
  const auto name = text.rfind(')');
  if (name == std::string::npos) return 0;
  std::istringstream fields(text.substr(name + 1));
  std::string state;
  fields >> state;
  if (state.empty() || state == "Z" || state == "X") return 0;
  // From field 3, the state, to field 22.
  std::string skipped;
  for (int field = 4; field < 22; ++field) fields >> skipped;
  std::uint64_t start = 0;
  fields >> start;
  return fields ? start : 0;
}

const ClientIdentity* Clients::Find(Key key) const {
  const auto found = mClients.find(key);
  return found != mClients.end() ? &found->second.identity : nullptr;
}

void Clients::Declare(Key key, DeclaredDocuments documents) {
  if (const auto found = mClients.find(key); found != mClients.end()) {
    found->second.documents = std::move(documents);
  }
}

bool Clients::IsConnected(std::int64_t pid) const {
  return std::ranges::any_of(mClients,
                             [pid](const auto& entry) { return entry.second.identity.pid == pid; });
}

const ClientIdentity* Clients::UserOf(std::span<const std::uint32_t> faces,
                                      std::int64_t except) const {
  for (const auto& [key, client] : mClients) {
    if (client.identity.pid == except) continue;
    for (const auto& [path, fonts] : client.documents) {
      for (const std::uint32_t face : faces) {
        if (Uses(fonts, face)) return &client.identity;
      }
    }
  }
  return nullptr;
}

std::vector<std::string> Clients::DocumentsOf(std::int64_t pid, std::uint32_t face) const {
  std::vector<std::string> documents;
  for (const auto& [key, client] : mClients) {
    if (client.identity.pid != pid) continue;
    for (const auto& [path, fonts] : client.documents) {
      if (Uses(fonts, face)) documents.push_back(path);
    }
  }
  return documents;
}

}  // namespace Nodrix
