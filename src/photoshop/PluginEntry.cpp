#include "photoshop/PluginEntry.h"

#include "dialogs/TarnInterface.h"
#include "foundation/PluginLog.h"
#include "photoshop/AutoSuite.h"
#include "photoshop/Startup.h"
#include "state/KestraneGlobals.h"

namespace {

SPErr ShowAbout() {
  TarnInterface* tarn = KestraneGlobals::GetSharedTarnInterface();
  if (tarn && tarn->IsValid()) tarn->ShowAboutBox();
  return 0;
}

SPErr Dispatch(const char* caller, const char* selector, SPMessageData* message) {
  const auto isEqual = sSPBasic->IsEqual;
  SPErr result = 0;
  if (isEqual(caller, kSPInterfaceCaller)) {
    if (isEqual(selector, kSPInterfaceAboutSelector)) {
      result = ShowAbout();
    } else if (isEqual(selector, kSPInterfaceStartupSelector)) {
      result = StartupPlugin(message);
    } else if (isEqual(selector, kSPInterfaceShutdownSelector)) {
      result = ShutdownPlugin(message);
    }
  }
  if (isEqual(caller, kPSPhotoshopCaller) && isEqual(selector, kPSDoIt)) {
    result = DoIt(message, message->actionParameters);
  }
  return result;
}

}  // namespace

SPErr HandlePluginMain(const char* caller, const char* selector, SPMessageData* message) {
  if (!message) return 0;
  sSPBasic = message->basic;
  gPlugInRef = message->self;
  if (!sSPBasic || !caller || !selector) return kSPBadParameterError;
  struct SuitesEnd {
    ~SuitesEnd() { PIUSuitesRelease(); }
  } suitesEnd;
  try {
    return Dispatch(caller, selector, message);
  } catch (unsigned int error) {
    return static_cast<SPErr>(error);
  } catch (...) {
    OutputFormattedDebugString("%s() ended with an exception", __func__);
    return -1;
  }
}

SPErr DoIt(SPMessageData*, PIActionDescriptor parameters) {
  if (!parameters) return kSPBadParameterError;
  sPSActionDescriptor->Clear(parameters);
  return 0;
}
