#include <algorithm>
#include <array>
#include <cstring>

#include "coreagent/CoreAgentInterface.h"
#include "facade/FacadeCall.h"
#include "fonts/FontDataCache.h"
#include "fonts/FontNames.h"
#include "fonts/FontRecordOperations.h"
#include "foundation/PluginLog.h"

namespace {

// What one question by name can answer.
constexpr std::uint32_t kMaxIDsPerQuery = 1024;
constexpr int kKindFont = 1;
constexpr int kNoWorkgroup = -1;

// Converted states by raw state.
constexpr std::array<std::uint16_t, 12> kConvertedStates = {
    kActivationStateInactive,  kActivationStateTemporary, kActivationStateTemporary,
    kActivationStateTemporary, kActivationStateActive,    kActivationStateActive,
    kActivationStateActive,    kActivationStateUnknown,   kActivationStateUnknown,
    kActivationStateTemporary, kActivationStateTemporary, kActivationStateActive};

FontRecord MakeQueryRecord(std::uint32_t fontID, long workgroupID) {
  FontRecord record = MakeFontRecord();
  SetRecordNumber(record, kFP_DatabaseIDKey, fontID);
  SetRecordNumber(record, kFP_WorkgroupIDKey, workgroupID);
  return record;
}

// One question by name; appends at most kMaxIDsPerQuery IDs.
template <typename EntryPoint>
std::uint32_t AppendFontIDs(EntryPoint entryPoint, const std::string& name,
                            const FontManagerInterface::FontIDs& workgroupIDs,
                            FontManagerInterface::FontIDs& ids) {
  std::array<std::uint32_t, kMaxIDsPerQuery> found{};
  std::uint32_t count = 0;
  const std::uint32_t code = FacadeCall::WithInstance(
      entryPoint, name.c_str(), workgroupIDs.data(),
      static_cast<std::uint32_t>(workgroupIDs.size()), found.data(), kMaxIDsPerQuery, &count);
  ids.insert(ids.end(), found.begin(), found.begin() + std::min(count, kMaxIDsPerQuery));
  return code;
}

// The facade's answer stands; the cache is only asked whether it agrees.
void LogActivation(const std::string& name, std::uint32_t id, bool isActive) {
  const int fontID = static_cast<int>(id);
  OutputFormattedDebugString(isActive ? "Skerry says that %s (fontID %d) is active"
                                      : "Skerry says that %s (fontID %d) is NOT active",
                             name.c_str(), fontID);
  FontRecord cached;
  std::uint32_t cachedID = 0;
  const bool isActiveInCache =
      FontDataPreviouslyGottenFromDatabase::CreateCopyOfFaceprintDataForActiveFont(name, cached,
                                                                                   cachedID) &&
      cachedID == id;
  if (isActiveInCache == isActive) return;
  OutputFormattedDebugString(isActiveInCache ? "But cache says %s (fontID %d) is active"
                                             : "But cache says %s (fontID %d) is NOT active",
                             name.c_str(), fontID);
}

}  // namespace

std::uint16_t ComputePluginActivationState(std::int64_t rawState) {
  if (rawState < 0 || rawState >= static_cast<std::int64_t>(kConvertedStates.size())) {
    return kActivationStateUnknown;
  }
  return kConvertedStates[static_cast<std::size_t>(rawState)];
}

int ConvertActivationStateValues(const FontRecord& record) {
  if (!record) return kErrorGeneral;
  const std::int64_t raw = RecordInteger(record, kFP_ActivationStateKey);
  const std::uint16_t state = ComputePluginActivationState(raw);
  const bool isTemporary = state == kActivationStateTemporary;
  const bool isActive = IsActiveState(state);
  const bool isAuto = raw == kRawActivationState_Auto || raw == kRawActivationState_AutoOther;
  SetRecordNumber(record, kFP_ActivationStateKey, state);
  SetRecordNumber(record, kFP_IsTempKey, isTemporary ? 1 : 0);
  SetRecordNumber(record, kFP_IsActiveKey, isActive ? 1 : 0);
  SetRecordNumber(record, kFP_IsAutoActivatedKey, isAuto ? 1 : 0);
  return 0;
}

FontManagerInterface::FontIDs CoreAgentInterface::GetFontIDsFromFontInfoArray(
    const FontRecordArray& fonts, bool excludeSystemFonts) {
  FontIDs ids;
  for (std::size_t i = 0; i < CountOf(fonts); ++i) {
    const FontRecord font = fonts->DictionaryAt(i);
    const std::uint32_t id = RecordDatabaseID(font);
    if (id == 0 || (excludeSystemFonts && RecordFlag(font, kFP_IsSystemKey))) continue;
    ids.push_back(id);
  }
  return ids;
}

