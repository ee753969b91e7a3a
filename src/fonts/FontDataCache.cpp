#include "fonts/FontDataCache.h"

#include <map>
#include <set>
#include <unordered_map>

#include "foundation/PluginLog.h"
#include "sdk/FontRecordKeys.h"

namespace FontDataPreviouslyGottenFromDatabase {
namespace {

using InfoRec = FontManagerInterface::FontOrSetInfoRec;

struct Cache {
  std::map<std::uint32_t, InfoRec> idToInfoRec;
  // Versions of each name. Their ascending order decides ties.
  std::unordered_map<std::string, std::set<std::uint32_t>> idsByName;

  const std::set<std::uint32_t>& VersionsOf(const std::string& name) const {
    static const auto& none = *new std::set<std::uint32_t>;
    const auto found = idsByName.find(name);
    return found == idsByName.end() ? none : found->second;
  }
};

// Kept to the end of the process.
Cache& TheCache() {
  static auto& cache = *new Cache;
  return cache;
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
  for (const std::uint32_t otherID : TheCache().VersionsOf(name)) {
    if (otherID != databaseID) {
      TheCache().idToInfoRec[otherID].activationState = kActivationStateInactive;
    }
  }
}

}  // namespace

// NOLINTNEXTLINE(performance-unnecessary-value-param): it is moved from, where the ID is new
void Add(std::uint32_t databaseID, InfoRec rec) {
  const auto [entry, isNew] = TheCache().idToInfoRec.try_emplace(databaseID, std::move(rec));
  const FontRecord& info = entry->second.info;
  if (isNew && RecordHas(info, kFP_PostScriptNameKey)) {
    TheCache().idsByName[RecordString(info, kFP_PostScriptNameKey)].insert(databaseID);
  }
}

void SetFontActivationState(std::uint32_t databaseID, bool isActive) {
  const auto found = TheCache().idToInfoRec.find(databaseID);
  if (found == TheCache().idToInfoRec.end()) {
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
  for (const std::uint32_t databaseID : TheCache().VersionsOf(postScriptName)) {
    const InfoRec& rec = TheCache().idToInfoRec[databaseID];
    if (rec.activationState == kActivationStateInactive ||
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
  for (const auto& [databaseID, rec] : TheCache().idToInfoRec) {
    OutputFormattedDebugString(
        "FontDataPreviouslyGottenFromDatabase::%s() removing %d ('%s') from cache.", __func__,
        static_cast<int>(databaseID), RecordString(rec.info, kFP_PostScriptNameKey).c_str());
  }
  TheCache() = Cache();
  return 0;
}

}  // namespace FontDataPreviouslyGottenFromDatabase
