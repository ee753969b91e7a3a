// A graphics host without a screen: loads one plug-in, hands it suites, holds the documents and
// delivers their events synchronously, from within whatever the plug-in itself plays.
//
// The suites are C functions without a context, so there is one host in a process at a time.
// [main-thread]
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "host/ActionObjects.h"
#include "host/DocumentModel.h"
#include "host/WindowServer.h"
#include "sdk/HostBasic.h"

class Bundle;

class PluginHost {
 public:
  struct Options {
    // Called for every window that reaches the screen.
    std::function<void(const HostWindow&)> showWindow = [](const HostWindow&) {};
    // The fonts of a document that this process does not see; the host then orders its window for
    // missing fonts while it opens. Empty: it never does.
    std::function<std::vector<std::string>(const std::string& path)> findMissingFonts;
    // Writes what the host holds of a document to `path`; false if it can't.
    std::function<bool(const HostDocument& document, const std::string& path)> writeDocument;
  };

  PluginHost() : PluginHost(Options{}) {}
  explicit PluginHost(Options options);
  ~PluginHost();
  PluginHost(const PluginHost&) = delete;
  PluginHost& operator=(const PluginHost&) = delete;

  // Loads the bundle at `path`. False with a reason.
  bool LoadPlugin(const std::string& path, std::string& error);
  // Takes an entry point instead of a bundle, for a plug-in that is linked in.
  void AttachPlugin(AutoPluginMainProc entry) { mEntry = entry; }

  SPErr Startup() { return Call(kSPInterfaceCaller, kSPInterfaceStartupSelector, nullptr); }
  SPErr Shutdown() { return Call(kSPInterfaceCaller, kSPInterfaceShutdownSelector, nullptr); }
  SPErr About() { return Call(kSPInterfaceCaller, kSPInterfaceAboutSelector, nullptr); }
  SPErr DoIt(PIActionDescriptor parameters) {
    return Call(kPSPhotoshopCaller, kPSDoIt, parameters);
  }

  // What a user does. IDs are the host's; 0 or false if it can't be done. A path that is open
  // already comes to the front and has its open event all the same.
  std::int32_t OpenDocument(const std::string& path);
  std::int32_t NewDocument();
  bool CloseDocument(std::int32_t id);
  // Delivers one event before and one after; a new path is a Save As.
  bool SaveDocument(std::int32_t id, const std::string& newPath = {});
  DocumentModel& Documents() { return mDocuments; }
  WindowServer& Windows() { return mWindows; }

  // Everything a plug-in acquired and did not release, for tests.
  int CountAcquiredSuites() const { return mAcquiredSuites; }
  int CountLiveBlocks() const { return mLiveBlocks; }
  std::size_t CountNotifiers() const { return mNotifiers.size(); }

 private:
  friend struct PluginHostSuites;
  struct Notifier {
    DescriptorEventID event;
    PSEventNotifyProc procedure;
    void* userData;
  };

  SPErr Call(const char* caller, const char* selector, PIActionDescriptor parameters);
  void Deliver(DescriptorEventID event, PIActionDescriptorData descriptor,
               std::int32_t options = 0);
  void OrderMissingFontsWindow(const std::string& path);
  SPErr Get(PIActionDescriptor* out, const PIActionReferenceData& reference);
  SPErr Play(DescriptorEventID event, const PIActionDescriptorData* descriptor);

  Options mOptions;
  DocumentModel mDocuments;
  WindowServer mWindows;
  std::shared_ptr<Bundle> mBundle;
  AutoPluginMainProc mEntry = nullptr;
  void* mGlobals = nullptr;  // the plug-in's, handed back at every call
  std::vector<Notifier> mNotifiers;
  int mAcquiredSuites = 0;
  int mLiveBlocks = 0;
};
