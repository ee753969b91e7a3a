// The open documents. A document has three names: the handle that the host gives it, its path, and
// the identifier under which the tracker knows it. Path and handle can change, the identifier never
// does.
//
// Threads: [main-thread]. A walk over the list is restarted after any removal.
#pragma once

#include <ctime>
#include <string>
#include <vector>

#include "propertylist/FontRecord.h"

using HostDocumentHandle = long;  // 0: not known yet

class OneTrackedDocument {
 public:
  HostDocumentHandle GetDocumentHandle() const { return mDocumentHandle; }
  void SetDocumentHandle(HostDocumentHandle handle) { mDocumentHandle = handle; }
  std::string GetDocumentFilePath() const { return mDocumentFilePath; }
  void SetDocumentFilePath(const std::string& path);
  std::string GetIdentifier() const { return mIdentifier; }
  void SetIdentifier(const std::string& identifier) { mIdentifier = identifier; }
  std::string GetKnownFontUsage() const { return mKnownFontUsage; }
  void SetKnownFontUsage(const std::string& usage) { mKnownFontUsage = usage; }
  bool GetCanExportFontsForDocument() const { return mCanExportFontsForDocument; }
  void SetCanExportFontsForDocument(bool can) { mCanExportFontsForDocument = can; }
  bool GetNeedsToBeSluggedOnClose() const { return mNeedsToBeSluggedOnClose; }
  void SetNeedsToBeSluggedOnClose(bool needs) { mNeedsToBeSluggedOnClose = needs; }
  // Seconds since 1970; 0: none yet. The setters take the present time.
  std::time_t GetTimeOpenEventWasHandled() const { return mTimeOpenEventWasHandled; }
  void SetTimeOpenEventWasHandled();
  std::time_t GetTimeSaveEventWasHandled() const { return mTimeSaveEventWasHandled; }
  void SetTimeSaveEventWasHandled();
  std::time_t GetLastKnownModificationTime() const { return mLastKnownModificationTime; }
  void SetLastKnownModificationTime(long time);
  // The file's date, returned and not stored.
  std::time_t RetrieveModificationTimeFromFile() const;
  // Problem fonts of the last activation; null if none was stored.
  const FontRecordArray& GetUnresolvedFonts() const { return mUnresolvedFonts; }
  void SetUnresolvedFonts(const FontRecordArray& fonts) { mUnresolvedFonts = fonts; }
  // Fonts that the font manager refused.
  const FontRecordArray& GetNoncompliantFonts() const { return mNoncompliantFonts; }
  void SetNoncompliantFonts(const FontRecordArray& fonts) { mNoncompliantFonts = fonts; }
  bool GetHasMissingFonts() const;

 private:
  HostDocumentHandle mDocumentHandle = 0;
  bool mNeedsToBeSluggedOnClose = false;
  std::time_t mTimeOpenEventWasHandled = 0;
  std::time_t mTimeSaveEventWasHandled = 0;
  std::time_t mLastKnownModificationTime = 0;
  std::string mDocumentFilePath;  // empty for an untitled document
  std::string mIdentifier;
  std::string mKnownFontUsage;
  bool mCanExportFontsForDocument = false;
  FontRecordArray mUnresolvedFonts;
  FontRecordArray mNoncompliantFonts;
};

class AllTrackedDocuments {
 public:
  AllTrackedDocuments() = delete;

  // Takes ownership, unless a record of this path is there already: nothing happens then, and the
  // caller still holds `document`. A null document makes a zeroed record.
  static void AddDocument(OneTrackedDocument* document, const std::string& path);
  // Insertion order.
  static const std::vector<OneTrackedDocument*>& GetDocumentList();
  // Byte for byte; null if there is none. An empty path finds an untitled document.
  static OneTrackedDocument* FindTrackedDocumentByPath(const std::string& path);
  static OneTrackedDocument* FindTrackedDocumentByHandle(HostDocumentHandle handle);
  static OneTrackedDocument* FindTrackedDocumentByIdentifier(const std::string& identifier);
  static OneTrackedDocument* GetCurrentDocument();
  static void SetCurrentDocument(const std::string& identifier);
  static OneTrackedDocument* GetMostRecentlyOpenedDocument();
  // Drops the document's references and destroys the record.
  static void RemoveClosedDocument(OneTrackedDocument* document);

 private:
  static std::vector<OneTrackedDocument*>& List();

  static std::string s_currentDocumentIdentifier;
};
