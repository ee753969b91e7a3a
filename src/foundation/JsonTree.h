// Writing into a tree of yajl, which its own interface only reads. All memory is from malloc, so
// that yajl_tree_free frees what was parsed and what was added alike.
//
// The room of an array or a map: yajl keeps no capacity, so it follows from the length as the next
// power of two. What yajl parsed has a slot for each child and no more; PrepareTree gives it that
// room, and must have run over a tree before anything is added to it. Children never move.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

#include "foundation/JsonLimits.h"

struct yajl_val_s;

namespace restful_mapper::Json {

struct TreeDeleter {
  void operator()(yajl_val_s* value) const;
};
using OwnedTree = std::unique_ptr<yajl_val_s, TreeDeleter>;

// Gives every array and map its room, and every number what yajl's own reading misses: the lowest
// 64-bit integer, fractions too small for full precision, and all fractions while the process's
// locale has a decimal comma. False without memory.
[[nodiscard]] bool PrepareTree(yajl_val_s* value);

// New values; null without memory. A text ends at its first zero byte.
OwnedTree NewString(const std::string& text);
OwnedTree NewInteger(std::int64_t number);
// Null too for a number that JSON does not have: infinite or none.
OwnedTree NewDouble(double number);
OwnedTree NewBool(bool flag);
OwnedTree NewNull();
OwnedTree NewArray();
OwnedTree NewMap();
// All of it; null as well if it is deeper than `depth`. A null pointer is copied as a null.
OwnedTree CopyTree(const yajl_val_s* value, std::size_t depth = kMaxDepth);

// Add at the end. False, and `value` is freed, if it is null, there is no memory or the target is
// not an array (a map). A key that is there already is added again.
[[nodiscard]] bool AppendToArray(yajl_val_s* array, OwnedTree value);
[[nodiscard]] bool AppendToMap(yajl_val_s* map, const std::string& key, OwnedTree value);

// The shortest text that reads back as the same finite number, always with a point or an exponent.
std::string NumberText(double number);

}  // namespace restful_mapper::Json
