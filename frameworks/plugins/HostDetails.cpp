#include "frameworks/plugins/HostDetails.h"

HostDetails& HostDetails::Shared() {
  static HostDetails* const details = new HostDetails;  // parked for the process's life
  return *details;
}

void HostDetails::Replace(const PropertyList::DictionaryRef& details) {
  mDetails->Clear();
  Merge(details);
}

void HostDetails::Merge(const PropertyList::DictionaryRef& details) {
  if (!details) return;
  for (const auto& [key, value] : details->Entries()) mDetails->Set(key, value);
}

std::string HostDetails::Get(std::string_view key) const {
  const std::string* const text = mDetails->GetString(key);
  return text ? *text : std::string();
}
