// Font records as tables.
#pragma once

#include <initializer_list>
#include <string>
#include <utility>
#include <vector>

#include "propertylist/FontRecord.h"
#include "sdk/FontRecordKeys.h"

inline FontRecord MakeRecord(
    std::initializer_list<std::pair<const char*, PropertyList::Value>> entries) {
  FontRecord record = MakeFontRecord();
  for (const auto& [key, value] : entries) record->Set(key, value);
  return record;
}

inline FontRecord MakeNamed(const char* postScriptName) {
  return MakeRecord({{kFP_PostScriptNameKey, postScriptName}});
}

inline FontRecordArray MakeFonts(std::initializer_list<PropertyList::Value> fonts) {
  FontRecordArray array = MakeFontRecordArray();
  for (const PropertyList::Value& font : fonts) array->Append(font);
  return array;
}

// "" for an entry without a name.
inline std::vector<std::string> NamesOf(const FontRecordArray& fonts) {
  std::vector<std::string> names;
  for (std::size_t i = 0; i < CountOf(fonts); ++i) {
    names.push_back(RecordString(fonts->DictionaryAt(i), kFP_PostScriptNameKey));
  }
  return names;
}
