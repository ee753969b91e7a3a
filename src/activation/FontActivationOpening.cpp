#include <set>

#include "activation/ConnectedFontManager.h"
#include "activation/FontActivationTracker.h"
#include "activation/FontChangeProgress.h"
#include "dialogs/TarnInterface.h"
#include "fonts/RecordAccess.h"
#include "foundation/PluginLog.h"
#include "sdk/FontRecordKeys.h"
#include "sdk/Tarn.h"
#include "state/HostAppInterface.h"

using FaceprintSupport::FindString;

// What one opening collects before the font manager is asked once for all of it.
struct FontActivationTracker::Batch {
  const FontRecordArray& fonts;
  const std::string& identifier;
  ProgressCallbackContext progress;
  bool entireFamily = false;
  FontRecordArray fontsToActivate = MakeFontRecordArray();
  // Of fontsToActivate.
  std::set<std::uint32_t> databaseIDs{};
  std::set<std::string> names{};
  // Of fonts that need no activation.
  std::set<std::string> activeNames{};

  void AddInactive(const FontRecord& font, const std::string& name, std::uint32_t databaseID);
};

// Two versions of one name can't be active at a time.
void FontActivationTracker::Batch::AddInactive(const FontRecord& font, const std::string& name,
                                               std::uint32_t databaseID) {
  const char* const shownName = name.c_str();
  const int shownID = static_cast<int>(databaseID);
  if (names.contains(name)) {
    OutputFormattedDebugString(
        "Skipping '%s' (%d) because a different font with the same postscript name is already in "
        "the array.",
        shownName, shownID);
  } else if (activeNames.contains(name)) {
    OutputFormattedDebugString(
        "Skipping '%s' (%d) because a different font with the same postscript name is already "
        "active.",
        shownName, shownID);
  } else {
    OutputFormattedDebugString("Adding '%s' (%d) because it is not active.", shownName, shownID);
    fontsToActivate->Append(font);
    databaseIDs.insert(databaseID);
    names.insert(name);
  }
}

namespace {

int IntOf(std::size_t count) { return static_cast<int>(count); }

void FinishOpening(const std::string& identifier) {
  TellFontManager([&](FontManagerInterface& fontManager) {
    fontManager.FinishOpeningFontsForDocument(identifier);
  });
  SetCountForLongOperations(1);
}

bool HasRemoteFont(const FontRecordArray& fonts) {
  for (std::size_t i = 0; i < fonts->Count(); ++i) {
    if (RecordInteger(fonts->DictionaryAt(i), kFP_IsLocalKey) != 1) return true;
  }
  return false;
}

// Remote fonts can't come while offline: the user is asked once. True if a box was shown.
bool OfferToGoOnline(TarnInterface* tarn, const FontRecordArray& fontsToActivate) {
  bool isOnline = true;
  TellFontManager([&](FontManagerInterface& fontManager) { isOnline = fontManager.IsOnline(); });
  if (isOnline || !HasRemoteFont(fontsToActivate) || tarn == nullptr) return false;
  if (tarn->ShowSomeFontsOfflineMessageBox()) {
    TellFontManager(
        [](FontManagerInterface& fontManager) { static_cast<void>(fontManager.GoOnline()); });
  }
  return true;
}

bool HoldsANamedFont(const FontRecordArray& fonts) {
  for (std::size_t i = 0; i < fonts->Count(); ++i) {
    if (RecordHas(fonts->DictionaryAt(i), kFP_PostScriptNameKey)) return true;
  }
  return false;
}

}  // namespace

