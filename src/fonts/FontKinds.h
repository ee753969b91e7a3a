// Kinds and foundries of the older font manager, in both directions.
#pragma once

#include <string>

#include "propertylist/FontRecord.h"

namespace FaceprintSupport {

enum ExtentOfMapping : int { kMapAllNames = 0, kMapPSPairOnly = 1 };

void MapSorrellineNamesToKestraneNames(const FontRecordArray& fonts, int extent);
bool MapSorrellineFontTypeToKestraneFontType(const FontRecord& record, int extent);
std::string MapSorrellineFontTypeToKestraneFontType(const std::string& kind, int extent);
std::string MapKestraneFontTypeToSorrellineFontType(const std::string& kind, int extent);
bool MapSorrellineFoundryNameToKestraneFoundryName(const FontRecord& record);
std::string CreateSorrellineFoundryNameFromKestraneFoundryName(const std::string& name);
// The three repairs of every slug read from a document.
void PostProcessFaceprintSlug(const FontRecordArray& fonts);
bool PostProcessSingleFontForSlug(const FontRecord& record);

}  // namespace FaceprintSupport
