// What the tests of files share: a home, the log, and places where files can't be had or don't fit.
#pragma once

#include <gtest/gtest.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <functional>
#include <string>

#include "support/RecordingAppender.h"
#include "support/ScratchHome.h"

class FileTest : public testing::Test {
 protected:
  std::string Path(const std::string& name) const { return mHome.Path() + "/" + name; }
  // Whether the last line of the log is the record of this expression.
  bool IsRecorded(const std::string& expression) const {
    return !mLog.Lines().empty() &&
           mLog.Lines().back().find("Expression='" + expression + "'") != std::string::npos;
  }
  RecordingAppender& mLog = RecordingAppender::Install();
  ScratchHome mHome;
};

// What holds until the end of a block; empty where it can't be had.
class Until {
 public:
  explicit Until(std::function<void()> end = {}) : mEnd(std::move(end)) {}
  ~Until() {
    if (mEnd) mEnd();
  }
  Until(const Until&) = delete;
  Until& operator=(const Until&) = delete;
  explicit operator bool() const { return mEnd != nullptr; }

 private:
  std::function<void()> mEnd;
};

// A disk of a few pages on `folder`, where the rights allow one.
[[nodiscard]] inline Until SmallDisk(const std::string& folder) {
  if (unshare(CLONE_NEWNS) != 0 ||
      mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0 ||
      mount("tmpfs", folder.c_str(), "tmpfs", 0, "size=64k") != 0) {
    return Until();
  }
  return Until([folder] { umount2(folder.c_str(), MNT_DETACH); });
}

// RLIMIT_FSIZE: no file grows beyond it. RLIMIT_NOFILE: no more descriptors.
[[nodiscard]] inline Until Limited(__rlimit_resource_t resource, rlim_t most) {
  const auto handler = std::signal(SIGXFSZ, SIG_IGN);
  rlimit before{};
  getrlimit(resource, &before);
  const rlimit limit{most, before.rlim_max};
  setrlimit(resource, &limit);
  return Until([=] {
    setrlimit(resource, &before);
    std::signal(SIGXFSZ, handler);
  });
}

// Root is refused nothing, so it acts as nobody.
[[nodiscard]] inline Until AsNobody() {
  if (geteuid() != 0 || seteuid(65534) != 0) return Until();
  return Until([] {
    if (seteuid(0) != 0) std::abort();
  });
}
