#include "coreagent/CoreAgentInterface.h"
#include "dialogs/TarnInterface.h"
#include "facade/FacadeCall.h"
#include "foundation/PluginLog.h"
#include "sdk/FontRecordKeys.h"
#include "state/KestraneGlobals.h"

namespace {

constexpr int kNoWorkgroup = -1;
constexpr std::size_t kColumnNameSize = 256;
constexpr std::size_t kLibraryNameSize = 128;

long WorkgroupTypeOf(const PropertyList::DictionaryRef& workgroup) {
  return static_cast<long>(RecordInteger(workgroup, kFP_WorkgroupTypeKey));
}

std::string CallStringGetter(std::uint32_t (*getter)(char*, std::uint32_t)) {
  char text[kColumnNameSize] = {};
  if (!getter || getter(text, sizeof text) != 0) return {};
  text[sizeof text - 1] = '\0';
  return text;
}

std::optional<std::string> GetDefaultLibraryName() {
  char name[kLibraryNameSize] = {};
  const std::uint32_t code = FacadeCall::WithInstance(&SkerryLoader::pfGetDefaultLibraryName, name,
                                                      std::uint32_t{sizeof name});
  if (code != 0) return std::nullopt;
  name[sizeof name - 1] = '\0';
  return name;
}

// The key of a special workgroup's name; null for types that keep their own.
const char* LocalizedNameKey(long type) {
  switch (type) {
    case kWorkgroupType_AllServerFonts:
      return "AllServerFontsWorkgroup";
    case kWorkgroupType_ServerBasedPersonal:
      return "ServerBasedPersonalWorkgroup";
    case kWorkgroupType_LocalPersonal:
      return "LocalPersonalWorkgroup";
    case kWorkgroupType_System:
      return "SystemWorkgroup";
    case kWorkgroupType_Google:
      return "MasterGoogleFontsLibrary";
    default:
      return nullptr;
  }
}

}  // namespace

std::optional<std::string> CoreAgentInterface::CreateLocalizedWorkgroupName(
    long type, const std::string* currentName) {
  const TarnInterface* tarn = KestraneGlobals::GetSharedTarnInterface();
  const char* key = LocalizedNameKey(type);
  if (!tarn || !key) return std::nullopt;
  if (type == kWorkgroupType_LocalPersonal && RunningStandalone()) {
    // A library that the user renamed keeps its name.
    const auto defaultName = GetDefaultLibraryName();
    if (!defaultName || !currentName || *currentName != *defaultName) return std::nullopt;
    key = "Font Library";
  }
  return tarn->LocalizedString(key);
}

int CoreAgentInterface::GetAllWorkgroupsForUser(PropertyList::ArrayRef& outWorkgroups,
                                                bool addAllWorkgroupsEntry,
                                                bool includeSpecialWorkgroups,
                                                bool includeTypekitWorkgroup) {
  const OperationTrace trace(__func__);
  PLArrayRef handle = nullptr;
  const std::uint32_t code =
      FacadeCall::WithInstance(&SkerryLoader::pfGetAllWorkgroupsForUser, &handle,
                               includeSpecialWorkgroups ? 1 : 0, includeTypekitWorkgroup ? 1 : 0);
  outWorkgroups = PropertyList::AdoptHandle(handle);
  if (code != 0) return trace.Return(static_cast<int>(code));
  for (std::size_t i = 0; i < CountOf(outWorkgroups); ++i) LocalizeWorkgroup(outWorkgroups, i);
  if (addAllWorkgroupsEntry && CountOf(outWorkgroups) > 0 && CanActivateFromAllWorkgroups()) {
    AppendAllWorkgroupsEntry(outWorkgroups);
  }
  return trace.Return(0);
}

void CoreAgentInterface::LocalizeWorkgroup(const PropertyList::ArrayRef& workgroups,
                                           std::size_t index) {
  const auto workgroup = workgroups->DictionaryAt(index);
  if (!workgroup) return;
  const long type = WorkgroupTypeOf(workgroup);
  const auto name = CreateLocalizedWorkgroupName(type, workgroup->GetString(kFP_WorkgroupNameKey));
  if (!name) return;
  const auto copy = workgroup->Copy();
  copy->Set(kFP_WorkgroupNameKey, *name);
  copy->Set(kFP_WorkgroupTypeKey, std::int64_t{type});
  workgroups->Set(index, copy);
}

void CoreAgentInterface::AppendAllWorkgroupsEntry(const PropertyList::ArrayRef& workgroups) {
  const std::string name = AllWorkgroupsName();
  OutputFormattedDebugString("Adding '%s' to user's workgroup list.", name.c_str());
  const auto entry = PropertyList::Dictionary::Create();
  entry->Set(kFP_WorkgroupNameKey, name);
  SetRecordNumber(entry, kFP_WorkgroupIDKey, kAllWorkgroupsID);
  workgroups->Append(entry);
}

bool CoreAgentInterface::CheckForWorkgroups() { return UserHasAtLeastOneWorkgroup(); }

