#include "fonts/FontRecordOperations.h"

#include <algorithm>
#include <unordered_set>

#include "fonts/FontNames.h"
#include "fonts/RecordAccess.h"
#include "foundation/GString.h"
#include "foundation/PluginLog.h"
#include "propertylist/XmlForm.h"

const char* const kAllFaceprintCFKeys[] = {
    kFP_PostScriptNameKey,
    kFP_KindKey,
    kFP_FoundryKey,
    kFP_VersionKey,
    kFP_KerningChecksumKey,
    kFP_ChecksumKey,
    kFP_Faceprint_1_2_Key,
    kFP_OutlineFileSizeKey,
    kFP_OutlineFileNameKey,
    kFP_FamilyKey,
    kFP_AssignedFamilyGroupIDKey,
    kFP_AssignedFamilyGroupNameKey,
    kFP_PrinterFontKey,
    kFP_KeywordsKey,
    kFP_PathKey,
    kFP_SourceDocumentName,
    kFP_SubDocumentsWithFontKey,
    kFP_PossibleReplacementsKey,
    kFP_DatabaseIDKey,
    kFP_MatchedFontKey,
    kFP_ActivationStateKey,
    kFP_WorkgroupIDKey,
    kFP_WorkgroupNameKey,
    kFP_WorkgroupTypeKey,
    kFP_IsActiveKey,
    kFP_IsTempKey,
    kFP_IsVaultKey,
    kFP_IsSystemKey,
    kFP_IsLocalKey,
    kFP_IsAutoActivatedKey,
    // Values of kFP_KindKey, which close the list.
    kFP_Kind_OpenType,
    kFP_Kind_Postscript,
    kFP_Kind_TrueType,
    nullptr,
};

