// The agent's library commands: folders and scans.
#include <sys/stat.h>

#include <climits>
#include <cstdlib>

#include "agent/Agent.h"
#include "agent/library/Paths.h"

namespace Nodrix {
namespace {

// Between two progress reports, in microseconds.
constexpr gint64 kReportPause = 50'000;

bool IsWithin(const std::string& path, const std::string& folder) {
  return path == folder || folder == "/" || path.starts_with(folder + "/");
}

// The path without links, or as it is when it is not there (any more).
std::string Resolved(const std::string& path) {
  char buffer[PATH_MAX];
  if (realpath(path.c_str(), buffer) != nullptr) return buffer;
  std::string plain = path;
  while (plain.size() > 1 && plain.ends_with('/')) plain.pop_back();
  return plain;
}

AgentCommands::ScanReply Refusal(std::string message) { return {true, {}, std::move(message)}; }

}  // namespace

void Agent::Scan(ScanKey key, std::function<void(LibraryScanner&, ScanControl&, ScanResult&)> work,
                 ScanAnswer answer) {
  const auto control = std::make_shared<ScanControl>();
  control->progress = [this, key, last = gint64{0}](std::uint64_t done, std::uint64_t all,
                                                    const std::string& path) mutable {
    const gint64 now = g_get_monotonic_time();
    if (key.first == nullptr || (done < all && now - last < kReportPause)) return;
    last = now;
    Later([this, key, done, all, path] {
      mServer->EmitProgress(key.first, key.second, done, all, path);
    });
  };
  mRunning[key] = control;
  mScans->Add(control, [this, key, work = std::move(work), answer = std::move(answer)](
                           LibraryScanner& scanner, ScanControl& running) {
    ScanResult result;
    work(scanner, running, result);
    Later([this, key, result = std::move(result), answer] {
      mRunning.erase(key);
      Finished(result);
      if (!answer) return;
      if (result.failed) return answer(Refusal("The font library could not be written"));
      const std::string remark =
          result.systemFiles == 0
              ? std::string()
              : std::to_string(result.systemFiles) +
                    " files there are system fonts already and stay that: they are always active";
      answer({false, result.outcome, remark});
    });
  });
}

void Agent::Finished(const ScanResult& result) {
  ActivationChanges changes;
  mBooks->ReleaseSystemFiles(changes);
  changes.missing = result.missingFaces;
  if (result.failed) changes.problems.push_back("a scan could not write to the font library");
  Tell(changes);
  mServer->Emit("LibraryChanged");
}

std::string Agent::WhyNotAFolder(const std::string& path) {
  struct stat info {};
  if (path.empty() || path[0] != '/') return "A library folder needs an absolute path: " + path;
  if (stat(path.c_str(), &info) != 0) return "There is no folder " + path;
  if (!S_ISDIR(info.st_mode)) return "This is not a folder: " + path;
  if (IsWithin(path, Resolved(mActivator.Folder()))) {
    return "The folder of activated fonts can't be part of the library: " + path;
  }
  for (const StoredFolder& folder : mStore->Folders()) {
    if (folder.path != path && IsWithin(path, folder.path)) {
      return path + " is part of the library already, with " + folder.path;
    }
  }
  return {};
}

void Agent::AddFolder(Key key, const std::string& path, std::uint32_t token, ScanAnswer answer) {
  const std::string resolved = path.starts_with('/') ? Resolved(path) : path;
  const std::string reason = WhyNotAFolder(resolved);
  if (!reason.empty()) return answer(Refusal(reason));
  Scan(
      {key, token},
      [this, resolved](LibraryScanner& scanner, ScanControl& control, ScanResult& result) {
        const std::int64_t id = mStore->AddFolder(resolved);
        result.failed = id == 0;
        if (id != 0) scanner.ScanFolder({id, resolved}, control, result);
      },
      std::move(answer));
}

void Agent::Rescan(Key key, std::uint32_t token, ScanAnswer answer) {
  Scan(
      {key, token},
      [this](LibraryScanner& scanner, ScanControl& control, ScanResult& result) {
        scanner.ScanSystem(control, result);
        // What counts is the user's library.
        result.outcome = {};
        for (const StoredFolder& folder : mStore->Folders()) {
          scanner.ScanFolder(folder, control, result);
        }
      },
      std::move(answer));
}

void Agent::StopScan(Key key, std::uint32_t token) {
  if (const auto found = mRunning.find({key, token}); found != mRunning.end()) {
    found->second->stopped = true;
  }
}

void Agent::RemoveFolder(const std::string& path, ScanAnswer answer) {
  // In its turn: a scan that is running may be writing to this folder.
  mScans->Add(std::make_shared<ScanControl>(),
              [this, path, answer = std::move(answer)](LibraryScanner&, ScanControl&) {
                Later([this, path, answer] { RemoveFolderNow(path, answer); });
              });
}

void Agent::RemoveFolderNow(const std::string& path, const ScanAnswer& answer) {
  const std::string resolved = Resolved(path);
  for (const StoredFolder& folder : mStore->Folders()) {
    if (folder.path != resolved && folder.path != path) continue;
    ActivationChanges changes;
    mBooks->ReleaseFolder(folder.id, changes);
    const bool removed = mStore->RemoveFolder(folder.id);
    Tell(changes);
    mServer->Emit("LibraryChanged");
    return answer(removed ? ScanReply{} : Refusal("The font library could not be written"));
  }
  answer(Refusal("This folder is not in the library: " + path));
}

}  // namespace Nodrix
