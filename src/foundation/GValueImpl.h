// What values and trees share of an element's storage; for their sources only.
#pragma once

#include <bit>
#include <cstdint>
#include <limits>
#include <string>
#include <type_traits>
#include <utility>
#include <variant>

#include "foundation/GValue.h"

// One element: an unsigned number of 64 bits for integers (signed ones sign-extended), bool and, by
// its bits, double; a string; or a tree.
class GValueImpl {
 public:
  explicit GValueImpl(std::uint64_t bits) : m_storage(bits) {}
  explicit GValueImpl(std::string text) : m_storage(std::move(text)) {}
  explicit GValueImpl(GKVTreePtr tree) : m_storage(std::move(tree)) {}

  // By the form that the value's type stands for.
  std::uint64_t Bits() const { return std::get<std::uint64_t>(m_storage); }
  const std::string& Text() const { return std::get<std::string>(m_storage); }
  GKVTreePtr& Tree() { return std::get<GKVTreePtr>(m_storage); }
  const GKVTreePtr& Tree() const { return std::get<GKVTreePtr>(m_storage); }

 private:
  std::variant<std::uint64_t, std::string, GKVTreePtr> m_storage;
};

// The integer type with the same range, for `char` the signed one.
template <GValueInteger T>
using GValueRange = std::conditional_t<std::is_same_v<T, char>, signed char, T>;

template <GValueElement T>
constexpr GValue::EValueType GValueTypeOf() {
  if constexpr (std::is_same_v<T, bool>) return GValue::kValueType_bool;
  if constexpr (std::is_same_v<T, char>) return GValue::kValueType_byte;
  if constexpr (std::is_same_v<T, unsigned char>) return GValue::kValueType_ubyte;
  if constexpr (std::is_same_v<T, short>) return GValue::kValueType_short;
  if constexpr (std::is_same_v<T, int>) return GValue::kValueType_long;
  if constexpr (std::is_same_v<T, unsigned int>) return GValue::kValueType_ulong;
  if constexpr (std::is_same_v<T, unsigned long long>) return GValue::kValueType_uLongLong;
  if constexpr (std::is_same_v<T, double>) return GValue::kValueType_double;
  if constexpr (std::is_same_v<T, std::string>) return GValue::kValueType_string;
  return GValue::kValueType_kvtree;
}

// Calls `function` with std::type_identity<T> for the type's T, trees by their pointer;
// `otherwise` for kValueType_NULL.
template <class Function>
TModuleErrorCode WithGValueType(GValue::EValueType type, TModuleErrorCode otherwise,
                                const Function& function) {
  switch (type) {
    case GValue::kValueType_bool:
      return function(std::type_identity<bool>());
    case GValue::kValueType_byte:
      return function(std::type_identity<char>());
    case GValue::kValueType_ubyte:
      return function(std::type_identity<unsigned char>());
    case GValue::kValueType_short:
      return function(std::type_identity<short>());
    case GValue::kValueType_long:
      return function(std::type_identity<int>());
    case GValue::kValueType_ulong:
      return function(std::type_identity<unsigned int>());
    case GValue::kValueType_double:
      return function(std::type_identity<double>());
    case GValue::kValueType_string:
      return function(std::type_identity<std::string>());
    case GValue::kValueType_uLongLong:
      return function(std::type_identity<unsigned long long>());
    case GValue::kValueType_kvtree:
      return function(std::type_identity<GKVTreePtr>());
    case GValue::kValueType_NULL:
      break;
  }
  return otherwise;
}
