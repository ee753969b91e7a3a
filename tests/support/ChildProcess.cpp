#include "support/ChildProcess.h"

#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <stdlib.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <stdexcept>

#include "support/ScratchHome.h"

ChildProcess::ChildProcess(const std::vector<std::string>& command, const std::string& output) {
  std::vector<char*> arguments;
  for (const std::string& part : command) arguments.push_back(const_cast<char*>(part.c_str()));
  arguments.push_back(nullptr);
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  if (!output.empty()) {
    posix_spawn_file_actions_addopen(&actions, 1, output.c_str(), O_WRONLY | O_CREAT | O_TRUNC,
                                     0600);
  }
  const int failure =
      posix_spawn(&mPid, arguments[0], &actions, nullptr, arguments.data(), environ);
  posix_spawn_file_actions_destroy(&actions);
  if (failure != 0) throw std::runtime_error("can't start " + command[0]);
}

ChildProcess::~ChildProcess() {
  Signal(SIGKILL);
  Wait();
}

void ChildProcess::Signal(int number) const {
  if (mPid > 0) kill(mPid, number);
}

int ChildProcess::Wait() {
  if (mPid <= 0) return -1;
  int status = 0;
  while (waitpid(mPid, &status, 0) < 0 && errno == EINTR) {
  }
  mPid = -1;
  return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
}

std::string OutputOf(const std::vector<std::string>& command) {
  char path[] = "/tmp/kestrane-output-XXXXXX";
  const int file = mkstemp(path);
  if (file < 0) throw std::runtime_error("no temporary file");
  close(file);
  ChildProcess(command, path).Wait();
  std::string text = ReadWholeFile(path);
  unlink(path);
  return text;
}
