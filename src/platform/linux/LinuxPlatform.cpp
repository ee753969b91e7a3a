#include "platform/Platform.h"
#include "platform/SystemPlatform.h"
#include "platform/linux/FontconfigFontLookup.h"
#include "platform/linux/GLibRunLoop.h"
#include "platform/linux/LinuxBundles.h"
#include "platform/linux/LinuxProcess.h"
#include "platform/linux/LogindSleepWakeObserver.h"
#include "platform/linux/StderrMessageBox.h"

namespace {

class LinuxPlatform : public Platform {
 public:
  RunLoop& GetRunLoop() override { return mRunLoop; }
  SleepWakeObserver& GetSleepWakeObserver() override { return mSleepWake; }
  BundleLayer& GetBundles() override { return mBundles; }
  Process& GetProcess() override { return mProcess; }
  FontLookup& GetFontLookup() override { return mFonts; }
  MessageBox& GetMessageBox() override { return mMessages; }

 private:
  GLibRunLoop mRunLoop;
  LogindSleepWakeObserver mSleepWake;
  LinuxBundles mBundles;
  LinuxProcess mProcess;
  FontconfigFontLookup mFonts;
  StderrMessageBox mMessages;
};

}  // namespace

Platform& GetSystemPlatform() {
  static LinuxPlatform& platform = *new LinuxPlatform;  // lives to the end of the process
  return platform;
}
