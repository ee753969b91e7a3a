#include "frameworks/plugin-interface/FontRecords.h"

#include <glib.h>

#include <memory>
#include <string>
#include <string_view>

#include "sdk/FontRecordKeys.h"

namespace {

std::string Flag(bool on) { return on ? "1" : "0"; }

// A file name is bytes; a record holds text. Bytes that are none become U+FFFD.
std::string ValidText(std::string_view bytes) {
  const std::unique_ptr<char, decltype(&g_free)> text(
      g_utf8_make_valid(bytes.data(), static_cast<gssize>(bytes.size())), g_free);
  return text.get();
}

bool IsValidText(std::string_view bytes) {
  return g_utf8_validate_len(bytes.data(), bytes.size(), nullptr);
}

void SetKnown(const FontRecord& record, std::string_view key, const std::string& text) {
  if (!text.empty()) record->Set(key, ValidText(text));
}

void SetKnown(const FontRecord& record, std::string_view key,
              const std::optional<std::uint32_t>& number) {
  if (number) record->Set(key, std::to_string(*number));
}

}  // namespace

FontRecord RecordOfRow(const Nodrix::FontRow& row, std::uint32_t rawActivationState) {
  const FontRecord record = MakeFontRecord();
  SetKnown(record, kFP_PostScriptNameKey, row.postScriptName);
  SetKnown(record, kFP_KindKey, row.kind);
  SetKnown(record, kFP_FoundryKey, row.foundry.value_or(""));
  SetKnown(record, kFP_VersionKey, row.version);
  SetKnown(record, kFP_KerningChecksumKey, row.kerningChecksum);
  SetKnown(record, kFP_ChecksumKey, row.checksum11);
  SetKnown(record, kFP_Faceprint_1_2_Key, row.checksum12);
  record->Set(kFP_OutlineFileSizeKey, std::to_string(row.outlineFileSize));
  SetKnown(record, kFP_OutlineFileNameKey, row.outlineFileName);
  SetKnown(record, kFP_FamilyKey, row.family);
  record->Set(kFP_AssignedFamilyGroupIDKey, std::to_string(row.familyID));
  SetKnown(record, kFP_AssignedFamilyGroupNameKey, row.family);
  if (IsValidText(row.path)) SetKnown(record, kFP_PathKey, row.path);
  record->Set(kFP_DatabaseIDKey, std::to_string(row.id));
  record->Set(kFP_ActivationStateKey, std::to_string(rawActivationState));
  record->Set(kFP_WorkgroupIDKey, std::to_string(row.workgroupID));
  SetKnown(record, kFP_WorkgroupNameKey, row.workgroupName);
  record->Set(kFP_WorkgroupTypeKey, std::to_string(row.workgroupType));
  record->Set(kFP_IsSystemKey, Flag(row.workgroupType == kWorkgroupType_System));
  record->Set(kFP_IsVaultKey, Flag(false));
  record->Set(kFP_IsLocalKey, Flag(true));
  return record;
}
