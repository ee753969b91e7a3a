// Font names in the raw bytes of documents, as Adobe applications leave them there. No format is
// parsed: patterns are searched for, and an occurrence directly behind a backslash does not count.
//
// A file is read in pieces, forwards, in bounded memory and time that is linear in its size, and
// the result is what a search over the whole file in memory would give. Names are UTF-8, in
// discovery order, duplicates kept, empty names included. Failure and "no fonts" both add nothing.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "propertylist/FontRecord.h"

// A name longer than this, in bytes of the file, is no name and is left out. A scan ends with what
// it has after this many names, and before a name that makes all of them longer than this: names
// may overlap, so that a small file could hold gigabytes of them.
inline constexpr std::size_t kMaxScannedNameBytes = std::size_t{64} << 10;
inline constexpr std::size_t kMaxScannedNames = 100'000;
inline constexpr std::size_t kMaxScannedNamesBytes = std::size_t{2} << 20;

namespace CommonFunctionality {

// `extension` with or without its dot; ignores case.
bool FileExtensionIs(const char* path, const char* extension);
// The patterns of the file's type first; every pattern if they found nothing.
void GetFontNamesFromNonXMPSectionOfAdobeDocument(const char* path,
                                                  std::vector<std::string>& names);
// One record for each name; never null.
FontRecordArray CreateFontArrayFromNonXMPSectionOfAdobeDocument(const char* path);

}  // namespace CommonFunctionality

namespace PhotoshopFontUtils {

// The font sets of a Photoshop document, with that host's own decoding of names.
// `replaceSubstitutes` sets the module's flag of that name, which stays set.
void GetDocumentFonts(const std::string& path, std::vector<std::string>& names,
                      bool replaceSubstitutes);
// The flag that the host's access asks for.
bool GetReplaceSubstitutes();

}  // namespace PhotoshopFontUtils

// The same as font records, without duplicates; the caller's to keep.
void PSGetDocumentFonts(FontRecordArray* outFonts, const std::string& path,
                        bool replaceSubstitutes);
