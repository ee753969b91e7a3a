// The shell of an identified plug-in in a host of its own: suites, dialog framework and font
// manager of the tests, ready for work. State of the shell lives as long as its process: one test
// case a process.
#pragma once

#include <memory>
#include <string>

#include "activation/TrackedDocuments.h"
#include "dialogs/TarnInterface.h"
#include "photoshop/AutoSuite.h"
#include "photoshop/CompositionRoot.h"
#include "photoshop/DocumentEvents.h"
#include "support/FakeFontManager.h"
#include "support/FakeSuites.h"
#include "support/FakeTarn.h"
#include "support/FontNamingDocument.h"
#include "support/IdentifiedPlugin.h"

struct Shell : IdentifiedPlugin {
  explicit Shell(bool withFramework = true) {
    if (withFramework) tarn.Install(platform);
    InstallHostAppInterface();
    tarn.preferences = {{kEnablePluginPrefKey, true}, {kPickBestMatchPrefKey, true}};
    fontManager->workgroups = {{"1", "Mine"}};
    fontManager->canActivateFromAll = true;
    sSPBasic = host.Basic();
  }
  ~Shell() {
    PIUSuitesRelease();
    sSPBasic = nullptr;
    delete FontManagerInterface::GetFontManager();
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

  // A document that uses the fonts, on disk.
  std::string WriteDocument(const std::string& name, const std::vector<std::string>& fonts) {
    return home.WriteFile(name, DocumentNaming(fonts));
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

  FakeSuites host;
  FakeTarn tarn;
  FakeFontManager* fontManager = new FakeFontManager;  // owned by FontManagerInterface
};
