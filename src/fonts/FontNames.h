// Names: normal forms, decorated names, Multiple Master instances, and names looked up in arrays.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

#include "propertylist/FontRecord.h"

namespace FaceprintSupport {

// Keeps ASCII letters and digits. Strict: "#" also drops the digits behind it, and the second "-"
// ends the name.
std::string GFontToolUtils_StripCharsAndNormalizeString(const std::string& text, bool strict);
std::string StripIllegalPostScriptCharacters(const std::string& name);
// The next shorter form of a decorated name. `out` may be `name`'s own buffer; the result is cut to
// `size` and terminated. False if there is nothing to take off.
bool PSNameMightHaveCruftAppended(const char* name, std::size_t size, char* out);
std::optional<std::string> CreateResolvedMMFontName(const std::optional<std::string>& name);
void ResolveMMFontString(std::string& name);
void ResolveDictionaryMMFontName(const FontRecord& record);

// Exact names first, then normalised, then strict. False for a null array or name.
bool DoesArrayContainFontWithPostScriptName(const FontRecordArray& fonts, const char* name,
                                            std::size_t* outIndex = nullptr);
bool DoesArrayContainFontWithDatabaseID(const FontRecordArray& fonts, std::uint32_t id,
                                        std::size_t* outIndex = nullptr);
// Is it of one of the two Multiple Master kinds?
bool IsMultipleMaster(const FontRecord& record);
// Logs that an instance is taken for its base.
void TellOfMultipleMasterBase(const std::string& baseName, const std::string& name);
// An exact name, or a Multiple Master base of the asked instance; null if there is none.
FontRecord GetFaceprintDictionaryFromArrayWithPostscriptName(const FontRecordArray& fonts,
                                                             const char* name,
                                                             std::size_t* outIndex = nullptr);

}  // namespace FaceprintSupport
