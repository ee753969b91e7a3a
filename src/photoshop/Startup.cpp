#include "photoshop/Startup.h"

#include <array>
#include <exception>
#include <memory>

#include "dialogs/TarnInterface.h"
#include "fontmanager/FontManagerInterface.h"
#include "foundation/PluginLog.h"
#include "photoshop/CommonStartup.h"
#include "photoshop/DocumentEvents.h"
#include "photoshop/ParkedObjects.h"
#include "photoshop/PhotoshopFontUtils.h"
#include "platform/NotificationTimer.h"
#include "state/KestraneGlobals.h"

SPPluginRef gPlugInRef = nullptr;
PluginGlobals* gGlobals = nullptr;
bool gNotifierOn = false;

namespace {

static_assert(sizeof(PluginGlobals) == 16, "the host is asked for 16 bytes");

int sNumberOfTimesStartupPluginHasBeenCalled = 0;

struct Notifier {
  DescriptorEventID event;
  PSEventNotifyProc handler;
};

constexpr std::array<Notifier, 4> kNotifiers = {{{eventOpen, OpenEvent},
                                                 {eventMake, MakeEvent},
                                                 {eventClose, CloseEvent},
                                                 {eventSave, SaveEvent}}};

// Holds the blocks suite for the length of a scope.
class BlocksSuite {
 public:
  BlocksSuite() = default;
  ~BlocksSuite() {
    if (mSuite && sSPBasic) sSPBasic->ReleaseSuite(kSPBlocksSuite, kSPBlocksSuiteVersion);
  }
  BlocksSuite(const BlocksSuite&) = delete;
  BlocksSuite& operator=(const BlocksSuite&) = delete;

  // Throws as a long.
  void Acquire() {
    mSuite = static_cast<const SPBlocksSuite*>(
        PhotoshopFontUtils::AcquireSuite(kSPBlocksSuite, kSPBlocksSuiteVersion));
  }
  const SPBlocksSuite* operator->() const { return mSuite; }

 private:
  const SPBlocksSuite* mSuite = nullptr;
};

void AcquireForStart(BlocksSuite& blocks) {
  try {
    blocks.Acquire();
  } catch (long) {
    OutputFormattedDebugString("EXCEPTION: SPErr from AcquireSuite(kSPBlocksSuite)");
    throw;
  }
}

void AllocateGlobals(const BlocksSuite& blocks, SPMessageData* message) {
  void* block = nullptr;
  PhotoshopFontUtils::ThrowSPErr(blocks->AllocateBlock(sizeof(PluginGlobals), "globals", &block));
  if (!block) throw static_cast<long>(kSPOutOfMemoryError);
  gGlobals = static_cast<PluginGlobals*>(block);
  gGlobals->zero = nullptr;
  message->globals = gGlobals;
  gGlobals->plugin = message->self;
}

// Stopped by the machine's sleep only; nothing stops it at shutdown.
void StartNotificationTimer() {
  ParkedObjects<NotificationTimer>().push_back(
      std::make_unique<NotificationTimer>([] { processNotifications(); }));
}

void RaiseToDefaultDelay(TarnInterface& tarn, const char* key) {
  if (tarn.GetLongPreferenceForKey(key) < kPhotoshopDefaultRMFDelayMilliseconds) {
    tarn.SetLongPreferenceForKey(key, kPhotoshopDefaultRMFDelayMilliseconds);
  }
}

void StartServices(BlocksSuite& blocks, SPMessageData* message) {
  AcquireForStart(blocks);
  AllocateGlobals(blocks, message);
  KestraneGlobals::SetSuppressingHostAppDialogs(true);
  StartNotificationTimer();
  if (CommonFunctionality::Startup(true) != 0) throw 0L;
  CommonFunctionality::InitializeCommonPreferences();
  if (TarnInterface* tarn = KestraneGlobals::GetSharedTarnInterface()) {
    RaiseToDefaultDelay(*tarn, kTarnPreference_OlderRMFDelayMilliseconds);
    RaiseToDefaultDelay(*tarn, kTarnPreference_PhotoshopRMFDelayMilliseconds);
  }
}

// The value of a thrown error; -1 for anything else. Call it in a handler of exceptions.
SPErr ValueOfThrownError() {
  try {
    throw;
  } catch (long error) {
    return static_cast<SPErr>(error);
  } catch (int error) {
    return error;
  } catch (unsigned int error) {
    return static_cast<SPErr>(error);
  } catch (...) {
    return -1;
  }
}

SPErr RegisterNotifiers() {
  for (const Notifier& notifier : kNotifiers) {
    if (const std::int16_t error =
            sPSActionControl->AddNotify(gPlugInRef, notifier.event, notifier.handler, nullptr)) {
      return error;
    }
  }
  return 0;
}

SPErr RemoveNotifiers() {
  for (const Notifier& notifier : kNotifiers) {
    if (const std::int16_t error = sPSActionControl->RemoveNotify(gPlugInRef, notifier.event)) {
      return error;
    }
  }
  return 0;
}

void FreeGlobals(SPMessageData* message) {
  BlocksSuite blocks;
  blocks.Acquire();
  if (gGlobals) blocks->FreeBlock(gGlobals);
  gGlobals = nullptr;
  message->globals = nullptr;
}

}  // namespace

SPErr StartupPlugin(SPMessageData* message) {
  const OperationTrace trace(__func__);
  if (sNumberOfTimesStartupPluginHasBeenCalled++ > 0) return trace.Return(0);
  SPErr result = 0;
  {
    BlocksSuite blocks;
    try {
      StartServices(blocks, message);
    } catch (...) {
      result = ValueOfThrownError();
      OutputSimpleDebugString("StartupPlugin, after catching an error\n");
    }
  }
  if (gNotifierOn) return trace.Return(result);
  if (const SPErr error = RegisterNotifiers()) return trace.Return(error);
  gNotifierOn = true;
  return trace.Return(0);
}

SPErr ShutdownPlugin(SPMessageData* message) {
  const OperationTrace trace(__func__);
  try {
    KestraneGlobals::SetSuppressingHostAppDialogs(false);
    FontManagerInterface::OnHostAppShuttingDown(false);
    KestraneGlobals::CleanUpOnShutdown();
    FreeGlobals(message);
    return trace.Return(gNotifierOn ? RemoveNotifiers() : 0);
  } catch (...) {
    return trace.Return(ValueOfThrownError());
  }
}

void processNotifications() {
  try {
    if (FontManagerInterface* fontManager = FontManagerInterface::GetFontManager()) {
      fontManager->ProcessNotifications();
    }
  } catch (const std::exception& error) {
    OutputFormattedDebugString("%s() ended with an exception: %s", __func__, error.what());
  } catch (...) {
    OutputFormattedDebugString("%s() ended with an exception", __func__);
  }
}
