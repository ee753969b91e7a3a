// What the caller told about itself at the start, and what it added since.
#pragma once

#include <string>
#include <string_view>

#include "propertylist/Value.h"

class HostDetails {
 public:
  static HostDetails& Shared();

  // Forgets what was known; null is an empty dictionary.
  void Replace(const PropertyList::DictionaryRef& details);
  void Merge(const PropertyList::DictionaryRef& details);
  // Empty if it is not known or no string.
  std::string Get(std::string_view key) const;

  void SetIsOnline(bool isOnline) { mIsOnline = isOnline; }
  bool IsOnline() const { return mIsOnline; }

 private:
  PropertyList::DictionaryRef mDetails = PropertyList::Dictionary::Create();
  bool mIsOnline = true;
};
