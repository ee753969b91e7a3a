// Merging lists of fonts from different sources, and counting what is in them.
#pragma once

#include <cstddef>

#include "propertylist/FontRecord.h"

namespace FaceprintSupport {

class FontNameIndex;

// Of two records of one name (as DoesArrayContainFontWithPostScriptName finds names) the one with
// more entries stays. The place of the record of that name; the earlier count if it was appended;
// -50 for a null array or record.
int MergeFaceprintDictionaryIntoArray(const FontRecordArray& fonts, const FontRecord& record);
// Appends what the destination has no name for; completes what agrees (ignoring case) with a copy;
// of two that differ keeps the one with more keys. No record is changed in place. Either may be
// null.
void MergeFontsIntoFontsArray(const FontRecordArray& source, const FontRecordArray& destination);
// The same for who merges often into one array, since those above index it each time: the index is
// that of the array, and follows it.
int MergeFaceprintDictionaryIntoArray(const FontRecordArray& fonts, const FontRecord& record,
                                      FontNameIndex& index);
void MergeFontsIntoFontsArray(const FontRecordArray& source, const FontRecordArray& destination,
                              FontNameIndex& index);
// Records without possible replacements; null entries don't count.
int CountMissingFonts(const FontRecordArray& fonts);
// Records whose matched font is active.
int CountActiveFonts(const FontRecordArray& fonts);
// Each document font, or the slug's record of its name (or of its Multiple Master base), in the
// document's order; null if an argument is null. Fonts without a name are dropped.
FontRecordArray CreateFaceprintSlugsWithFaceprintFontsAndDocumentFonts(
    const FontRecordArray& slugFonts, const FontRecordArray& documentFonts);
// Removes what `other` has no name for; how many. Entries without a name stay.
int RemoveUniqueFontsFromFontArray(const FontRecordArray& arrayToTrim,
                                   const FontRecordArray& other);
// Has each record a matched font? Those that have are appended to `outResolved`, which may be null;
// null entries don't count.
bool AllFontsResolved(const FontRecordArray& fonts, const FontRecordArray& outResolved);

}  // namespace FaceprintSupport
