#include "foundation/JsonNode.h"

#include <yajl/yajl_tree.h>

#include <array>
#include <new>
#include <stdexcept>
#include <utility>

#include "foundation/JsonEmitter.h"

namespace restful_mapper::Json {

namespace {

yajl_val_s* Find(yajl_val_s* value, const std::string& key) {
  std::array<const char*, 2> path{key.c_str(), nullptr};
  return yajl_tree_get(value, path.data(), yajl_t_any);
}

std::string FoundText(const yajl_val_s* value) {
  if (value == nullptr) return "";
  switch (value->type) {
    case yajl_t_string:
      return std::string(" STRING: ") + value->u.string;
    case yajl_t_number:
      return (YAJL_IS_INTEGER(value) ? " INTEGER: " : " DOUBLE: ") + std::string(value->u.number.r);
    case yajl_t_object:
      return " OBJECT";
    case yajl_t_array:
      return " ARRAY";
    case yajl_t_true:
      return " BOOLEAN: true";
    case yajl_t_false:
      return " BOOLEAN: false";
    default:
      return "";
  }
}

[[noreturn]] void Refuse(const std::string& name, const char* wanted, const yajl_val_s* value) {
  throw std::runtime_error("Expected JSON node \"" + name + "\" to be " + wanted + ", found" +
                           FoundText(value));
}

std::string ElementName(const std::string& name, std::size_t index) {
  return name + "[" + std::to_string(index) + "]";
}

std::string FieldName(const std::string& name, const char* key) {
  return name + "[\"" + key + "\"]";
}

// One reader a type. A name is only made when it is needed: `name` is a function.
struct StringReader {
  using Type = std::string;
  template <typename Name>
  static Type Read(const yajl_val_s* value, const Name& name) {
    if (!YAJL_IS_STRING(value)) Refuse(name(), "STRING", value);
    return value->u.string;
  }
};

template <typename Integer>
struct IntegerReader {
  using Type = Integer;
  template <typename Name>
  static Type Read(const yajl_val_s* value, const Name& name) {
    if (!YAJL_IS_INTEGER(value) || !std::in_range<Integer>(value->u.number.i)) {
      Refuse(name(), "INTEGER", value);
    }
    return static_cast<Integer>(value->u.number.i);
  }
};

struct DoubleReader {
  using Type = double;
  template <typename Name>
  static Type Read(const yajl_val_s* value, const Name& name) {
    if (!YAJL_IS_DOUBLE(value)) Refuse(name(), "DOUBLE", value);
    return value->u.number.d;
  }
};

struct BoolReader {
  using Type = bool;
  template <typename Name>
  static Type Read(const yajl_val_s* value, const Name& name) {
    if (!YAJL_IS_TRUE(value) && !YAJL_IS_FALSE(value)) Refuse(name(), "BOOLEAN", value);
    return YAJL_IS_TRUE(value);
  }
};

template <typename Reader>
typename Reader::Type ReadValue(const Node& node) {
  return Reader::Read(node.tree(), [&node] { return node.name(); });
}

template <typename Reader>
std::vector<typename Reader::Type> ReadArray(const Node& node) {
  const yajl_val_s* value = node.tree();
  if (!YAJL_IS_ARRAY(value)) Refuse(node.name(), "ARRAY", value);
  std::vector<typename Reader::Type> elements;
  elements.reserve(value->u.array.len);
  for (std::size_t i = 0; i < value->u.array.len; ++i) {
    elements.push_back(
        Reader::Read(value->u.array.values[i], [&node, i] { return ElementName(node.name(), i); }));
  }
  return elements;
}

template <typename Reader>
std::map<std::string, typename Reader::Type> ReadMap(const Node& node) {
  const yajl_val_s* value = node.tree();
  if (!YAJL_IS_OBJECT(value)) Refuse(node.name(), "OBJECT", value);
  std::map<std::string, typename Reader::Type> fields;
  for (std::size_t i = 0; i < value->u.object.len; ++i) {
    const char* key = value->u.object.keys[i];
    fields.try_emplace(key, Reader::Read(value->u.object.values[i],
                                         [&node, key] { return FieldName(node.name(), key); }));
  }
  return fields;
}

}  // namespace

bool Node::is_null() const { return mValue == nullptr || YAJL_IS_NULL(mValue); }
bool Node::is_string() const { return YAJL_IS_STRING(mValue); }
bool Node::is_int() const { return YAJL_IS_INTEGER(mValue); }
bool Node::is_double() const { return YAJL_IS_DOUBLE(mValue); }
bool Node::is_bool() const { return YAJL_IS_TRUE(mValue) || YAJL_IS_FALSE(mValue); }
bool Node::is_array() const { return YAJL_IS_ARRAY(mValue); }
bool Node::is_map() const { return YAJL_IS_OBJECT(mValue); }

std::string Node::to_string() const { return ReadValue<StringReader>(*this); }
int Node::to_int() const { return ReadValue<IntegerReader<int>>(*this); }
std::int64_t Node::to_int64() const { return ReadValue<IntegerReader<std::int64_t>>(*this); }
double Node::to_double() const { return ReadValue<DoubleReader>(*this); }
bool Node::to_bool() const { return ReadValue<BoolReader>(*this); }

std::vector<Node> Node::to_array() const {
  if (!is_array()) Refuse(mName, "ARRAY", mValue);
  std::vector<Node> elements;
  elements.reserve(mValue->u.array.len);
  for (std::size_t i = 0; i < mValue->u.array.len; ++i) {
    elements.push_back(Node(ElementName(mName, i), mValue->u.array.values[i]));
  }
  return elements;
}

std::map<std::string, Node> Node::to_map() const {
  if (!is_map()) Refuse(mName, "OBJECT", mValue);
  std::map<std::string, Node> fields;
  for (std::size_t i = 0; i < mValue->u.object.len; ++i) {
    const char* key = mValue->u.object.keys[i];
    fields.try_emplace(key, Node(FieldName(mName, key), mValue->u.object.values[i]));
  }
  return fields;
}

std::vector<std::string> Node::to_string_array() const { return ReadArray<StringReader>(*this); }
std::vector<int> Node::to_int_array() const { return ReadArray<IntegerReader<int>>(*this); }
std::vector<std::int64_t> Node::to_int64_array() const {
  return ReadArray<IntegerReader<std::int64_t>>(*this);
}
std::vector<double> Node::to_double_array() const { return ReadArray<DoubleReader>(*this); }
std::vector<bool> Node::to_bool_array() const { return ReadArray<BoolReader>(*this); }
std::map<std::string, std::string> Node::to_string_map() const {
  return ReadMap<StringReader>(*this);
}
std::map<std::string, int> Node::to_int_map() const { return ReadMap<IntegerReader<int>>(*this); }
std::map<std::string, double> Node::to_double_map() const { return ReadMap<DoubleReader>(*this); }
std::map<std::string, bool> Node::to_bool_map() const { return ReadMap<BoolReader>(*this); }

bool Node::Add(const std::string& key, OwnedTree value, Node& out) try {
  Node added(key, value.get());
  if (!AppendToMap(mValue, key, std::move(value))) return false;
  out = std::move(added);
  return true;
} catch (const std::bad_alloc&) {
  return false;
}

bool Node::Add(OwnedTree value, Node& out) try {
  if (!is_array()) return false;
  Node added(ElementName(mName, mValue->u.array.len), value.get());
  if (!AppendToArray(mValue, std::move(value))) return false;
  out = std::move(added);
  return true;
} catch (const std::bad_alloc&) {
  return false;
}

bool Node::add_string(const std::string& key, const std::string& value, Node& out) {
  return Add(key, NewString(value), out);
}
bool Node::add_int(const std::string& key, int value, Node& out) {
  return Add(key, NewInteger(value), out);
}
bool Node::add_int64(const std::string& key, std::int64_t value, Node& out) {
  return Add(key, NewInteger(value), out);
}
bool Node::add_double(const std::string& key, double value, Node& out) {
  return Add(key, NewDouble(value), out);
}
bool Node::add_bool(const std::string& key, bool value, Node& out) {
  return Add(key, NewBool(value), out);
}
bool Node::add_array(const std::string& key, Node& out) { return Add(key, NewArray(), out); }
bool Node::add_map(const std::string& key, Node& out) { return Add(key, NewMap(), out); }
bool Node::add_node(const std::string& key, const Node& value, Node& out) {
  return Add(key, CopyTree(value.mValue), out);
}

bool Node::add_string(const std::string& value, Node& out) { return Add(NewString(value), out); }
bool Node::add_int(int value, Node& out) { return Add(NewInteger(value), out); }
bool Node::add_int64(std::int64_t value, Node& out) { return Add(NewInteger(value), out); }
bool Node::add_double(double value, Node& out) { return Add(NewDouble(value), out); }
bool Node::add_bool(bool value, Node& out) { return Add(NewBool(value), out); }
bool Node::add_array(Node& out) { return Add(NewArray(), out); }
bool Node::add_map(Node& out) { return Add(NewMap(), out); }
bool Node::add_node(const Node& value, Node& out) { return Add(CopyTree(value.mValue), out); }

bool Node::exists(const std::string& key) const { return Find(mValue, key) != nullptr; }

bool Node::find(const std::string& key, Node& out) const {
  yajl_val_s* found = Find(mValue, key);
  if (found == nullptr) return false;
  out = Node(key, found);
  return true;
}

std::string Node::dump() const {
  Emitter emitter;
  emitter.emit_tree(mValue);
  return emitter.dump();
}

}  // namespace restful_mapper::Json
