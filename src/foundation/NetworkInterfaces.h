// Which network address identifies the machine.
#pragma once

#include <span>
#include <string>
#include <vector>

struct NetworkInterface {
  std::string className;
  std::string bsdName;
  bool primary = false;    // the machine's way out
  bool hasParent = false;  // is there a device behind it?
  std::vector<unsigned char> address;
};

// The address of the primary interface, the last of several, whatever comes before or after it;
// lacking one, the first interface with an address. One without a device, and one whose address is
// missing or all zeros, has none. Lower-case hexadecimal pairs joined with ":"; empty if there is
// none. Logs each step at info as "System". [any-thread]
std::string SelectPrimaryMACAddress(std::span<const NetworkInterface> interfaces);
