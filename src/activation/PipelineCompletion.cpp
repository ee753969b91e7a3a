// Lists of fonts, completed with what the database knows.
#include <set>

#include "activation/ConnectedFontManager.h"
#include "activation/Pipeline.h"
#include "fonts/FontDataCache.h"
#include "fonts/FontMerging.h"
#include "fonts/FontNameIndex.h"
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

// A list on its way to being complete. A record that goes leaves a gap until the walk is over, so
// that the places of all others stay what the index says, and a long list costs no more than its
// length.
class Completion {
 public:
  Completion(const FontRecordArray& fonts, long workgroupID, bool activeOnly, bool tryFamilyNames)
      : mFonts(fonts),
        mIndex(fonts),
        mWorkgroupID(workgroupID),
        mActiveOnly(activeOnly),
        mTryFamilyNames(tryFamilyNames) {}

  // The last code. 1000 ends the walk.
  int CompleteAll();

 private:
  void CompleteOne(std::size_t place, int& result);
  bool UseCachedData(const std::string& name);
  int MergeFamilyOf(const FontRecord& record, const std::string& name);
  void CloseGaps();

  const FontRecordArray& mFonts;
  FontNameIndex mIndex;
  std::set<std::size_t> mGaps;
  long mWorkgroupID;
  bool mActiveOnly;
  bool mTryFamilyNames;
};

int Completion::CompleteAll() {
  int result = 0;
  try {
    // Backwards: what is appended on the way is complete already.
    for (std::size_t i = mFonts->Count(); i-- > 0;) {
      CompleteOne(i, result);
      if (result == kErrorKestraneNotRunning) break;
    }
  } catch (...) {
    CloseGaps();
    throw;
  }
  CloseGaps();
  return result;
}

void Completion::CompleteOne(std::size_t place, int& result) {
  const FontRecord record = mFonts->DictionaryAt(place);
  if (!record) return;
  const std::string name = RecordString(record, kFP_PostScriptNameKey);
  if (mActiveOnly && UseCachedData(name)) return;
  FontRecord best;
  result = GetFaceprintDataForBestMatch(record, mWorkgroupID, best);
  if (result == kErrorKestraneNotRunning) return;
  if (best) {
    if (RecordString(best, kFP_PostScriptNameKey) != name) {
      mIndex.Remove(record, place);
      mFonts->Set(place, PropertyList::Value());
      mGaps.insert(place);
    }
    MergeFaceprintDictionaryIntoArray(mFonts, best, mIndex);
  } else if (mTryFamilyNames && mActiveOnly) {
    result = MergeFamilyOf(record, name);
  }
}

bool Completion::UseCachedData(const std::string& name) {
  FontRecord cached;
  std::uint32_t databaseID = 0;
  if (!FontDataPreviouslyGottenFromDatabase::CreateCopyOfFaceprintDataForActiveFont(name, cached,
                                                                                    databaseID)) {
    return false;
  }
  MergeFaceprintDictionaryIntoArray(mFonts, cached, mIndex);
  OutputFormattedDebugString("Using cached faceprint data for the active version of %s",
                             name.c_str());
  return true;
}

// Adds every font of the record's family; the family is what stands before the first "-" of the
// name where the record names none.
int Completion::MergeFamilyOf(const FontRecord& record, const std::string& name) {
  if (!record->Has(kFP_FamilyKey) && !name.empty()) {
    record->Set(kFP_FamilyKey, name.substr(0, name.find('-')));
  }
  FontRecordArray family = MakeFontRecordArray();
  const int result = AskFontManager([&](FontManagerInterface& fontManager) {
    bool excludedRemote = false;
    return fontManager.GetFaceprintData(record, kFamilyFontName, &excludedRemote, mWorkgroupID,
                                        family);
  });
  if (CountOf(family) != 0) MergeFontsIntoFontsArray(family, mFonts, mIndex);
  return result;
}

void Completion::CloseGaps() {
  if (mGaps.empty()) return;
  RemoveFromBack(mFonts, [this](std::size_t i) { return mGaps.contains(i); });
}

void RemoveInactiveFonts(const FontRecordArray& fonts) {
  FontManagerInterface* fontManager = FontManagerInterface::GetFontManager();
  if (fontManager == nullptr) return;
  const std::map<std::uint32_t, bool> states = fontManager->GetFontIsActivated(fonts);
  RemoveFromBack(fonts, [&](std::size_t i) {
    const FontRecord record = fonts->DictionaryAt(i);
    if (!record) return false;
    const auto state = states.find(RecordDatabaseID(record));
    if (state != states.end() && state->second) return false;
    OutputFormattedDebugString("Removing inactive '%s' from fonts.",
                               RecordString(record, kFP_PostScriptNameKey).c_str());
    return true;
  });
}

// `name` may be missing.
FontRecord MakeIDRecord(const char* name, std::uint32_t id, long workgroupID) {
  FontRecord record = CreateFaceprintDictionary(name);
  SetRecordNumber(record, kFP_DatabaseIDKey, id);
  SetRecordNumber(record, kFP_WorkgroupIDKey, workgroupID);
  return record;
}

void AppendIDMatch(const FontRecordArray& matches, const char* name, std::uint32_t id,
                   long workgroupID) {
  FontRecord record = MakeIDRecord(name, id, workgroupID);
  record->Set(kFP_MatchedFontKey, MakeIDRecord(name, id, workgroupID));
  matches->Append(std::move(record));
}

int FindIDsOfFamily(const FontRecord& font, long workgroupID, FontRecordArray& outMatched) {
  const std::string* family = FindString(font, kFP_FamilyKey);
  if (family == nullptr) return kErrorGeneral;
  FontManagerInterface::FontIDs ids;
  const int result = AskFontManager([&](FontManagerInterface& fontManager) {
    return fontManager.FontIDsForFamilyName(*family, workgroupID, ids);
  });
  if (result == kErrorKestraneNotRunning || ids.empty()) return result;
  outMatched = MakeFontRecordArray();
  for (const std::uint32_t id : ids) {
    std::string name;
    const int nameResult = AskFontManager([&](FontManagerInterface& fontManager) {
      return fontManager.GetPostscriptNameByID(name, workgroupID, id);
    });
    if (nameResult == kErrorKestraneNotRunning) return nameResult;
    AppendIDMatch(outMatched, nameResult == 0 ? name.c_str() : nullptr, id, workgroupID);
  }
  return result;
}

int FindIDsOfFont(const FontRecord& font, long workgroupID, FontRecordArray& outMatched) {
  if (const std::string* name = FindString(font, kFP_PostScriptNameKey)) {
    FontManagerInterface::FontIDs ids;
    const int result = AskFontManager([&](FontManagerInterface& fontManager) {
      return fontManager.FontIDsForPostScriptName(*name, workgroupID, ids);
    });
    if (result == kErrorKestraneNotRunning) return result;
    if (!ids.empty()) {
      outMatched = MakeFontRecordArray();
      for (const std::uint32_t id : ids) AppendIDMatch(outMatched, name->c_str(), id, workgroupID);
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
  const int result =
      Completion(fonts, workgroupID, excludeInactiveFonts, tryFamilyNames).CompleteAll();
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
