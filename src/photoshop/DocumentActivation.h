// Taking documents in and letting them go: the records of open documents, and the activation of
// their fonts with the dialogs that belong to it.
//
// The identity that a file carries of its fonts is not read or written yet: fonts are known by the
// names in the file's bytes alone. The close and reopen of a document whose fonts were activated is
// not played yet either.
//
// Threads: [main-thread]; re-entrant where a dialog turns the run loop.
#pragma once

#include <string>

#include "activation/TrackedDocuments.h"

// Not 0 while a document is being taken in. A plain counter, raised before and lowered after; the
// only guard against opening from within an opening.
extern int gOpenDocumentCallCounter;

// Raises the counter for the length of a scope.
class OpenDocumentCall {
 public:
  OpenDocumentCall() { ++gOpenDocumentCallCounter; }
  ~OpenDocumentCall() { --gOpenDocumentCallCounter; }
  OpenDocumentCall(const OpenDocumentCall&) = delete;
  OpenDocumentCall& operator=(const OpenDocumentCall&) = delete;
};

// Makes a record with an identifier of its own and hands it to the list of tracked documents. A
// record that the list does not take, since its path is tracked already, is parked for ever: its
// fonts stay referenced until the host quits. Null without a font manager.
OneTrackedDocument* AddNewTrackedDocument(const std::string& path);

// Is this record still there? A dialog may let a close event in, which ends records.
bool IsRecordAlive(const OneTrackedDocument* document);

// Tracks the document and activates its fonts. With `silently` no dialog may appear; the activation
// that needs none is not there yet, so such a document is tracked and its fonts are left alone.
void HandleOpenedDocument(const std::string& path, bool silently);

// Lets every record go whose document the host has no more; the host does not say which one closed.
void HandleClosedDocument();

// Takes in what is on the host's list and not on ours, unless a document is being taken in.
void DetectAndHandleNewlyOpenedDocuments(bool silently);

// Activates the fonts of the document and tells the user what is left to tell. The result is -1 and
// says nothing.
int ActivateFontsForDocument(bool bOpeningNewDocument, int& numFontsActivated,
                             const std::string& path, OneTrackedDocument* document);
