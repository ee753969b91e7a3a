#include "foundation/GLibXMLDoc.h"

#include <libxml/SAX2.h>
#include <libxml/parser.h>
#include <libxml/parserInternals.h>
#include <libxml/tree.h>

#include <algorithm>
#include <string_view>

#include "foundation/ErrorChecks.h"
#include "foundation/GLibXMLSerializable.h"
#include "foundation/GString.h"

namespace {

struct FreeContext {
  void operator()(xmlParserCtxt* context) const { xmlFreeParserCtxt(context); }
};

void Refuse(void* parser) {
  auto* context = static_cast<xmlParserCtxt*>(parser);
  context->wellFormed = 0;
  xmlStopParser(context);
}

// Called at "<!DOCTYPE", before anything of it is declared.
void RefuseDocumentType(void* parser, const xmlChar*, const xmlChar*, const xmlChar*) {
  Refuse(parser);
}

// The format knows no namespaces, and the library looks through all that are open for each name.
void StartElement(void* parser, const xmlChar* name, const xmlChar* prefix, const xmlChar* uri,
                  int namespaces, const xmlChar** declared, int attributes, int defaulted,
                  const xmlChar** values) {
  if (namespaces > 0) {
    Refuse(parser);
  } else {
    xmlSAX2StartElementNs(parser, name, prefix, uri, namespaces, declared, attributes, defaulted,
                          values);
  }
}

bool IsPlainText(std::string_view text) {
  return text.find('\0') == std::string_view::npos && GString::IsValidUtf8(text);
}

// Conservative: "<" never stands within a tag, so that each tag is counted from its own.
bool HasFewAttributes(std::string_view xml) {
  bool isInTag = false;
  char quote = 0;
  unsigned int count = 0;
  for (std::size_t at = 0; at < xml.size(); ++at) {
    const char c = xml[at];
    if (c == '<' && xml.substr(at).starts_with("<!--")) {
      at = std::min(xml.find("-->", at), xml.size());
      isInTag = false;
    } else if (c == '<') {
      isInTag = true;
      quote = 0;
      count = 0;
    } else if (!isInTag) {
      continue;
    } else if (quote != 0) {
      if (c == quote) quote = 0;
    } else if (c == '"' || c == '\'') {
      quote = c;
    } else if (c == '>') {
      isInTag = false;
    } else if (c == '=' && ++count > GLibXMLDoc::kMaxAttributes) {
      return false;
    }
  }
  return true;
}

}  // namespace

void GLibXMLDoc::Free::operator()(_xmlDoc* document) const { xmlFreeDoc(document); }

TModuleErrorCode GLibXMLDoc::SetFromBuffer(const char* buffer, unsigned long size) {
  G_CHECK_NULL(buffer);
  G_CHECK_CONDITION(size > GLibXMLSerializable::kMaxXMLBytes, CoreErrorCodes::kNotSupported);
  G_CHECK_CONDITION(!IsPlainText(std::string_view(buffer, size)), GLibXML::kParseFailed);
  G_CHECK_CONDITION(!HasFewAttributes(std::string_view(buffer, size)),
                    CoreErrorCodes::kNotSupported);
  const std::unique_ptr<xmlParserCtxt, FreeContext> context(xmlNewParserCtxt());
  G_CHECK_CONDITION(context == nullptr, CoreErrorCodes::kOutOfMemory);
  context->sax->internalSubset = RefuseDocumentType;
  context->sax->startElementNs = StartElement;
  std::unique_ptr<xmlDoc, Free> document(xmlCtxtReadMemory(
      context.get(), buffer, static_cast<int>(size), nullptr, "UTF-8",
      XML_PARSE_NONET | XML_PARSE_IGNORE_ENC | XML_PARSE_NOERROR | XML_PARSE_NOWARNING));
  G_CHECK_CONDITION(document == nullptr, GLibXML::kParseFailed);
  m_document = std::move(document);
  return CoreErrorCodes::kSuccess;
}

TModuleErrorCode GLibXMLDoc::GetRootNode(GLibXMLNode& root) const {
  G_CHECK_CONDITION(m_document == nullptr, kNullObject);
  root = GLibXMLNode(xmlDocGetRootElement(m_document.get()));
  return CoreErrorCodes::kSuccess;
}
