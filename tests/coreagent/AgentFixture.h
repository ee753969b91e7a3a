// A plug-in with a live CoreAgentInterface over the fake facade.
#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "coreagent/CommandRetry.h"
#include "coreagent/CoreAgentInterface.h"
#include "fonts/FontDataCache.h"
#include "sdk/FontRecordKeys.h"
#include "state/HostAppInterface.h"
#include "support/PluginWorld.h"

using Calls = FakeFacade::Calls;
using Texts = std::vector<std::string>;

// Writes down what it is told, with the arguments in brackets.
class RecordingHostApp : public HostAppInterface {
 public:
  Texts told;

  Texts Take() {
    Texts taken;
    taken.swap(told);
    return taken;
  }

  void RebuildWorkgroupsMenu() override { Tell("RebuildWorkgroupsMenu"); }
  void HandlePanelDataChanged() override { Tell("HandlePanelDataChanged"); }
  void SetLoggedInState(bool loggedIn, EServerType type) override {
    Tell("SetLoggedInState(" + std::to_string(loggedIn) + "," + std::to_string(type) + ")");
  }
  void SetIsOnline(bool online) override { Tell("SetIsOnline", online); }
  void FontActivated(std::uint32_t id) override { Tell("FontActivated", id); }
  void DesignActivationFailedComplianceCheck(std::uint32_t id) override {
    Tell("DesignActivationFailedComplianceCheck", id);
  }
  void FontDeactivated(std::uint32_t id) override { Tell("FontDeactivated", id); }
  void FontMissing(std::uint32_t id) override { Tell("FontMissing", id); }
  void BulkReplicationProgress(const Details& d) override { Tell("BulkReplicationProgress", d); }
  void BulkReplicationStopped() override { Tell("BulkReplicationStopped"); }
  void IncrementalReplicationProgress(const Details& d) override {
    Tell("IncrementalReplicationProgress", d);
  }
  void IncrementalReplicationStopped() override { Tell("IncrementalReplicationStopped"); }
  void GoogleReplicationProgress(const Details& d) override {
    Tell("GoogleReplicationProgress", d);
  }
  void GoogleReplicationStopped() override { Tell("GoogleReplicationStopped"); }
  void GoogleWebFontsEnabled(bool enabled) override { Tell("GoogleWebFontsEnabled", enabled); }
  void FontServerReplicationProgress(const Details& d) override {
    Tell("FontServerReplicationProgress", d);
  }
  void FontServerReplicationStopped() override { Tell("FontServerReplicationStopped"); }
  void PreviewPNGsRendered(const Details& d) override { Tell("PreviewPNGsRendered", d); }
  void SmartListsChanged() override { Tell("SmartListsChanged"); }
  void OfflineDownloadFinished() override { Tell("OfflineDownloadFinished"); }

 private:
  void Tell(const std::string& what) { told.push_back(what); }
  void Tell(const std::string& what, std::uint32_t value) {
    told.push_back(what + "(" + std::to_string(value) + ")");
  }
  // The text of a progress event.
  void Tell(const std::string& what, const Details& details) {
    told.push_back(what + "(" + RecordString(details, kPI_kTextKey) + ")");
  }
};

class AgentTest : public testing::Test {
 protected:
  AgentTest() {
    HostAppInterface::SetHostAppInterface(&host);
    facade.workgroups = {{11, "Font Library", kWorkgroupType_LocalPersonal},
                         {4, "System", kWorkgroupType_System}};
    world.tarn.longPreferences[kCurrentWorkgroupPrefKey] = 11;
    SetRetrySleep([this](unsigned milliseconds) { pauses.push_back(milliseconds); });
  }
  ~AgentTest() override {
    SetRetrySleep({});
    SetRetryInterrupted({});
    FontManagerInterface::ExchangeFontManager(nullptr);
    agent.reset();
    HostAppInterface::SetHostAppInterface(nullptr);
    FontDataPreviouslyGottenFromDatabase::DeleteAll();
  }

  // Makes the font manager and puts it in place.
  void Start() {
    world.InstallFacade();
    agent = std::make_unique<CoreAgentInterface>();
    FontManagerInterface::ExchangeFontManager(agent.get());
  }

  FontRecord MakeFont(std::uint32_t id) {
    FontRecord font = MakeFontRecord();
    SetRecordNumber(font, kFP_DatabaseIDKey, id);
    return font;
  }
  FontRecordArray MakeFonts(const std::vector<std::uint32_t>& ids) {
    const FontRecordArray fonts = MakeFontRecordArray();
    for (const std::uint32_t id : ids) fonts->Append(MakeFont(id));
    return fonts;
  }
  static std::vector<std::uint32_t> IDsOf(const FontRecordArray& fonts) {
    return CoreAgentInterface::GetFontIDsFromFontInfoArray(fonts, false);
  }

  PluginWorld world;
  FakeFacade& facade = world.facade;
  FakeTarn& tarn = world.tarn;
  RecordingHostApp host;
  std::unique_ptr<CoreAgentInterface> agent;
  std::vector<unsigned> pauses;  // between the rounds of a retry, in milliseconds
};
