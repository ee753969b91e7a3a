#include "photoshop/PhotoshopInterface.h"

#include "activation/TrackedDocuments.h"
#include "photoshop/PSDocumentSuite.h"

namespace {

OneTrackedDocument* RecordOfCurrentDocument() {
  HostDocumentHandle handle = 0;
  if (PSDocumentSuite::GetCurrentDocument(&handle) != 0) return nullptr;
  return AllTrackedDocuments::FindTrackedDocumentByHandle(handle);
}

}  // namespace

void PhotoshopInterface::SetCanExportFontsForDocument(bool canExport) {
  if (OneTrackedDocument* document = RecordOfCurrentDocument()) {
    document->SetCanExportFontsForDocument(canExport);
  }
}

bool PhotoshopInterface::CanExportFontsForDocument() {
  const OneTrackedDocument* document = RecordOfCurrentDocument();
  return document && document->GetCanExportFontsForDocument();
}
