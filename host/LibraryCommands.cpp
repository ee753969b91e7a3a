#include <filesystem>
#include <nlohmann/json.hpp>

#include "agent/library/LibraryReader.h"
#include "agent/library/Paths.h"
#include "host/AgentControl.h"
#include "host/Commands.h"
#include "host/Interruption.h"

namespace {

using Nodrix::CallResult;

int NoFontManager(Console& console, const std::string& error) {
  console.Error("no font manager: " + error);
  return kExitNoFontManager;
}

// Says how a call failed; true if it did not.
bool Succeeded(Console& console, CallResult result, const std::string& message) {
  switch (result) {
    case CallResult::eOk:
      return true;
    case CallResult::eGone:
      console.Error("the font manager's agent went away");
      return false;
    case CallResult::eTimedOut:
      console.Error("the font manager's agent did not answer in time");
      return false;
    case CallResult::eRefused:
      console.Error(message.empty() ? "the font manager's agent refused" : Printable(message));
      return false;
  }
  return false;
}

Nodrix::AgentClient::Progress ShowProgress(Console& console) {
  return [&console](std::uint64_t done, std::uint64_t total, const std::string& path) {
    console.Progress(done, total, Printable(std::filesystem::path(path).filename().string()));
    return Interruption::Signal() == 0;
  };
}

nlohmann::json ToJson(const Nodrix::ScanOutcome& outcome) {
  return {{"files", outcome.files},
          {"faces", outcome.faces},
          {"added", outcome.added},
          {"removed", outcome.removed},
          {"broken", outcome.broken}};
}

void PrintOutcome(Console& console, const std::string& what, const Nodrix::ScanOutcome& outcome) {
  std::string line = what + ": " + std::to_string(outcome.faces) + " fonts in " +
                     std::to_string(outcome.files) + " files, " + std::to_string(outcome.added) +
                     " new, " + std::to_string(outcome.removed) + " gone";
  if (outcome.broken > 0) line += ", " + std::to_string(outcome.broken) + " files are broken";
  console.Print(line);
}

int Ended(int exitCode) {
  return Interruption::Signal() != 0 ? 128 + Interruption::Signal() : exitCode;
}

std::unique_ptr<Nodrix::LibraryReader> OpenReader(std::string& error) {
  return Nodrix::LibraryReader::Open(Nodrix::DatabasePath(), error);
}

}  // namespace

int Commands::LibraryAdd(Console& console, const std::vector<std::string>& folders, bool json) {
  const Interruption interruption;
  int exitCode = kExitOk;
  std::vector<std::string> paths;
  for (const std::string& folder : folders) {
    std::error_code error;
    const auto path = std::filesystem::canonical(folder, error);
    if (error || !std::filesystem::is_directory(path, error)) {
      console.Error(Printable(folder) + (error ? ": no such folder" : " is no folder"));
      exitCode = kExitUsage;
    } else {
      paths.push_back(path.string());
    }
  }
  if (paths.empty()) return exitCode;
  std::string error;
  const auto agent = AgentControl::ConnectOrStart(error);
  if (!agent) return NoFontManager(console, error);
  nlohmann::json list = nlohmann::json::array();
  for (const std::string& path : paths) {
    Nodrix::ScanOutcome outcome;
    std::string message;
    const CallResult result = agent->AddFolder(path, ShowProgress(console), outcome, message);
    console.EndProgress();
    if (Interruption::Signal() != 0) break;
    if (!Succeeded(console, result, message)) return kExitNoFontManager;
    if (json) {
      nlohmann::json entry = ToJson(outcome);
      entry["folder"] = path;
      list.push_back(std::move(entry));
    } else {
      PrintOutcome(console, Printable(path), outcome);
    }
  }
  if (json) console.PrintJson(list);
  return Ended(exitCode);
}

int Commands::LibraryScan(Console& console, bool json) {
  const Interruption interruption;
  std::string error;
  const auto agent = AgentControl::ConnectOrStart(error);
  if (!agent) return NoFontManager(console, error);
  Nodrix::ScanOutcome outcome;
  std::string message;
  const CallResult result = agent->Rescan(ShowProgress(console), outcome, message);
  console.EndProgress();
  if (Interruption::Signal() == 0) {
    if (!Succeeded(console, result, message)) return kExitNoFontManager;
    if (json) {
      console.PrintJson(ToJson(outcome));
    } else {
      PrintOutcome(console, "library", outcome);
    }
  }
  return Ended(kExitOk);
}