template <typename EntryPoint>
int CoreAgentInterface::FindFontIDs(EntryPoint entryPoint, const std::string& name,
                                    long workgroupID, FontIDs& outIDs) {
  FontIDs workgroupIDs;
  PopulateWorkgroupArray(workgroupID, workgroupIDs);
  outIDs.clear();
  std::uint32_t code = AppendFontIDs(entryPoint, name, workgroupIDs, outIDs);
  const int systemID = GetSystemWorkgroupID();
  if (systemID != kNoWorkgroup && !IsAllWorkgroups(static_cast<int>(workgroupID))) {
    code = AppendFontIDs(entryPoint, name, {static_cast<std::uint32_t>(systemID)}, outIDs);
  }
  return FacadeCall::ResultFromCode(code);
}

int CoreAgentInterface::FontIDsForPostScriptName(const std::string& name, long workgroupID,
                                                 FontIDs& outIDs) {
  return FindFontIDs(&SkerryLoader::pfGetFontsByPostscriptName, name, workgroupID, outIDs);
}

int CoreAgentInterface::FontIDsForFamilyName(const std::string& name, long workgroupID,
                                             FontIDs& outIDs) {
  return FindFontIDs(&SkerryLoader::pfGetFontsByFamilyName, name, workgroupID, outIDs);
}

int CoreAgentInterface::FontIDsForName(const std::string& name, TypeOfFontName type,
                                       long workgroupID, FontIDs& outIDs) {
  if (type == kFamilyFontName) return FontIDsForFamilyName(name, workgroupID, outIDs);
  if (type == kPostScriptFontName) return FontIDsForPostScriptName(name, workgroupID, outIDs);
  return kErrorGeneral;
}

int CoreAgentInterface::CountNamedFonts(const std::string& name, TypeOfFontName type,
                                        long workgroupID, long& outCount, const std::string&) {
  FontIDs ids;
  const int result = FontIDsForName(name, type, workgroupID, ids);
  outCount = static_cast<long>(ids.size());
  return result;
}

int CoreAgentInterface::GetNamedFontInfo(const std::string& name, TypeOfFontName type,
                                         long workgroupID, long index, const std::string&,
                                         FontOrSetInfoRec& outRec) {
  const OperationTrace trace(__func__);
  FontIDs ids;
  const int result = FontIDsForName(name, type, workgroupID, ids);
  if (result != 0) return trace.Return(result);
  if (index < 1 || index > static_cast<long>(ids.size())) return trace.Return(kErrorGeneral);
  const std::uint32_t id = ids[static_cast<std::size_t>(index - 1)];
  return trace.Return(GetFontInfoByID(MakeQueryRecord(id, workgroupID), outRec));
}

std::uint32_t CoreAgentInterface::FetchFontRecord(long workgroupID, const FontRecord& font,
                                                  std::uint32_t& ioID, FontRecord& outRecord) {
  FontIDs workgroupIDs;
  PopulateWorkgroupArray(workgroupID, workgroupIDs);
  PLDictionaryRef handle = nullptr;
  const std::uint32_t code =
      FacadeCall::WithInstance(&SkerryLoader::pfGetFontInfoByID, workgroupIDs.data(),
                               static_cast<std::uint32_t>(workgroupIDs.size()),
                               PropertyList::AsHandle(font), &ioID, &handle);
  outRecord = PropertyList::AdoptHandle(handle);
  return code;
}

int CoreAgentInterface::GetFontInfoByID(const FontRecord& font, FontOrSetInfoRec& outRec) {
  const OperationTrace trace(__func__);
  outRec = FontOrSetInfoRec();
  if (!font) return trace.Return(kErrorGeneral);
  const auto fontWorkgroupID = static_cast<int>(RecordInteger(font, kFP_WorkgroupIDKey));
  const bool isForAll = IsAllWorkgroupsSelected() || IsAllWorkgroups(fontWorkgroupID);
  std::uint32_t id = RecordDatabaseID(font);
  FontRecord info;
  const std::uint32_t code =
      FetchFontRecord(isForAll ? kAllWorkgroupsID : kNoWorkgroup, font, id, info);
  if (code == 0 && info) {
    ConvertActivationStateValues(info);
    FaceprintSupport::FixFaceprintChecksumsIfNeeded(info);
    outRec.kind = kKindFont;
    outRec.databaseID = id;
    outRec.activationState =
        static_cast<std::uint16_t>(RecordInteger(info, kFP_ActivationStateKey));
    outRec.info = info;
    FontDataPreviouslyGottenFromDatabase::Add(id, outRec);
  }
  return trace.Return(FacadeCall::ResultFromCode(code));
}

int CoreAgentInterface::GetPostscriptNameByID(std::string& outName, long workgroupID,
                                              std::uint32_t fontID) {
  std::uint32_t id = fontID;
  FontRecord info;
  const std::uint32_t code =
      FetchFontRecord(GetCurrentWorkgroupID(), MakeQueryRecord(fontID, workgroupID), id, info);
  if (code == 0 && RecordHas(info, kFP_PostScriptNameKey)) {
    outName = RecordString(info, kFP_PostScriptNameKey);
  }
  return FacadeCall::ResultFromCode(code);
}

