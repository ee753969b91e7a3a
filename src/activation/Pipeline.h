// Sorts a document's fonts into those that can be activated without asking and those that can't,
// and completes lists of fonts with what the database knows.
#pragma once

#include <cstdint>

#include "propertylist/FontRecord.h"

class TarnInterface;

namespace FaceprintSupport {

// Adds kFP_MatchedFontKey or kFP_PossibleReplacementsKey to the document's own records and puts
// them into one of the output arrays. 0, -50 or 1000.
int ProcessDocumentFontsForAutoActivation(const FontRecordArray& allDocumentFonts,
                                          const FontRecordArray& matchedFonts,
                                          const FontRecordArray& problemFonts,
                                          bool faceprintEnabled, bool pickBestMatch,
                                          long workgroupID, TarnInterface* tarn);
int AppendFaceprintDataToFonts(const FontRecordArray& fonts, long workgroupID,
                               bool excludeInactiveFonts, bool getAllFontInfo, bool tryFamilyNames);
int FindIDsForBestMatches(const FontRecordArray& documentFonts, FontRecordArray* outMatched,
                          long workgroupID);
bool AdobeXMPMatchesExactlyOnePossibleReplacement(const FontRecord& source,
                                                  const FontRecordArray& candidates,
                                                  FontRecord* outRecord);

}  // namespace FaceprintSupport
