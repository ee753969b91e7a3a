// The dialog framework as a table: preferences are maps, every message box is recorded and answered
// with `button`. One at a time.
//
//   FakePlatform platform;
//   FakeTarn tarn;
//   tarn.Install(platform);  // a TarnInterface made from now on loads it
#pragma once

#include <functional>
#include <map>
#include <string>
#include <vector>

#include "propertylist/Value.h"

class FakePlatform;

class FakeTarn {
 public:
  struct Message {
    std::string title;
    std::string message;
    unsigned style;
  };

  FakeTarn();
  ~FakeTarn();
  FakeTarn(const FakeTarn&) = delete;
  FakeTarn& operator=(const FakeTarn&) = delete;

  // Installed system-wide, so that it is found whatever the plug-in's bundle is.
  void Install(FakePlatform& platform);

  std::map<std::string, bool> preferences;
  std::map<std::string, long> longPreferences;
  std::map<std::string, std::string> stringPreferences;
  std::map<std::string, std::string> texts;  // a key that is not here is its own text
  int button = 1;                            // the answer to every box
  std::function<void()> onMessage;           // called while a box is shown

  std::vector<Message> messages;
  std::vector<bool> onlineStates;                  // TarnSetIsOnline
  std::map<std::string, std::string> hostDetails;  // the strings of start and later changes
  int progressShown = 0;
  int progressHidden = 0;

  // The title keys of the boxes shown so far, which are then forgotten.
  std::vector<std::string> TakeTitles();
  std::vector<std::string> TakeMessages();

  static FakeTarn& Current();
};
