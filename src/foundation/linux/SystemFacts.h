// What the system's files and texts say, below a root folder ("" for the machine's own).
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "foundation/ErrorCodes.h"
#include "foundation/NetworkInterfaces.h"

namespace SystemFacts {

// The file's first bytes, 64 KiB unless told; empty if it can't be read.
std::string ReadFile(const std::string& path, std::size_t limit = 65536);

// False, and zeros, if `release` does not begin with a number; numbers that are missing are 0.
bool ParseRelease(std::string_view release, unsigned int (&numbers)[3]);
// Hertz; 0 if unknown.
unsigned long long ReadCPUSpeed(const std::string& root);
// 32 lower-case hexadecimal digits; empty if there is no valid one.
std::string ReadMachineID(const std::string& root);

// A locale's language as a tag ("pt-BR" of "pt_BR.UTF-8@euro"); empty for C, POSIX and no locale.
std::string TagOfLocale(std::string_view locale);
// The tags of LANGUAGE, then that of the locale; "en" in place of none.
std::vector<std::string> PreferredLanguages(std::string_view locale, std::string_view language);

// The Ethernet kind in the order of their indexes. False if the folder of interfaces can't be read.
bool ListEthernetInterfaces(const std::string& root, std::vector<NetworkInterface>& interfaces);

}  // namespace SystemFacts
