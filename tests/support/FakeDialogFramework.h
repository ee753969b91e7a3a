// A dialog framework for tests: preferences in maps, and a record of every dialog that would have
// been shown. It takes the place of the private framework of the plug-in's bundle in a
// FakePlatform, for the life of the object. One at a time.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "support/FakePlatform.h"

class FakeDialogFramework {
 public:
  static constexpr const char* kPluginBundleID = "com.vendrel.AutoActivationPlugin.PS22";

  // `withFramework` false leaves the bundle without one.
  explicit FakeDialogFramework(FakePlatform& platform, bool withFramework = true);
  ~FakeDialogFramework();
  FakeDialogFramework(const FakeDialogFramework&) = delete;
  FakeDialogFramework& operator=(const FakeDialogFramework&) = delete;

  bool preferencesExist = false;
  std::map<std::string, bool> flags;
  std::map<std::string, std::int32_t> numbers;
  // The name of each dialog's entry point, and for a message box the key of its message behind a
  // colon.
  std::vector<std::string> shown;
  std::function<void()> onDialog;  // while it is up
};
