#include "support/RunProgram.h"

#include <fcntl.h>
#include <grp.h>
#include <poll.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <stdexcept>
#include <thread>

namespace {

using Clock = std::chrono::steady_clock;
constexpr uid_t kNobody = 65534;
constexpr auto kOutputBound = std::chrono::seconds(30);
constexpr auto kEndBound = std::chrono::seconds(200);

struct Pipe {
  int ends[2];
  Pipe() {
    if (pipe2(ends, O_CLOEXEC) != 0) throw std::runtime_error("no pipe");
  }
};

// Between fork and exec: other threads of the test may hold locks, so nothing is allocated here.
[[noreturn]] void RunChild(char* const* argv, bool asUser, const Pipe& in, const Pipe& out,
                           const Pipe& error) {
  dup2(in.ends[0], STDIN_FILENO);
  dup2(out.ends[1], STDOUT_FILENO);
  dup2(error.ends[1], STDERR_FILENO);
  setsid();
  if (asUser && geteuid() == 0) {
    if (setgroups(0, nullptr) != 0 || setgid(kNobody) != 0 || setuid(kNobody) != 0) _exit(126);
  }
  execvp(argv[0], argv);
  _exit(127);
}

// Appends what can be read now; false at the end of the stream.
bool ReadAvailable(int& descriptor, std::string& text) {
  char buffer[16384];
  const ssize_t count = read(descriptor, buffer, sizeof buffer);
  if (count > 0) {
    text.append(buffer, static_cast<std::size_t>(count));
    return true;
  }
  close(descriptor);
  descriptor = -1;
  return false;
}

}  // namespace

Program::Program(const std::vector<std::string>& arguments, const Options& options) {
  std::vector<char*> argv;
  for (const std::string& argument : arguments) argv.push_back(const_cast<char*>(argument.c_str()));
  argv.push_back(nullptr);
  const Pipe in, out, error;
  mPid = fork();
  if (mPid < 0) throw std::runtime_error("no fork");
  if (mPid == 0) RunChild(argv.data(), options.asUser, in, out, error);
  close(in.ends[0]);
  close(out.ends[1]);
  close(error.ends[1]);
  mOutput = out.ends[0];
  mError = error.ends[0];
  // Small enough for a pipe's buffer, so that this can't block.
  const ssize_t ignored = write(in.ends[1], options.input.data(), options.input.size());
  static_cast<void>(ignored);
  close(in.ends[1]);
}

Program::~Program() {
  if (mPid > 0) {
    kill(mPid, SIGKILL);
    waitpid(mPid, nullptr, 0);
  }
  if (mOutput >= 0) close(mOutput);
  if (mError >= 0) close(mError);
}

void Program::Signal(int signal) const {
  if (mPid > 0) kill(mPid, signal);
}

bool Program::Pump(int milliseconds) {
  pollfd streams[] = {{mOutput, POLLIN, 0}, {mError, POLLIN, 0}};
  if (mOutput < 0 && mError < 0) return false;
  if (poll(streams, 2, milliseconds) <= 0) return true;
  if (mOutput >= 0 && streams[0].revents != 0) ReadAvailable(mOutput, mResult.output);
  if (mError >= 0 && streams[1].revents != 0) ReadAvailable(mError, mResult.error);
  return mOutput >= 0 || mError >= 0;
}

bool Program::WaitForOutput(const std::string& text) {
  const auto bound = Clock::now() + kOutputBound;
  while (mResult.output.find(text) == std::string::npos) {
    if (Clock::now() > bound || !Pump(100)) return mResult.output.find(text) != std::string::npos;
  }
  return true;
}

ProgramResult Program::Wait() {
  if (mPid < 0) return mResult;
  const auto bound = Clock::now() + kEndBound;
  int status = 0;
  bool ended = false;
  while (!ended) {
    if (!Pump(50)) std::this_thread::sleep_for(std::chrono::milliseconds(5));
    ended = waitpid(mPid, &status, WNOHANG) == mPid;
    if (!ended && Clock::now() > bound) {
      kill(mPid, SIGKILL);
      ended = waitpid(mPid, &status, 0) == mPid;
    }
  }
  mPid = -1;
  // Grandchildren may hold the streams open: take what is there and no more.
  for (int i = 0; i < 4 && Pump(20); ++i) {
  }
  mResult.exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
  return mResult;
}

ProgramResult RunProgram(const std::vector<std::string>& arguments, const std::string& input) {
  return Program(arguments, {input, false}).Wait();
}
