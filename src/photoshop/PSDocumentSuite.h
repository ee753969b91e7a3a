// Documents of the host by handle or path: a thin layer over PhotoshopFontUtils. Results are its
// results; handles are untouched on an error. Threads: [main-thread].
#pragma once

#include <cstdint>
#include <string>

#include "activation/TrackedDocuments.h"

class PSDocumentSuite {
 public:
  PSDocumentSuite() = delete;

  // An empty path asks for the current document.
  static std::int16_t GetDocument(HostDocumentHandle* document, const std::string& path);
  static std::int16_t GetCurrentDocument(HostDocumentHandle* document);
  static std::int16_t DocumentExists(HostDocumentHandle document, bool* exists);
};
