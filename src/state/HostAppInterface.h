// Through which the font manager bridge tells the host's shell what happened. The bases do nothing,
// so that a shell overrides what it serves.
#pragma once

#include <cstdint>

#include "propertylist/Value.h"

// The kind of server of a log-in change; kept as the number that arrives. 3 marks a change that is
// not to touch the plug-in's own logged-in state.
using EServerType = int;
inline constexpr EServerType kServerTypeForeign = 3;

class HostAppInterface {
 public:
  using Details = PropertyList::DictionaryRef;

  // The single instance. The shell's composition root sets it; there is always one.
  static HostAppInterface* GetHostAppInterface();
  // Lent; lives to the end of the process.
  static void SetHostAppInterface(HostAppInterface* hostApp);

  virtual ~HostAppInterface() = default;
  virtual void RebuildWorkgroupsMenu() = 0;
  virtual void HandlePanelDataChanged() {}
  virtual void SetCanExportFontsForDocument(bool) {}
  virtual bool CanExportFontsForDocument() { return false; }
  virtual void SetMissingFontsDialogNeeded() {}
  virtual void SetLoggedInState(bool, EServerType) {}
  virtual void SetIsOnline(bool) {}
  virtual void FontActivated(std::uint32_t) {}
  virtual int FontActivationRecognized(std::uint32_t) { return 0; }
  virtual void DesignActivationFailedComplianceCheck(std::uint32_t) {}
  virtual void FontDeactivated(std::uint32_t) {}
  virtual void FontMissing(std::uint32_t) {}
  virtual void BulkReplicationProgress(const Details&) {}
  virtual void BulkReplicationStopped() {}
  virtual void IncrementalReplicationProgress(const Details&) {}
  virtual void IncrementalReplicationStopped() {}
  virtual void NetquillReplicationProgress(const Details&) {}
  virtual void NetquillReplicationStopped() {}
  virtual void GoogleReplicationProgress(const Details&) {}
  virtual void GoogleReplicationStopped() {}
  virtual void GoogleWebFontsEnabled(bool) {}
  virtual void FontServerReplicationProgress(const Details&) {}
  virtual void FontServerReplicationStopped() {}
  virtual void PreviewPNGsRendered(const Details&) {}
  virtual void SmartListsChanged() {}
  virtual void OfflineDownloadFinished() {}
};
