// A node of a parsed document: a borrowed view, good as long as its GLibXMLDoc. Any thread, one at
// a time for a document.
#pragma once

#include <string>
#include <string_view>

#include "foundation/ErrorCodes.h"

struct _xmlNode;

class GLibXMLNode {
 public:
  static constexpr TModuleErrorCode kNullObject = MakeErrorCode(0x001011, 1);
  static constexpr TModuleErrorCode kWrongNodeType = MakeErrorCode(0x001011, 2);
  static constexpr TModuleErrorCode kUnexpectedNodes = MakeErrorCode(0x001011, 3);

  // A null node: no element, no name, no children.
  GLibXMLNode() = default;
  explicit GLibXMLNode(_xmlNode* node) : m_node(node) {}

  [[nodiscard]] bool IsNull() const { return m_node == nullptr; }
  [[nodiscard]] bool IsElementNode() const;
  // Text of blanks only; not a CDATA section.
  [[nodiscard]] bool IsNodeBlank() const;
  // Is it an element of this name? Without prefix, with case.
  [[nodiscard]] bool VerifyName(std::string_view name) const;

  // Null nodes at the end.
  [[nodiscard]] GLibXMLNode GetFirstChild() const;
  [[nodiscard]] GLibXMLNode GetNextSibling() const;

  // Empty if there is no such attribute.
  [[nodiscard]] std::string GetAttribute(const char* name) const;
  // The element's whole text, blanks included, empty if it has no children. kNullObject,
  // kWrongNodeType if it is no element, kUnexpectedNodes if it holds anything but text.
  [[nodiscard]] TModuleErrorCode GetText(std::string& text) const;

 private:
  _xmlNode* m_node = nullptr;
};