int Commands::LibraryList(Console& console, bool json) {
  std::string error;
  auto reader = OpenReader(error);
  if (!reader) {
    // The agent makes the library at its first start.
    if (!AgentControl::ConnectOrStart(error)) return NoFontManager(console, error);
    reader = OpenReader(error);
    if (!reader) return NoFontManager(console, error);
  }
  const auto folders = reader->Folders();
  const auto totals = reader->CountAll();
  const auto broken = reader->BrokenFiles();
  if (json) {
    nlohmann::json list = nlohmann::json::array();
    for (const auto& folder : folders) {
      list.push_back({{"path", folder.path},
                      {"files", folder.files},
                      {"faces", folder.faces},
                      {"broken", folder.broken},
                      {"missing", folder.missing}});
    }
    nlohmann::json brokenList = nlohmann::json::array();
    for (const auto& file : broken) {
      brokenList.push_back({{"path", file.path}, {"error", file.error}});
    }
    console.PrintJson(nlohmann::json{{"folders", std::move(list)},
                                     {"broken", std::move(brokenList)},
                                     {"faces", totals.libraryFaces},
                                     {"systemFaces", totals.faces - totals.libraryFaces},
                                     {"activeFaces", totals.activeFaces}});
    return kExitOk;
  }
  for (const auto& folder : folders) {
    std::string line = Printable(folder.path) + ": " + std::to_string(folder.faces) + " fonts in " +
                       std::to_string(folder.files) + " files";
    if (folder.missing) line += " (the folder is not there)";
    console.Print(line);
  }
  for (const auto& file : broken) {
    console.Print("  broken: " + Printable(file.path) + ": " + Printable(file.error));
  }
  if (folders.empty()) console.Say("the library is empty; add a folder with: library add FOLDER");
  return kExitOk;
}

int Commands::AgentStart(Console& console, bool json) {
  std::string error;
  const auto agent = AgentControl::ConnectOrStart(error);
  if (!agent) return NoFontManager(console, error);
  if (!AgentControl::RecordLaunchInformation(error)) console.Error(error);
  if (json) {
    console.PrintJson(nlohmann::json{{"running", true}, {"pid", agent->Info().pid}});
  } else {
    console.Print("the agent runs as process " + std::to_string(agent->Info().pid));
  }
  return kExitOk;
}

int Commands::AgentStop(Console& console, bool json) {
  std::string error;
  const auto agent = AgentControl::Connect(error);
  if (agent && !Succeeded(console, agent->Stop(), {})) return kExitNoFontManager;
  if (json) {
    console.PrintJson(nlohmann::json{{"running", false}, {"stopped", agent != nullptr}});
  } else {
    console.Print(agent ? "the agent has stopped" : "no agent was running");
  }
  return kExitOk;
}

int Commands::AgentStatus(Console& console, bool json) {
  std::string error;
  const auto agent = AgentControl::Connect(error);
  if (json) {
    nlohmann::json status = {{"running", agent != nullptr}};
    if (agent) {
      status["pid"] = agent->Info().pid;
      status["version"] = agent->Info().version;
    }
    console.PrintJson(status);
  } else if (agent) {
    console.Print("the agent runs as process " + std::to_string(agent->Info().pid) + ", version " +
                  agent->Info().version);
  } else {
    console.Print("the agent is not running: " + error);
  }
  return agent ? kExitOk : kExitNoFontManager;
}

int Commands::Status(Console& console, bool json) {
  std::string error;
  const auto agent = AgentControl::Connect(error);
  std::vector<Nodrix::ActiveFont> fonts;
  if (agent && !Succeeded(console, agent->Status(fonts), {})) return kExitNoFontManager;
  if (json) {
    nlohmann::json list = nlohmann::json::array();
    for (const auto& font : fonts) {
      list.push_back({{"databaseID", font.fontID},
                      {"postScriptName", font.postScriptName},
                      {"path", font.path},
                      {"mode", font.mode == Nodrix::ActivationMode::eUser ? "user" : "automatic"},
                      {"pid", font.pid},
                      {"client", font.client},
                      {"documents", font.documents}});
    }
    console.PrintJson(list);
  } else {
    for (const auto& font : fonts) {
      std::string line = Printable(font.postScriptName);
      line += font.mode == Nodrix::ActivationMode::eUser
                  ? "  turned on by hand"
                  : "  for process " + std::to_string(font.pid);
      for (const std::string& document : font.documents) line += "  " + Printable(document);
      console.Print(line);
    }
    if (!agent) {
      console.Say("the agent is not running, so no font is active through it");
    } else if (fonts.empty()) {
      console.Say("no font is active through the font manager");
    }
  }
  return agent ? kExitOk : kExitNoFontManager;
}
