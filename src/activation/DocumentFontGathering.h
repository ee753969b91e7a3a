// Tidying lists of a document's fonts.
#pragma once

#include <string>

#include "propertylist/FontRecord.h"

namespace CommonFunctionality {

// Removes the two names that hosts carry in their documents and that stand for no font
// ("PhotoshopKinsokuHard", "AdobeInvisFont"), as long as nothing could replace them.
void RemoveFontsThatHaveNoPossibleReplacement(const FontRecordArray& fonts);
// Removes fonts whose PostScript name begins with `prefix`, with case; an empty prefix removes
// none.
void RemoveMatchingFonts(const FontRecordArray& fonts, const std::string& prefix);

}  // namespace CommonFunctionality
