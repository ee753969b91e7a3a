// A client of the agent in a process of its own, for tests with more than one. It turns a font on
// ("activate ID") or has a document with it ("declare ID"), says "ready" and stays until it is
// killed.
#include <unistd.h>

#include <iostream>
#include <string>

#include "agent/library/AgentClient.h"

using namespace Nodrix;

int main(int count, char** arguments) {
  if (count != 3) return 2;
  const std::string task = arguments[1];
  const auto font = static_cast<std::uint32_t>(std::stoul(arguments[2]));
  std::string error;
  const auto client = AgentClient::Connect("other", 30'000, error);
  if (!client) {
    std::cerr << error << '\n';
    return 1;
  }
  ActivationOutcome outcome;
  const CallResult result = task == "activate"
                                ? client->Activate({font}, ActivationMode::eAuto, outcome)
                                : client->DeclareDocuments({{"/other.psd", {font}}});
  if (result != CallResult::eOk) return 1;
  std::cout << "ready" << std::endl;
  for (;;) pause();
}