int FontActivationTracker::OpenFontsForIdentifier(const FontRecordArray& fonts,
                                                  const std::string& sDocumentIdentifier,
                                                  bool bShowProgress,
                                                  const FontRecordArray& activatedFonts,
                                                  const FontRecordArray& noncompliantFonts) {
  const OperationTrace trace(__func__);
  FontManagerInterface* fontManager = ConnectedFontManager();
  if (fontManager == nullptr) {
    OutputFormattedDebugString(
        "OpenFontsForIdentifier returning kErrorKestraneNotRunning (EARLY RETURN)");
    return trace.Return(kErrorKestraneNotRunning);
  }
  fontManager->BeginOpeningFontsForDocument(sDocumentIdentifier);
  if (!fonts) {
    FinishOpening(sDocumentIdentifier);
    return trace.Return(0);
  }
  SetCountForLongOperations(fonts->Count());
  const auto progress = ShowFontProgress(m_pTarnInterface, bShowProgress, fonts->Count(),
                                         "FontActivationWindowTitle", "FontActivationHeaderFormat");
  bool isConnected = false;
  int result = AskFontManager([&isConnected](FontManagerInterface& present) {
    isConnected = present.ConnectedToCoreAgent();
    return 0;
  });
  if (isConnected) {
    Batch batch{fonts, sDocumentIdentifier, {bShowProgress, m_pTarnInterface, progress.get()}};
    try {
      result = ActivateInOneBatch(batch, activatedFonts, noncompliantFonts);
    } catch (...) {
      EndFontChangeSession(bShowProgress);
      SetCountForLongOperations(1);
      OutputFormattedDebugString(
          "   *** Exception caught in FontActivationTracker::OpenFontsForIdentifier.  "
          "Rethrowing.");
      throw;
    }
  }
  EndFontChangeSession(bShowProgress);
  FinishOpening(sDocumentIdentifier);
  return trace.Return(result);
}

int FontActivationTracker::ActivateInOneBatch(Batch& batch, const FontRecordArray& activatedFonts,
                                              const FontRecordArray& noncompliantFonts) {
  batch.entireFamily = m_pTarnInterface != nullptr && m_pTarnInterface->GetActivateEntireFamily();
  OutputFormattedDebugString("Preparing %d fonts for batch-activation...",
                             IntOf(batch.fonts->Count()));
  PrepareBatch(batch);
  const int asked = IntOf(batch.fontsToActivate->Count());
  OutputFormattedDebugString("Ready to batch-activate %d fonts", asked);
  if (batch.progress.progress != nullptr) {
    batch.progress.progress->Dictionary().SetIntForKey(kTarnMaxProgress, asked);
  }
  if (OfferToGoOnline(m_pTarnInterface, batch.fontsToActivate)) DropClosedFonts(batch);

  const FontRecordArray activated = activatedFonts ? activatedFonts : MakeFontRecordArray();
  void* context = nullptr;
  const int result = AskFontManager([&](FontManagerInterface& fontManager) {
    return fontManager.ActivateFontsByID(batch.fontsToActivate, batch.identifier, &context,
                                         activated, noncompliantFonts, ProgressCallback,
                                         &batch.progress);
  });
  if (CountOf(noncompliantFonts) != 0) {
    // One refused font undoes the whole document.
    CloseAllFontsForIdentifier(batch.identifier, true, false, nullptr);
  } else if (IntOf(activated->Count()) < asked) {
    OutputFormattedDebugString(
        "Calling SetMissingFontsDialogNeeded() because %d of %d fonts were activated.",
        IntOf(activated->Count()), asked);
    if (HostAppInterface* hostApp = HostAppInterface::GetHostAppInterface()) {
      hostApp->SetMissingFontsDialogNeeded();
    }
  }
  return result;
}

// A message box turns the host's run loop: what nobody holds any more is not turned on, for nobody
// would turn it off again.
void FontActivationTracker::DropClosedFonts(Batch& batch) {
  if (batch.identifier.empty()) return;
  RemoveFromBack(batch.fontsToActivate, [&](std::size_t i) {
    const auto entry = m_mFonts.find(RecordDatabaseID(batch.fontsToActivate->DictionaryAt(i)));
    return entry == m_mFonts.end() || entry->second.refCount == 0;
  });
}

void FontActivationTracker::PrepareBatch(Batch& batch) {
  for (std::size_t i = 0; i < batch.fonts->Count(); ++i) {
    if (batch.fonts->At(i).IsNull()) {
      OutputFormattedDebugString("WARNING:  font %d for document '%s' is NULL", IntOf(i),
                                 batch.identifier.c_str());
    } else if (const FontRecord element = batch.fonts->DictionaryAt(i)) {
      AddMatchedFont(batch, element, IntOf(i));
    } else {
      OutputFormattedDebugString("   ...Error:  Array element at i = %d is NOT A DICTIONARY!!",
                                 IntOf(i));
    }
  }
}

