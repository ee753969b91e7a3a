// Typed values out of dictionaries.
#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <type_traits>

#include "foundation/GUtils.h"
#include "propertylist/XCFUtils.h"

namespace XCFUtils {

namespace {

const Value* Find(const DictionaryRef& dict, std::string_view key) {
  return dict ? dict->Find(key) : nullptr;
}

template <typename Number>
bool ConvertInteger(std::int64_t from, Number& out) {
  if constexpr (std::is_integral_v<Number>) {
    if (!std::in_range<Number>(from)) return false;
  }
  out = static_cast<Number>(from);
  return true;
}

template <typename Number>
bool ConvertReal(double from, Number& out) {
  using Limits = std::numeric_limits<Number>;
  if constexpr (std::is_integral_v<Number>) {
    // The upper end as a power of two, which a double holds exactly. Not-a-number fails here too.
    const double end = std::ldexp(1.0, Limits::digits);
    if (!(from >= -end && from < end) || std::trunc(from) != from) return false;
  } else if (std::isfinite(from) && std::isinf(static_cast<Number>(from))) {
    return false;
  }
  out = static_cast<Number>(from);
  return true;
}

template <typename Number>
bool GetNumberFromDict(const DictionaryRef& dict, std::string_view key, Number& out) {
  return GetNumberFromCFValue(Find(dict, key), &out);
}

bool IsAscii(std::string_view text) {
  return std::all_of(text.begin(), text.end(), [](char c) { return (c & 0x80) == 0; });
}

}  // namespace

const std::string* GetCFStringFromDict(const DictionaryRef& dict, std::string_view key) {
  const Value* value = Find(dict, key);
  return value == nullptr ? nullptr : value->AsString();
}

const bool* GetCFBooleanFromDict(const DictionaryRef& dict, std::string_view key) {
  const Value* value = Find(dict, key);
  return value == nullptr ? nullptr : value->AsBool();
}

const Value* GetCFNumberFromDict(const DictionaryRef& dict, std::string_view key) {
  const Value* value = Find(dict, key);
  return value != nullptr && (value->AsInteger() || value->AsReal()) ? value : nullptr;
}

PropertyList::Array* GetCFArrayFromDict(const DictionaryRef& dict, std::string_view key) {
  const Value* value = Find(dict, key);
  return value == nullptr ? nullptr : value->AsArray();
}

bool GetCFTypeFromDict(const DictionaryRef& dict, std::string_view key, PLKind typeID,
                       const Value*& out) {
  const Value* value = Find(dict, key);
  if (value == nullptr || value->Kind() != typeID) return false;
  out = value;
  return true;
}

const std::string* XCFGetCFStringFromDictionary(const DictionaryRef& dict, std::string_view key) {
  GUtils::Assert(static_cast<bool>(dict), "dict != NULL");
  return GetCFStringFromDict(dict, key);
}

template <typename Number>
bool GetNumberFromCFValue(const Value* value, Number* out) {
  GUtils::Assert(out != nullptr, "out != NULL");
  if (value == nullptr) return false;
  if (const std::int64_t* integer = value->AsInteger()) return ConvertInteger(*integer, *out);
  if (const double* real = value->AsReal()) return ConvertReal(*real, *out);
  return false;
}

template bool GetNumberFromCFValue(const Value* value, std::int8_t* out);
template bool GetNumberFromCFValue(const Value* value, short* out);
template bool GetNumberFromCFValue(const Value* value, long* out);
template bool GetNumberFromCFValue(const Value* value, long long* out);
template bool GetNumberFromCFValue(const Value* value, float* out);
template bool GetNumberFromCFValue(const Value* value, double* out);

bool GetBoolFromCFValue(const Value* value, bool& out) {
  const bool* flag = value == nullptr ? nullptr : value->AsBool();
  if (flag == nullptr) return false;
  out = *flag;
  return true;
}

bool GetCharFromCFValue(const Value* value, std::int8_t& out) {
  return GetNumberFromCFValue(value, &out);
}

bool GetShortFromCFValue(const Value* value, short& out) {
  return GetNumberFromCFValue(value, &out);
}

bool GetLongFromCFValue(const Value* value, long& out) { return GetNumberFromCFValue(value, &out); }

bool GetLongLongFromCFValue(const Value* value, long long& out) {
  return GetNumberFromCFValue(value, &out);
}

bool GetFloatFromCFValue(const Value* value, float& out) {
  return GetNumberFromCFValue(value, &out);
}

bool GetDoubleFromCFValue(const Value* value, double& out) {
  return GetNumberFromCFValue(value, &out);
}

bool GetBoolFromDict(const DictionaryRef& dict, std::string_view key, bool& out) {
  return GetBoolFromCFValue(Find(dict, key), out);
}

bool GetCharFromDict(const DictionaryRef& dict, std::string_view key, std::int8_t& out) {
  return GetNumberFromDict(dict, key, out);
}

bool GetShortFromDict(const DictionaryRef& dict, std::string_view key, short& out) {
  return GetNumberFromDict(dict, key, out);
}

bool GetLongFromDict(const DictionaryRef& dict, std::string_view key, long& out) {
  return GetNumberFromDict(dict, key, out);
}

bool GetLongLongFromDict(const DictionaryRef& dict, std::string_view key, long long& out) {
  return GetNumberFromDict(dict, key, out);
}

bool GetFloatFromDict(const DictionaryRef& dict, std::string_view key, float& out) {
  return GetNumberFromDict(dict, key, out);
}

bool GetDoubleFromDict(const DictionaryRef& dict, std::string_view key, double& out) {
  return GetNumberFromDict(dict, key, out);
}

long GetLongFromDictString(const DictionaryRef& dict, std::string_view key,
                           CFStringEncoding encoding) {
  const std::string* text = GetCFStringFromDict(dict, key);
  if (text == nullptr) return 0;
  const long number = std::strtol(text->c_str(), nullptr, 10);
  if (encoding == kCFStringEncodingUTF8 || IsAscii(*text)) return number;
  using Limits = std::numeric_limits<std::int32_t>;
  return std::clamp<long>(number, Limits::min(), Limits::max());
}

}  // namespace XCFUtils
