#include "foundation/JsonParser.h"

#include <yajl/yajl_tree.h>

#include <array>
#include <new>
#include <stdexcept>
#include <utility>

#include "foundation/GString.h"

namespace restful_mapper::Json {

namespace {

constexpr std::size_t kErrorBufferSize = 1024;

[[noreturn]] void RefuseText(const char* reason) {
  throw std::runtime_error(std::string("JSON parse error:\n") + reason);
}

}  // namespace

Parser::Parser() { load("{}"); }

void Parser::load(const std::string& text) {
  mTree.reset();
  if (const char* fault = FindTextFault(text)) RefuseText(fault);
  std::array<char, kErrorBufferSize> error{};
  OwnedTree tree(yajl_tree_parse(text.c_str(), error.data(), error.size()));
  if (tree == nullptr) RefuseText(error.data());
  // yajl takes halves of surrogate pairs and characters in too many bytes for UTF-8.
  if (!GString::IsValidUtf8(text)) RefuseText("lexical error: invalid bytes in UTF8 string.\n");
  if (!PrepareTree(tree.get())) throw std::bad_alloc();
  mTree = std::move(tree);
}

Node Parser::root() const {
  if (mTree == nullptr) throw std::runtime_error("No JSON loaded in parser");
  return {"root", mTree.get()};
}

bool Parser::Find(const std::string& path, Node& out) const {
  Node node = root();
  if (!path.empty() && path != "/") {
    std::size_t start = path.starts_with('/') ? 1 : 0;
    for (bool isLast = false; !isLast;) {
      const std::size_t end = path.find('/', start);
      isLast = end == std::string::npos;
      if (!node.find(path.substr(start, end - start), node)) return false;
      start = end + 1;
    }
  }
  out = std::move(node);
  return true;
}

bool Parser::exists(const std::string& path) const {
  Node ignored;
  return is_loaded() && Find(path, ignored);
}

bool Parser::empty(const std::string& path) const {
  Node node;
  if (!is_loaded() || !Find(path, node)) return true;
  const yajl_val_s* value = node.tree();
  switch (value->type) {
    case yajl_t_string:
      return *value->u.string == '\0';
    case yajl_t_array:
      return value->u.array.len == 0;
    case yajl_t_object:
      return value->u.object.len == 0;
    default:
      return node.is_null();
  }
}

Node Parser::find(const std::string& path) const {
  Node node;
  if (!Find(path, node)) throw std::runtime_error("JSON node \"" + path + "\" not found");
  return node;
}

}  // namespace restful_mapper::Json
