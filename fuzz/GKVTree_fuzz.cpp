// Promise: any bytes give a code or a tree. A code leaves the tree as it was. A tree writes XML,
// with and without indentation, that reads back to a tree of the same XML, and JSON that parses to
// the same, unless a double in it is not finite or it is larger than may be written.
#include <cstdint>
#include <cstdlib>
#include <nlohmann/json.hpp>
#include <sstream>
#include <string>

#include "foundation/GKVTree.h"
#include "foundation/GLogger.h"

namespace {

std::string Written(const GKVTree& tree, int indent) {
  std::ostringstream stream;
  const TModuleErrorCode code = tree.WriteToXMLStream(stream, indent);
  if (code != 0 && code != CoreErrorCodes::kNotSupported) std::abort();
  if (code != 0 && !stream.str().empty()) std::abort();
  return stream.str();
}

void Promise(bool kept) {
  if (!kept) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const bool isQuiet = (GLogger::GetSharedInstance()->RemoveAllAppenders(), true);
  static_cast<void>(isQuiet);
  GKVTree tree;
  tree.SetValueForKey("was", "here");
  const std::string before = Written(tree, GKVTree::kNoIndent);
  if (tree.SetFromXMLBuffer(reinterpret_cast<const char*>(data), size) != 0) {
    Promise(Written(tree, GKVTree::kNoIndent) == before);
    return 0;
  }
  const std::string xml = Written(tree, GKVTree::kNoIndent);
  for (const std::string& text : {xml, Written(tree, 0)}) {
    if (text.empty()) {
      // Escaping and indenting lengthen a document some dozen times at the most.
      Promise(size > GKVTree::kMaxXMLBytes / 100);
      continue;
    }
    GKVTree back;
    Promise(back.SetFromXMLBuffer(text.data(), text.size()) == 0);
    Promise(Written(back, GKVTree::kNoIndent) == xml);
  }
  nlohmann::json json;
  const TModuleErrorCode code = tree.ConvertToJSON(json);
  Promise(code == 0 || code == GValue::kValueConversionError ||
          (code == CoreErrorCodes::kNotSupported && size > GKVTree::kMaxXMLBytes / 100));
  if (code == 0) Promise(nlohmann::json::parse(json.dump()) == json);
  return 0;
}
