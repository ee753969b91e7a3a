#include "foundation/JsonTree.h"

#include <yajl/yajl_tree.h>

#include <array>
#include <bit>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <string_view>
#include <utility>

namespace restful_mapper::Json {

namespace {

template <typename T>
bool Resize(T*& slots, std::size_t count) {
  // NOLINTNEXTLINE(bugprone-sizeof-expression): the slots are pointers
  void* moved = std::realloc(static_cast<void*>(slots), count * sizeof(T));
  if (moved == nullptr) return false;
  slots = static_cast<T*>(moved);
  return true;
}

// Room for one child more.
template <typename T>
bool Grow(T*& slots, std::size_t length) {
  const bool isFull = length == 0 || std::has_single_bit(length);
  return !isFull || Resize(slots, std::bit_ceil(length + 1));
}

// From the exact length to its power of two.
template <typename T>
bool RoundUp(T*& slots, std::size_t length) {
  return length == 0 || std::has_single_bit(length) || Resize(slots, std::bit_ceil(length));
}

char* CopyText(std::string_view text) {
  auto* copy = static_cast<char*>(std::malloc(text.size() + 1));
  if (copy == nullptr) return nullptr;
  std::memcpy(copy, text.data(), text.size());
  copy[text.size()] = '\0';
  return copy;
}

template <typename T>
bool ReadWhole(std::string_view text, T& number) {
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  return error == std::errc() && end == text.data() + text.size();
}

void CompleteNumber(yajl_val_s& value) {
  auto& number = value.u.number;
  if ((number.flags & YAJL_NUMBER_INT_VALID) == 0 && ReadWhole(number.r, number.i)) {
    number.flags |= YAJL_NUMBER_INT_VALID;
  }
  if ((number.flags & YAJL_NUMBER_DOUBLE_VALID) == 0 && ReadWhole(number.r, number.d)) {
    number.flags |= YAJL_NUMBER_DOUBLE_VALID;
  }
}

bool PrepareAll(yajl_val* values, std::size_t length) {
  for (std::size_t i = 0; i < length; ++i) {
    if (!PrepareTree(values[i])) return false;
  }
  return true;
}

OwnedTree NewValue(yajl_type type) {
  OwnedTree value(static_cast<yajl_val_s*>(std::calloc(1, sizeof(yajl_val_s))));
  if (value != nullptr) value->type = type;
  return value;
}

OwnedTree NewNumber(std::string_view text, long long integer, double real, unsigned int flags) {
  OwnedTree value = NewValue(yajl_t_number);
  if (value == nullptr) return value;
  value->u.number.r = CopyText(text);
  if (value->u.number.r == nullptr) return nullptr;
  value->u.number.i = integer;
  value->u.number.d = real;
  value->u.number.flags = flags;
  return value;
}

OwnedTree CopyArray(const yajl_val_s& value, std::size_t depth) {
  OwnedTree copy = NewArray();
  for (std::size_t i = 0; copy != nullptr && i < value.u.array.len; ++i) {
    // NOLINTNEXTLINE(clang-analyzer-unix.Malloc): the tree frees it, by yajl
    if (!AppendToArray(copy.get(), CopyTree(value.u.array.values[i], depth))) copy.reset();
  }
  return copy;
}

OwnedTree CopyMap(const yajl_val_s& value, std::size_t depth) {
  OwnedTree copy = NewMap();
  for (std::size_t i = 0; copy != nullptr && i < value.u.object.len; ++i) {
    OwnedTree child = CopyTree(value.u.object.values[i], depth);
    if (!AppendToMap(copy.get(), value.u.object.keys[i], std::move(child))) copy.reset();
  }
  return copy;
}

}  // namespace

void TreeDeleter::operator()(yajl_val_s* value) const { yajl_tree_free(value); }

bool PrepareTree(yajl_val_s* value) {
  switch (value->type) {
    case yajl_t_number:
      CompleteNumber(*value);
      return true;
    case yajl_t_array: {
      auto& array = value->u.array;
      return RoundUp(array.values, array.len) && PrepareAll(array.values, array.len);
    }
    case yajl_t_object: {
      auto& map = value->u.object;
      return RoundUp(map.keys, map.len) && RoundUp(map.values, map.len) &&
             PrepareAll(map.values, map.len);
    }
    default:
      return true;
  }
}

OwnedTree NewString(const std::string& text) {
  OwnedTree value = NewValue(yajl_t_string);
  if (value == nullptr) return value;
  value->u.string = CopyText(text.c_str());
  return value->u.string == nullptr ? nullptr : std::move(value);
}

OwnedTree NewInteger(std::int64_t number) {
  std::array<char, 24> text{};
  const auto [end, error] = std::to_chars(text.data(), text.data() + text.size(), number);
  return NewNumber({text.data(), end}, number, static_cast<double>(number),
                   YAJL_NUMBER_INT_VALID | YAJL_NUMBER_DOUBLE_VALID);
}

OwnedTree NewDouble(double number) {
  if (!std::isfinite(number)) return nullptr;
  return NewNumber(NumberText(number), 0, number, YAJL_NUMBER_DOUBLE_VALID);
}

OwnedTree NewBool(bool flag) { return NewValue(flag ? yajl_t_true : yajl_t_false); }
OwnedTree NewNull() { return NewValue(yajl_t_null); }
OwnedTree NewArray() { return NewValue(yajl_t_array); }
OwnedTree NewMap() { return NewValue(yajl_t_object); }

OwnedTree CopyTree(const yajl_val_s* value, std::size_t depth) {
  if (value == nullptr) return NewNull();
  switch (value->type) {
    case yajl_t_string:
      // NOLINTNEXTLINE(clang-analyzer-unix.Malloc): the tree frees it, by yajl
      return NewString(value->u.string);
    case yajl_t_number: {
      const auto& number = value->u.number;
      return NewNumber(number.r, number.i, number.d, number.flags);
    }
    case yajl_t_array:
      return depth == 0 ? nullptr : CopyArray(*value, depth - 1);
    case yajl_t_object:
      return depth == 0 ? nullptr : CopyMap(*value, depth - 1);
    default:
      return NewValue(value->type);
  }
}

bool AppendToArray(yajl_val_s* array, OwnedTree value) {
  if (value == nullptr || !YAJL_IS_ARRAY(array)) return false;
  auto& slots = array->u.array;
  if (!Grow(slots.values, slots.len)) return false;
  slots.values[slots.len] = value.release();
  slots.len += 1;
  return true;
}

bool AppendToMap(yajl_val_s* map, const std::string& key, OwnedTree value) {
  if (value == nullptr || !YAJL_IS_OBJECT(map)) return false;
  auto& slots = map->u.object;
  if (!Grow(slots.keys, slots.len) || !Grow(slots.values, slots.len)) return false;
  const char* ownKey = CopyText(key.c_str());
  if (ownKey == nullptr) return false;
  slots.keys[slots.len] = ownKey;
  slots.values[slots.len] = value.release();
  slots.len += 1;
  return true;
}

std::string NumberText(double number) {
  std::array<char, 32> buffer{};
  const auto [end, error] = std::to_chars(buffer.data(), buffer.data() + buffer.size(), number);
  std::string text(buffer.data(), end);
  if (text.find_first_of(".e") == std::string::npos) text += ".0";
  return text;
}

}  // namespace restful_mapper::Json
