// Making, reducing and repairing font records. Null records are legal where a sentence does not say
// otherwise.
#pragma once

#include <array>
#include <string>
#include <string_view>
#include <vector>

#include "propertylist/FontRecord.h"
#include "sdk/FontRecordKeys.h"

// Every key of a record and the three kinds, in their order, null-terminated.
extern const char* const kAllFaceprintCFKeys[];

// Keys of what a document's XMP says about a font.
inline constexpr const char* kAdobeXMPFontData_FamilyKey = "AdobeXMPFontData_Family";
inline constexpr const char* kAdobeXMPFontData_FaceKey = "AdobeXMPFontData_Face";
inline constexpr const char* kAdobeXMPFontData_TypeKey = "AdobeXMPFontData_Type";
inline constexpr const char* kAdobeXMPFontData_VersionStringKey = "AdobeXMPFontData_VersionString";
inline constexpr const char* kAdobeXMPFontData_CompositeKey = "AdobeXMPFontData_Composite";
inline constexpr const char* kAdobeXMPFontData_FontFileNameKey = "AdobeXMPFontData_FontFileName";

namespace FaceprintSupport {

// A record holding the name; an empty record for null.
FontRecord CreateFaceprintDictionary(const char* postScriptName);
FontRecord CreateFaceprintDictionaryWithFamilyName(const char* familyName);
// Adds a document font known by name only, after deleting blanks and brackets; true if added.
bool AddFontToArray(const char* postScriptName, const FontRecordArray& fonts, bool allowDuplicates);
FontRecordArray CreateFontArrayFromVectorOfPostscriptNames(const std::vector<std::string>& names);
// The matched fonts of `fonts`; null for an empty input.
FontRecordArray CreateFontArrayFromFontMatchArray(const FontRecordArray& fonts);

// 0, or -50 for a null argument. A failed serialisation leaves `outXml` and still gives 0.
int CreateXMLFaceprintSlug(const FontRecordArray& fonts, std::string* outXml);
// One of the ten keys that leave the plug-in?
bool IsSluggableKey(std::string_view key);
bool RemoveUnsluggableKeysFromDictionary(const FontRecord& record);
// 1 if any key was removed from any record, else 0.
int RemoveUnsluggableFaceprintKeys(const FontRecordArray& fonts);
// Lets a 1.2 checksum stand for a missing 1.1 one; clears an unusable kerning checksum. True if
// changed.
bool FixFaceprintChecksumsIfNeeded(const FontRecord& record);

bool FontRefContainsFaceprintData(const FontRecord& record);
bool FontRefContainsXMPData(const FontRecord& record);

}  // namespace FaceprintSupport
