#include "photoshop/DocumentActivation.h"

#include <algorithm>
#include <memory>
#include <vector>

#include "activation/FontActivationTracker.h"
#include "dialogs/TarnInterface.h"
#include "fontmanager/FontManagerInterface.h"
#include "foundation/PluginLog.h"
#include "photoshop/ParkedObjects.h"
#include "photoshop/PhotoshopFontUtils.h"
#include "state/KestraneGlobals.h"

int gOpenDocumentCallCounter = 0;

namespace {

// By path, and the current document if the host knows no such path; 0 if there is neither.
int FindHandle(const std::string& path) {
  int id = 0;
  if (PhotoshopFontUtils::GetDocumentID(&id, path) == 0 && id != 0) return id;
  id = 0;
  return PhotoshopFontUtils::GetCurrentDocumentID(&id) == 0 ? id : 0;
}

// A document whose fonts are all active now is to be closed and opened again, so that the host
// takes it in with them.
void ReopenIfFontsWereActivated(const OneTrackedDocument& document, int numFontsActivated) {
  const bool hasMissingFonts = document.GetHasMissingFonts();
  // The close and reopen itself is not played yet: nothing here waits for the host to be idle.
  if (numFontsActivated > 0 && !hasMissingFonts) return;
  OutputFormattedDebugString(
      "DeferredReplaceMissingFonts(0x%08x) skipped because numFontsActivated=%d and "
      "HasMissingFonts=%d",
      static_cast<unsigned>(document.GetDocumentHandle()), numFontsActivated, hasMissingFonts);
}

bool IsDocumentStillOpen(const OneTrackedDocument& document) {
  const std::string path = document.GetDocumentFilePath();
  OutputFormattedDebugString("Considering whether '%s' has been closed.", path.c_str());
  if (document.GetDocumentHandle() == 0) {
    OutputFormattedDebugString("Could not get a handle for '%s' so it must have been closed.",
                               path.c_str());
    return false;
  }
  bool exists = false;
  const auto error =
      PhotoshopFontUtils::DocumentExists(static_cast<int>(document.GetDocumentHandle()), &exists);
  if (error == 0 && !exists) return false;
  OutputFormattedDebugString("Host app still has a valid handle for '%s' so it must still be open.",
                             path.c_str());
  return true;
}

}  // namespace

OneTrackedDocument* AddNewTrackedDocument(const std::string& path) {
  FontManagerInterface* fontManager = FontManagerInterface::GetFontManager();
  if (!fontManager) return nullptr;
  auto record = std::make_unique<OneTrackedDocument>();
  record->SetIdentifier(FontActivationTracker::GenerateUniqueIdentifier());
  record->SetCanExportFontsForDocument(fontManager->CanActivateFromAllWorkgroups());
  OneTrackedDocument* document = record.release();
  AllTrackedDocuments::AddDocument(document, path);
  if (AllTrackedDocuments::FindTrackedDocumentByPath(path) != document) {
    ParkedObjects<OneTrackedDocument>().emplace_back(document);
  }
  return document;
}

bool IsRecordAlive(const OneTrackedDocument* document) {
  const auto& tracked = AllTrackedDocuments::GetDocumentList();
  if (std::find(tracked.begin(), tracked.end(), document) != tracked.end()) return true;
  const auto& parked = ParkedObjects<OneTrackedDocument>();
  return std::any_of(parked.begin(), parked.end(),
                     [&](const auto& record) { return record.get() == document; });
}

void HandleOpenedDocument(const std::string& path, bool silently) {
  const OperationTrace trace(__func__);
  const TarnInterface* tarn = KestraneGlobals::GetSharedTarnInterface();
  if (!FontManagerInterface::GetFontManager() || !tarn || !tarn->IsValid()) return;
  int numFontsActivated = 0;
  OneTrackedDocument* document = AddNewTrackedDocument(path);
  if (!silently) ActivateFontsForDocument(true, numFontsActivated, path, document);
  if (!IsRecordAlive(document)) return;
  if (const int handle = FindHandle(path)) document->SetDocumentHandle(handle);
  FontManagerInterface* fontManager = FontManagerInterface::GetFontManager();
  if (KestraneGlobals::ArePluginServicesEnabled() && tarn->GetEnabledAutoActivationPref() &&
      fontManager && fontManager->IsLoggedIn()) {
    ReopenIfFontsWereActivated(*document, numFontsActivated);
  }
}

void HandleClosedDocument() {
  const OperationTrace trace(__func__);
  const auto& documents = AllTrackedDocuments::GetDocumentList();
  std::size_t index = 0;
  while (index < documents.size()) {
    OneTrackedDocument* document = documents[index];
    if (IsDocumentStillOpen(*document)) {
      ++index;
      continue;
    }
    const std::size_t count = documents.size();
    AllTrackedDocuments::RemoveClosedDocument(document);
    if (documents.size() >= count) return;  // could not be removed: the walk would never end
    index = 0;                              // the list has shifted
  }
}

void DetectAndHandleNewlyOpenedDocuments(bool silently) {
  const OperationTrace trace(__func__);
  if (gOpenDocumentCallCounter != 0) return;
  const OpenDocumentCall call;
  std::vector<std::string> paths;
  PhotoshopFontUtils::GetUTF8PathsForAllOpenDocuments(paths);
  for (const std::string& path : paths) {
    if (path.empty() || AllTrackedDocuments::FindTrackedDocumentByPath(path)) continue;
    OutputFormattedDebugString("Newly opened document detected: '%s'", path.c_str());
    HandleOpenedDocument(path, silently);
  }
}
