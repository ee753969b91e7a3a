// Owner of one JSON tree. Nodes of it end with it and with its next load.
//
// One parser belongs to one thread at a time.
#pragma once

#include <string>

#include "foundation/JsonNode.h"
#include "foundation/JsonTree.h"

namespace restful_mapper::Json {

class Parser {
 public:
  // With "{}" loaded: the root of a new parser is a map to add fields to.
  Parser();

  // Parses UTF-8 text, after the tree that was there is freed. Comments are taken, as yajl takes
  // them; more than one value is refused. Throws std::runtime_error "JSON parse error:\n" followed
  // by yajl's text, or by the reason why the text is refused without it (JsonLimits.h). No tree is
  // loaded then.
  void load(const std::string& text);
  bool is_loaded() const { return mTree != nullptr; }

  // Named "root". Throws std::runtime_error "No JSON loaded in parser".
  Node root() const;

  // A path is keys joined by "/", read from the root down, with or without a "/" before the first;
  // the empty path is the root. It leads through maps only, and not to a key with a "/" in it.
  // Not there, or nothing loaded: false.
  bool exists(const std::string& path) const;
  // Not there, null, or a text, an array or a map with nothing in it.
  bool empty(const std::string& path) const;
  // Throws std::runtime_error: JSON node "PATH" not found. Named by the last key.
  Node find(const std::string& path) const;

 private:
  bool Find(const std::string& path, Node& out) const;

  OwnedTree mTree;
};

}  // namespace restful_mapper::Json
