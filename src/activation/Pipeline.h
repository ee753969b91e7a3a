// Sorts a document's fonts into those that can be activated without asking and those that can't,
// and completes lists of fonts with what the database knows. Threads: [main-thread]; nobody changes
// the arrays meanwhile.
#pragma once

#include <cstdint>

#include "propertylist/FontRecord.h"

class TarnInterface;

namespace FaceprintSupport {

// For each document font, in order: a candidate that can be taken without asking goes under
// kFP_MatchedFontKey and the document's own record into `matchedFonts`; one that is missing, or
// whose candidates (kFP_PossibleReplacementsKey) leave a choice, goes into `problemFonts`. A font
// whose question failed, and one that the database does not know but the system has, goes into
// neither. `faceprintEnabled` is only logged; `pickBestMatch` takes the best candidate instead of
// leaving a choice; `tarn` is lent and may be null. 0 or the last font's code; 1000 without a font
// manager, which ends the walk and keeps what was sorted; -50 for a null array. What a callee
// throws passes on.
int ProcessDocumentFontsForAutoActivation(const FontRecordArray& allDocumentFonts,
                                          const FontRecordArray& matchedFonts,
                                          const FontRecordArray& problemFonts,
                                          bool faceprintEnabled, bool pickBestMatch,
                                          long workgroupID, TarnInterface* tarn);
// Puts the best database record of each font into its place, or beside it where the list has it
// already under another form of its name. `excludeInactiveFonts` then removes what is not active;
// with it, `tryFamilyNames` adds the family of a font that has no match, by its kFP_FamilyKey,
// which is added to the caller's record where it lacks one. Unless `getAllFontInfo`, only the keys
// that leave the plug-in stay. The last code; 1000 without a font manager, -50 for a null array.
int AppendFaceprintDataToFonts(const FontRecordArray& fonts, long workgroupID,
                               bool excludeInactiveFonts, bool getAllFontInfo, bool tryFamilyNames);
// A new array of one record per database ID of the last font that has any, by its name or else its
// family: name (absent if the font manager does not tell it), ID, workgroup, and under
// kFP_MatchedFontKey another record of the same three. Empty if nothing matched.
int FindIDsForBestMatches(const FontRecordArray& documentFonts, FontRecordArray* outMatched,
                          long workgroupID);
// The one candidate that IsXMPMatch accepts; false, and null, if there is none or more than one.
bool AdobeXMPMatchesExactlyOnePossibleReplacement(const FontRecord& source,
                                                  const FontRecordArray& candidates,
                                                  FontRecord* outRecord);

}  // namespace FaceprintSupport