int CoreAgentInterface::GetFaceprintInfo(std::uint32_t, const FontRecord& font, char* buffer,
                                         std::size_t& ioSize) {
  if (!font || !buffer) return kErrorGeneral;
  const FontRecordArray fonts = MakeFontRecordArray();
  fonts->Append(font);
  std::string text;
  const int result = FaceprintSupport::CreateXMLFaceprintSlug(fonts, &text);
  const bool fits = text.size() < ioSize;
  if (fits) std::memcpy(buffer, text.c_str(), text.size() + 1);
  ioSize = fits ? text.size() : 0;
  return result;
}

int CoreAgentInterface::FindFontsInSameFamilyForActivation(const FontRecord& font,
                                                           const FontRecordArray& excluded,
                                                           long workgroupID,
                                                           const FontRecordArray& outFonts) {
  const OperationTrace trace(__func__);
  if (!font || !outFonts) {
    OutputFormattedDebugString("*** ERROR: inFontRef and/or outFontsInFamily is NULL");
    return trace.Return(kErrorGeneral);
  }
  if (!RecordHas(font, kFP_AssignedFamilyGroupIDKey)) {
    OutputFormattedDebugString("*** ERROR: inFontRef does not include assigned family group ID");
    return trace.Return(kErrorGeneral);
  }
  FontIDs workgroupIDs;
  PopulateWorkgroupArray(workgroupID, workgroupIDs);
  PLArrayRef handle = nullptr;
  FacadeCall::WithoutInstance(&SkerryLoader::pfFindFontsInSameFamilyForActivation,
                              PropertyList::AsHandle(font), workgroupIDs.data(),
                              static_cast<std::uint32_t>(workgroupIDs.size()), &handle);
  const FontRecordArray family = PropertyList::AdoptHandle(handle);
  for (std::size_t i = CountOf(family); i-- > 0;) {
    const FontRecord member = family->DictionaryAt(i);
    const std::string name = RecordString(member, kFP_PostScriptNameKey);
    const std::uint32_t id = RecordDatabaseID(member);
    if (id != RecordDatabaseID(font) &&
        FaceprintSupport::DoesArrayContainFontWithPostScriptName(excluded, name.c_str())) {
      OutputFormattedDebugString(
          ">>> Skipping family font \"%s\" (fontID %d), because it's a duplicate of one of the "
          "original doc font matches.",
          name.c_str(), static_cast<int>(id));
      family->Remove(i);
    } else {
      ConvertActivationStateValues(member);
    }
  }
  outFonts->Clear();
  if (family) outFonts->Values() = family->Values();
  return trace.Return(0);
}

std::map<std::uint32_t, bool> CoreAgentInterface::GetClientFontActivationStates(
    const FontIDs& ids) {
  std::vector<std::int32_t> states(ids.size(), 0);
  if (!ids.empty()) {
    FacadeCall::WithoutInstance(&SkerryLoader::pfGetClientFontActivationStates,
                                static_cast<std::uint32_t>(ids.size()), ids.data(), states.data());
  }
  std::map<std::uint32_t, bool> result;
  for (std::size_t i = 0; i < ids.size(); ++i) result[ids[i]] = states[i] != 0;
  return result;
}

std::map<std::uint32_t, bool> CoreAgentInterface::GetFontIsActivated(const FontRecordArray& fonts) {
  const FontIDs ids = GetFontIDsFromFontInfoArray(fonts, false);
  if (ids.empty()) return {};
  std::vector<std::int32_t> states(ids.size(), 0);
  FacadeCall::WithInstance(&SkerryLoader::pfGetFontIsActivated,
                           static_cast<std::uint32_t>(ids.size()), ids.data(), states.data());
  std::map<std::uint32_t, bool> result;
  std::size_t position = 0;  // in `ids`: the records that have one, in their order
  for (std::size_t i = 0; i < CountOf(fonts); ++i) {
    const FontRecord font = fonts->DictionaryAt(i);
    const std::uint32_t id = RecordDatabaseID(font);
    if (id == 0) continue;
    result[id] = states[position++] != 0;
    LogActivation(RecordString(font, kFP_PostScriptNameKey), id, result[id]);
  }
  return result;
}

std::map<std::uint32_t, std::uint32_t> CoreAgentInterface::GetFontConflicts(const FontIDs& ids) {
  if (ids.empty()) return {};
  std::vector<std::uint32_t> conflicts(ids.size(), 0);
  const std::uint32_t code = FacadeCall::WithInstance(&SkerryLoader::pfGetFontConflicts,
                                                      static_cast<std::uint32_t>(ids.size()),
                                                      ids.data(), conflicts.data());
  std::map<std::uint32_t, std::uint32_t> result;
  for (std::size_t i = 0; code == 0 && i < ids.size(); ++i) {
    if (ids[i] != 0) result[ids[i]] = conflicts[i];
  }
  return result;
}
