#include "foundation/GJSONUtils.h"

#include <exception>
#include <new>

#include "foundation/ErrorChecks.h"
#include "foundation/GLogger.h"

namespace GJSONUtils {

unsigned int Parse(Parser& parser, const std::string& text, Node& root) {
  GLogger* logger = GLogger::GetSharedInstance();
  logger->LogDebug("Miscellaneous", "Attempting to parse JSON: %s", text.c_str());
  root = Node();
  try {
    parser.load(text);
    root = parser.root();
  } catch (const std::exception& error) {
    logger->LogError("Miscellaneous", "Failed to parse JSON: %s", error.what());
    return CoreErrorCodes::kInvalidParam;
  }
  return CoreErrorCodes::kSuccess;
}

bool HasValueForKey(const Node& jsonValue, const std::string& key) { return jsonValue.exists(key); }

unsigned int SetValueForKey(const std::string& value, const std::string& key, Node& jsonValue,
                            Node& newValue) {
  G_CHECK_CONDITION(!jsonValue.add_string(key, value, newValue), CoreErrorCodes::kOutOfMemory);
  return CoreErrorCodes::kSuccess;
}

unsigned int SetValueForKey(const char* value, const std::string& key, Node& jsonValue,
                            Node& newValue) {
  G_CHECK_NULL(value);
  return SetValueForKey(std::string(value), key, jsonValue, newValue);
}

unsigned int SetValueForKey(double value, const std::string& key, Node& jsonValue, Node& newValue) {
  G_CHECK_CONDITION(!jsonValue.add_double(key, value, newValue), CoreErrorCodes::kOutOfMemory);
  return CoreErrorCodes::kSuccess;
}

unsigned int SetValueForKey(bool value, const std::string& key, Node& jsonValue, Node& newValue) {
  G_CHECK_CONDITION(!jsonValue.add_bool(key, value, newValue), CoreErrorCodes::kOutOfMemory);
  return CoreErrorCodes::kSuccess;
}

unsigned int AddArrayForKey(const std::string& key, Node& jsonValue, Node& newArray) {
  G_CHECK_CONDITION(!jsonValue.add_array(key, newArray), CoreErrorCodes::kOutOfMemory);
  return CoreErrorCodes::kSuccess;
}

unsigned int AddMapForKey(const std::string& key, Node& jsonValue, Node& newMap) {
  G_CHECK_CONDITION(!jsonValue.add_map(key, newMap), CoreErrorCodes::kOutOfMemory);
  return CoreErrorCodes::kSuccess;
}

unsigned int GetValueForKey(const Node& jsonValue, const std::string& key, Node& value) {
  G_CHECK_CONDITION(!jsonValue.find(key, value), CoreErrorCodes::kNotFound);
  return CoreErrorCodes::kSuccess;
}

unsigned int GetValueForKey(const Node& jsonValue, const std::string& key, std::string& value) {
  Node valueObject;
  G_CHECK_CALL_QUIET(GetValueForKey(jsonValue, key, valueObject));
  G_CHECK_CONDITION(!valueObject.is_string(), CoreErrorCodes::kError);
  try {
    value = valueObject.to_string();
  } catch (const std::bad_alloc&) {
    WriteErrorRecord(1, __FILE__, __LINE__, "valueObject.to_string()",
                     CoreErrorCodes::kOutOfMemory);
    return CoreErrorCodes::kOutOfMemory;
  }
  return CoreErrorCodes::kSuccess;
}

unsigned int GetValueForKey(const Node& jsonValue, const std::string& key, double& value) {
  Node valueObject;
  G_CHECK_CALL_QUIET(GetValueForKey(jsonValue, key, valueObject));
  G_CHECK_CONDITION(!valueObject.is_double(), CoreErrorCodes::kError);
  value = valueObject.to_double();
  return CoreErrorCodes::kSuccess;
}

unsigned int GetValueForKey(const Node& jsonValue, const std::string& key, bool& value) {
  Node valueObject;
  G_CHECK_CALL_QUIET(GetValueForKey(jsonValue, key, valueObject));
  G_CHECK_CONDITION(!valueObject.is_bool(), CoreErrorCodes::kError);
  value = valueObject.to_bool();
  return CoreErrorCodes::kSuccess;
}

unsigned int GetValueForKey(const Node& jsonValue, const std::string& key,
                            std::vector<unsigned int>& value) {
  value.clear();
  Node valueObject;
  G_CHECK_CALL_QUIET(GetValueForKey(jsonValue, key, valueObject));
  G_CHECK_CONDITION(!valueObject.is_array(), CoreErrorCodes::kError);
  std::vector<unsigned int> numbers;
  try {
    // By 64 bits: the upper half of the unsigned ones is no int.
    for (const std::int64_t number : valueObject.to_int64_array()) {
      G_CHECK_CONDITION(!std::in_range<unsigned int>(number), CoreErrorCodes::kError);
      numbers.push_back(static_cast<unsigned int>(number));
    }
  } catch (const std::exception&) {
    WriteErrorRecord(1, __FILE__, __LINE__, "valueObject.to_int64_array()", CoreErrorCodes::kError);
    return CoreErrorCodes::kError;
  }
  value.swap(numbers);
  return CoreErrorCodes::kSuccess;
}

unsigned int AddValueToArray(const std::string& value, Node& array, Node& newValue) {
  G_CHECK_CONDITION(!array.add_string(value, newValue), CoreErrorCodes::kOutOfMemory);
  return CoreErrorCodes::kSuccess;
}

unsigned int AddValueToArray(const char* value, Node& array, Node& newValue) {
  G_CHECK_NULL(value);
  return AddValueToArray(std::string(value), array, newValue);
}

unsigned int AddValueToArray(double value, Node& array, Node& newValue) {
  G_CHECK_CONDITION(!array.add_double(value, newValue), CoreErrorCodes::kOutOfMemory);
  return CoreErrorCodes::kSuccess;
}

unsigned int AddValueToArray(bool value, Node& array, Node& newValue) {
  G_CHECK_CONDITION(!array.add_bool(value, newValue), CoreErrorCodes::kOutOfMemory);
  return CoreErrorCodes::kSuccess;
}

unsigned int AddArrayToArray(Node& array, Node& newArray) {
  G_CHECK_CONDITION(!array.add_array(newArray), CoreErrorCodes::kOutOfMemory);
  return CoreErrorCodes::kSuccess;
}

unsigned int AddMapToArray(Node& array, Node& newMap) {
  G_CHECK_CONDITION(!array.add_map(newMap), CoreErrorCodes::kOutOfMemory);
  return CoreErrorCodes::kSuccess;
}

namespace Internal {

unsigned int SetNumberForKey(std::int64_t value, const std::string& key, Node& jsonValue,
                             Node& newValue) {
  G_CHECK_CONDITION(!jsonValue.add_int64(key, value, newValue), CoreErrorCodes::kOutOfMemory);
  return CoreErrorCodes::kSuccess;
}

unsigned int SetNodeForKey(const Node& value, const std::string& key, Node& jsonValue,
                           Node& newValue) {
  G_CHECK_CONDITION(!jsonValue.add_node(key, value, newValue), CoreErrorCodes::kOutOfMemory);
  return CoreErrorCodes::kSuccess;
}

unsigned int AddNumberToArray(std::int64_t value, Node& array, Node& newValue) {
  G_CHECK_CONDITION(!array.add_int64(value, newValue), CoreErrorCodes::kOutOfMemory);
  return CoreErrorCodes::kSuccess;
}

unsigned int AddNodeToArray(const Node& value, Node& array, Node& newValue) {
  G_CHECK_CONDITION(!array.add_node(value, newValue), CoreErrorCodes::kOutOfMemory);
  return CoreErrorCodes::kSuccess;
}

unsigned int GetNumberForKey(const Node& jsonValue, const std::string& key, std::int64_t lowest,
                             std::int64_t highest, std::int64_t& value) {
  Node valueObject;
  G_CHECK_CALL_QUIET(GetValueForKey(jsonValue, key, valueObject));
  G_CHECK_CONDITION(!valueObject.is_int(), CoreErrorCodes::kError);
  const std::int64_t number = valueObject.to_int64();
  G_CHECK_CONDITION(number < lowest || number > highest, CoreErrorCodes::kError);
  value = number;
  return CoreErrorCodes::kSuccess;
}

unsigned int CheckFits(std::uint64_t value) {
  G_CHECK_CONDITION(!std::in_range<std::int64_t>(value), CoreErrorCodes::kInvalidParam);
  return CoreErrorCodes::kSuccess;
}

}  // namespace Internal

const std::string& GetJSONPatchOpKey() {
  static const std::string word = "op";
  return word;
}

const std::string& GetJSONPatchPathKey() {
  static const std::string word = "path";
  return word;
}

const std::string& GetJSONPatchValueKey() {
  static const std::string word = "value";
  return word;
}

const std::string& GetJSONPatchFromKey() {
  static const std::string word = "from";
  return word;
}

const std::string& GetJSONPatchPathDelimiter() {
  static const std::string word = "/";
  return word;
}

const std::string& GetJSONPatchOpAdd() {
  static const std::string word = "add";
  return word;
}

const std::string& GetJSONPatchOpRemove() {
  static const std::string word = "remove";
  return word;
}

const std::string& GetJSONPatchOpReplace() {
  static const std::string word = "replace";
  return word;
}

const std::string& GetJSONPatchOpCopy() {
  static const std::string word = "copy";
  return word;
}

const std::string& GetJSONPatchOpMove() {
  static const std::string word = "move";
  return word;
}

const std::string& GetJSONPatchOpTest() {
  static const std::string word = "test";
  return word;
}

}  // namespace GJSONUtils
