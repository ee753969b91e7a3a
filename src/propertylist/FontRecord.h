// One font and an ordered list of them. Both are shared; entries of an array may be null or of
// another type, and every operation on fonts says what it does then.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "propertylist/Value.h"

using FontRecord = PropertyList::DictionaryRef;
using FontRecordArray = PropertyList::ArrayRef;

inline FontRecord MakeFontRecord() { return PropertyList::Dictionary::Create(); }
inline FontRecordArray MakeFontRecordArray() { return PropertyList::Array::Create(); }

// The number of entries, 0 for null.
inline std::size_t CountOf(const FontRecordArray& fonts) { return fonts ? fonts->Count() : 0; }

// Removes the entries of which `isUnwanted(index)` says so, asked from the last to the first, in
// linear time; how many there were. The predicate leaves the array alone. Null is legal.
template <typename Predicate>
std::size_t RemoveFromBack(const FontRecordArray& fonts, Predicate isUnwanted) {
  std::vector<PropertyList::Value> kept;  // last first
  const std::size_t count = CountOf(fonts);
  for (std::size_t i = count; i-- > 0;) {
    if (!isUnwanted(i)) kept.push_back(fonts->At(i));
  }
  const std::size_t removed = count - kept.size();
  if (removed > 0) fonts->Values().assign(kept.rbegin(), kept.rend());
  return removed;
}

// The string under a key; empty for a null record, an absent key or another kind.
std::string RecordString(const FontRecord& record, std::string_view key);
bool RecordHas(const FontRecord& record, std::string_view key);
// The integer value of a string as far as it is one ("12x" is 12, "x" is 0), within the type's
// limits; 0 if absent. A number stored as an integer counts as it is.
std::int64_t RecordInteger(const FontRecord& record, std::string_view key);
// The database ID; 0 for none, also where the number is not one of 32 bits without a sign.
std::uint32_t RecordDatabaseID(const FontRecord& record);
// Is the string under the key exactly "1"?
bool RecordFlag(const FontRecord& record, std::string_view key);
void SetRecordNumber(const FontRecord& record, std::string_view key, std::int64_t value);