int CoreAgentInterface::RemoveRemoteFonts(const FontRecordArray& fonts) {
  int result = kErrorGeneral;
  for (std::size_t i = CountOf(fonts); i-- > 0;) {
    const FontRecord font = fonts->DictionaryAt(i);
    if (!font) continue;
    result = 0;
    const long type = WorkgroupTypeOf(font);
    if (!IsRemoteWorkgroupTypeDisabled(type)) continue;
    OutputFormattedDebugString("Removed font %d because workgroupType is %d",
                               static_cast<int>(RecordDatabaseID(font)), static_cast<int>(type));
    fonts->Remove(i);
  }
  return result;
}

int CoreAgentInterface::GetSpecialWorkgroupID(long type) {
  PropertyList::ArrayRef workgroups;
  if (GetAllWorkgroupsForUser(workgroups, false, true, false) != 0) return kNoWorkgroup;
  for (std::size_t i = 0; i < CountOf(workgroups); ++i) {
    const auto workgroup = workgroups->DictionaryAt(i);
    if (RecordHas(workgroup, kFP_WorkgroupTypeKey) && WorkgroupTypeOf(workgroup) == type) {
      return static_cast<int>(RecordInteger(workgroup, kFP_WorkgroupIDKey));
    }
  }
  return kNoWorkgroup;
}

int CoreAgentInterface::GetSystemWorkgroupID() {
  if (mSystemWorkgroupID == kNoWorkgroup) {
    mSystemWorkgroupID = GetSpecialWorkgroupID(kWorkgroupType_System);
  }
  return mSystemWorkgroupID;
}

int CoreAgentInterface::GetGoogleWebFontsLibraryID() {
  if (mGoogleWebFontsLibID == kNoWorkgroup) {
    mGoogleWebFontsLibID = GetSpecialWorkgroupID(kWorkgroupType_Google);
  }
  return mGoogleWebFontsLibID;
}

void CoreAgentInterface::PopulateWorkgroupArray(long id, FontIDs& workgroupIDs) {
  if (IsAllWorkgroups(static_cast<int>(id))) {
    workgroupIDs.push_back(kCoreAgentAllWorkgroups);
    return;
  }
  workgroupIDs.push_back(static_cast<std::uint32_t>(id));
  if (!IsGoogleWebFontsEnabled()) return;
  // -1 would ask for every workgroup.
  const int libraryID = GetGoogleWebFontsLibraryID();
  if (libraryID != kNoWorkgroup) workgroupIDs.push_back(static_cast<std::uint32_t>(libraryID));
}

bool CoreAgentInterface::IsSelectedWorkgroupLocal() {
  PropertyList::ArrayRef workgroups;
  if (GetAllWorkgroupsForUser(workgroups, false, false, false) != 0) return false;
  const int currentID = GetCurrentWorkgroupID();
  for (std::size_t i = 0; i < CountOf(workgroups); ++i) {
    const auto workgroup = workgroups->DictionaryAt(i);
    if (RecordInteger(workgroup, kFP_WorkgroupIDKey) == currentID) {
      return WorkgroupTypeOf(workgroup) == kWorkgroupType_LocalPersonal;
    }
  }
  return false;
}

bool CoreAgentInterface::IsRemoteWorkgroupTypeDisabled(long type) {
  return type == kWorkgroupType_Google && !IsGoogleWebFontsEnabled();
}

bool CoreAgentInterface::GetPermission(bool flag,
                                       std::uint32_t (*getColumnName)(char*, std::uint32_t),
                                       long workgroupID) {
  const bool isForAll = IsAllWorkgroups(static_cast<int>(workgroupID));
  std::int32_t permission = 0;
  FacadeCall::WithInstance(
      &SkerryLoader::pfGetPermission, std::uint16_t{flag}, CallStringGetter(getColumnName).c_str(),
      isForAll ? kCoreAgentAllWorkgroups : static_cast<std::uint32_t>(workgroupID), &permission);
  return permission != 0;
}

bool CoreAgentInterface::CanActivateFromAllWorkgroups() {
  return GetPermission(
      true, SkerryLoader::GetSharedInstance()->pfGetCanActivateAcrossWorkgroupsColumnID, 0);
}

bool CoreAgentInterface::CanExportFromWorkgroup(const FontRecordArray& fonts) {
  const int currentID = GetCurrentWorkgroupID();
  if (!IsAllWorkgroups(currentID)) {
    return GetPermission(false, SkerryLoader::GetSharedInstance()->pfGetExportFontsColumnID,
                         currentID);
  }
  if (CountOf(fonts) == 0) return true;
  const FontIDs ids = GetFontIDsFromFontInfoArray(fonts, false);
  std::int32_t canExport = 0;
  const std::uint32_t code =
      FacadeCall::WithInstance(&SkerryLoader::pfCanExportFonts,
                               static_cast<std::uint32_t>(ids.size()), ids.data(), &canExport);
  return code == 0 && canExport != 0;
}
