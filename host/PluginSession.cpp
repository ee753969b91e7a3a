#include "host/PluginSession.h"

#include "coreagent/CommandRetry.h"
#include "host/AgentControl.h"
#include "host/Interruption.h"
#include "host/Places.h"
#include "platform/FontLookup.h"
#include "platform/Platform.h"
#include "state/KestraneGlobals.h"

PluginSession::PluginSession() : mHost(HostOptions()) {
  SetRetryInterrupted([] { return Interruption::Signal() != 0; });
}

// Nobody sees this host's windows; they are ordered for the plug-in to step in.
PluginHost::Options PluginSession::HostOptions() {
  PluginHost::Options options;
  options.findMissingFonts = [this](const std::string&) {
    std::vector<std::string> missing;
    if (mOpening == nullptr) return missing;
    for (const DocumentFont& font : mOpening->fonts) {
      if (!Platform::Current().GetFontLookup().IsVisible(font.postScriptName)) {
        missing.push_back(font.postScriptName);
      }
    }
    return missing;
  };
  return options;
}

PluginSession::~PluginSession() { End(); }

bool PluginSession::Load(std::string& error) {
  return mHost.LoadPlugin(Places::PluginBundle(), error);
}

bool PluginSession::Start(std::string& error) {
  mAgent = AgentControl::ConnectOrStart(error);
  if (!mAgent) return false;
  if (!Load(error)) return false;
  mStarted = true;
  mHost.Startup();
  if (KestraneGlobals::ArePluginServicesEnabled()) return true;
  error = "the plug-in found no font manager to work with";
  return false;
}

FontReport PluginSession::Open(DocumentFonts document) {
  FontReport report = CheckDocument(std::move(document));
  mOpening = &report.document;
  mHost.OpenDocument(report.document.path);
  mOpening = nullptr;
  mDeclared.emplace_back(report.document.path, report.MatchedIDs());
  DeclareDocuments();
  UpdateAfterOpen(report, ActivePaths());
  return report;
}

std::map<std::uint32_t, std::string> PluginSession::ActivePaths() {
  std::map<std::uint32_t, std::string> paths;
  std::vector<Nodrix::ActiveFont> fonts;
  if (mAgent && mAgent->Status(fonts) == Nodrix::CallResult::eOk) {
    for (const Nodrix::ActiveFont& font : fonts) paths[font.fontID] = font.path;
  }
  return paths;
}

void PluginSession::DeclareDocuments() {
  if (mAgent) mAgent->DeclareDocuments(mDeclared);
}

void PluginSession::End() {
  if (mStarted) {
    mStarted = false;
    if (mAgent) mAgent->DeclareDocuments({});
    while (!mHost.Documents().Documents().empty()) {
      mHost.CloseDocument(mHost.Documents().Documents().back().id);
    }
    mHost.Shutdown();
    if (mAgent && !mAgent->IsConnected()) {
      // The agent went away under us: a new one takes back what we had turned on when this
      // connection ends.
      std::string ignored;
      mAgent = AgentControl::ConnectOrStart(ignored);
    }
  }
  mAgent.reset();
}
