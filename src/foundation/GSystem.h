// The few facts about the machine and the process that the rest needs, and set-up of the whole
// process. The operations with the prefix OS are the system's half and stand in linux/.
//
// [any-thread] All. What gives a code gives 0, or a code and the result emptied (0).
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "foundation/ErrorCodes.h"

class GSystem {
 public:
  enum ESystem : unsigned int { eMacOSX = 0, eWindows = 1, eWindows64 = 2, eLinux = 3 };

  static ESystem OSGetSystem();
  static bool IsMacOSX();
  // True for both kinds.
  static bool IsWindows();
  static bool IsWindows64();
  static bool IsBigEndian();

  // The kernel's release, such as 6, 1 and 0 for "6.1.0-18-amd64"; numbers that are missing there
  // are 0. CoreErrorCodes::kError if it does not begin with one.
  static TModuleErrorCode OSGetVersion(unsigned int& major, unsigned int& minor,
                                       unsigned int& patch);
  // "6.1.0".
  static TModuleErrorCode OSGetVersionString(std::string& version);

  // Logical cores that are online, also those that this process may not use.
  static TModuleErrorCode OSGetNumCPUCores(unsigned int& cores);
  // Hertz: the highest clock of the first core, lacking that its present clock.
  // CoreErrorCodes::kNotFound where the system tells neither.
  static TModuleErrorCode OSGetCPUSpeed(unsigned long long& hertz);
  // Bytes of memory.
  static TModuleErrorCode OSGetTotalMemory(unsigned long long& bytes);

  // "de": the language of messages, from LC_ALL, LC_MESSAGES or LANG, the first that is set; "en"
  // without one and in the locales C and POSIX. Never fails.
  static TModuleErrorCode OSGetLanguageCode(std::string& code);
  // Tags such as "pt-BR" and "de", most wanted first, each once: those of LANGUAGE (which, as
  // everywhere, counts only if the locale is neither C nor POSIX), then that of the locale.
  // Never empty.
  static std::vector<std::string> OSGetPreferredLanguages();

  // The login name; empty if the system knows none.
  static std::string OSGetUserName();
  // One text for all processes of a login: XDG_SESSION_ID, lacking it the kernel's audit session,
  // lacking that the number of the POSIX session.
  static std::string OSGetUserSessionIdentifier();
  static unsigned int OSGetProcessIdentifier();

  // At least so long; a signal does not cut it short.
  static void OSSleep(unsigned int milliseconds);
  // Milliseconds on a clock that only goes forward. Good for differences.
  static std::uint64_t OSTimeStamp();
  // WallClock's.
  static std::int64_t OSGetSecondsSince1970();

  // What a process needs once before anything else and after everything. On Linux nothing: the
  // libraries set themselves up, and what they share with a host is not ours to take down.
  static TModuleErrorCode OSInitializeRuntime();
  static TModuleErrorCode OSShutdownRuntime();

  // Counted: the first call sets sockets up, and the last UninitializeSockets takes them down. A
  // call that fails does not count. An UninitializeSockets too many is reported and gives
  // CoreErrorCodes::kNotInitialized. On Linux there is nothing to set up; SIGPIPE stays the host's,
  // and each send asks for none.
  static TModuleErrorCode InitializeSockets();
  static TModuleErrorCode UninitializeSockets();
  static bool AreSocketsInitialized();

  // The first IPv4 address of an interface that is up and no loopback, in numbers and dots; empty
  // if there is none.
  static TModuleErrorCode OSGetLocalIPAddress(std::string& address);
  static TModuleErrorCode OSGetHostname(std::string& name);

  static std::uint16_t OSSwapBytesToNetwork(std::uint16_t value);
  static std::uint32_t OSSwapBytesToNetwork(std::uint32_t value);
  static std::uint16_t OSSwapBytesToHost(std::uint16_t value);
  static std::uint32_t OSSwapBytesToHost(std::uint32_t value);

  // "00:1b:21:3a:4f:5e": the address in use of the network interface that leads out of the machine,
  // by the rule of SelectPrimaryMACAddress. On Linux the Ethernet kind (wireless included) in the
  // order of their indexes, primary the one of the default route, the cheapest if there are several
  // and IPv6's only if IPv4 has none; bridges, tunnels and containers' interfaces have no device.
  // Empty, and code 0, on a machine without one; CoreErrorCodes::kError if the system does not list
  // its interfaces.
  static TModuleErrorCode GetPrimaryMACAddress(std::string& address);
  static TModuleErrorCode OSGetPrimaryMACAddress(std::string& address);

  // 32 lower-case hexadecimal digits that stay the same as long as the system is installed: on
  // Linux /etc/machine-id, lacking it D-Bus's copy. CoreErrorCodes::kNotFound if neither is there
  // and valid. It is the raw identifier, as the other systems give theirs, and as confidential: it
  // stays on this machine and out of logs; whoever must tell somebody else derives a key from it.
  static TModuleErrorCode GetMachineID(std::string& machineID);
  static TModuleErrorCode OSGetMachineID(std::string& machineID);

  static const char* OSGetLineEnding();

  // CoreErrorCodes::kNotSupported: there is no such registry on Linux. `value` is left alone.
  static TModuleErrorCode OSGetRegistryStringValue(const std::string& key, const std::string& name,
                                                   std::string& value);
  static TModuleErrorCode OSWriteRegistryStringValue(const std::string& key,
                                                     const std::string& name,
                                                     const std::string& value);

 private:
  static TModuleErrorCode OSInitializeSockets();
  static TModuleErrorCode OSUninitializeSockets();
};
