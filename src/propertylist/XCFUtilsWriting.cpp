// Typed values into dictionaries and arrays.
#include "foundation/GUtils.h"
#include "propertylist/XCFUtils.h"

namespace XCFUtils {

namespace {

void Put(const DictionaryRef& dict, std::string_view key, Value value) {
  GUtils::Assert(static_cast<bool>(dict), "dict != NULL");
  dict->Set(key, std::move(value));
}

void Append(const ArrayRef& array, Value value) {
  GUtils::Assert(static_cast<bool>(array), "array != NULL");
  array->Append(std::move(value));
}

// Every integer type, those beyond the largest signed number by their bits.
template <typename Integer>
Value IntegerValue(Integer value) {
  return static_cast<std::int64_t>(value);
}

}  // namespace

void PutBoolIntoDict(const DictionaryRef& dict, std::string_view key, bool value) {
  Put(dict, key, value);
}

void PutCharIntoDict(const DictionaryRef& dict, std::string_view key, std::int8_t value) {
  Put(dict, key, IntegerValue(value));
}

void PutShortIntoDict(const DictionaryRef& dict, std::string_view key, short value) {
  Put(dict, key, IntegerValue(value));
}

void PutLongIntoDict(const DictionaryRef& dict, std::string_view key, long value) {
  Put(dict, key, IntegerValue(value));
}

void PutULongIntoDict(const DictionaryRef& dict, std::string_view key, unsigned long value) {
  Put(dict, key, IntegerValue(value));
}

void PutLongIntoDictAsString(const DictionaryRef& dict, std::string_view key, long value) {
  Put(dict, key, std::to_string(value));  // "%ld"
}

void PutULongIntoDictAsString(const DictionaryRef& dict, std::string_view key,
                              unsigned long value) {
  Put(dict, key, std::to_string(value));  // "%lu"
}

bool PutUTF8NullTermCharPtrIntoDict(const DictionaryRef& dict, std::string_view key,
                                    const char* text) {
  return PutNullTermCharPtrIntoDict(dict, key, text, kCFStringEncodingUTF8);
}

bool PutNullTermCharPtrIntoDict(const DictionaryRef& dict, std::string_view key, const char* text,
                                CFStringEncoding encoding) {
  GUtils::Assert(text != nullptr, "text != NULL");
  std::optional<std::string> utf8 = DecodeText(text, encoding);
  if (!utf8) return false;
  Put(dict, key, std::move(*utf8));
  return true;
}

void AppendBoolOntoArray(const ArrayRef& array, bool value) { Append(array, value); }

void AppendShortOntoArray(const ArrayRef& array, short value) {
  Append(array, IntegerValue(value));
}

void AppendLongOntoArray(const ArrayRef& array, long value) { Append(array, IntegerValue(value)); }

void AppendULongOntoArray(const ArrayRef& array, unsigned long value) {
  Append(array, IntegerValue(value));
}

bool AppendUTF8NullTermCharPtrOntoArray(const ArrayRef& array, const char* text) {
  GUtils::Assert(text != nullptr, "text != NULL");
  std::optional<std::string> utf8 = DecodeText(text, kCFStringEncodingUTF8);
  if (!utf8) return false;
  Append(array, std::move(*utf8));
  return true;
}

}  // namespace XCFUtils
