#include "state/HostAppInterface.h"

namespace {

// Stands in until a shell has put its own in place.
class NoHostApp : public HostAppInterface {
 public:
  void RebuildWorkgroupsMenu() override {}
};

HostAppInterface* sm_pHostApp = nullptr;

}  // namespace

HostAppInterface* HostAppInterface::GetHostAppInterface() {
  static NoHostApp none;
  return sm_pHostApp ? sm_pHostApp : &none;
}

void HostAppInterface::SetHostAppInterface(HostAppInterface* hostApp) { sm_pHostApp = hostApp; }
