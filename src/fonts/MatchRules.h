// By which rules two fonts are the same, and which of several is the better one. Null records are
// legal everywhere. Threads: [main-thread], for the comparator asks the facade.
#pragma once

#include <string>
#include <string_view>

#include "propertylist/FontRecord.h"

namespace FaceprintSupport {

// Of ten keys, compared in a fixed order, none that the source has differs (ignoring case and ASCII
// blanks around the text; a checksum of 0 fits any), and at least three were there to compare. An
// equal checksum of a whole font settles it: what stands behind it in the order is not compared.
bool IsPerfectMatch(const FontRecord& source, const FontRecord& candidate);
// The same for a source that a document's XMP describes: name, family, type and version.
bool IsXMPMatch(const FontRecord& source, const FontRecord& candidate);
// -1 if the first is better, 1 if the second is, 0 on a tie. Asks the facade which of the two is
// activated, unless a record says so. Not a strict weak ordering on every input.
int PickBestMatchCallBack(const FontRecord& first, const FontRecord& second,
                          const FontRecord& source);
// Sorts best first, keeps ties in order; stays in bounds and ends whatever the comparator answers.
// Entries that are no records tie with what says nothing.
void SortByBestMatch(const FontRecordArray& fonts, const FontRecord& source);

// Equal ignoring case, as SameIgnoringCase tells.
bool KeyValueIs(const FontRecord& record, std::string_view key, std::string_view value);
// -1 if only the first agrees with the source's text, 1 if only the second does, else 0.
int KeyValueStringMatch(const FontRecord& source, const FontRecord& first, const FontRecord& second,
                        std::string_view key);
bool KeyValueContains(const FontRecord& record, std::string_view key, std::string_view value);
bool KeyHasNonZeroValue(const FontRecord& record, std::string_view key);
// Equal but for the case of ASCII letters.
bool DoValuesExistAndMatch(const std::string* a, const std::string* b);
bool IsPostScriptNameOnly(const FontRecord& record);

}  // namespace FaceprintSupport
