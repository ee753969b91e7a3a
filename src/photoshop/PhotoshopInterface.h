// What this host's shell does when the font manager bridge tells it something. Pushing it on to the
// panels comes with the panels; until then the bases, which do nothing, serve those operations.
//
// Threads: [main-thread].
#pragma once

#include "state/HostAppInterface.h"

class PhotoshopInterface : public HostAppInterface {
 public:
  // Empty: there is no panel yet that could show the workgroups.
  void RebuildWorkgroupsMenu() override {}
  // Both serve the tracked record of the host's current document; false and nothing without one.
  void SetCanExportFontsForDocument(bool canExport) override;
  bool CanExportFontsForDocument() override;
};
