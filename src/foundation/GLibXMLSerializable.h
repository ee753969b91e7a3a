// What can be written as XML and read back.
#pragma once

#include <iosfwd>

#include "foundation/ErrorCodes.h"

class GLibXMLNode;

class GLibXMLSerializable {
 public:
  static constexpr TModuleErrorCode kWrongNodeType = MakeErrorCode(0x001008, 1);
  static constexpr TModuleErrorCode kWrongElementName = MakeErrorCode(0x001008, 2);
  static constexpr TModuleErrorCode kInvalidTextContent = MakeErrorCode(0x001008, 3);
  static constexpr TModuleErrorCode kInvalidAttribute = MakeErrorCode(0x001008, 4);
  static constexpr TModuleErrorCode kInvalidChildElement = MakeErrorCode(0x001008, 5);
  static constexpr TModuleErrorCode kInvalidCDATASection = MakeErrorCode(0x001008, 6);
  static constexpr TModuleErrorCode kInvalidChildNode = MakeErrorCode(0x001008, 7);
  static constexpr TModuleErrorCode kMissingRequiredAttribute = MakeErrorCode(0x001008, 8);
  static constexpr TModuleErrorCode kMissingRequiredChildElement = MakeErrorCode(0x001008, 9);
  static constexpr TModuleErrorCode kInvalidAttributeContent = MakeErrorCode(0x001008, 10);
  static constexpr TModuleErrorCode kRequiredTextIsBlank = MakeErrorCode(0x001008, 11);

  // Everything on one line.
  static constexpr int kNoIndent = -1;
  // Trees within trees, the outermost counting: three elements each, below the 256 that libxml2
  // takes.
  static constexpr unsigned int kMaxTreeDepth = 64;
  // Of a whole document; below the 10,000,000 that libxml2 takes for one text.
  static constexpr unsigned long kMaxXMLBytes = 8UL * 1024 * 1024;

  virtual ~GLibXMLSerializable() = default;

  // The element `node` becomes the content; after a failure the content is what it was.
  virtual TModuleErrorCode SetFromXMLNode(const GLibXMLNode& node) = 0;

  // Writes the element as UTF-8, without a declaration, in one piece: after a failure nothing of
  // it. What could not be read back is not written: CoreErrorCodes::kNotSupported beyond
  // kMaxTreeDepth or kMaxXMLBytes, the codes above for text that XML cannot hold. `indent` from 0
  // on puts each element on a line of its own, that many steps of two blanks in; the first and the
  // last line get no break.
  virtual TModuleErrorCode WriteToXMLStream(std::ostream& stream, int indent) const = 0;

 protected:
  GLibXMLSerializable() = default;
  GLibXMLSerializable(const GLibXMLSerializable&) = default;
  GLibXMLSerializable& operator=(const GLibXMLSerializable&) = default;
};
