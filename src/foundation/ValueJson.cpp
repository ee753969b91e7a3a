// Values and trees as JSON.
#include <cmath>
#include <nlohmann/json.hpp>

#include "foundation/ErrorChecks.h"
#include "foundation/GKVTree.h"
#include "foundation/GString.h"
#include "foundation/GValueImpl.h"

namespace {

constexpr std::size_t kElementBytes = 16;
constexpr std::size_t kEntryBytes = 64;

bool TakeRoom(std::size_t& room, std::size_t bytes) {
  const bool isEnough = bytes <= room;
  room -= isEnough ? bytes : room;
  return isEnough;
}

TModuleErrorCode CheckText(std::string_view text, std::size_t& room) {
  G_CHECK_CONDITION(!TakeRoom(room, text.size()), CoreErrorCodes::kNotSupported);
  G_CHECK_CONDITION(!GString::IsValidUtf8(text), GValue::kValueConversionError);
  return CoreErrorCodes::kSuccess;
}

}  // namespace

TModuleErrorCode GValue::ConvertToJSON(nlohmann::json& json) const {
  nlohmann::json converted;
  std::size_t room = kMaxXMLBytes;
  G_CHECK_CALL(MakeJSON(converted, 0, room));
  json = std::move(converted);
  return CoreErrorCodes::kSuccess;
}

TModuleErrorCode GValue::MakeJSON(nlohmann::json& json, unsigned int depth,
                                  std::size_t& room) const {
  G_CHECK_CONDITION(m_eValueType == kValueType_NULL, CoreErrorCodes::kNotImplemented);
  if (!IsArray()) {
    G_CHECK_CALL(MakeJSONElement(json, 0, depth, room));
    return CoreErrorCodes::kSuccess;
  }
  json = nlohmann::json::array();
  for (unsigned int index = 0; index < GetCount(); ++index) {
    nlohmann::json element;
    G_CHECK_CALL(MakeJSONElement(element, index, depth, room));
    json.push_back(std::move(element));
  }
  return CoreErrorCodes::kSuccess;
}

TModuleErrorCode GValue::MakeJSONElement(nlohmann::json& json, unsigned int index,
                                         unsigned int depth, std::size_t& room) const {
  G_CHECK_CONDITION(!TakeRoom(room, kElementBytes), CoreErrorCodes::kNotSupported);
  constexpr TModuleErrorCode otherwise = CoreErrorCodes::kNotImplemented;
  return WithGValueType(m_eValueType, otherwise, [&]<class T>(std::type_identity<T>) {
    T value{};
    G_CHECK_CALL(GetValue(value, index));
    if constexpr (std::is_same_v<T, GKVTreePtr>) {
      G_CHECK_CALL(value->MakeJSON(json, depth + 1, room));
    } else {
      if constexpr (std::is_same_v<T, std::string>) G_CHECK_CALL(CheckText(value, room));
      if constexpr (std::is_same_v<T, double>)
        G_CHECK_CONDITION(!std::isfinite(value), kValueConversionError);
      if constexpr (GValueInteger<T>) {
        json = static_cast<GValueRange<T>>(value);
      } else {
        json = std::move(value);
      }
    }
    return CoreErrorCodes::kSuccess;
  });
}

TModuleErrorCode GKVTree::ConvertToJSON(nlohmann::json& json) const {
  nlohmann::json converted;
  std::size_t room = kMaxXMLBytes;
  G_CHECK_CALL(MakeJSON(converted, 1, room));
  json = std::move(converted);
  return CoreErrorCodes::kSuccess;
}

TModuleErrorCode GKVTree::MakeJSON(nlohmann::json& json, unsigned int depth,
                                   std::size_t& room) const {
  G_CHECK_CONDITION(depth > kMaxTreeDepth, CoreErrorCodes::kNotSupported);
  json = nlohmann::json::object();
  for (const auto& [key, value] : m_values) {
    G_CHECK_CONDITION(!TakeRoom(room, kEntryBytes), CoreErrorCodes::kNotSupported);
    G_CHECK_CALL(CheckText(key, room));
    G_CHECK_CALL(value.MakeJSON(json[key], depth, room));
  }
  return CoreErrorCodes::kSuccess;
}
