#include "propertylist/FontRecord.h"

#include <cstdlib>
#include <utility>

#include "sdk/FontRecordKeys.h"

std::string RecordString(const FontRecord& record, std::string_view key) {
  const std::string* text = record ? record->GetString(key) : nullptr;
  return text == nullptr ? std::string() : *text;
}

bool RecordHas(const FontRecord& record, std::string_view key) {
  return record && record->Has(key);
}

std::int64_t RecordInteger(const FontRecord& record, std::string_view key) {
  const PropertyList::Value* value = record ? record->Find(key) : nullptr;
  if (value == nullptr) return 0;
  if (const std::int64_t* number = value->AsInteger()) return *number;
  const std::string* text = value->AsString();
  static_assert(sizeof(long long) == sizeof(std::int64_t));
  return text == nullptr ? 0 : std::strtoll(text->c_str(), nullptr, 10);
}

std::uint32_t RecordDatabaseID(const FontRecord& record) {
  const std::int64_t id = RecordInteger(record, kFP_DatabaseIDKey);
  return std::in_range<std::uint32_t>(id) ? static_cast<std::uint32_t>(id) : 0;
}

bool RecordFlag(const FontRecord& record, std::string_view key) {
  const std::string* text = record ? record->GetString(key) : nullptr;
  return text != nullptr && *text == "1";
}

void SetRecordNumber(const FontRecord& record, std::string_view key, std::int64_t value) {
  if (record) record->Set(key, std::to_string(value));
}
