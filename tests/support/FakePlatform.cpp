#include "support/FakePlatform.h"

#include <algorithm>
#include <cmath>
#include <filesystem>

#include "foundation/WallClock.h"

namespace {

std::int64_t Microseconds(double seconds) {
  return static_cast<std::int64_t>(std::llround(seconds * 1e6));
}

}  // namespace

struct FakeRunLoop::Entry {
  std::int64_t due;
  std::int64_t interval;
  Mode mode;
  std::function<void()> callback;
};

class FakeRunLoop::FakeTimer : public RunLoop::Timer {
 public:
  FakeTimer(FakeRunLoop& loop, std::shared_ptr<Entry> entry)
      : mLoop(loop), mEntry(std::move(entry)) {}
  ~FakeTimer() override { std::erase(mLoop.mEntries, mEntry); }
  void SetNextFire(double seconds) override { mEntry->due = mLoop.mNow + Microseconds(seconds); }

 private:
  FakeRunLoop& mLoop;
  std::shared_ptr<Entry> mEntry;
};

FakeRunLoop::FakeRunLoop() {
  WallClock::SetForTest([this] { return NowMilliseconds(); });
}

FakeRunLoop::~FakeRunLoop() { WallClock::SetForTest({}); }

std::int64_t FakeRunLoop::NowMilliseconds() const { return mNow / 1000; }

std::size_t FakeRunLoop::TimerCount() const { return mEntries.size(); }

std::unique_ptr<RunLoop::Timer> FakeRunLoop::CreateRepeatingTimer(double firstFire, double interval,
                                                                  Mode mode,
                                                                  std::function<void()> callback) {
  auto entry = std::make_shared<Entry>();
  entry->due = mNow + Microseconds(firstFire);
  entry->interval = std::max<std::int64_t>(Microseconds(interval), 1000);
  entry->mode = mode;
  entry->callback = std::move(callback);
  mEntries.push_back(entry);
  return std::make_unique<FakeTimer>(*this, std::move(entry));
}

std::shared_ptr<FakeRunLoop::Entry> FakeRunLoop::NextDue(std::int64_t target, bool modal) const {
  std::shared_ptr<Entry> next;
  for (const auto& entry : mEntries) {
    if (entry->due > target || (modal && entry->mode == Mode::eDefault)) continue;
    if (!next || entry->due < next->due) next = entry;
  }
  return next;
}

void FakeRunLoop::Advance(double seconds) {
  const std::int64_t target = mNow + Microseconds(seconds);
  while (const std::shared_ptr<Entry> entry = NextDue(target, mDepth > 0)) {
    mNow = std::max(mNow, entry->due);
    entry->due += entry->interval;
    if (entry->due <= mNow) entry->due = mNow + entry->interval;
    ++mDepth;
    entry->callback();
    --mDepth;
  }
  mNow = std::max(mNow, target);
}

void FakeRunLoop::AdvanceModal(double seconds) {
  ++mDepth;
  Advance(seconds);
  --mDepth;
}

class FakeSleepWake::FakeSubscription : public SleepWakeObserver::Subscription {
 public:
  FakeSubscription(FakeSleepWake& observer, int id) : mObserver(observer), mID(id) {}
  ~FakeSubscription() override { mObserver.mSubscriptions.erase(mID); }

 private:
  FakeSleepWake& mObserver;
  int mID;
};

std::unique_ptr<SleepWakeObserver::Subscription> FakeSleepWake::Subscribe(
    std::function<void()> willSleep, std::function<void()> didWake) {
  const int id = mNextID++;
  mSubscriptions[id] = {std::move(willSleep), std::move(didWake)};
  return std::make_unique<FakeSubscription>(*this, id);
}

void FakeSleepWake::Sleep() {
  for (const auto& [id, handlers] : std::map(mSubscriptions)) {
    if (mSubscriptions.contains(id)) handlers.willSleep();
  }
}

void FakeSleepWake::Wake() {
  for (const auto& [id, handlers] : std::map(mSubscriptions)) {
    if (mSubscriptions.contains(id)) handlers.didWake();
  }
}

std::optional<std::string> FakeBundle::Value(const std::string& key) const {
  const auto found = values.find(key);
  if (found == values.end()) return std::nullopt;
  return found->second;
}

std::string FakeBundle::ExecutablePath() const {
  return path + "/Contents/Linux/" + std::filesystem::path(path).stem().string();
}

std::string FakeBundle::LocalizedString(const std::string& table, const std::string& key,
                                        const std::string& defaultValue) const {
  const auto texts = strings.find(table);
  if (texts == strings.end()) return defaultValue;
  const auto text = texts->second.find(key);
  return text == texts->second.end() ? defaultValue : text->second;
}

void* FakeBundle::LookUpSymbol(const char* name) {
  const auto found = symbols.find(name);
  return found == symbols.end() ? nullptr : found->second;
}

FakeBundle& FakeBundles::Add(const std::string& path, const std::string& identifier) {
  mBundles.push_back(std::make_shared<FakeBundle>());
  FakeBundle& bundle = *mBundles.back();
  bundle.path = path;
  bundle.identifier = identifier;
  return bundle;
}

FakeBundle& FakeBundles::AddLoaded(const std::string& path, const std::string& identifier) {
  FakeBundle& bundle = Add(path, identifier);
  bundle.loaded = true;
  return bundle;
}

FakeBundle& FakeBundles::Plugin() {
  if (!mPlugin) {
    mPlugin = &AddLoaded(kPluginPath, kPluginBundleID);
    mPlugin->values = {{"CFBundleShortVersionString", "22.0.1"}, {"HostApp", "PhotoshopCC2021"}};
  }
  return *mPlugin;
}

std::shared_ptr<Bundle> FakeBundles::FindByIdentifier(const std::string& identifier) {
  for (const auto& bundle : mBundles) {
    if (bundle->loaded && bundle->identifier == identifier) return bundle;
  }
  return nullptr;
}

std::shared_ptr<Bundle> FakeBundles::Open(const std::string& path) {
  openedPaths.push_back(path);
  for (const auto& bundle : mBundles) {
    if (bundle->path != path) continue;
    bundle->loaded = true;
    return bundle;
  }
  return nullptr;
}

bool FakeBundles::IsLoaded(const std::string& identifier) {
  return FindByIdentifier(identifier) != nullptr;
}

bool FakeProcess::GetPathToRunningProcessExe(const std::string& name, std::string& folder) {
  const auto found = running.find(name);
  if (found == running.end()) return false;
  folder = found->second;
  return true;
}

bool FakeProcess::LaunchDetached(const std::string& path,
                                 const std::vector<std::string>& arguments) {
  const Launch launch{path, arguments, false};
  launches.push_back(launch);
  if (!launchSucceeds) return false;
  if (onLaunch) onLaunch(launch);
  return true;
}

int FakeProcess::LaunchAndWait(const std::string& path, const std::vector<std::string>& arguments) {
  const Launch launch{path, arguments, true};
  launches.push_back(launch);
  if (!launchSucceeds) return -1;
  if (onLaunch) onLaunch(launch);
  return exitStatus;
}

bool FakeFontLookup::IsVisible(const std::string& postScriptName) {
  questions.push_back(postScriptName);
  return visible.contains(postScriptName);
}
