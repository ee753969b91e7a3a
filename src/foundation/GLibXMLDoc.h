// A parsed XML document. Any thread, one at a time for a document.
#pragma once

#include <memory>

#include "foundation/ErrorCodes.h"
#include "foundation/GLibXMLNode.h"

struct _xmlDoc;

class GLibXML {
 public:
  static constexpr TModuleErrorCode kParseFailed = MakeErrorCode(0x00100F, 1);
};

class GLibXMLDoc {
 public:
  static constexpr TModuleErrorCode kNullObject = MakeErrorCode(0x001010, 1);

  // Of one element: libxml2 compares each with each.
  static constexpr unsigned int kMaxAttributes = 64;

  // Parses `size` bytes of a stranger's document. It has to be UTF-8 without zeros, whatever
  // encoding it declares, without namespaces and without a document type, so that there are no
  // entities to expand or to fetch: GLibXML::kParseFailed for all that is no such document.
  // CoreErrorCodes::kNotSupported beyond GLibXMLSerializable::kMaxXMLBytes or kMaxAttributes. After
  // a failure the former content stays.
  // Nothing of libxml2's process-wide settings is changed, since a host may use the library too.
  [[nodiscard]] TModuleErrorCode SetFromBuffer(const char* buffer, unsigned long size);

  // The document keeps the node. kNullObject if nothing has been parsed.
  [[nodiscard]] TModuleErrorCode GetRootNode(GLibXMLNode& root) const;

 private:
  struct Free {
    void operator()(_xmlDoc* document) const;
  };
  std::unique_ptr<_xmlDoc, Free> m_document;
};
