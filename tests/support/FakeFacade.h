// The font manager's client library as a table: the test fills in fonts, workgroups and switches,
// scripts the codes of entry points, and reads back which calls were made. One at a time.
//
//   FakePlatform platform;
//   FakeFacade facade;
//   facade.workgroups = {{11, "Font Library", kWorkgroupType_LocalPersonal}};
//   facade.AddFont(7, "Foo-Bold", "Foo", 11);
//   facade.Answer("ActivateFonts", {kPluginInterface_AgentShutdown, 0});
//   facade.Install(platform);  // SkerryLoader now binds it
//   ...
//   EXPECT_EQ(facade.CallsOf("ActivateFonts"), (Calls{"7"}));
//
// Threads: [main-thread], but for Notify and what is recorded of Log.
#pragma once

#include <cstdint>
#include <functional>
#include <initializer_list>
#include <map>
#include <mutex>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "facade/SkerryLoader.h"
#include "propertylist/FontRecord.h"

class FakePlatform;

class FakeFacade {
 public:
  static constexpr const char* kLibraryBundleID = "com.vendrel.VendrelPluginInterface";

  struct Font {
    std::uint32_t id = 0;
    std::uint32_t workgroupID = 0;
    std::int64_t rawState = kRawActivationState_Inactive;
    FontRecord record;  // every key of the database record but ID, workgroup and state
    bool failsToActivate = false;
    bool isRefused = false;      // ActivateFonts reports it in its second list
    std::uint32_t conflict = 0;  // GetFontConflicts
    std::string familyGroupID;   // fonts of one group are one family
    bool IsActive() const { return rawState != kRawActivationState_Inactive; }
  };
  struct Workgroup {
    std::uint32_t id;
    std::string name;
    int type;
  };
  using Calls = std::vector<std::string>;

  FakeFacade();
  ~FakeFacade();
  FakeFacade(const FakeFacade&) = delete;
  FakeFacade& operator=(const FakeFacade&) = delete;

  // Puts the library into the private frameworks of the plug-in's bundle, identifies the plug-in by
  // that bundle and binds the table. What `missing` holds by then is not exported. The table goes
  // with this object.
  void Install(FakePlatform& platform);

  // The library's content.
  Font& AddFont(std::uint32_t id, const std::string& postScriptName, const std::string& family,
                std::uint32_t workgroupID,
                std::initializer_list<std::pair<const char*, const char*>> entries = {});
  Font* Find(std::uint32_t id);
  std::vector<Font> fonts;
  std::vector<Workgroup> workgroups;
  std::set<int> specialTypes = {0, 2, 4,
                                8};  // workgroups told only when special ones are asked for
  bool workgroupsAreNull = false;    // GetAllWorkgroupsForUser gives no array

  // Switches.
  std::string version = "22.0.1";
  bool standalone = true;
  bool loggedIn = true;
  bool online = true;
  bool agentRunning = true;
  bool schemaInSync = true;
  bool googleWebFontsEnabled = false;
  bool canExportFonts = true;
  std::set<std::string> permissions;  // names of columns, for instance kColumnAcrossWorkgroups
  std::string defaultLibraryName = "Font Library";
  std::string vaultPath = "/home/x/Fonts.vault";
  std::set<std::string> missing;   // entry points that are not there
  std::uint32_t claimedFonts = 0;  // what a question by name says it found, if not what it found

  static constexpr const char* kColumnAcrossWorkgroups = "GetCanActivateAcrossWorkgroupsColumnID";
  static constexpr const char* kColumnExportFonts = "GetExportFontsColumnID";

  // The next calls of the entry point answer these codes, one each; then 0 again. A call with a
  // code other than 0 does nothing.
  void Answer(const std::string& entryPoint, std::vector<std::uint32_t> codes);
  // Every call that has no code of its own answers this.
  void AnswerAlways(const std::string& entryPoint, std::uint32_t code);
  // Called at each call of the entry point, after it was recorded and before it answers.
  void OnCall(const std::string& entryPoint, std::function<void()> action);

  // The calls of one entry point with their main arguments: font IDs as "7,8"; a question by name
  // as "Foo-Bold@11,4" (workgroups behind the sign); text as it is.
  Calls CallsOf(const std::string& entryPoint) const;
  std::size_t CountOf(const std::string& entryPoint) const { return CallsOf(entryPoint).size(); }
  // The names of all entry points that were called, in order, without Log and the instance.
  Calls AllCalls() const;
  void ForgetCalls();
  // What came in through Log, each without its line feed. [any-thread]
  Calls LogLines() const;
  bool HasLogged(const std::string& line) const;

  // Calls the registered callback on the calling thread; false if there is none. Unregistering
  // waits for calls in progress. [any-thread]
  bool Notify(std::int32_t kind, const void* data = nullptr);
  bool HasCallback() const;

  // For the entry points.
  static FakeFacade& Current();
  // Records a call and gives the code that it is to answer.
  std::uint32_t Record(const std::string& entryPoint, const std::string& arguments);
  void RecordLog(const char* text);
  void SetCallback(PluginInterfaceCallback callback);
  FontRecord MakeDatabaseRecord(const Font& font) const;

 private:
  mutable std::mutex mMutex;  // of what is recorded
  std::vector<std::pair<std::string, std::string>> mCalls;
  Calls mLog;
  std::map<std::string, std::vector<std::uint32_t>> mCodes;
  std::map<std::string, std::uint32_t> mStandingCodes;
  std::map<std::string, std::function<void()>> mActions;
  mutable std::mutex mCallbackMutex;  // held while the callback runs
  PluginInterfaceCallback mCallback = nullptr;
  bool mInstalled = false;
};
