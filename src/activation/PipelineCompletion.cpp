// Lists of fonts, completed with what the database knows.
#include "activation/ConnectedFontManager.h"
#include "activation/Pipeline.h"
#include "fonts/FontDataCache.h"
#include "fonts/FontMerging.h"
#include "fonts/FontRecordOperations.h"
#include "fonts/MatchRules.h"
#include "fonts/RecordAccess.h"
#include "foundation/PluginLog.h"

namespace FaceprintSupport {
namespace {

// A copy of the best candidate, the caller's to change; `outBest` stays null if there is none.
int GetFaceprintDataForBestMatch(const FontRecord& record, long workgroupID, FontRecord& outBest) {
  FontManagerInterface* fontManager = FontManagerInterface::GetFontManager();
  if (fontManager == nullptr) return kErrorBadArgument;
  FontRecordArray candidates = MakeFontRecordArray();
  bool excludedRemote = false;
  const int result = fontManager->GetFaceprintData(record, kPostScriptFontName, &excludedRemote,
                                                   workgroupID, candidates);
  if (result != 0 || CountOf(candidates) == 0) return result;
  if (const FontRecord best = candidates->DictionaryAt(0)) outBest = best->Copy();
  return result;
}

// Adds every font of the record's family; the family is what stands before the first "-" of the
// name where the record names none.
int MergeFamilyOf(const FontRecord& record, const std::string& name, long workgroupID,
                  const FontRecordArray& fonts) {
  FontManagerInterface* fontManager = FontManagerInterface::GetFontManager();
  if (fontManager == nullptr) return kErrorBadArgument;
  if (!record->Has(kFP_FamilyKey) && !name.empty()) {
    record->Set(kFP_FamilyKey, name.substr(0, name.find('-')));
  }
  FontRecordArray family = MakeFontRecordArray();
  bool excludedRemote = false;
  const int result =
      fontManager->GetFaceprintData(record, kFamilyFontName, &excludedRemote, workgroupID, family);
  if (CountOf(family) != 0) MergeFontsIntoFontsArray(family, fonts);
  return result;
}

bool UseCachedData(const FontRecordArray& fonts, const std::string& name) {
  FontRecord cached;
  std::uint32_t databaseID = 0;
  if (!FontDataPreviouslyGottenFromDatabase::CreateCopyOfFaceprintDataForActiveFont(name, cached,
                                                                                    databaseID)) {
    return false;
  }
  MergeFaceprintDictionaryIntoArray(fonts, cached);
  OutputFormattedDebugString("Using cached faceprint data for the active version of %s",
                             name.c_str());
  return true;
}

int CompleteOneFont(const FontRecordArray& fonts, std::size_t index, long workgroupID,
                    bool excludeInactiveFonts, bool tryFamilyNames) {
  const FontRecord record = fonts->DictionaryAt(index);
  const std::string name = RecordString(record, kFP_PostScriptNameKey);
  if (excludeInactiveFonts && UseCachedData(fonts, name)) return 0;
  FontRecord best;
  const int result = GetFaceprintDataForBestMatch(record, workgroupID, best);
  if (result == kErrorKestraneNotRunning) return result;
  if (best) {
    if (RecordString(best, kFP_PostScriptNameKey) != name) fonts->Remove(index);
    MergeFaceprintDictionaryIntoArray(fonts, best);
    return result;
  }
  if (!tryFamilyNames || !excludeInactiveFonts) return result;
  return MergeFamilyOf(record, name, workgroupID, fonts);
}

void RemoveInactiveFonts(const FontRecordArray& fonts) {
  FontManagerInterface* fontManager = FontManagerInterface::GetFontManager();
  if (fontManager == nullptr) return;
  const std::map<std::uint32_t, bool> states = fontManager->GetFontIsActivated(fonts);
  for (std::size_t i = fonts->Count(); i-- > 0;) {
    const FontRecord record = fonts->DictionaryAt(i);
    if (!record) continue;
    const auto state = states.find(RecordDatabaseID(record));
    if (state != states.end() && state->second) continue;
    OutputFormattedDebugString("Removing inactive '%s' from fonts.",
                               RecordString(record, kFP_PostScriptNameKey).c_str());
    fonts->Remove(i);
  }
}

FontRecord MakeIDRecord(const std::string& name, std::uint32_t id, long workgroupID) {
  FontRecord record = CreateFaceprintDictionary(name.c_str());
  SetRecordNumber(record, kFP_DatabaseIDKey, id);
  SetRecordNumber(record, kFP_WorkgroupIDKey, workgroupID);
  return record;
}

void AppendIDMatch(const FontRecordArray& matches, const std::string& name, std::uint32_t id,
                   long workgroupID) {
  FontRecord record = MakeIDRecord(name, id, workgroupID);
  record->Set(kFP_MatchedFontKey, MakeIDRecord(name, id, workgroupID));
  matches->Append(std::move(record));
}

int FindIDsOfFamily(const FontRecord& font, long workgroupID, FontRecordArray& outMatched) {
  FontManagerInterface* fontManager = FontManagerInterface::GetFontManager();
  const std::string* family = FindString(font, kFP_FamilyKey);
  if (fontManager == nullptr || family == nullptr) return kErrorGeneral;
  FontManagerInterface::FontIDs ids;
  const int result = fontManager->FontIDsForFamilyName(*family, workgroupID, ids);
  if (result == kErrorKestraneNotRunning || ids.empty()) return result;
  outMatched = MakeFontRecordArray();
  for (const std::uint32_t id : ids) {
    std::string name;
    const int nameResult = fontManager->GetPostscriptNameByID(name, workgroupID, id);
    if (nameResult == kErrorKestraneNotRunning) return nameResult;
    if (nameResult == 0) AppendIDMatch(outMatched, name, id, workgroupID);
  }
  return result;
}

int FindIDsOfFont(const FontRecord& font, long workgroupID, FontRecordArray& outMatched) {
  FontManagerInterface* fontManager = FontManagerInterface::GetFontManager();
  if (fontManager == nullptr) return kErrorKestraneNotRunning;
  if (const std::string* name = FindString(font, kFP_PostScriptNameKey)) {
    FontManagerInterface::FontIDs ids;
    const int result = fontManager->FontIDsForPostScriptName(*name, workgroupID, ids);
    if (result == kErrorKestraneNotRunning) return result;
    if (!ids.empty()) {
      outMatched = MakeFontRecordArray();
      for (const std::uint32_t id : ids) AppendIDMatch(outMatched, *name, id, workgroupID);
      return result;
    }
  }
  return FindIDsOfFamily(font, workgroupID, outMatched);
}

}  // namespace

int AppendFaceprintDataToFonts(const FontRecordArray& fonts, long workgroupID,
                               bool excludeInactiveFonts, bool getAllFontInfo,
                               bool tryFamilyNames) {
  if (ConnectedFontManager() == nullptr) return kErrorKestraneNotRunning;
  if (!fonts) return kErrorBadArgument;
  int result = 0;
  // Backwards: what is appended on the way is complete already.
  for (std::size_t i = fonts->Count(); i-- > 0;) {
    if (!fonts->DictionaryAt(i)) continue;
    result = CompleteOneFont(fonts, i, workgroupID, excludeInactiveFonts, tryFamilyNames);
    if (result == kErrorKestraneNotRunning) break;
  }
  if (excludeInactiveFonts) RemoveInactiveFonts(fonts);
  if (!getAllFontInfo && RemoveUnsluggableFaceprintKeys(fonts) != 0) {
    // Nothing failed: 1 means that keys were removed. The line is kept for who reads these logs.
    OutputFormattedDebugString("ERROR:  RemoveUnsluggableFaceprintKeys() apparently failed.");
  }
  return result;
}

int FindIDsForBestMatches(const FontRecordArray& documentFonts, FontRecordArray* outMatched,
                          long workgroupID) {
  if (ConnectedFontManager() == nullptr) return kErrorKestraneNotRunning;
  if (!documentFonts || outMatched == nullptr) return kErrorBadArgument;
  FontRecordArray matched;
  int result = 0;
  for (std::size_t i = 0; i < documentFonts->Count(); ++i) {
    const FontRecord font = documentFonts->DictionaryAt(i);
    if (!font) continue;
    result = FindIDsOfFont(font, workgroupID, matched);
    if (result == kErrorKestraneNotRunning) break;
  }
  *outMatched = matched ? std::move(matched) : MakeFontRecordArray();
  return result;
}

bool AdobeXMPMatchesExactlyOnePossibleReplacement(const FontRecord& source,
                                                  const FontRecordArray& candidates,
                                                  FontRecord* outRecord) {
  FontRecord match;
  int matches = 0;
  for (std::size_t i = 0; i < CountOf(candidates); ++i) {
    FontRecord candidate = candidates->DictionaryAt(i);
    if (!IsXMPMatch(source, candidate)) continue;
    ++matches;
    match = std::move(candidate);
  }
  if (matches != 1) match = nullptr;
  if (outRecord != nullptr) *outRecord = match;
  return matches == 1;
}

}  // namespace FaceprintSupport
