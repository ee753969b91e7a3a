#include <gio/gio.h>
#include <unistd.h>

#include <algorithm>

#include <nlohmann/json.hpp>
#include <optional>

#include "host/Commands.h"
#include "host/Interruption.h"
#include "host/PluginSession.h"

namespace {

int WorseOf(int a, int b) { return std::max(a, b); }

// Reads the documents, telling of those that can't be read.
std::vector<DocumentFonts> ReadAll(Console& console, const std::vector<std::string>& files,
                                   int& exitCode) {
  std::vector<DocumentFonts> documents;
  std::size_t done = 0;
  for (const std::string& file : files) {
    if (Interruption::Signal() != 0) break;
    console.Progress(done++, files.size(), Printable(file));
    documents.push_back(ReadDocumentFonts(file));
    const DocumentFonts& document = documents.back();
    if (!document.error.empty()) {
      console.Error(Printable(file) + ": " + document.error);
      exitCode = kExitDocument;
    }
  }
  console.EndProgress();
  return documents;
}

// Documents have text for names in the host's model: other bytes lead nowhere there.
void RefuseNameThatIsNoText(Console& console, DocumentFonts& document, int& exitCode) {
  if (!document.error.empty() || document.nameIsText) return;
  document.error = "can't be opened under a name that is no UTF-8";
  console.Error(Printable(document.document) + ": " + document.error);
  exitCode = kExitDocument;
}

int Interrupted(int exitCode) {
  return Interruption::Signal() != 0 ? 128 + Interruption::Signal() : exitCode;
}

void PrintReports(Console& console, const std::vector<FontReport>& reports, bool json) {
  if (json) {
    nlohmann::json list = nlohmann::json::array();
    for (const FontReport& report : reports) list.push_back(ToJson(report));
    console.PrintJson(list);
    return;
  }
  for (const FontReport& report : reports) {
    if (!report.document.error.empty()) continue;
    for (const std::string& line : ToLines(report)) console.Print(line);
    if (report.document.fonts.empty()) console.Print("  no fonts are named in it");
  }
}

int ExitCodeOf(const std::vector<FontReport>& reports) {
  int exitCode = kExitOk;
  for (const FontReport& report : reports) {
    if (!report.document.error.empty()) {
      exitCode = WorseOf(exitCode, kExitDocument);
    } else if (report.LeavesQuestions()) {
      exitCode = WorseOf(exitCode, kExitOpenQuestion);
    }
  }
  return exitCode;
}

bool AnyReadable(const std::vector<DocumentFonts>& documents) {
  return std::any_of(documents.begin(), documents.end(),
                     [](const DocumentFonts& document) { return document.error.empty(); });
}

// Starts the plug-in and lets `look` report on every document that can be read, as far as nothing
// interrupts. Nothing, with the reason said, if there is no font manager to work with.
template <typename Look>
std::optional<std::vector<FontReport>> ReportAll(Console& console, PluginSession& session,
                                                 const std::vector<DocumentFonts>& documents,
                                                 Look look) {
  std::string error;
  if (AnyReadable(documents) && Interruption::Signal() == 0 && !session.Start(error)) {
    if (Interruption::Signal() == 0) console.Error("no font manager: " + error);
    return std::nullopt;
  }
  std::vector<FontReport> reports;
  for (const DocumentFonts& document : documents) {
    const bool isLookedAt = document.error.empty() && Interruption::Signal() == 0;
    reports.push_back(isLookedAt ? look(document) : FontReport{document, {}});
  }
  return reports;
}

void CommandEnded(GObject* source, GAsyncResult* result, gpointer data) {
  g_subprocess_wait_finish(G_SUBPROCESS(source), result, nullptr);
  *static_cast<bool*>(data) = true;
}

// Runs the command in our place, with our standard streams, while the main loop turns. -1 if it
// can't be started.
int RunCommand(Console& console, const std::vector<std::string>& command) {
  std::vector<const char*> arguments;
  arguments.reserve(command.size() + 1);
  for (const std::string& argument : command) arguments.push_back(argument.c_str());
  arguments.push_back(nullptr);
  GSubprocessLauncher* launcher = g_subprocess_launcher_new(G_SUBPROCESS_FLAGS_STDIN_INHERIT);
  g_subprocess_launcher_take_stdout_fd(launcher, dup(console.OutputDescriptor()));
  GError* error = nullptr;
  GSubprocess* process = g_subprocess_launcher_spawnv(launcher, arguments.data(), &error);
  g_object_unref(launcher);
  if (process == nullptr) {
    console.Error(Printable(command.front()) + " can't be started: " + error->message);
    g_error_free(error);
    return -1;
  }
  bool ended = false;
  g_subprocess_wait_async(process, nullptr, CommandEnded, &ended);
  Interruption::RunLoopUntil([&ended] { return ended; });
  if (!ended) {
    g_subprocess_send_signal(process, Interruption::Signal());
    while (!ended) g_main_context_iteration(nullptr, TRUE);
  }
  const int status = g_subprocess_get_if_exited(process) ? g_subprocess_get_exit_status(process)
                                                         : 128 + g_subprocess_get_term_sig(process);
  g_object_unref(process);
  return status;
}

}  // namespace

