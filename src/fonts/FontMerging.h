// Merging lists of fonts from different sources, and counting what is in them.
#pragma once

#include <cstddef>

#include "propertylist/FontRecord.h"

namespace FaceprintSupport {

// The index of the record of that name, the earlier count if it was appended, -50 for a null
// record.
int MergeFaceprintDictionaryIntoArray(const FontRecordArray& fonts, const FontRecord& record);
void MergeFontsIntoFontsArray(const FontRecordArray& source, const FontRecordArray& destination);
// Records without possible replacements; null entries don't count.
int CountMissingFonts(const FontRecordArray& fonts);
// Records whose matched font is active.
int CountActiveFonts(const FontRecordArray& fonts);
// Each document font, or the slug's record of its name; null if an argument is null.
FontRecordArray CreateFaceprintSlugsWithFaceprintFontsAndDocumentFonts(
    const FontRecordArray& slugFonts, const FontRecordArray& documentFonts);
int RemoveUniqueFontsFromFontArray(const FontRecordArray& arrayToTrim,
                                   const FontRecordArray& other);
bool AllFontsResolved(const FontRecordArray& fonts, const FontRecordArray& outResolved);

}  // namespace FaceprintSupport
