// All that belongs to the operating system, as one set of ports. Logic takes them from here and
// never asks which system it runs on.
#pragma once

class BundleLayer;
class FontLookup;
class MessageBox;
class Process;
class RunLoop;
class SleepWakeObserver;

class Platform {
 public:
  virtual ~Platform() = default;
  virtual RunLoop& GetRunLoop() = 0;
  virtual SleepWakeObserver& GetSleepWakeObserver() = 0;
  virtual BundleLayer& GetBundles() = 0;
  virtual Process& GetProcess() = 0;
  virtual FontLookup& GetFontLookup() = 0;
  virtual MessageBox& GetMessageBox() = 0;

  // The set in use: the system's own, made on first use and never destroyed, unless SetCurrent put
  // another in its place. [main-thread]
  static Platform& Current();
  // Lent, and outlives its use; null puts the system's back.
  static void SetCurrent(Platform* platform);
};
