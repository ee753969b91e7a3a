#include "photoshop/DocumentEvents.h"

#include <exception>
#include <string>

#include "activation/TrackedDocuments.h"
#include "fontmanager/FontManagerInterface.h"
#include "foundation/PluginLog.h"
#include "photoshop/AutoSuite.h"
#include "photoshop/DocumentActivation.h"
#include "photoshop/HostText.h"
#include "photoshop/PIUtilities.h"
#include "photoshop/PhotoshopFontUtils.h"

namespace {

// Runs a handler and lets nothing out to the host.
template <typename Handler>
void GuardedHandler(const char* name, Handler handler) {
  try {
    handler();
  } catch (unsigned int error) {
    OutputFormattedDebugString("%s() ended with host error 0x%08x", name, error);
  } catch (const std::exception& error) {
    OutputFormattedDebugString("%s() ended with an exception: %s", name, error.what());
  } catch (...) {
    OutputFormattedDebugString("%s() ended with an exception", name);
  }
}

int CurrentDocumentID() {
  int id = 0;
  return PhotoshopFontUtils::GetCurrentDocumentID(&id) == 0 ? id : 0;
}

unsigned HandleForLog(HostDocumentHandle handle) { return static_cast<unsigned>(handle); }

std::string PathOfOpenedFile(PIActionDescriptor descriptor) {
  OwnedAlias alias;
  if (PIUGetSingleItemFromDescriptor(descriptor, keyNull, alias) != 0) return {};
  return PhotoshopFontUtils::GetUTF8EncodedPathFromFileAlias(alias.Get());
}

void NoteOpenEvent(OneTrackedDocument& document, const std::string& path) {
  document.SetTimeOpenEventWasHandled();
  OutputFormattedDebugString("SetTimeOpenEventWasHandled() associated %d with '%s'",
                             static_cast<int>(document.GetTimeOpenEventWasHandled()), path.c_str());
}

// Null if it could not be taken in.
OneTrackedDocument* TakeIn(const std::string& path) {
  const OpenDocumentCall call;
  HandleOpenedDocument(path, false);
  OneTrackedDocument* document = AllTrackedDocuments::FindTrackedDocumentByPath(path);
  if (document) {
    NoteOpenEvent(*document, path);
  } else {
    OutputFormattedDebugString(
        "WARNING: HandleOpenedDocument() failed to add '%s' to AllTrackedDocuments.", path.c_str());
  }
  return document;
}

// For a document that came in before its open event. What was left unresolved is tried once more,
// on a record that the list does not take.
void CatchUpWithOpenEvent(OneTrackedDocument& document, const std::string& path) {
  if (document.GetTimeOpenEventWasHandled() != 0) return;
  NoteOpenEvent(document, path);
  if (!document.GetUnresolvedFonts()) return;
  const OpenDocumentCall call;
  HandleOpenedDocument(path, false);
}

void HandleOpenEvent(PIActionDescriptor descriptor) {
  const OperationTrace trace(__func__);
  if (!FontManagerInterface::AutoActivationIsReady()) return;
  const std::string path = PathOfOpenedFile(descriptor);
  OneTrackedDocument* document = AllTrackedDocuments::FindTrackedDocumentByPath(path);
  if (document) {
    CatchUpWithOpenEvent(*document, path);
    if (!IsRecordAlive(document)) return;
  } else if (gOpenDocumentCallCounter == 0) {
    document = TakeIn(path);
  }
  if (!document) return;  // not taken in, or an outer call is doing so
  const int currentID = CurrentDocumentID();
  int pathID = 0;
  PhotoshopFontUtils::GetDocumentID(&pathID, path);
  document->SetDocumentHandle(pathID != 0 ? pathID : currentID);
}

void HandleMakeEvent(PIActionDescriptor descriptor) {
  const OperationTrace trace(__func__);
  if (!FontManagerInterface::AutoActivationIsReady()) return;
  OwnedDescriptor made;
  DescriptorClassID type = 0;
  if (sPSActionDescriptor->GetObject(descriptor, keyNew, &type, made.Out()) != 0) return;
  if (type != classDocument) {
    OutputFormattedDebugString("MakeEvent received for DescriptorClassID %s",
                               FourCharTypeToStdString(type).c_str());
    return;
  }
  const int id = CurrentDocumentID();
  OneTrackedDocument* document = AddNewTrackedDocument("");
  if (!document) return;
  document->SetDocumentHandle(id);
  OutputFormattedDebugString("New document has ID 0x%08x", static_cast<unsigned>(id));
  document->SetTimeOpenEventWasHandled();
}

// Each save comes as two events; of those that name the document, the first is before the save.
bool IsPreSaveEvent(PIActionDescriptor descriptor, int eventNumber) {
  bool namesDocument = false;
  if (sPSActionDescriptor->HasKey(descriptor, keyDocumentID, &namesDocument) != 0) return false;
  return namesDocument && eventNumber % 2 == 1;
}

// A first save gives an untitled record its path, a Save As moves a record; found by handle.
OneTrackedDocument* FindSavedDocument(const std::string& path, int currentID) {
  OneTrackedDocument* document = AllTrackedDocuments::FindTrackedDocumentByPath(path);
  if (document || currentID == 0) return document;
  document = AllTrackedDocuments::FindTrackedDocumentByHandle(currentID);
  if (!document) {
    OutputFormattedDebugString(
        "WARNING: no documentID 0x%08x found in AllTrackedDocuments. '%s' is untracked",
        static_cast<unsigned>(currentID), path.c_str());
    return nullptr;
  }
  document->SetDocumentFilePath(path);
  OutputFormattedDebugString("DocumentID 0x%08x is now associated with '%s'",
                             static_cast<unsigned>(currentID), path.c_str());
  return document;
}

void TrackSavedDocument(const std::string& path) {
  const int currentID = CurrentDocumentID();
  OneTrackedDocument* document = FindSavedDocument(path, currentID);
  if (!document) return;
  if (document->GetDocumentHandle() != currentID) {
    OutputFormattedDebugString(
        "WARNING: currentDocumentID is 0x%08x but document being saved has ID 0x%08x",
        static_cast<unsigned>(currentID), HandleForLog(document->GetDocumentHandle()));
  }
  if (document->GetTimeOpenEventWasHandled() == 0) document->SetTimeOpenEventWasHandled();
  document->SetTimeSaveEventWasHandled();
}

void HandleSaveEvent(PIActionDescriptor descriptor) {
  const OperationTrace trace(__func__);
  static int sNumberOfSaveEventsHandled = 0;
  ++sNumberOfSaveEventsHandled;
  std::string path;
  PhotoshopFontUtils::GetCurrentDocumentPathUnstableInCS6(&path);
  OutputFormattedDebugString("Document name is '%s'", path.c_str());
  if (IsPreSaveEvent(descriptor, sNumberOfSaveEventsHandled)) {
    OutputFormattedDebugString("Doing nothing because this is a pre-save event.");
  }
  // After the save the fonts' identity goes into the file; nothing writes it yet.
  TrackSavedDocument(path);
}

}  // namespace

void OpenEvent(DescriptorEventID, PIActionDescriptor descriptor, int32_t, void*) {
  GuardedHandler(__func__, [&] { HandleOpenEvent(descriptor); });
}

void MakeEvent(DescriptorEventID, PIActionDescriptor descriptor, int32_t, void*) {
  GuardedHandler(__func__, [&] { HandleMakeEvent(descriptor); });
}

void CloseEvent(DescriptorEventID, PIActionDescriptor, int32_t, void*) {
  GuardedHandler(__func__, [] {
    if (FontManagerInterface::AutoActivationIsReady()) HandleClosedDocument();
  });
}

void SaveEvent(DescriptorEventID, PIActionDescriptor descriptor, int32_t, void*) {
  GuardedHandler(__func__, [&] { HandleSaveEvent(descriptor); });
}
