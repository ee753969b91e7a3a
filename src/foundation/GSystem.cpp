#include "foundation/GSystem.h"

#include <bit>

#include "foundation/ErrorChecks.h"
#include "foundation/GScopedLock.h"

namespace {

GMutex& SocketsMutex() {
  static GMutex& mutex = *new GMutex;
  return mutex;
}

}  // namespace

int GSystem::s_nInitCount = 0;

bool GSystem::IsMacOSX() {
  static const ESystem system = OSGetSystem();
  return system == eMacOSX;
}

bool GSystem::IsWindows() {
  static const ESystem system = OSGetSystem();
  return system == eWindows || system == eWindows64;
}

bool GSystem::IsWindows64() {
  static const ESystem system = OSGetSystem();
  return system == eWindows64;
}

bool GSystem::IsBigEndian() { return std::endian::native == std::endian::big; }

TModuleErrorCode GSystem::InitializeSockets() {
  const GScopedLock lock(SocketsMutex());
  if (s_nInitCount == 0) G_CHECK_CALL(OSInitializeSockets());
  s_nInitCount += 1;
  return 0;
}

TModuleErrorCode GSystem::UninitializeSockets() {
  const GScopedLock lock(SocketsMutex());
  s_nInitCount -= 1;
  if (s_nInitCount < 0) {
    s_nInitCount = 0;
    WriteErrorRecord(1, __FILE__, __LINE__, "s_nInitCount < 0", CoreErrorCodes::kNotInitialized);
    return CoreErrorCodes::kNotInitialized;
  }
  if (s_nInitCount == 0) G_CHECK_CALL(OSUninitializeSockets());
  return 0;
}

bool GSystem::AreSocketsInitialized() {
  const GScopedLock lock(SocketsMutex());
  return s_nInitCount > 0;
}

TModuleErrorCode GSystem::GetPrimaryMACAddress(std::string& address) {
  G_CHECK_CALL(OSGetPrimaryMACAddress(address));
  return 0;
}

TModuleErrorCode GSystem::GetMachineID(std::string& machineID) {
  G_CHECK_CALL(OSGetMachineID(machineID));
  return 0;
}