void FontActivationTracker::AddMatchedFont(Batch& batch, const FontRecord& element, int index) {
  const FontRecord matched = element->GetDictionary(kFP_MatchedFontKey);
  if (!matched) {
    const std::string* name = FindString(element, kFP_PostScriptNameKey);
    OutputFormattedDebugString(
        "...Skipping font with no matched font in dictionary:  PS name \"%s\"",
        name != nullptr ? name->c_str() : "<NULL>");
    return;
  }
  const std::string familyName = RecordString(matched, kFP_AssignedFamilyGroupNameKey);
  const FontRecordArray candidates = CandidatesFor(batch, matched);
  for (std::size_t iFont = 0; iFont < candidates->Count(); ++iFont) {
    if (const FontRecord font = candidates->DictionaryAt(iFont)) {
      AddCandidate(batch, font, element, familyName, index);
    } else {
      OutputFormattedDebugString("*** ERROR: NULL entry in fonts in family array, iFont = %d",
                                 IntOf(iFont));
    }
  }
}

// The matched font, or its inactive family. A family stands for the matched font as soon as it
// names anything: whether the font itself is in it is not looked at.
FontRecordArray FontActivationTracker::CandidatesFor(const Batch& batch,
                                                     const FontRecord& matched) const {
  FontRecordArray candidates = MakeFontRecordArray();
  if (batch.entireFamily) {
    TellFontManager([&](FontManagerInterface& fontManager) {
      static_cast<void>(fontManager.FindFontsInSameFamilyForActivation(
          matched, batch.fonts, fontManager.GetCurrentWorkgroupID(), candidates));
    });
    RemoveActivatedFonts(candidates, 0, false);
    if (HoldsANamedFont(candidates) && matched->Has(kFP_PostScriptNameKey)) return candidates;
  }
  candidates->Append(matched);
  return candidates;
}

void FontActivationTracker::AddCandidate(Batch& batch, const FontRecord& font,
                                         const FontRecord& element, const std::string& familyName,
                                         int index) {
  const std::string* name = FindString(font, kFP_PostScriptNameKey);
  const std::uint32_t databaseID = RecordDatabaseID(font);
  if (name == nullptr || databaseID == 0) {
    OutputFormattedDebugString(
        "   ...Error:  PostscriptName and/or DatabaseID not found in matched font dict for i = %d",
        index);
    return;
  }
  // One batch gives a document one reference per font, however many of its fonts map to it.
  if (batch.databaseIDs.contains(databaseID)) {
    OutputFormattedDebugString(
        "--- Skipping family font with fontID %d (\"%s\"), which is already in the array to "
        "activate",
        static_cast<int>(databaseID), name->c_str());
    return;
  }
  const bool alreadyActive = RecordFlag(font, kFP_IsActiveKey);
  if (alreadyActive) {
    OutputFormattedDebugString("Skipping '%s' because it is already active.", name->c_str());
    batch.activeNames.insert(*name);
  } else {
    if (font->Has(kFP_IsActiveKey) && FontManagerInterface::IsFontActive(familyName)) {
      OutputFormattedDebugString(
          "The OS thinks the '%s' font family is active, but Nodrix says '%s' is not. Treating it "
          "as a system font",
          familyName.c_str(), name->c_str());
    }
    batch.AddInactive(font, *name, databaseID);
  }
  RegisterCandidate(batch, font, alreadyActive, element, index);
}

void FontActivationTracker::RegisterCandidate(const Batch& batch, const FontRecord& font,
                                              bool alreadyActive, const FontRecord& element,
                                              int index) {
  const std::string name = RecordString(font, kFP_PostScriptNameKey);
  const std::uint32_t databaseID = RecordDatabaseID(font);
  if (!batch.identifier.empty()) {
    RegisterFontWithDocument(font, name, databaseID, alreadyActive, batch.identifier, nullptr);
    return;
  }
  const PropertyList::ArrayRef documents = element->GetArray(kFP_SubDocumentsWithFontKey);
  if (!documents) {
    OutputFormattedDebugString(
        "WARNING:  font %d for document '%s' has no kFP_SubDocumentsWithFontKey", index,
        batch.identifier.c_str());
    return;
  }
  for (const PropertyList::Value& document : documents->Values()) {
    if (const std::string* identifier = document.AsString()) {
      RegisterFontWithDocument(font, name, databaseID, alreadyActive, *identifier, nullptr);
    }
  }
}
