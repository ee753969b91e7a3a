// A named view of one value of a parsed tree: a name for messages and a pointer. The tree belongs
// to the Parser: a Node, and what was found or made through it, must not outlive its Parser or the
// Parser's next load. Copies are cheap and view the same value. Adding values never moves others,
// so that older nodes of the tree stay valid.
//
// One tree belongs to one thread at a time.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "foundation/JsonTree.h"

namespace restful_mapper::Json {

class Node {
 public:
  // Views nothing, which counts as a null.
  Node() = default;

  const std::string& name() const { return mName; }
  // yajl's value, lent; may be null.
  yajl_val_s* tree() const { return mValue; }

  // Tests. An integer has yajl's double flag too, so that is_double is true of it; a number beyond
  // 64 bits is no integer, and one beyond a double ("1e999") or below one ("1e-400") is neither.
  bool is_null() const;
  bool is_string() const;
  bool is_int() const;
  bool is_double() const;
  bool is_bool() const;
  bool is_array() const;
  bool is_map() const;

  // Readers throw std::runtime_error for another type:
  //   Expected JSON node "NAME" to be INTEGER, found STRING: text
  // with nothing behind "found" for a null. Wanted types are STRING, INTEGER, DOUBLE, BOOLEAN,
  // ARRAY and OBJECT. An integer that does not fit the result is refused in the same words.
  // An element's name is NAME[0], a field's NAME["key"]. Of a key that stands twice the first
  // counts, here as in find.
  std::string to_string() const;
  int to_int() const;
  std::int64_t to_int64() const;
  double to_double() const;
  bool to_bool() const;
  std::vector<Node> to_array() const;
  std::map<std::string, Node> to_map() const;
  std::vector<std::string> to_string_array() const;
  std::vector<int> to_int_array() const;
  std::vector<std::int64_t> to_int64_array() const;
  std::vector<double> to_double_array() const;
  std::vector<bool> to_bool_array() const;
  std::map<std::string, std::string> to_string_map() const;
  std::map<std::string, int> to_int_map() const;
  std::map<std::string, double> to_double_map() const;
  std::map<std::string, bool> to_bool_map() const;

  // Writers, with a key into a map and without one at an array's end. The new value is given as
  // `out`, which may be this node. False, and nothing is changed, if this is not a map (an array)
  // or there is no memory.
  // Keys stand in the order of the calls; one that is there already is added again, and find keeps
  // seeing the first. Texts and keys end at their first zero byte. A text that is no UTF-8 is
  // taken, and ends the dump where it stands. add_double refuses what JSON does not have, infinity
  // and not-a-number. add_node adds a copy of all below `value`, which may be of another tree or
  // this very node; it refuses what is deeper than kMaxDepth.
  bool add_string(const std::string& key, const std::string& value, Node& out);
  bool add_int(const std::string& key, int value, Node& out);
  bool add_int64(const std::string& key, std::int64_t value, Node& out);
  bool add_double(const std::string& key, double value, Node& out);
  bool add_bool(const std::string& key, bool value, Node& out);
  bool add_array(const std::string& key, Node& out);
  bool add_map(const std::string& key, Node& out);
  bool add_node(const std::string& key, const Node& value, Node& out);
  bool add_string(const std::string& value, Node& out);
  bool add_int(int value, Node& out);
  bool add_int64(std::int64_t value, Node& out);
  bool add_double(double value, Node& out);
  bool add_bool(bool value, Node& out);
  bool add_array(Node& out);
  bool add_map(Node& out);
  bool add_node(const Node& value, Node& out);

  // False as well if this is not a map. A found node bears the key as its name; `out` may be this
  // node, and stays if nothing is found.
  bool exists(const std::string& key) const;
  [[nodiscard]] bool find(const std::string& key, Node& out) const;

  // The JSON text, with no blanks and no line breaks. A parsed number is written as it stood. The
  // text is cut where a string is no UTF-8 or a tree is deeper than kMaxDepth.
  std::string dump() const;

 private:
  friend class Parser;
  Node(std::string name, yajl_val_s* value) : mName(std::move(name)), mValue(value) {}

  bool Add(const std::string& key, OwnedTree value, Node& out);
  bool Add(OwnedTree value, Node& out);

  std::string mName;
  yajl_val_s* mValue = nullptr;
};

}  // namespace restful_mapper::Json
