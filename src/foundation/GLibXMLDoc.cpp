#include "foundation/GLibXMLDoc.h"

#include <libxml/parser.h>
#include <libxml/parserInternals.h>
#include <libxml/tree.h>

#include <string_view>

#include "foundation/ErrorChecks.h"
#include "foundation/GLibXMLSerializable.h"
#include "foundation/GString.h"

namespace {

struct FreeContext {
  void operator()(xmlParserCtxt* context) const { xmlFreeParserCtxt(context); }
};

// Called at "<!DOCTYPE", before anything of it is declared.
void RefuseDocumentType(void* parser, const xmlChar*, const xmlChar*, const xmlChar*) {
  auto* context = static_cast<xmlParserCtxt*>(parser);
  context->wellFormed = 0;
  xmlStopParser(context);
}

bool IsPlainText(std::string_view text) {
  return text.find('\0') == std::string_view::npos && GString::IsValidUtf8(text);
}

}  // namespace

void GLibXMLDoc::Free::operator()(_xmlDoc* document) const { xmlFreeDoc(document); }

TModuleErrorCode GLibXMLDoc::SetFromBuffer(const char* buffer, unsigned long size) {
  G_CHECK_NULL(buffer);
  G_CHECK_CONDITION(size > GLibXMLSerializable::kMaxXMLBytes, CoreErrorCodes::kNotSupported);
  G_CHECK_CONDITION(!IsPlainText(std::string_view(buffer, size)), GLibXML::kParseFailed);
  const std::unique_ptr<xmlParserCtxt, FreeContext> context(xmlNewParserCtxt());
  G_CHECK_CONDITION(context == nullptr, CoreErrorCodes::kOutOfMemory);
  context->sax->internalSubset = RefuseDocumentType;
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
