// Trees as XML.
#include <utility>

#include "foundation/ErrorChecks.h"
#include "foundation/GKVTree.h"
#include "foundation/GLibXMLDoc.h"
#include "foundation/GLibXMLNode.h"
#include "foundation/XMLText.h"

namespace {

constexpr const char* kXMLElementName_kvtree = "kvtree";
constexpr const char* kXMLElementName_kv = "kv";
constexpr const char* kXMLAttributeName_key = "key";

}  // namespace

TModuleErrorCode GKVTree::SetFromXMLBuffer(const char* buffer, unsigned long size) {
  GLibXMLDoc document;
  G_CHECK_CALL(document.SetFromBuffer(buffer, size));
  GLibXMLNode root;
  G_CHECK_CALL(document.GetRootNode(root));
  G_CHECK_CALL(SetFromXMLNode(root));
  return CoreErrorCodes::kSuccess;
}

TModuleErrorCode GKVTree::SetFromXMLNode(const GLibXMLNode& node) {
  GKVTree tree;
  G_CHECK_CALL(tree.ReadXML(node, 1));
  m_values.swap(tree.m_values);
  return CoreErrorCodes::kSuccess;
}

TModuleErrorCode GKVTree::ReadXML(const GLibXMLNode& node, unsigned int depth) {
  G_CHECK_CONDITION(depth > kMaxTreeDepth, CoreErrorCodes::kNotSupported);
  G_CHECK_CONDITION(!node.VerifyName(kXMLElementName_kvtree), kWrongElementName);
  G_CHECK_CALL(ReadXMLEntries(node, depth));
  return CoreErrorCodes::kSuccess;
}

TModuleErrorCode GKVTree::ReadXMLEntries(const GLibXMLNode& tree, unsigned int depth) {
  for (GLibXMLNode node = tree.GetFirstChild(); !node.IsNull(); node = node.GetNextSibling()) {
    if (node.IsElementNode()) {
      G_CHECK_CALL(ReadXMLEntry(node, depth));
    } else {
      G_CHECK_CONDITION(!node.IsNodeBlank(), kInvalidChildNode);
    }
  }
  return CoreErrorCodes::kSuccess;
}

TModuleErrorCode GKVTree::ReadXMLEntry(const GLibXMLNode& entry, unsigned int depth) {
  G_CHECK_CONDITION(!entry.VerifyName(kXMLElementName_kv), kWrongElementName);
  const std::string strKey = entry.GetAttribute(kXMLAttributeName_key);
  G_CHECK_CONDITION(strKey.empty(), kMissingRequiredAttribute);
  GValue value;
  bool bSetValue = false;
  for (GLibXMLNode node = entry.GetFirstChild(); !node.IsNull(); node = node.GetNextSibling()) {
    if (!node.IsElementNode()) {
      G_CHECK_CONDITION(!node.IsNodeBlank(), kInvalidChildNode);
      continue;
    }
    G_CHECK_CONDITION(!node.VerifyName(GValue::kStrElementName_value), kWrongElementName);
    G_CHECK_CONDITION(bSetValue, kInvalidChildElement);
    G_CHECK_CALL(value.ReadXML(node, depth));
    bSetValue = true;
  }
  G_CHECK_CONDITION(!bSetValue, kMissingRequiredChildElement);
  const auto mapInsertion = m_values.emplace(strKey, value);
  G_CHECK_CONDITION(!mapInsertion.second, CoreErrorCodes::kItemAlreadyExists);
  return CoreErrorCodes::kSuccess;
}

TModuleErrorCode GKVTree::WriteToXMLStream(std::ostream& stream, int indent) const {
  std::string xml = XMLText::FirstBlanks(indent);
  G_CHECK_CALL(AppendXML(xml, indent, 1));
  G_CHECK_CALL(XMLText::WriteInOnePiece(stream, xml));
  return CoreErrorCodes::kSuccess;
}

TModuleErrorCode GKVTree::AppendXML(std::string& xml, int indent, unsigned int depth) const {
  G_CHECK_CONDITION(depth > kMaxTreeDepth, CoreErrorCodes::kNotSupported);
  const int entryIndent = XMLText::Deeper(indent);
  xml.append("<").append(kXMLElementName_kvtree).append(">");
  for (const auto& [key, value] : m_values) {
    const bool isKey = !key.empty() && XMLText::IsPossible(key);
    G_CHECK_CONDITION(!isKey, kInvalidAttributeContent);
    XMLText::BreakLine(xml, entryIndent);
    xml.append("<").append(kXMLElementName_kv).append(" ").append(kXMLAttributeName_key);
    xml.append("=\"").append(XMLText::EscapeAttribute(key)).append("\">");
    XMLText::BreakLine(xml, XMLText::Deeper(entryIndent));
    G_CHECK_CALL(value.AppendXML(xml, XMLText::Deeper(entryIndent), depth));
    XMLText::BreakLine(xml, entryIndent);
    xml.append("</").append(kXMLElementName_kv).append(">");
  }
  if (!m_values.empty()) XMLText::BreakLine(xml, indent);
  xml.append("</").append(kXMLElementName_kvtree).append(">");
  G_CHECK_CONDITION(xml.size() > kMaxXMLBytes, CoreErrorCodes::kNotSupported);
  return CoreErrorCodes::kSuccess;
}
