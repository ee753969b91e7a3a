// Promise: whatever the bytes, parsing gives a code, or a tree whose dump is strict JSON and parses
// again to the same dump; every reader by code gives a code and never throws; the second form takes
// no text that the first refuses, and values can be added anywhere in what was parsed.
#include <cstdint>
#include <cstdlib>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "foundation/GJSONUtils.h"
#include "foundation/GLogger.h"

namespace {

using GJSONUtils::GetValueForKey;
using restful_mapper::Json::Node;
using restful_mapper::Json::Parser;

void Require(bool isKept) {
  if (!isKept) std::abort();
}

template <typename T>
void ReadAs(const Node& node, const std::string& key) {
  T value{};
  if (GetValueForKey(node, key, value) != 0) Require(value == T{});
}

void ReadAll(const Node& node) {
  if (node.is_array()) {
    for (const Node& element : node.to_array()) ReadAll(element);
  }
  if (!node.is_map()) return;
  for (const auto& [key, value] : node.to_map()) {
    Require(GJSONUtils::HasValueForKey(node, key));
    ReadAs<std::string>(node, key);
    ReadAs<double>(node, key);
    ReadAs<bool>(node, key);
    ReadAs<int>(node, key);
    ReadAs<unsigned int>(node, key);
    ReadAs<std::uint64_t>(node, key);
    ReadAs<std::vector<unsigned int>>(node, key);
    ReadAll(value);
  }
}

void AddEverywhere(Node node) {
  Node added;
  if (node.is_array()) {
    for (const Node& element : node.to_array()) AddEverywhere(element);
    Require(GJSONUtils::AddValueToArray(1, node, added) == 0);
  } else if (node.is_map()) {
    for (const auto& [key, value] : node.to_map()) AddEverywhere(value);
    Require(GJSONUtils::SetValueForKey("v", "k", node, added) == 0);
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const bool isQuiet = [] {
    GLogger::GetSharedInstance()->RemoveAllAppenders();
    return true;
  }();
  Require(isQuiet);
  const std::string text(reinterpret_cast<const char*>(data), size);
  Parser parser;
  Node root;
  nlohmann::json second;
  const bool isSecond = GJSONUtils::Parse(second, text) == 0;
  if (GJSONUtils::Parse(parser, text, root) != 0) {
    // A byte order mark is the second form's alone.
    Require(!isSecond || text.starts_with("\xef\xbb\xbf"));
    return 0;
  }
  const std::string dump = root.dump();
  ReadAll(root);
  AddEverywhere(root);
  const std::string grown = root.dump();

  Parser again;
  Require(GJSONUtils::Parse(again, grown, root) == 0 && root.dump() == grown);
  Require(GJSONUtils::Parse(again, dump, root) == 0 && root.dump() == dump);
  return 0;
}