int Commands::Fonts(Console& console, const std::vector<std::string>& files, bool json) {
  const Interruption interruption;
  int exitCode = kExitOk;
  const std::vector<DocumentFonts> documents = ReadAll(console, files, exitCode);
  if (json) {
    nlohmann::json list = nlohmann::json::array();
    for (const DocumentFonts& document : documents) {
      nlohmann::json fonts = nlohmann::json::array();
      for (const DocumentFont& font : document.fonts) {
        fonts.push_back({{"postScriptName", font.postScriptName}, {"sources", font.sources}});
      }
      nlohmann::json entry = {{"document", document.document}, {"fonts", std::move(fonts)}};
      if (!document.error.empty()) entry["error"] = document.error;
      list.push_back(std::move(entry));
    }
    console.PrintJson(list);
    return Interrupted(exitCode);
  }
  for (const DocumentFonts& document : documents) {
    if (!document.error.empty()) continue;
    if (files.size() > 1) console.Print(Printable(document.document));
    for (const DocumentFont& font : document.fonts) {
      console.Print((files.size() > 1 ? "  " : "") + Printable(font.postScriptName));
    }
    if (document.fonts.empty()) console.Say(Printable(document.document) + " names no fonts");
  }
  return Interrupted(exitCode);
}

int Commands::Check(Console& console, const std::vector<std::string>& files, bool json) {
  const Interruption interruption;
  int exitCode = kExitOk;
  const std::vector<DocumentFonts> documents = ReadAll(console, files, exitCode);
  PluginSession session;
  const auto reports = ReportAll(console, session, documents, CheckDocument);
  if (!reports) return Interrupted(kExitNoFontManager);
  PrintReports(console, *reports, json);
  return Interrupted(WorseOf(exitCode, ExitCodeOf(*reports)));
}

int Commands::Open(Console& console, const std::vector<std::string>& files,
                   const std::vector<std::string>& command, bool json) {
  const Interruption interruption;
  int exitCode = kExitOk;
  std::vector<DocumentFonts> documents = ReadAll(console, files, exitCode);
  for (DocumentFonts& document : documents) RefuseNameThatIsNoText(console, document, exitCode);
  PluginSession session;
  const auto reports = ReportAll(console, session, documents, [&](const DocumentFonts& document) {
    return session.Open(document);
  });
  if (!reports) return Interrupted(kExitNoFontManager);
  PrintReports(console, *reports, json);
  exitCode = WorseOf(exitCode, ExitCodeOf(*reports));
  if (!AnyReadable(documents) || Interruption::Signal() != 0) return Interrupted(exitCode);
  if (!command.empty()) {
    const int status = RunCommand(console, command);
    if (status < 0) return kExitUsage;
    return Interrupted(status != 0 ? status : exitCode);
  }
  if (console.ErrorIsTerminal()) {
    console.Say("the documents are open and their fonts active; press Ctrl-C to close them");
  }
  Interruption::RunLoopUntil([] { return false; });
  return Interrupted(exitCode);
}
