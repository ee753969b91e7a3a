#include "fonts/FontDataCache.h"

#include <map>

#include "foundation/PluginLog.h"
#include "sdk/FontRecordKeys.h"

namespace FontDataPreviouslyGottenFromDatabase {
namespace {

using InfoRec = FontManagerInterface::FontOrSetInfoRec;

// Ascending IDs: their order decides ties. Kept to the end of the process.
std::map<std::uint32_t, InfoRec>& idToInfoRec() {
  static auto& records = *new std::map<std::uint32_t, InfoRec>;
  return records;
}

bool IsActiveState(std::int64_t state) {
  return state == kActivationStateActive || state == kActivationStateTemporary;
}

void MarkActive(std::uint32_t databaseID, InfoRec& rec) {
  const std::string name = RecordString(rec.info, kFP_PostScriptNameKey);
  OutputFormattedDebugString(
      "Setting activation state to %d in FontDataPreviouslyGottenFromDatabase::%s(%d (%s, version "
      "%s), isActive=%d) with Faceprint_ActivationStatusKey=%s, Faceprint_IsActiveKey=%s",
      kActivationStateTemporary, "SetFontActivationState", static_cast<int>(databaseID),
      name.c_str(), RecordString(rec.info, kFP_VersionKey).c_str(), 1,
      RecordString(rec.info, kFP_ActivationStateKey).c_str(),
      RecordString(rec.info, kFP_IsActiveKey).c_str());
  rec.activationState = kActivationStateTemporary;
  if (!RecordHas(rec.info, kFP_PostScriptNameKey)) return;
  // Only one version of a name is active at a time.
  for (auto& [otherID, other] : idToInfoRec()) {
    if (otherID != databaseID && RecordHas(other.info, kFP_PostScriptNameKey) &&
        RecordString(other.info, kFP_PostScriptNameKey) == name) {
      other.activationState = kActivationStateInactive;
    }
  }
}

}  // namespace

// NOLINTNEXTLINE(performance-unnecessary-value-param): it is moved from, where the ID is new
void Add(std::uint32_t databaseID, InfoRec rec) {
  idToInfoRec().try_emplace(databaseID, std::move(rec));
}

void SetFontActivationState(std::uint32_t databaseID, bool isActive) {
  const auto found = idToInfoRec().find(databaseID);
  if (found == idToInfoRec().end()) {
    OutputFormattedDebugString(
        "%s() failing to record transition to activation state %d because font with databaseID %d "
        "not in FontDataPreviouslyGottenFromDatabase.",
        __func__, isActive ? kActivationStateTemporary : kActivationStateInactive,
        static_cast<int>(databaseID));
    return;
  }
  InfoRec& rec = found->second;
  if (!isActive) {
    rec.activationState = kActivationStateInactive;
  } else if (!IsActiveState(rec.activationState)) {
    MarkActive(databaseID, rec);
  }
}

// Both views have to agree: the state at delivery and the live one.
bool CreateCopyOfFaceprintDataForActiveFont(const std::string& postScriptName,
                                            FontRecord& outRecord, std::uint32_t& outID) {
  for (const auto& [databaseID, rec] : idToInfoRec()) {
    if (rec.activationState == kActivationStateInactive) continue;
    if (!RecordHas(rec.info, kFP_PostScriptNameKey) ||
        RecordString(rec.info, kFP_PostScriptNameKey) != postScriptName ||
        !IsActiveState(RecordInteger(rec.info, kFP_ActivationStateKey))) {
      continue;
    }
    OutputFormattedDebugString(
        "Returning TRUE from FontDataPreviouslyGottenFromDatabase::%s('%s', ...) with version %s, "
        "Faceprint_ActivationStatusKey=%s, Faceprint_IsActiveKey=%s",
        __func__, postScriptName.c_str(), RecordString(rec.info, kFP_VersionKey).c_str(),
        RecordString(rec.info, kFP_ActivationStateKey).c_str(),
        RecordString(rec.info, kFP_IsActiveKey).c_str());
    outRecord = rec.info->Copy();
    outID = databaseID;
    return true;
  }
  return false;
}

int DeleteAll() {
  for (const auto& [databaseID, rec] : idToInfoRec()) {
    OutputFormattedDebugString(
        "FontDataPreviouslyGottenFromDatabase::%s() removing %d ('%s') from cache.", __func__,
        static_cast<int>(databaseID), RecordString(rec.info, kFP_PostScriptNameKey).c_str());
  }
  idToInfoRec().clear();
  return 0;
}

}  // namespace FontDataPreviouslyGottenFromDatabase
