#include "support/FakeFacadeEntryPoints.h"

#include <algorithm>
#include <cstdio>
#include <type_traits>

#include "foundation/ErrorCodes.h"
#include "sdk/FontRecordKeys.h"
#include "support/FakeFacade.h"

namespace {

using Instance = PluginFacadeInstance;

FakeFacade& Facade() { return FakeFacade::Current(); }

std::string Join(std::uint32_t count, const std::uint32_t* ids) {
  std::string text;
  for (std::uint32_t i = 0; i < count; ++i) {
    text += (i == 0 ? "" : ",") + std::to_string(ids[i]);
  }
  return text;
}

void CopyText(const std::string& text, char* out, std::uint32_t size) {
  std::snprintf(out, size, "%s", text.c_str());
}

bool IsAsked(std::uint32_t workgroupID, const std::uint32_t* workgroupIDs, std::uint32_t count) {
  return std::any_of(workgroupIDs, workgroupIDs + count, [workgroupID](std::uint32_t asked) {
    return asked == 0 || asked == 0xFFFFFFFFu || asked == workgroupID;
  });
}

std::uint32_t AnswerFlag(const char* entryPoint, bool value, std::int32_t* out) {
  const std::uint32_t code = Facade().Record(entryPoint, "");
  if (code == 0) *out = value ? 1 : 0;
  return code;
}

// ---- connection

PluginFacadeInstance GetPluginFacadeInstance() {
  static char instance;
  return reinterpret_cast<PluginFacadeInstance>(&instance);
}

std::uint32_t ResetPluginFacadeInstance() {
  return Facade().Record("ResetPluginFacadeInstance", "");
}

std::uint32_t InitAppInstance(Instance, std::int32_t hostType, std::int32_t version) {
  return Facade().Record("InitAppInstance",
                         std::to_string(hostType) + "," + std::to_string(version));
}

std::uint32_t InitThreadInstance(Instance) { return Facade().Record("InitThreadInstance", ""); }

std::uint32_t DestroyThreadInstance(Instance) {
  return Facade().Record("DestroyThreadInstance", "");
}

std::uint32_t EnableDesignActivation(Instance) {
  return Facade().Record("EnableDesignActivation", "");
}

std::uint32_t CleanUpOnShutdown(Instance) { return Facade().Record("CleanUpOnShutdown", ""); }

std::uint32_t RegisterForNotifications(Instance, PluginInterfaceCallback callback) {
  const std::uint32_t code = Facade().Record("RegisterForNotifications", "");
  if (code == 0) Facade().SetCallback(callback);
  return code;
}

std::uint32_t UnregisterForNotifications(Instance, PluginInterfaceCallback) {
  const std::uint32_t code = Facade().Record("UnregisterForNotifications", "");
  if (code == 0) Facade().SetCallback(nullptr);
  return code;
}

std::uint32_t BeginLogging(Instance, const char* name) {
  return Facade().Record("BeginLogging", name);
}

std::uint32_t Log(Instance, const char* text) {
  Facade().RecordLog(text);
  return 0;
}

std::uint32_t GetIsCoreAgentProcessRunning(Instance, std::int32_t* out) {
  return AnswerFlag("GetIsCoreAgentProcessRunning", Facade().agentRunning, out);
}

std::uint32_t GetIsStandaloneMode(Instance, std::int32_t* out) {
  return AnswerFlag("GetIsStandaloneMode", Facade().standalone, out);
}

std::uint32_t GetIsLoggedIn(Instance, std::int32_t* out) {
  return AnswerFlag("GetIsLoggedIn", Facade().loggedIn, out);
}

std::uint32_t GetIsOnline(Instance, std::int32_t* out) {
  return AnswerFlag("GetIsOnline", Facade().online, out);
}

std::uint32_t GetAreSchemaVersionsInSync(Instance, std::int32_t* out) {
  return AnswerFlag("GetAreSchemaVersionsInSync", Facade().schemaInSync, out);
}

std::uint32_t GetIsGoogleWebFontsEnabled(Instance, std::int32_t* out) {
  return AnswerFlag("GetIsGoogleWebFontsEnabled", Facade().googleWebFontsEnabled, out);
}

std::uint32_t GetFontVaultPath(Instance, std::uint32_t size, char* out) {
  const std::uint32_t code = Facade().Record("GetFontVaultPath", "");
  if (code == 0) CopyText(Facade().vaultPath, out, size);
  return code;
}

// ---- workgroups

std::uint32_t GetAllWorkgroupsForUser(Instance, PLArrayRef* out, std::int32_t includeSpecial,
                                      std::int32_t includeTypekit) {
  FakeFacade& facade = Facade();
  *out = nullptr;
  const std::uint32_t code =
      facade.Record("GetAllWorkgroupsForUser",
                    std::to_string(includeSpecial) + "," + std::to_string(includeTypekit));
  if (code != 0 || facade.workgroupsAreNull) return code;
  auto workgroups = PropertyList::Array::Create();
  for (const auto& [id, name, type] : facade.workgroups) {
    if (!includeSpecial && facade.specialTypes.contains(type)) continue;
    if (!includeTypekit && type == kWorkgroupType_Typekit) continue;
    const auto entry = PropertyList::Dictionary::Create();
    SetRecordNumber(entry, kFP_WorkgroupIDKey, id);
    entry->Set(kFP_WorkgroupNameKey, name);
    SetRecordNumber(entry, kFP_WorkgroupTypeKey, type);
    workgroups->Append(entry);
  }
  *out = workgroups.Detach();
  return 0;
}

std::uint32_t GetDefaultLibraryName(Instance, char* out, std::uint32_t size) {
  const std::uint32_t code = Facade().Record("GetDefaultLibraryName", "");
  if (code == 0) CopyText(Facade().defaultLibraryName, out, size);
  return code;
}

std::uint32_t GetPermission(Instance, std::uint16_t flag, const char* column,
                            std::uint32_t workgroupID, std::int32_t* out) {
  const std::uint32_t code = Facade().Record(
      "GetPermission", std::to_string(flag) + "," + column + "," + std::to_string(workgroupID));
  if (code == 0) *out = Facade().permissions.contains(column) ? 1 : 0;
  return code;
}

// ---- fonts

std::uint32_t FindByName(const char* entryPoint, const char* key, const char* name,
                         const std::uint32_t* workgroupIDs, std::uint32_t workgroupCount,
                         std::uint32_t* outIDs, std::uint32_t capacity, std::uint32_t* outCount) {
  *outCount = 0;
  const std::uint32_t code =
      Facade().Record(entryPoint, std::string(name) + "@" + Join(workgroupCount, workgroupIDs));
  if (code != 0) return code;
  for (const auto& font : Facade().fonts) {
    if (*outCount == capacity) break;
    if (RecordString(font.record, key) != name) continue;
    if (IsAsked(font.workgroupID, workgroupIDs, workgroupCount)) outIDs[(*outCount)++] = font.id;
  }
  if (Facade().claimedFonts != 0) *outCount = Facade().claimedFonts;
  return 0;
}

std::uint32_t GetFontsByPostscriptName(Instance, const char* name,
                                       const std::uint32_t* workgroupIDs,
                                       std::uint32_t workgroupCount, std::uint32_t* outIDs,
                                       std::uint32_t capacity, std::uint32_t* outCount) {
  return FindByName("GetFontsByPostscriptName", kFP_PostScriptNameKey, name, workgroupIDs,
                    workgroupCount, outIDs, capacity, outCount);
}

std::uint32_t GetFontsByFamilyName(Instance, const char* name, const std::uint32_t* workgroupIDs,
                                   std::uint32_t workgroupCount, std::uint32_t* outIDs,
                                   std::uint32_t capacity, std::uint32_t* outCount) {
  return FindByName("GetFontsByFamilyName", kFP_FamilyKey, name, workgroupIDs, workgroupCount,
                    outIDs, capacity, outCount);
}

std::uint32_t GetFontInfoByID(Instance, const std::uint32_t* workgroupIDs,
                              std::uint32_t workgroupCount, PLDictionaryRef font,
                              std::uint32_t* ioFontID, PLDictionaryRef* outRecord) {
  *outRecord = nullptr;
  const std::uint32_t id = RecordDatabaseID(PropertyList::FromHandle(font));
  const std::uint32_t code = Facade().Record(
      "GetFontInfoByID", std::to_string(id) + "@" + Join(workgroupCount, workgroupIDs));
  if (code != 0) return code;
  const FakeFacade::Font* found = Facade().Find(id);
  if (!found || !IsAsked(found->workgroupID, workgroupIDs, workgroupCount)) {
    return CoreErrorCodes::kNotFound;
  }
  *ioFontID = id;
  *outRecord = Facade().MakeDatabaseRecord(*found).Detach();
  return 0;
}

std::uint32_t FindFontsInSameFamilyForActivation(PLDictionaryRef font,
                                                 const std::uint32_t* workgroupIDs,
                                                 std::uint32_t workgroupCount,
                                                 PLArrayRef* outFonts) {
  *outFonts = nullptr;
  const FontRecord asked = PropertyList::FromHandle(font);
  const std::uint32_t code = Facade().Record(
      "FindFontsInSameFamilyForActivation",
      std::to_string(RecordDatabaseID(asked)) + "@" + Join(workgroupCount, workgroupIDs));
  if (code != 0) return code;
  auto family = MakeFontRecordArray();
  for (const auto& member : Facade().fonts) {
    if (member.familyGroupID.empty() ||
        member.familyGroupID != RecordString(asked, kFP_AssignedFamilyGroupIDKey)) {
      continue;
    }
    if (IsAsked(member.workgroupID, workgroupIDs, workgroupCount)) {
      family->Append(Facade().MakeDatabaseRecord(member));
    }
  }
  *outFonts = family.Detach();
  return 0;
}

// Fills one value per ID; 0 for fonts that are not there.
template <typename Output, typename Getter>
std::uint32_t FillPerFont(const char* entryPoint, std::uint32_t count, const std::uint32_t* ids,
                          Output* out, Getter getter) {
  const std::uint32_t code = Facade().Record(entryPoint, Join(count, ids));
  if (code != 0) return code;
  for (std::uint32_t i = 0; i < count; ++i) {
    const FakeFacade::Font* font = Facade().Find(ids[i]);
    out[i] = font ? static_cast<Output>(getter(*font)) : 0;
  }
  return 0;
}

std::uint32_t GetFontIsActivated(Instance, std::uint32_t count, const std::uint32_t* ids,
                                 std::int32_t* out) {
  return FillPerFont("GetFontIsActivated", count, ids, out, [](const FakeFacade::Font& font) {
    return font.IsActive() && font.rawState != kRawActivationState_Preview;
  });
}

std::uint32_t GetClientFontActivationStates(std::uint32_t count, const std::uint32_t* ids,
                                            std::int32_t* out) {
  return FillPerFont("GetClientFontActivationStates", count, ids, out,
                     [](const FakeFacade::Font& font) {
                       return font.rawState == kRawActivationState_Auto ||
                              font.rawState == kRawActivationState_AutoOther;
                     });
}

std::uint32_t GetFontConflicts(Instance, std::uint32_t count, const std::uint32_t* ids,
                               std::uint32_t* out) {
  return FillPerFont("GetFontConflicts", count, ids, out,
                     [](const FakeFacade::Font& font) { return font.conflict; });
}

// ---- commands

std::uint32_t ActivateFonts(Instance, std::uint32_t count, const std::uint32_t* ids,
                            std::uint32_t reserved, std::uint32_t one1, std::uint32_t one2,
                            std::uint32_t one3, std::uint32_t failedCapacity,
                            std::uint32_t secondCapacity, std::uint32_t* outFailed,
                            std::uint32_t* outSecond, std::uint32_t* outFailedCount,
                            std::uint32_t* outSecondCount) {
  *outFailedCount = *outSecondCount = 0;
  const std::uint32_t code = Facade().Record("ActivateFonts", Join(count, ids));
  if (code != 0) return code;
  const bool isAsTold = reserved == 0 && one1 == 1 && one2 == 1 && one3 == 1 &&
                        failedCapacity == count && secondCapacity == count;
  if (!isAsTold) return CoreErrorCodes::kInvalidParam;
  for (std::uint32_t i = 0; i < count; ++i) {
    FakeFacade::Font* font = Facade().Find(ids[i]);
    if (font && font->isRefused) {
      outSecond[(*outSecondCount)++] = ids[i];
    }
    if (!font || font->failsToActivate || font->isRefused) {
      outFailed[(*outFailedCount)++] = ids[i];
    } else if (!font->IsActive()) {
      font->rawState = kRawActivationState_Auto;
    }
  }
  return 0;
}

std::uint32_t SetStates(const char* entryPoint, std::uint32_t count, const std::uint32_t* ids,
                        std::int64_t rawState) {
  const std::uint32_t code = Facade().Record(entryPoint, Join(count, ids));
  for (std::uint32_t i = 0; code == 0 && i < count; ++i) {
    if (FakeFacade::Font* font = Facade().Find(ids[i])) font->rawState = rawState;
  }
  return code;
}

std::uint32_t PreviewActivateFonts(Instance, std::uint32_t count, const std::uint32_t* ids,
                                   std::uint32_t) {
  return SetStates("PreviewActivateFonts", count, ids, kRawActivationState_Preview);
}

std::uint32_t DeactivateFonts(Instance, std::uint32_t count, const std::uint32_t* ids,
                              std::uint32_t) {
  return SetStates("DeactivateFonts", count, ids, kRawActivationState_Inactive);
}

std::uint32_t CanExportFonts(Instance, std::uint32_t count, const std::uint32_t* ids,
                             std::int32_t* out) {
  const std::uint32_t code = Facade().Record("CanExportFonts", Join(count, ids));
  if (code == 0) *out = Facade().canExportFonts ? 1 : 0;
  return code;
}

std::uint32_t ExportFonts(Instance, std::uint32_t count, const std::uint32_t* ids,
                          const char* folder, std::uint32_t, std::uint32_t) {
  return Facade().Record("ExportFonts", Join(count, ids) + "@" + folder);
}

std::uint32_t CreateTopLevelSet(Instance, std::uint32_t* outSetID, std::uint32_t workgroupID,
                                const char* name, std::uint32_t, std::uint32_t, std::uint32_t count,
                                const std::uint32_t* ids) {
  *outSetID = 0;
  return Facade().Record("CreateTopLevelSet", std::string(name) + ":" + Join(count, ids) + "@" +
                                                  std::to_string(workgroupID));
}

// ---- everything else

template <typename Tag, typename Result, typename... Arguments>
Result AnswerWithCode(Arguments...) {
  const std::uint32_t code = Facade().Record(Tag::kName, "");
  return code != 0 ? code : CoreErrorCodes::kNotImplemented;
}

template <typename Tag>
std::uint32_t AnswerColumnName(char* out, std::uint32_t size) {
  const std::uint32_t code = Facade().Record(Tag::kName, "");
  if (code == 0) CopyText(Tag::kName, out, size);
  return code;
}

template <typename Tag>
std::uint32_t (*DefaultFor(std::uint32_t (*)(char*, std::uint32_t)))(char*, std::uint32_t) {
  return &AnswerColumnName<Tag>;
}

template <typename Tag, typename Result, typename... Arguments>
Result (*DefaultFor(Result (*)(Arguments...)))(Arguments...) {
  if constexpr (std::is_same_v<Result, std::uint32_t>) {
    return &AnswerWithCode<Tag, Result, Arguments...>;
  } else {
    return nullptr;
  }
}

#define FAKE_TAG(result, name, arguments)       \
  struct Tag##name {                            \
    static constexpr const char* kName = #name; \
  };
