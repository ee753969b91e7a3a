#include "foundation/NetworkInterfaces.h"

#include <algorithm>

#include "foundation/ErrorChecks.h"
#include "foundation/GLogger.h"
#include "foundation/GStringUtils.h"

namespace {

constexpr const char* kLogIdentifier = "System";

std::string TextOfAddress(std::span<const unsigned char> address) {
  std::vector<std::string> pairs;
  for (const unsigned char byte : address) {
    const char character = static_cast<char>(byte);
    pairs.push_back(GStringUtils::HexadecimalString(&character, 1));
  }
  return GStringUtils::Join(pairs, ":");
}

// Looks at the next interface with what the former ones gave.
void Examine(const NetworkInterface& service, std::string& chosen) {
  GLogger* log = GLogger::GetSharedInstance();
  const char* className = service.className.c_str();
  const char* bsdName = service.bsdName.c_str();
  const int primary = service.primary ? 1 : 0;
  log->LogInfo(kLogIdentifier,
               "Examining service: class name = '%s', BSD name = '%s', primary = %d", className,
               bsdName, primary);
  if (!chosen.empty() && !service.primary) {
    log->LogInfo(kLogIdentifier,
                 "Skipping service, already have address and new one is not primary interface, cur "
                 "addr = '%s'",
                 chosen.c_str());
    return;
  }
  if (!service.hasParent) {
    log->LogInfo(kLogIdentifier,
                 "Failed to get parent service, skipping: class name = '%s', BSD name = '%s', "
                 "primary = %d",
                 className, bsdName, primary);
    return;
  }
  if (std::ranges::all_of(service.address, [](unsigned char byte) { return byte == 0; })) {
    WriteErrorRecord(1, __FILE__, __LINE__, "[addressData length] == 0", CoreErrorCodes::kNotFound);
    return;
  }
  const std::string candidate = TextOfAddress(service.address);
  if (chosen.empty() || service.primary) {
    chosen = candidate;
  } else {
    log->LogInfo(kLogIdentifier,
                 "Didn't overwrite MAC address (cur addr = '%s', candidate MAC Address = '%s')",
                 chosen.c_str(), candidate.c_str());
  }
}

}  // namespace

std::string SelectPrimaryMACAddress(std::span<const NetworkInterface> interfaces) {
  std::string chosen;
  for (const NetworkInterface& service : interfaces) Examine(service, chosen);
  return chosen;
}
