// A platform for tests: every port is a table that the test fills and reads, and time stands still
// until the test moves it. Making one puts it in place of the system's; its end puts the system's
// back.
//
//   FakePlatform platform;
//   platform.fonts.visible.insert("Foo-Bold");
//   auto& facade = platform.bundles.Add("/opt/x/VendrelPluginInterface.framework", "com.x.facade");
//   facade.symbols["Log"] = reinterpret_cast<void*>(&MyLog);
//   platform.runLoop.Advance(0.05);  // five ticks of a 10 ms timer
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "platform/Bundle.h"
#include "platform/FontLookup.h"
#include "platform/MessageBox.h"
#include "platform/Platform.h"
#include "platform/Process.h"
#include "platform/RunLoop.h"
#include "platform/SleepWakeObserver.h"

// Timers over a clock of microseconds. WallClock shows the same clock for the life of the object.
class FakeRunLoop : public RunLoop {
 public:
  // 2001-09-09 01:46:40 UTC.
  static constexpr std::int64_t kStartMilliseconds = 1'000'000'000'000;

  FakeRunLoop();
  ~FakeRunLoop() override;
  FakeRunLoop(const FakeRunLoop&) = delete;
  FakeRunLoop& operator=(const FakeRunLoop&) = delete;

  std::unique_ptr<Timer> CreateRepeatingTimer(double firstFire, double interval, Mode mode,
                                              std::function<void()> callback) override;
  // Moves the clock and fires what becomes due, earliest first, the older timer first at the same
  // time. A callback may call it again; in there only common timers tick, as in a modal session.
  void Advance(double seconds);
  // As Advance, while the host tracks a menu or runs a modal session.
  void AdvanceModal(double seconds);
  std::int64_t NowMilliseconds() const;
  // Timers that are alive.
  std::size_t TimerCount() const;

 private:
  struct Entry;
  class FakeTimer;
  std::shared_ptr<Entry> NextDue(std::int64_t target, bool modal) const;

  std::int64_t mNow = kStartMilliseconds * 1000;
  int mDepth = 0;
  std::vector<std::shared_ptr<Entry>> mEntries;
};

class FakeSleepWake : public SleepWakeObserver {
 public:
  std::unique_ptr<Subscription> Subscribe(std::function<void()> willSleep,
                                          std::function<void()> didWake) override;
  void Sleep();
  void Wake();
  std::size_t SubscriptionCount() const { return mSubscriptions.size(); }

 private:
  struct Handlers {
    std::function<void()> willSleep;
    std::function<void()> didWake;
  };
  class FakeSubscription;

  int mNextID = 1;
  std::map<int, Handlers> mSubscriptions;
};

class FakeBundle : public Bundle {
 public:
  std::string path;
  std::string identifier;
  std::map<std::string, std::string> values;                          // Info.plist
  std::map<std::string, std::map<std::string, std::string>> strings;  // table, key, text
  std::map<std::string, void*> symbols;
  bool loaded = false;  // set by Open; set it by hand for a bundle that is there from the start

  std::string Path() const override { return path; }
  std::string Identifier() const override { return identifier; }
  std::optional<std::string> Value(const std::string& key) const override;
  std::string ExecutablePath() const override;
  std::string PrivateFrameworksPath() const override { return path + "/Contents/Frameworks"; }
  std::string LocalizedString(const std::string& table, const std::string& key,
                              const std::string& defaultValue) const override;
  void* LookUpSymbol(const char* name) override;
};

class FakeBundles : public BundleLayer {
 public:
  static constexpr const char* kPluginBundleID = "com.vendrel.AutoActivationPlugin.PS22";
  static constexpr const char* kPluginPath = "/host/Plug-ins/AutoActivation.plugin";

  std::string systemFrameworksPath = "/usr/lib/vendrel/Frameworks";
  std::vector<std::string> openedPaths;  // every path that was asked for, found or not

  // A bundle that Open finds; lives as long as this object.
  FakeBundle& Add(const std::string& path, const std::string& identifier);
  // One whose code is in the process already.
  FakeBundle& AddLoaded(const std::string& path, const std::string& identifier);
  // The plug-in's own bundle, version 22.0.1 for PhotoshopCC2021; made at the first call.
  FakeBundle& Plugin();

  std::shared_ptr<Bundle> FindByIdentifier(const std::string& identifier) override;
  std::shared_ptr<Bundle> Open(const std::string& path) override;
  bool IsLoaded(const std::string& identifier) override;
  std::string SystemFrameworksPath() override { return systemFrameworksPath; }

 private:
  std::vector<std::shared_ptr<FakeBundle>> mBundles;
  FakeBundle* mPlugin = nullptr;
};

class FakeProcess : public Process {
 public:
  struct Launch {
    std::string path;
    std::vector<std::string> arguments;
    bool waited;
  };

  std::map<std::string, std::string> running;  // name, folder with a trailing "/"
  std::vector<Launch> launches;                // in order
  bool launchSucceeds = true;
  int exitStatus = 0;
  // Called after a launch was recorded, for instance to fill `running`.
  std::function<void(const Launch&)> onLaunch;

  bool GetPathToRunningProcessExe(const std::string& name, std::string& folder) override;
  bool LaunchDetached(const std::string& path, const std::vector<std::string>& arguments) override;
  int LaunchAndWait(const std::string& path, const std::vector<std::string>& arguments) override;
};

class FakeFontLookup : public FontLookup {
 public:
  std::set<std::string> visible;
  std::vector<std::string> questions;

  bool IsVisible(const std::string& postScriptName) override;
};

class FakeMessageBox : public MessageBox {
 public:
  std::vector<std::string> messages;

  void ShowMessage(const std::string& message) override { messages.push_back(message); }
};

class FakePlatform : public Platform {
 public:
  FakePlatform() { Platform::SetCurrent(this); }
  ~FakePlatform() override { Platform::SetCurrent(nullptr); }
  FakePlatform(const FakePlatform&) = delete;
  FakePlatform& operator=(const FakePlatform&) = delete;

  FakeRunLoop runLoop;
  FakeSleepWake sleepWake;
  FakeBundles bundles;
  FakeProcess process;
  FakeFontLookup fonts;
  FakeMessageBox messages;

  RunLoop& GetRunLoop() override { return runLoop; }
  SleepWakeObserver& GetSleepWakeObserver() override { return sleepWake; }
  BundleLayer& GetBundles() override { return bundles; }
  Process& GetProcess() override { return process; }
  FontLookup& GetFontLookup() override { return fonts; }
  MessageBox& GetMessageBox() override { return messages; }
};
