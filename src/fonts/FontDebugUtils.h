// Font lists in the plug-in log.
#pragma once

#include "propertylist/FontRecord.h"

namespace FontDebugUtils {

// One line with the title and the count, then one per font.
void DumpFontNames(const FontRecordArray& fonts, const char* title);

}  // namespace FontDebugUtils
