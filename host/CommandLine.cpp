#include "host/CommandLine.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <functional>
#include <iostream>
#include <sstream>

#include "host/Commands.h"

namespace {

constexpr const char* kAbout =
    "Automatic font activation without a screen: finds the fonts that documents ask for, finds "
    "them in "
    "the font library, and turns them on for every application.";

// "-" stands for names from standard input, one a line.
std::vector<std::string> ExpandNames(const std::vector<std::string>& names) {
  std::vector<std::string> expanded;
  for (const std::string& name : names) {
    if (name != "-") {
      expanded.push_back(name);
      continue;
    }
    for (std::string line; std::getline(std::cin, line);) {
      if (!line.empty()) expanded.push_back(line);
    }
  }
  return expanded;
}

struct Arguments {
  std::vector<std::string> names;
  std::vector<std::string> command;
  std::string key;
  std::string value;
  bool json = false;
};

using Action = std::function<int(Console&)>;

CLI::App* AddCommand(CLI::App& parent, const char* name, const char* description,
                     Arguments& arguments) {
  CLI::App* command = parent.add_subcommand(name, description);
  command->add_flag("--json", arguments.json, "Print JSON");
  return command;
}

void AddFiles(CLI::App* command, Arguments& arguments) {
  command->add_option("FILE", arguments.names, "Documents; - reads names from standard input")
      ->required();
}

void DefineDocumentCommands(CLI::App& app, Arguments& a, Action& action) {
  CLI::App* fonts = AddCommand(app, "fonts", "Name the fonts that documents ask for", a);
  AddFiles(fonts, a);
  fonts->callback([&] {
    action = [&](Console& console) {
      return Commands::Fonts(console, ExpandNames(a.names), a.json);
    };
  });
  CLI::App* check = AddCommand(app, "check", "Tell what an open would do with each font", a);
  AddFiles(check, a);
  check->callback([&] {
    action = [&](Console& console) {
      return Commands::Check(console, ExpandNames(a.names), a.json);
    };
  });
  CLI::App* open =
      AddCommand(app, "open",
                 "Open documents and turn their fonts on, until interrupted or while a "
                 "command runs: open FILE... -- COMMAND...",
                 a);
  AddFiles(open, a);
  open->callback([&] {
    action = [&](Console& console) {
      return Commands::Open(console, ExpandNames(a.names), a.command, a.json);
    };
  });
}

void DefineLibraryCommands(CLI::App& app, Arguments& a, Action& action) {
  CLI::App* library = app.add_subcommand("library", "The font library");
  library->require_subcommand(1);
  CLI::App* add = AddCommand(*library, "add", "Add folders of fonts", a);
  add->add_option("FOLDER", a.names, "Folders; - reads names from standard input")->required();
  add->callback([&] {
    action = [&](Console& console) {
      return Commands::LibraryAdd(console, ExpandNames(a.names), a.json);
    };
  });
  AddCommand(*library, "list", "List the folders and what is broken in them", a)->callback([&] {
    action = [&](Console& console) { return Commands::LibraryList(console, a.json); };
  });
  AddCommand(*library, "scan", "Look for what is new or gone", a)->callback([&] {
    action = [&](Console& console) { return Commands::LibraryScan(console, a.json); };
  });
  CLI::App* agent = app.add_subcommand("agent", "The font manager's agent");
  agent->require_subcommand(1);
  AddCommand(*agent, "start", "Start it", a)->callback([&] {
    action = [&](Console& console) { return Commands::AgentStart(console, a.json); };
  });
  AddCommand(*agent, "stop", "Give automatic activations back and stop it", a)->callback([&] {
    action = [&](Console& console) { return Commands::AgentStop(console, a.json); };
  });
  AddCommand(*agent, "status", "Is it running", a)->callback([&] {
    action = [&](Console& console) { return Commands::AgentStatus(console, a.json); };
  });
  AddCommand(app, "status", "Tell what is active and for which document", a)->callback([&] {
    action = [&](Console& console) { return Commands::Status(console, a.json); };
  });
}

void DefinePreferences(CLI::App& app, Arguments& a, Action& action) {
  CLI::App* preferences = AddCommand(app, "preferences", "Read and write preferences", a);
  preferences->add_option("KEY", a.key, "The preference");
  CLI::Option* value = preferences->add_option("VALUE", a.value, "Its new value");
  preferences->callback([&, value] {
    const bool hasValue = value->count() > 0;
    action = [&, hasValue](Console& console) {
      return Commands::Preferences(console, a.key, a.value, hasValue, a.json);
    };
  });
}

}  // namespace

int RunCommandLine(std::vector<std::string> arguments) {
  Arguments parsed;
  Action action;
  // What stands behind the first "--" of an open is another program's business.
  const auto separator = std::find(arguments.begin(), arguments.end(), "--");
  if (!arguments.empty() && arguments.front() == "open" && separator != arguments.end()) {
    parsed.command.assign(separator + 1, arguments.end());
    arguments.erase(separator, arguments.end());
  }
  CLI::App app(kAbout, "kestrane");
  app.set_version_flag("--version", AUTOACTIVATION_VERSION);
  app.require_subcommand(1);
  app.footer(
      "Exit codes: 0 all is well; 1 a font is missing, shadowed or a choice is open; 2 bad usage;\n"
      "3 a document that can't be read or written; 4 no font manager; 128+n after signal n.");
  DefineDocumentCommands(app, parsed, action);
  DefineLibraryCommands(app, parsed, action);
  DefinePreferences(app, parsed, action);
  std::reverse(arguments.begin(), arguments.end());
  try {
    app.parse(arguments);
  } catch (const CLI::Success& success) {
    return app.exit(success);
  } catch (const CLI::ParseError& error) {
    std::cerr << "kestrane: " << error.what() << "; see kestrane --help\n";
    return kExitUsage;
  }
  Console console;
  return action(console);
}
