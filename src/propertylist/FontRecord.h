// One font and an ordered list of them. Both are shared; entries of an array may be null or of
// another type, and every operation on fonts says what it does then.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "propertylist/Value.h"

using FontRecord = PropertyList::DictionaryRef;
using FontRecordArray = PropertyList::ArrayRef;

inline FontRecord MakeFontRecord() { return PropertyList::Dictionary::Create(); }
inline FontRecordArray MakeFontRecordArray() { return PropertyList::Array::Create(); }

// The number of entries, 0 for null.
inline std::size_t CountOf(const FontRecordArray& fonts) { return fonts ? fonts->Count() : 0; }

// The string under a key; empty for a null record, an absent key or another kind.
std::string RecordString(const FontRecord& record, std::string_view key);
bool RecordHas(const FontRecord& record, std::string_view key);
// The integer value of a string as far as it is one ("12x" is 12, "x" is 0), within the type's
// limits; 0 if absent. A number stored as an integer counts as it is.
std::int64_t RecordInteger(const FontRecord& record, std::string_view key);
// The database ID, 0 for none.
std::uint32_t RecordDatabaseID(const FontRecord& record);
// Is the string under the key exactly "1"?
bool RecordFlag(const FontRecord& record, std::string_view key);
void SetRecordNumber(const FontRecord& record, std::string_view key, std::int64_t value);
