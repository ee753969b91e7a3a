// Font records as tables.
#pragma once

#include <algorithm>
#include <initializer_list>
#include <string>
#include <string_view>
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

// "PostScriptName=Foo|FontKind=TrueType". Of two entries of one key the later one counts, and a key
// without "=" takes it away.
inline FontRecord ReadRecord(std::string_view text) {
  FontRecord record = MakeFontRecord();
  while (!text.empty()) {
    const std::string_view entry = text.substr(0, text.find('|'));
    text.remove_prefix(std::min(entry.size() + 1, text.size()));
    const std::size_t sign = entry.find('=');
    if (sign == std::string_view::npos) {
      record->Remove(entry);
    } else {
      record->Set(entry.substr(0, sign), entry.substr(sign + 1));
    }
  }
  return record;
}

// The same backwards, "?" standing for what is no text; "-" for null.
inline std::string WriteRecord(const FontRecord& record) {
  if (!record) return "-";
  std::string text;
  for (const auto& [key, value] : record->Entries()) {
    const std::string* string = value.AsString();
    text += (text.empty() ? "" : "|") + key + "=" + (string != nullptr ? *string : "?");
  }
  return text;
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

// "3,4"; 0 for an entry without an ID.
inline std::string IDsOf(const FontRecordArray& fonts) {
  std::string ids;
  for (std::size_t i = 0; i < CountOf(fonts); ++i) {
    ids += (i == 0 ? "" : ",") + std::to_string(RecordDatabaseID(fonts->DictionaryAt(i)));
  }
  return ids;
}
