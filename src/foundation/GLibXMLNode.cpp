#include "foundation/GLibXMLNode.h"

#include <libxml/tree.h>

#include <memory>

#include "foundation/ErrorChecks.h"

namespace {

const char* Chars(const xmlChar* text) { return reinterpret_cast<const char*>(text); }

}  // namespace

bool GLibXMLNode::IsElementNode() const { return m_node && m_node->type == XML_ELEMENT_NODE; }

bool GLibXMLNode::IsNodeBlank() const {
  return m_node && m_node->type == XML_TEXT_NODE && xmlIsBlankNode(m_node) == 1;
}

bool GLibXMLNode::VerifyName(std::string_view name) const {
  return IsElementNode() && name == Chars(m_node->name);
}

GLibXMLNode GLibXMLNode::GetFirstChild() const {
  return GLibXMLNode(IsElementNode() ? m_node->children : nullptr);
}

GLibXMLNode GLibXMLNode::GetNextSibling() const {
  return GLibXMLNode(m_node ? m_node->next : nullptr);
}

std::string GLibXMLNode::GetAttribute(const char* name) const {
  if (!IsElementNode()) return {};
  const std::unique_ptr<xmlChar, decltype(xmlFree)> text(
      xmlGetProp(m_node, reinterpret_cast<const xmlChar*>(name)), xmlFree);
  return text ? Chars(text.get()) : std::string();
}

TModuleErrorCode GLibXMLNode::GetText(std::string& text) const {
  G_CHECK_CONDITION(IsNull(), kNullObject);
  G_CHECK_CONDITION(!IsElementNode(), kWrongNodeType);
  std::string joined;
  for (const xmlNode* child = m_node->children; child != nullptr; child = child->next) {
    G_CHECK_CONDITION(child->type != XML_TEXT_NODE, kUnexpectedNodes);
    if (child->content) joined += Chars(child->content);
  }
  text = std::move(joined);
  return CoreErrorCodes::kSuccess;
}
