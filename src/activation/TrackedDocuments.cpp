#include "activation/TrackedDocuments.h"

#include <algorithm>
#include <memory>

#include "activation/FontActivationTracker.h"
#include "dialogs/TarnInterface.h"
#include "fonts/FontMerging.h"
#include "foundation/PluginLog.h"
#include "foundation/WallClock.h"
#include "platform/VendrelFileUtils.h"
#include "state/KestraneGlobals.h"

std::string AllTrackedDocuments::s_currentDocumentIdentifier;

void OneTrackedDocument::SetDocumentFilePath(const std::string& path) {
  OutputFormattedDebugString("OneTrackedDocument::SetDocumentFilePath('%s')", path.c_str());
  mDocumentFilePath = path;
}

void OneTrackedDocument::SetTimeOpenEventWasHandled() {
  mTimeOpenEventWasHandled = WallClock::Now();
}

void OneTrackedDocument::SetTimeSaveEventWasHandled() {
  mTimeSaveEventWasHandled = WallClock::Now();
}

void OneTrackedDocument::SetLastKnownModificationTime(long time) {
  OutputFormattedDebugString("%s(%d)", __func__, static_cast<int>(time));
  mLastKnownModificationTime = time;
}

std::time_t OneTrackedDocument::RetrieveModificationTimeFromFile() const {
  return VendrelFileUtils::GetFileModificationDate(mDocumentFilePath);
}

bool OneTrackedDocument::GetHasMissingFonts() const {
  return mUnresolvedFonts && FaceprintSupport::CountMissingFonts(mUnresolvedFonts) > 0;
}

namespace {

// Drops the document's references; the preference says whether fonts are deactivated as well.
void CloseFontsOf(const std::string& identifier) {
  FontActivationTracker* tracker = KestraneGlobals::GetSharedFontActivationTracker();
  TarnInterface* tarn = KestraneGlobals::GetSharedTarnInterface();
  if (tracker == nullptr || tarn == nullptr) return;
  tracker->CloseAllFontsForIdentifier(identifier, tarn->GetCloseFontsOnDocClose(), false, nullptr);
}

template <typename Predicate>
OneTrackedDocument* FindDocument(const std::vector<OneTrackedDocument*>& list, Predicate matches) {
  const auto found = std::find_if(list.begin(), list.end(), matches);
  return found == list.end() ? nullptr : *found;
}

}  // namespace

// Owns what is in it. Not emptied at shutdown: the records die with the process.
std::vector<OneTrackedDocument*>& AllTrackedDocuments::List() {
  static auto& documentList = *new std::vector<OneTrackedDocument*>;
  return documentList;
}

const std::vector<OneTrackedDocument*>& AllTrackedDocuments::GetDocumentList() { return List(); }

void AllTrackedDocuments::AddDocument(OneTrackedDocument* document, const std::string& path) {
  if (FindTrackedDocumentByPath(path) != nullptr) return;
  auto added = document != nullptr ? std::unique_ptr<OneTrackedDocument>(document)
                                   : std::make_unique<OneTrackedDocument>();
  added->SetDocumentFilePath(path);
  List().push_back(added.get());
  static_cast<void>(added.release());
}

OneTrackedDocument* AllTrackedDocuments::FindTrackedDocumentByPath(const std::string& path) {
  return FindDocument(List(), [&path](const OneTrackedDocument* document) {
    return document->GetDocumentFilePath() == path;
  });
}

OneTrackedDocument* AllTrackedDocuments::FindTrackedDocumentByHandle(HostDocumentHandle handle) {
  OneTrackedDocument* found = FindDocument(List(), [handle](const OneTrackedDocument* document) {
    return document->GetDocumentHandle() == handle;
  });
  if (found == nullptr && handle != 0) {
    OutputFormattedDebugString("WARNING: %s() could not find document 0x%08x", __func__,
                               static_cast<unsigned>(handle));
  }
  return found;
}

OneTrackedDocument* AllTrackedDocuments::FindTrackedDocumentByIdentifier(
    const std::string& identifier) {
  return FindDocument(List(), [&identifier](const OneTrackedDocument* document) {
    return document->GetIdentifier() == identifier;
  });
}

OneTrackedDocument* AllTrackedDocuments::GetCurrentDocument() {
  return FindTrackedDocumentByIdentifier(s_currentDocumentIdentifier);
}

void AllTrackedDocuments::SetCurrentDocument(const std::string& identifier) {
  s_currentDocumentIdentifier = identifier;
}

OneTrackedDocument* AllTrackedDocuments::GetMostRecentlyOpenedDocument() {
  OneTrackedDocument* latest = nullptr;
  std::time_t latestTime = 0;
  for (OneTrackedDocument* document : List()) {
    if (document->GetTimeOpenEventWasHandled() > latestTime) {
      latest = document;
      latestTime = document->GetTimeOpenEventWasHandled();
    }
  }
  return latest;
}

void AllTrackedDocuments::RemoveClosedDocument(OneTrackedDocument* document) {
  if (document == nullptr) return;
  try {
    const std::string identifier = document->GetIdentifier();
    if (FindTrackedDocumentByIdentifier(identifier) == nullptr) return;
    CloseFontsOf(identifier);
    // Looked up again: the font manager may have called back and changed the list.
    OneTrackedDocument* closed = FindTrackedDocumentByIdentifier(identifier);
    std::erase(List(), closed);
    const std::unique_ptr<OneTrackedDocument> owned(closed);
  } catch (...) {
    OutputFormattedDebugString("Exception thrown in %s()", __func__);
  }
}
