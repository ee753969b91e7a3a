// By which rules two fonts are the same, and which of several is the better one.
#pragma once

#include <string>
#include <string_view>

#include "propertylist/FontRecord.h"

namespace FaceprintSupport {

bool IsPerfectMatch(const FontRecord& source, const FontRecord& candidate);
bool IsXMPMatch(const FontRecord& source, const FontRecord& candidate);
// -1 if the first is better, 1 if the second is, 0 on a tie. `source` may be null. Not a strict
// weak ordering on every input.
int PickBestMatchCallBack(const FontRecord& first, const FontRecord& second,
                          const FontRecord& source);
// Sorts best first, keeps ties in order; stays in bounds and ends whatever the comparator answers.
void SortByBestMatch(const FontRecordArray& fonts, const FontRecord& source);

// Equal ignoring case, as SameIgnoringCase tells.
bool KeyValueIs(const FontRecord& record, std::string_view key, std::string_view value);
int KeyValueStringMatch(const FontRecord& source, const FontRecord& first, const FontRecord& second,
                        std::string_view key);
bool KeyValueContains(const FontRecord& record, std::string_view key, std::string_view value);
bool KeyHasNonZeroValue(const FontRecord& record, std::string_view key);
// Equal but for the case of ASCII letters.
bool DoValuesExistAndMatch(const std::string* a, const std::string* b);
bool IsPostScriptNameOnly(const FontRecord& record);

}  // namespace FaceprintSupport
