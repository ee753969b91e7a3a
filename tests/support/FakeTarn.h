// The dialog framework as a table: preferences are maps, every dialog is recorded, and every
// message box is answered with `button`. One at a time.
//
//   FakePlatform platform;
//   FakeTarn tarn;
//   tarn.Install(platform);  // a TarnInterface made from now on loads it
#pragma once

#include <cstddef>
#include <functional>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "propertylist/Value.h"

class FakeBundle;
class FakePlatform;

class FakeTarn {
 public:
  struct Message {
    std::string title;  // "-" for none
    std::string message;
    unsigned style;
    bool operator==(const Message&) const = default;
  };

  FakeTarn();
  ~FakeTarn();
  FakeTarn(const FakeTarn&) = delete;
  FakeTarn& operator=(const FakeTarn&) = delete;

  // Installed system-wide, so that it is found whatever the plug-in's bundle is.
  void Install(FakePlatform& platform);
  FakeBundle& InstallIn(FakePlatform& platform, const std::string& folder);

  bool isCompatible = true;
  int startCode = 0;  // TarnInitializeFramework
  std::map<std::string, bool> preferences;
  std::map<std::string, long> longPreferences;
  std::map<std::string, std::string> stringPreferences;
  std::map<std::string, std::string> texts;  // a key that is not here is its own text
  std::set<std::string> unknownTexts;        // but these have none
  int button = 1;                            // the answer to every box
  std::function<void()> onDialog;            // called while a dialog is shown

  // The entry point of each dialog, in order; a message box with its message and a progress window
  // without an end with "indeterminate" behind a colon.
  std::vector<std::string> shown;
  std::vector<Message> messages;
  std::vector<bool> onlineStates;                  // TarnSetIsOnline
  std::map<std::string, std::string> hostDetails;  // the strings of start and later changes

  // The title keys of the boxes shown so far, which are then forgotten.
  std::vector<std::string> TakeTitles();
  std::vector<std::string> TakeMessages();
  std::ptrdiff_t CountShown(const std::string& what) const;

  static FakeTarn& Current();
};
