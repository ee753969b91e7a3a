// The agent's program. It runs in the foreground of its own process; who starts it detaches it.
#include <sys/stat.h>

#include <csignal>
#include <cstdio>
#include <string_view>

#include "agent/Agent.h"

namespace {

constexpr char kUsage[] =
    "usage: Nodrix [--foreground] [--version] [--help]\n"
    "The font manager's agent of this user. Ends with 0, also when the agent is running already;\n"
    "1 if it can't start; 2 for a wrong argument.\n";

}  // namespace

int main(int count, char** arguments) {
  for (int i = 1; i < count; ++i) {
    const std::string_view argument = arguments[i];
    if (argument == "--version") {
      std::printf("Nodrix %s\n", AUTOACTIVATION_VERSION);
      return Nodrix::Agent::eEnded;
    }
    if (argument == "--help") {
      std::fputs(kUsage, stdout);
      return Nodrix::Agent::eEnded;
    }
    if (argument != "--foreground") {
      std::fprintf(stderr, "Nodrix: unknown argument %s\n%s", arguments[i], kUsage);
      return Nodrix::Agent::eBadUsage;
    }
  }
  // What it writes is the user's own; the folder of activated fonts is opened explicitly.
  umask(077);
  std::signal(SIGPIPE, SIG_IGN);
  return Nodrix::Agent::Run();
}
