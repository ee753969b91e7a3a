// The shell in a host of its own: suites, platform, dialog framework and font manager of the
// tests, ready for work. State of the shell lives as long as its process: one test case a process.
#pragma once

#include <memory>
#include <string>

#include "activation/TrackedDocuments.h"
#include "dialogs/TarnInterface.h"
#include "photoshop/AutoSuite.h"
#include "photoshop/CompositionRoot.h"
#include "photoshop/DocumentEvents.h"
#include "photoshop/FakeFontManager.h"
#include "state/KestraneGlobals.h"
#include "support/FakeDialogFramework.h"
#include "support/FakePlatform.h"
#include "support/FakeSuites.h"
#include "support/ScratchHome.h"

struct Shell {
  explicit Shell(bool withFramework = true) : dialogs(platform, withFramework) {
    KestraneGlobals::IdentifyPluginBundleID(FakeDialogFramework::kPluginBundleID);
    KestraneGlobals::IdentifyPluginHostApp("PhotoshopCC2021");
    KestraneGlobals::IdentifyPluginVersion("22.0.1");
    InstallHostAppInterface();
    dialogs.flags[kEnablePluginPrefKey] = true;
    dialogs.flags[kPickBestMatchPrefKey] = true;
    fontManager = new FakeFontManager;
    FontManagerInterface::ExchangeFontManager(fontManager);
    sSPBasic = host.Basic();
  }
  ~Shell() {
    PIUSuitesRelease();
    sSPBasic = nullptr;
    delete FontManagerInterface::ExchangeFontManager(nullptr);
  }

  // As after a start that went well, with the notifiers in place.
  void MakeReady() {
    KestraneGlobals::SetPluginServicesEnabled(true);
    KestraneGlobals::SetLoggedIn(true);
    KestraneGlobals::SetUserHasWorkgroups(true);
    host.handlers = {{eventOpen, OpenEvent},
                     {eventMake, MakeEvent},
                     {eventClose, CloseEvent},
                     {eventSave, SaveEvent}};
  }

  // A document that uses the fonts, on disk; names are ASCII.
  std::string WriteDocument(const std::string& name, std::initializer_list<const char*> fontNames) {
    std::string bytes = "8BPS /FontSet [ ";
    for (const char* font : fontNames) {
      bytes += "<< /Name (\xFE\xFF";
      for (const char* c = font; *c; ++c) bytes += {'\0', *c};
      bytes += ") >> ";
    }
    return home.WriteFile(name, bytes + "]");
  }
  // The host takes a document in as the current one, and tells.
  void Open(int id, const std::string& path) {
    host.documents.push_back({id, path});
    host.currentIndex = static_cast<int>(host.documents.size());
    host.Deliver(eventOpen, host.OpenDescriptor(path));
  }
  void Close(int index) {
    host.documents.erase(host.documents.begin() + index - 1);
    host.currentIndex = static_cast<int>(host.documents.size());
    host.Deliver(eventClose, host.NewDescriptor());
  }

  ScratchHome home;
  FakePlatform platform;
  FakeSuites host;
  FakeDialogFramework dialogs;
  FakeFontManager* fontManager = nullptr;  // owned by FontManagerInterface
};