PLUGIN_INTERFACE_ENTRY_POINTS(FAKE_TAG)
#undef FAKE_TAG

}  // namespace

std::map<std::string, void*> FakeFacadeSymbols() {
  std::map<std::string, void*> symbols;
#define FAKE_DEFAULT(result, name, arguments) \
  symbols[#name] = reinterpret_cast<void*>(   \
      DefaultFor<Tag##name>(static_cast<decltype(SkerryLoader::pf##name)>(nullptr)));
  PLUGIN_INTERFACE_ENTRY_POINTS(FAKE_DEFAULT)
#undef FAKE_DEFAULT

  // The type of each has to be that of the table.
#define FAKE_ENTRY_POINT(name) \
  symbols[#name] = reinterpret_cast<void*>(static_cast<decltype(SkerryLoader::pf##name)>(&name));
  FAKE_ENTRY_POINT(ActivateFonts)
  FAKE_ENTRY_POINT(BeginLogging)
  FAKE_ENTRY_POINT(CanExportFonts)
  FAKE_ENTRY_POINT(CleanUpOnShutdown)
  FAKE_ENTRY_POINT(CreateTopLevelSet)
  FAKE_ENTRY_POINT(DeactivateFonts)
  FAKE_ENTRY_POINT(DestroyThreadInstance)
  FAKE_ENTRY_POINT(EnableDesignActivation)
  FAKE_ENTRY_POINT(ExportFonts)
  FAKE_ENTRY_POINT(FindFontsInSameFamilyForActivation)
  FAKE_ENTRY_POINT(GetAllWorkgroupsForUser)
  FAKE_ENTRY_POINT(GetAreSchemaVersionsInSync)
  FAKE_ENTRY_POINT(GetClientFontActivationStates)
  FAKE_ENTRY_POINT(GetDefaultLibraryName)
  FAKE_ENTRY_POINT(GetFontConflicts)
  FAKE_ENTRY_POINT(GetFontInfoByID)
  FAKE_ENTRY_POINT(GetFontIsActivated)
  FAKE_ENTRY_POINT(GetFontVaultPath)
  FAKE_ENTRY_POINT(GetFontsByFamilyName)
  FAKE_ENTRY_POINT(GetFontsByPostscriptName)
  FAKE_ENTRY_POINT(GetIsCoreAgentProcessRunning)
  FAKE_ENTRY_POINT(GetIsGoogleWebFontsEnabled)
  FAKE_ENTRY_POINT(GetIsLoggedIn)
  FAKE_ENTRY_POINT(GetIsOnline)
  FAKE_ENTRY_POINT(GetIsStandaloneMode)
  FAKE_ENTRY_POINT(GetPermission)
  FAKE_ENTRY_POINT(GetPluginFacadeInstance)
  FAKE_ENTRY_POINT(InitAppInstance)
  FAKE_ENTRY_POINT(InitThreadInstance)
  FAKE_ENTRY_POINT(Log)
  FAKE_ENTRY_POINT(PreviewActivateFonts)
  FAKE_ENTRY_POINT(RegisterForNotifications)
  FAKE_ENTRY_POINT(ResetPluginFacadeInstance)
  FAKE_ENTRY_POINT(UnregisterForNotifications)
#undef FAKE_ENTRY_POINT
  return symbols;
}
