// JSON by codes: the nodes of restful_mapper::Json with their exceptions and false results turned
// into codes, 0 for success. Nothing is thrown, unless there is no memory even for a name or a
// record. A failure is written as an error record; what lies
// under a failed read of a value (a missing key) is recorded at its cause, and again at debug level
// where it passed.
//
// A tree belongs to one thread at a time (JsonNode.h, which also says how long nodes live).
#pragma once

#include <concepts>
#include <cstdint>
#include <limits>
#include <nlohmann/json_fwd.hpp>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "foundation/JsonNode.h"
#include "foundation/JsonParser.h"

namespace GJSONUtils {

using restful_mapper::Json::Node;
using restful_mapper::Json::Parser;

template <typename T>
concept WholeNumber = (std::integral<T> && !std::same_as<T, bool>) || std::is_enum_v<T>;

// Replaces the parser's tree and gives its root, whatever its type. CoreErrorCodes::kInvalidParam
// for text that is no JSON or exceeds the limits of JsonLimits.h; the parser is without a tree
// then, and `root` views nothing. The text is logged at debug level, the reason at error level,
// both as "Miscellaneous".
[[nodiscard]] unsigned int Parse(Parser& parser, const std::string& text, Node& root);
// The same into a value of nlohmann's, with the same limits and without comments; null on failure.
[[nodiscard]] unsigned int Parse(nlohmann::json& root, const std::string& text);

bool HasValueForKey(const Node& jsonValue, const std::string& key);

// Add a value to a map under a key, and give its node, which may be the map's own variable.
// CoreErrorCodes::kOutOfMemory if it is not added, also because `jsonValue` is not a map, or the
// number is infinite or none. A key that is there already is added again (Node::add_string).
[[nodiscard]] unsigned int SetValueForKey(const std::string& value, const std::string& key,
                                          Node& jsonValue, Node& newValue);
[[nodiscard]] unsigned int SetValueForKey(const char* value, const std::string& key,
                                          Node& jsonValue, Node& newValue);
[[nodiscard]] unsigned int SetValueForKey(double value, const std::string& key, Node& jsonValue,
                                          Node& newValue);
[[nodiscard]] unsigned int SetValueForKey(bool value, const std::string& key, Node& jsonValue,
                                          Node& newValue);
[[nodiscard]] unsigned int AddArrayForKey(const std::string& key, Node& jsonValue, Node& newArray);
[[nodiscard]] unsigned int AddMapForKey(const std::string& key, Node& jsonValue, Node& newMap);

// The value under a key. CoreErrorCodes::kNotFound if there is none, also because `jsonValue` is
// not a map; kError if it is of another type. `value` stays on failure. A double is read from an
// integer too.
[[nodiscard]] unsigned int GetValueForKey(const Node& jsonValue, const std::string& key,
                                          Node& value);
[[nodiscard]] unsigned int GetValueForKey(const Node& jsonValue, const std::string& key,
                                          std::string& value);
[[nodiscard]] unsigned int GetValueForKey(const Node& jsonValue, const std::string& key,
                                          double& value);
[[nodiscard]] unsigned int GetValueForKey(const Node& jsonValue, const std::string& key,
                                          bool& value);
// An array of integers from 0 to 4294967295, or kError. `value` is cleared in any case, and empty
// on failure.
[[nodiscard]] unsigned int GetValueForKey(const Node& jsonValue, const std::string& key,
                                          std::vector<unsigned int>& value);

// Add a value at an array's end; kOutOfMemory as above.
[[nodiscard]] unsigned int AddValueToArray(const std::string& value, Node& array, Node& newValue);
[[nodiscard]] unsigned int AddValueToArray(const char* value, Node& array, Node& newValue);
[[nodiscard]] unsigned int AddValueToArray(double value, Node& array, Node& newValue);
[[nodiscard]] unsigned int AddValueToArray(bool value, Node& array, Node& newValue);
[[nodiscard]] unsigned int AddArrayToArray(Node& array, Node& newArray);
[[nodiscard]] unsigned int AddMapToArray(Node& array, Node& newMap);

// What the templates below come down to.
namespace Internal {

unsigned int SetNumberForKey(std::int64_t value, const std::string& key, Node& jsonValue,
                             Node& newValue);
unsigned int SetNodeForKey(const Node& value, const std::string& key, Node& jsonValue,
                           Node& newValue);
unsigned int AddNumberToArray(std::int64_t value, Node& array, Node& newValue);
unsigned int AddNodeToArray(const Node& value, Node& array, Node& newValue);
unsigned int GetNumberForKey(const Node& jsonValue, const std::string& key, std::int64_t lowest,
                             std::int64_t highest, std::int64_t& value);
// CoreErrorCodes::kInvalidParam, recorded, if the number is above the highest of 64 bits with sign.
unsigned int CheckFits(std::uint64_t value);

template <WholeNumber T>
unsigned int ToInt64(T value, std::int64_t& number) {
  if constexpr (std::is_enum_v<T>) {
    return ToInt64(static_cast<std::underlying_type_t<T>>(value), number);
  } else {
    number = static_cast<std::int64_t>(value);
    if constexpr (std::is_unsigned_v<T>) return CheckFits(value);
    return 0;
  }
}

}  // namespace Internal

// Integers and enumerations. kInvalidParam for one above 9223372036854775807.
template <WholeNumber T>
[[nodiscard]] unsigned int SetValueForKey(T value, const std::string& key, Node& jsonValue,
                                          Node& newValue) {
  std::int64_t number = 0;
  const unsigned int code = Internal::ToInt64(value, number);
  return code != 0 ? code : Internal::SetNumberForKey(number, key, jsonValue, newValue);
}

// A copy of the node's value and all below it, so that the tree owns what it holds; `value` may be
// of another tree, or `jsonValue` itself. A node that views nothing is added as a null.
template <std::same_as<Node> T>
[[nodiscard]] unsigned int SetValueForKey(const T& value, const std::string& key, Node& jsonValue,
                                          Node& newValue) {
  return Internal::SetNodeForKey(value, key, jsonValue, newValue);
}

template <WholeNumber T>
[[nodiscard]] unsigned int AddValueToArray(T value, Node& array, Node& newValue) {
  std::int64_t number = 0;
  const unsigned int code = Internal::ToInt64(value, number);
  return code != 0 ? code : Internal::AddNumberToArray(number, array, newValue);
}

template <std::same_as<Node> T>
[[nodiscard]] unsigned int AddValueToArray(const T& value, Node& array, Node& newValue) {
  return Internal::AddNodeToArray(value, array, newValue);
}

// Any integer type. kError for a value that it cannot hold, such as a negative one without a sign.
template <std::integral T>
[[nodiscard]] unsigned int GetValueForKey(const Node& jsonValue, const std::string& key, T& value) {
  constexpr auto kHighest = std::in_range<std::int64_t>(std::numeric_limits<T>::max())
                                ? static_cast<std::int64_t>(std::numeric_limits<T>::max())
                                : std::numeric_limits<std::int64_t>::max();
  std::int64_t number = 0;
  const unsigned int code = Internal::GetNumberForKey(
      jsonValue, key, static_cast<std::int64_t>(std::numeric_limits<T>::min()), kHighest, number);
  if (code == 0) value = static_cast<T>(number);
  return code;
}

// The words of JSON Patch. [any-thread]
const std::string& GetJSONPatchOpKey();
const std::string& GetJSONPatchPathKey();
const std::string& GetJSONPatchValueKey();
const std::string& GetJSONPatchFromKey();
const std::string& GetJSONPatchPathDelimiter();
const std::string& GetJSONPatchOpAdd();
const std::string& GetJSONPatchOpRemove();
const std::string& GetJSONPatchOpReplace();
const std::string& GetJSONPatchOpCopy();
const std::string& GetJSONPatchOpMove();
const std::string& GetJSONPatchOpTest();

}  // namespace GJSONUtils