namespace FaceprintSupport {
namespace {

// What hosts and print paths put around a name. Narrower than the normal form of names.
constexpr std::string_view kDeletedFromDocumentNames = " ()/[]{}";

// Kerning checksums of this size and more, negative ones included, are unusable.
constexpr std::uint32_t kFirstUnusableKerningChecksum = 0x100000;

FontRecord CreateRecordWith(const char* key, const char* text) {
  FontRecord record = MakeFontRecord();
  if (text != nullptr) record->Set(key, text);
  return record;
}

bool HasAnyOf(const FontRecord& record, std::initializer_list<const char*> keys) {
  return record && std::any_of(keys.begin(), keys.end(),
                               [&record](const char* key) { return record->Has(key); });
}

bool IsUsableChecksum(const std::string* text) {
  return text != nullptr && !text->empty() && *text != "0";
}

}  // namespace

FontRecord CreateFaceprintDictionary(const char* postScriptName) {
  return CreateRecordWith(kFP_PostScriptNameKey, postScriptName);
}

FontRecord CreateFaceprintDictionaryWithFamilyName(const char* familyName) {
  return CreateRecordWith(kFP_FamilyKey, familyName);
}

bool AddFontToArray(const char* postScriptName, const FontRecordArray& fonts,
                    bool allowDuplicates) {
  if (postScriptName == nullptr) {
    OutputFormattedDebugString("*** ERROR:  NULL cfPostScriptName passed to AddFontToArray");
    return false;
  }
  if (!fonts) {
    OutputFormattedDebugString("*** ERROR:  NULL fontsArray passed to AddFontToArray");
    return false;
  }
  std::string name = postScriptName;
  std::erase_if(name,
                [](char c) { return kDeletedFromDocumentNames.find(c) != std::string_view::npos; });
  if (name.empty()) return false;
  if (!GString::IsValidUtf8(name)) {
    OutputFormattedDebugString("ERROR string coverted to emptyString %s", name.c_str());
    return false;
  }
  if (!allowDuplicates && DoesArrayContainFontWithPostScriptName(fonts, name.c_str())) {
    return false;
  }
  fonts->Append(CreateFaceprintDictionary(name.c_str()));
  return true;
}

FontRecordArray CreateFontArrayFromVectorOfPostscriptNames(const std::vector<std::string>& names) {
  FontRecordArray fonts = MakeFontRecordArray();
  for (const std::string& name : names) {
    if (name.empty() || !GString::IsValidUtf8(name)) continue;
    fonts->Append(CreateFaceprintDictionary(name.c_str()));
  }
  return fonts;
}

FontRecordArray CreateFontArrayFromFontMatchArray(const FontRecordArray& fonts) {
  if (CountOf(fonts) == 0) return nullptr;
  FontRecordArray matches = MakeFontRecordArray();
  for (std::size_t i = 0; i < fonts->Count(); ++i) {
    const FontRecord record = fonts->DictionaryAt(i);
    if (!record) continue;
    if (FontRecord match = record->GetDictionary(kFP_MatchedFontKey)) {
      matches->Append(std::move(match));
    }
  }
  return matches;
}

int CreateXMLFaceprintSlug(const FontRecordArray& fonts, std::string* outXml) {
  if (!fonts || outXml == nullptr) return -50;
  if (std::optional<std::string> xml = PropertyList::WriteXml(fonts)) *outXml = std::move(*xml);
  return 0;
}

bool IsSluggableKey(std::string_view key) {
  static const auto& sluggable = *new std::unordered_set<std::string_view>{
      kFP_PostScriptNameKey,  kFP_KindKey,     kFP_FoundryKey,        kFP_VersionKey,
      kFP_KerningChecksumKey, kFP_ChecksumKey, kFP_Faceprint_1_2_Key, kFP_OutlineFileSizeKey,
      kFP_OutlineFileNameKey, kFP_FamilyKey};
  return sluggable.contains(key);
}

bool RemoveUnsluggableKeysFromDictionary(const FontRecord& record) {
  if (!record) return false;
  std::vector<std::string> unsluggable;
  for (const auto& [key, value] : record->Entries()) {
    if (!IsSluggableKey(key)) unsluggable.push_back(key);
  }
  for (const std::string& key : unsluggable) {
    OutputFormattedDebugString("Removing key %s", key.c_str());
    record->Remove(key);
  }
  return !unsluggable.empty();
}

int RemoveUnsluggableFaceprintKeys(const FontRecordArray& fonts) {
  int removed = 0;
  for (std::size_t i = 0; i < CountOf(fonts); ++i) {
    if (RemoveUnsluggableKeysFromDictionary(fonts->DictionaryAt(i))) removed = 1;
  }
  return removed;
}

bool FixFaceprintChecksumsIfNeeded(const FontRecord& record) {
  if (!record) return false;
  bool changed = false;
  const std::string* newer = FindString(record, kFP_Faceprint_1_2_Key);
  if (IsUsableChecksum(newer) && !IsUsableChecksum(FindString(record, kFP_ChecksumKey))) {
    OutputFormattedDebugString(
        "Faceprint 1.1 checksum was 0 or not provided.  "
        "Using Faceprint 1.2 checksum for its value.");
    record->Set(kFP_ChecksumKey, std::string(*newer));
    changed = true;
  }
  if (record->Has(kFP_KerningChecksumKey) &&
      ChecksumBits(record, kFP_KerningChecksumKey) >= kFirstUnusableKerningChecksum) {
    record->Set(kFP_KerningChecksumKey, "0");
    changed = true;
  }
  return changed;
}

bool FontRefContainsFaceprintData(const FontRecord& record) {
  return HasAnyOf(record, {kFP_KindKey, kFP_FamilyKey, kFP_FoundryKey, kFP_VersionKey,
                           kFP_PrinterFontKey, kFP_Faceprint_1_2_Key, kFP_ChecksumKey,
                           kFP_KerningChecksumKey, kFP_OutlineFileSizeKey});
}

bool FontRefContainsXMPData(const FontRecord& record) {
  return HasAnyOf(record, {kAdobeXMPFontData_FamilyKey, kAdobeXMPFontData_TypeKey,
                           kAdobeXMPFontData_VersionStringKey});
}

}  // namespace FaceprintSupport
