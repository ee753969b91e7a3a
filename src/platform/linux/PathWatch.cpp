#include "platform/linux/PathWatch.h"

#include <sys/inotify.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <utility>

namespace {

constexpr std::int64_t kSecond = 1'000'000'000;  // nanoseconds
// File systems stamp with the kernel's clock tick, 10 ms at the coarsest; one that keeps no
// fraction counts in steps of two seconds at most.
constexpr std::int64_t kClockTick = 10'000'000;

constexpr std::uint32_t kChanges = IN_CREATE | IN_DELETE | IN_MOVED_FROM | IN_MOVED_TO |
                                   IN_CLOSE_WRITE | IN_ATTRIB | IN_DELETE_SELF | IN_MOVE_SELF;

std::int64_t Nanoseconds(const timespec& time) {
  return std::int64_t{time.tv_sec} * kSecond + time.tv_nsec;
}

std::int64_t MonotonicNow() {
  timespec now{};
  clock_gettime(CLOCK_MONOTONIC, &now);
  return Nanoseconds(now);
}

timespec ModificationTime(const std::string& path) {
  struct stat info {};
  return stat(path.c_str(), &info) == 0 ? info.st_mtim : timespec{};
}

// Could a change after the reading started carry this very time? A time in the future comes from
// another machine's clock or from somebody's hand.
bool IsUnsettled(const timespec& modified, const timespec& started, const timespec& ended) {
  const std::int64_t time = Nanoseconds(modified);
  const std::int64_t tick = modified.tv_nsec == 0 ? 2 * kSecond : kClockTick;
  return time >= Nanoseconds(started) - tick && time <= Nanoseconds(ended) + kSecond;
}

}  // namespace

PathWatch::~PathWatch() { CloseNotifications(); }

timespec PathWatch::Now() {
  timespec now{};
  clock_gettime(CLOCK_REALTIME, &now);
  return now;
}

// Notifications begin before the times are taken, so that nothing falls between the two.
void PathWatch::Start(const std::set<std::string>& paths, const timespec& readingStarted) {
  mExisting.clear();
  mMissing.clear();
  for (const std::string& path : paths) {
    auto& list = Nanoseconds(ModificationTime(path)) == 0 ? mMissing : mExisting;
    list.push_back({path, {}});
  }
  const bool anyCame = RenewNotifications();
  for (Path& path : mExisting) path.modified = ModificationTime(path.name);
  mLastFullLook = MonotonicNow();
  const timespec ended = Now();
  mChanged = anyCame || std::any_of(mExisting.begin(), mExisting.end(), [&](const Path& path) {
               return IsUnsettled(path.modified, readingStarted, ended);
             });
}

bool PathWatch::HasChanged() {
  if (mChanged) return true;
  if (mNotifications >= 0) {
    mChanged = ReadNotifications() || !IsUnchanged(mMissing);
    if (mChanged || MonotonicNow() - mLastFullLook < kSecond) return mChanged;
  }
  mChanged = !IsUnchanged(mMissing) || !IsUnchanged(mExisting);
  mLastFullLook = MonotonicNow();
  return mChanged;
}

// Half a set of notifications would be worse than none. The old ones are read when the new ones are
// in place, so that nothing falls between the two; true if any had come.
bool PathWatch::RenewNotifications() {
  int fresh = inotify_init1(IN_NONBLOCK | IN_CLOEXEC);
  std::multimap<int, std::string> names;
  for (const Path& path : mExisting) {
    if (fresh < 0) break;
    const int watch = inotify_add_watch(fresh, path.name.c_str(), kChanges);
    names.emplace(watch, path.name);
    if (watch >= 0) continue;
    close(fresh);
    fresh = -1;
  }
  const bool any = mNotifications >= 0 && ReadNotifications();
  CloseNotifications();
  mNotifications = fresh;
  mNamesByWatch = std::move(names);
  return any;
}

void PathWatch::CloseNotifications() {
  if (mNotifications >= 0) close(mNotifications);
  mNotifications = -1;
}

// All that came; true if anything did.
bool PathWatch::ReadNotifications() {
  alignas(inotify_event) std::array<char, 4096> buffer;
  bool any = false;
  for (;;) {
    const ssize_t length = read(mNotifications, buffer.data(), buffer.size());
    if (length <= 0) return any;
    any = true;
    for (std::size_t at = 0; at + sizeof(inotify_event) <= static_cast<std::size_t>(length);) {
      inotify_event event;
      std::memcpy(&event, buffer.data() + at, sizeof event);
      at += sizeof event + event.len;
      NoteWritten(event.wd, event.mask);
    }
  }
}

void PathWatch::NoteWritten(int watch, std::uint32_t mask) {
  const bool wereLost = (mask & IN_Q_OVERFLOW) != 0;
  if (!wereLost && (mask & IN_CLOSE_WRITE) == 0) return;
  for (const auto& [number, name] : mNamesByWatch) {
    if (wereLost || number == watch) mWritten.insert(name);
  }
}

std::set<std::string> PathWatch::TakeWritten() {
  if (mNotifications >= 0 && ReadNotifications()) mChanged = true;
  return std::exchange(mWritten, {});
}

bool PathWatch::IsUnchanged(const std::vector<Path>& paths) {
  return std::all_of(paths.begin(), paths.end(), [](const Path& path) {
    return Nanoseconds(ModificationTime(path.name)) == Nanoseconds(path.modified);
  });
}
