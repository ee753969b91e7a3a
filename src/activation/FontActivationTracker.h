// Which font was opened for which document, and by how many, so that a font is deactivated only
// when the last document that uses it closes, and never if the plug-in did not turn it on.
//
// Threads: [main-thread]; the lock is held across the font manager calls of the close operations.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "foundation/GMutex.h"
#include "propertylist/FontRecord.h"

class TarnInterface;

class FontActivationTracker {
 public:
  // `tarn` is lent and may be null: progress and messages are skipped then.
  explicit FontActivationTracker(TarnInterface* tarn);
  virtual ~FontActivationTracker();
  FontActivationTracker(const FontActivationTracker&) = delete;
  FontActivationTracker& operator=(const FontActivationTracker&) = delete;

  // A new UUID.
  static std::string GenerateUniqueIdentifier();

  // Registers each matched font under the identifier and activates what is not active, in one
  // batch. An empty identifier stands for the documents that each font names under
  // kFP_SubDocumentsWithFontKey. What was activated and what was refused for this user is appended
  // to the two arrays, which may be null; a refused font undoes the whole document. 0, 1000 when
  // the font manager has gone, or the batch's result, which leaves the references in place.
  int OpenFontsForIdentifier(const FontRecordArray& fonts, const std::string& sDocumentIdentifier,
                             bool bShowProgress, const FontRecordArray& activatedFonts,
                             const FontRecordArray& noncompliantFonts);
  void RegisterFontWithDocument(const FontRecord& font, const std::string& psName,
                                std::uint32_t nDatabaseID, bool bAlreadyActive,
                                const std::string& sDocumentIdentifier, void* context);
  // Takes out what this process sees by its PostScript name; with `removeOnlyManuallyActivated`
  // only what neither automatic activation nor the system turned on. Entries that are no records
  // stay.
  static void RemoveActivatedFonts(const FontRecordArray& fonts, long inWorkgroupID,
                                   bool removeOnlyManuallyActivated);
  // Drops the document's references. With `bDeactivateClosedFonts` what nobody else holds is
  // deactivated, if the plug-in turned it on, and appended to `fontsDeactivated` (may be null);
  // without it a font stays on, also with no reference, until it is closed again or the host quits.
  // 0 also for an unknown document; 1000 when the font manager has gone.
  int CloseAllFontsForIdentifier(const std::string& sDocumentIdentifier,
                                 bool bDeactivateClosedFonts, bool bShowProgress,
                                 const FontRecordArray& fontsDeactivated);
  // The quit path: reference counts are ignored, and no font is known afterwards. 1000, and nothing
  // changes, when the font manager has gone before.
  int CloseAllFonts(bool bDeactivateClosedFonts, bool bShowProgress);
  void EndFontChangeSession(bool bHideProgress);

  std::size_t CountFontsRegisteredForIdentifier(const std::string& identifier);
  std::size_t CountFontsOpenedForIdentifier(const std::string& identifier,
                                            std::size_t& alreadyActiveCount);
  // Both make the entry that is asked for; the reference lasts as long as the tracker.
  void AddUnresolvedFont(const std::string& identifier, const std::string& name);
  const std::vector<std::string>& GetUnresolvedFonts(const std::string& identifier);

 private:
  struct SFontRecord {
    FontRecord fontInfo;
    std::uint32_t nDatabaseID = 0;
    bool wasAlreadyActive = false;  // decided at the first registration
    std::string postscriptName;
    std::string documentIdentifier;  // the first document that registered it
    bool isOpen = false;
    std::uint32_t refCount = 0;  // registrations not yet closed
    void* activationContext = nullptr;

    void Release();
  };
  struct SDocumentRecord {
    std::string documentIdentifier;
    std::vector<std::uint32_t> fontIDs;  // one entry per registration
  };
  struct Batch;
  struct Closing;

  // The opening, from the families of the matched fonts to the books.
  int ActivateInOneBatch(Batch& batch, const FontRecordArray& activatedFonts,
                         const FontRecordArray& noncompliantFonts);
  void PrepareBatch(Batch& batch);
  void DropClosedFonts(Batch& batch);
  void AddMatchedFont(Batch& batch, const FontRecord& element, int index);
  void AddCandidate(Batch& batch, const FontRecord& font, const FontRecord& element,
                    const std::string& familyName, int index);
  void RegisterCandidate(const Batch& batch, const FontRecord& font, bool alreadyActive,
                         const FontRecord& element, int index);
  FontRecordArray CandidatesFor(const Batch& batch, const FontRecord& matched) const;

  // The closing. All want the lock.
  int CloseRegisteredFonts(Closing& closing, const std::string& identifier, bool bShowProgress);
  // False if the font manager has gone.
  static bool AskForStates(Closing& closing, const std::vector<std::uint32_t>& fontIDs);
  int CloseFontsInOneBatch(Closing& closing, const std::vector<std::uint32_t>& fontIDs);
  int CloseFontsOneByOne(Closing& closing, const std::vector<std::uint32_t>& fontIDs);
  int CloseEverythingInOneBatch(Closing& closing, const std::vector<std::uint32_t>& fontIDs);
  int CloseEverythingOneByOne(Closing& closing, const std::vector<std::uint32_t>& fontIDs);
  // Is it in the books, without a reference?
  bool IsUnheld(std::uint32_t databaseID) const;
  // Takes one reference; true if it was the last.
  static bool DropReference(SFontRecord& font, bool& allClosed);

  GRecursiveMutex m_mutex;  // CountFontsOpenedForIdentifier takes it twice
  std::map<std::uint32_t, SFontRecord> m_mFonts;
  std::map<std::string, SDocumentRecord> m_mDocuments;
  std::map<std::string, std::vector<std::string>> m_mUnresolvedFonts;
  TarnInterface* m_pTarnInterface;
};
