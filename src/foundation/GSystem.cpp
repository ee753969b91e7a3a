#include "foundation/GSystem.h"

#include <bit>

#include "foundation/ErrorChecks.h"
#include "foundation/GScopedLock.h"

namespace {

struct SocketUsers {
  GMutex mutex;
  int s_nInitCount = 0;
};

SocketUsers& GetSocketUsers() {
  static SocketUsers& users = *new SocketUsers;
  return users;
}

}  // namespace

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
  SocketUsers& users = GetSocketUsers();
  const GScopedLock lock(users.mutex);
  if (users.s_nInitCount == 0) G_CHECK_CALL(OSInitializeSockets());
  users.s_nInitCount += 1;
  return 0;
}

TModuleErrorCode GSystem::UninitializeSockets() {
  SocketUsers& users = GetSocketUsers();
  {
    const GScopedLock lock(users.mutex);
    if (users.s_nInitCount == 1) G_CHECK_CALL(OSUninitializeSockets());
    users.s_nInitCount -= 1;
    if (users.s_nInitCount >= 0) return 0;
    users.s_nInitCount = 0;
  }
  WriteErrorRecord(1, __FILE__, __LINE__, "s_nInitCount < 0", CoreErrorCodes::kNotInitialized);
  return CoreErrorCodes::kNotInitialized;
}

bool GSystem::AreSocketsInitialized() {
  SocketUsers& users = GetSocketUsers();
  const GScopedLock lock(users.mutex);
  return users.s_nInitCount > 0;
}

TModuleErrorCode GSystem::GetPrimaryMACAddress(std::string& address) {
  G_CHECK_CALL(OSGetPrimaryMACAddress(address));
  return 0;
}

TModuleErrorCode GSystem::GetMachineID(std::string& machineID) {
  G_CHECK_CALL(OSGetMachineID(machineID));
  return 0;
}
