#include "photoshop/PSDocumentSuite.h"

#include "photoshop/PhotoshopFontUtils.h"

std::int16_t PSDocumentSuite::GetDocument(HostDocumentHandle* document, const std::string& path) {
  if (path.empty()) return GetCurrentDocument(document);
  int id = 0;
  const std::int16_t error = PhotoshopFontUtils::GetDocumentID(&id, path);
  if (error == 0) *document = id;
  return error;
}

std::int16_t PSDocumentSuite::GetCurrentDocument(HostDocumentHandle* document) {
  int id = 0;
  const std::int16_t error = PhotoshopFontUtils::GetCurrentDocumentID(&id);
  if (error == 0) *document = id;
  return error;
}

std::int16_t PSDocumentSuite::DocumentExists(HostDocumentHandle document, bool* exists) {
  return PhotoshopFontUtils::DocumentExists(static_cast<int>(document), exists);
}
