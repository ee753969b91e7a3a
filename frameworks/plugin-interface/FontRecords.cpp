#include "frameworks/plugin-interface/FontRecords.h"

#include <glib.h>

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "sdk/FontRecordKeys.h"

namespace {

// Keys that are set, and those that the plug-in adds.
constexpr std::size_t kKeyCount = 26;

std::string Flag(bool on) { return on ? "1" : "0"; }

bool IsValidText(std::string_view bytes) {
  return g_utf8_validate_len(bytes.data(), bytes.size(), nullptr);
}

// A file name is bytes; a record holds text. Bytes that are none become U+FFFD.
std::string ValidText(const std::string& bytes) {
  if (IsValidText(bytes)) return bytes;
  const std::unique_ptr<char, decltype(&g_free)> text(
      g_utf8_make_valid(bytes.data(), static_cast<gssize>(bytes.size())), g_free);
  return text.get();
}

// Entries of a record, each key of which is set once.
class Entries {
 public:
  Entries() { mEntries.reserve(kKeyCount); }

  void Set(std::string_view key, std::string text) { mEntries.emplace_back(key, std::move(text)); }
  void Set(std::string_view key, std::uint64_t number) { Set(key, std::to_string(number)); }
  void SetKnown(std::string_view key, const std::string& text) {
    if (!text.empty()) Set(key, ValidText(text));
  }
  void SetKnown(std::string_view key, const std::optional<std::uint32_t>& number) {
    if (number) Set(key, *number);
  }
  FontRecord Take() { return PropertyList::Dictionary::CreateOfDistinct(std::move(mEntries)); }

 private:
  std::vector<PropertyList::Dictionary::Entry> mEntries;
};

}  // namespace

FontRecord RecordOfRow(const Nodrix::FontRow& row) {
  Entries record;
  record.SetKnown(kFP_PostScriptNameKey, row.postScriptName);
  record.SetKnown(kFP_KindKey, row.kind);
  record.SetKnown(kFP_FoundryKey, row.foundry.value_or(""));
  record.SetKnown(kFP_VersionKey, row.version);
  record.SetKnown(kFP_KerningChecksumKey, row.kerningChecksum);
  record.SetKnown(kFP_ChecksumKey, row.checksum11);
  record.SetKnown(kFP_Faceprint_1_2_Key, row.checksum12);
  record.Set(kFP_OutlineFileSizeKey, row.outlineFileSize);
  record.SetKnown(kFP_OutlineFileNameKey, row.outlineFileName);
  record.SetKnown(kFP_FamilyKey, row.family);
  record.Set(kFP_AssignedFamilyGroupIDKey, row.familyID);
  record.SetKnown(kFP_AssignedFamilyGroupNameKey, row.family);
  if (IsValidText(row.path)) record.SetKnown(kFP_PathKey, row.path);
  record.Set(kFP_DatabaseIDKey, row.id);
  record.Set(kFP_ActivationStateKey, row.rawActivationState);
  record.Set(kFP_WorkgroupIDKey, row.workgroupID);
  record.SetKnown(kFP_WorkgroupNameKey, row.workgroupName);
  record.Set(kFP_WorkgroupTypeKey, row.workgroupType);
  record.Set(kFP_IsSystemKey, Flag(row.workgroupType == kWorkgroupType_System));
  record.Set(kFP_IsVaultKey, Flag(false));
  record.Set(kFP_IsLocalKey, Flag(true));
  return record.Take();
}
