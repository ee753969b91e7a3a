#include "activation/ConnectedFontManager.h"
#include "activation/FontActivationTracker.h"
#include "activation/FontChangeProgress.h"
#include "foundation/GScopedLock.h"
#include "foundation/PluginLog.h"

namespace {

using ActivationStates = std::map<std::uint32_t, bool>;

// Does the font manager still count the font as turned on by the plug-in? A font that it says
// nothing about is.
bool IsStillOurs(const ActivationStates& states, std::uint32_t databaseID) {
  const auto state = states.find(databaseID);
  return state == states.end() || state->second;
}

// A failure is told in the log and in the result.
int DeactivateOne(const FontRecord& font, void* context) {
  const int result = AskFontManager(
      [&](FontManagerInterface& fontManager) { return fontManager.DeactivateFont(font, context); });
  if (result != 0) OutputFormattedDebugString("XTDeactivateFont returned %d", result);
  return result;
}

}  // namespace

// One closing, of a document or of everything.
struct FontActivationTracker::Closing {
  bool deactivate;
  FontRecordArray fontsDeactivated;  // may be null
  ProgressCallbackContext progress;
  bool allClosed = false;
  ActivationStates states{};
  bool inOneBatch = false;

  int DeactivateBatch(const FontRecordArray& batch) {
    return AskFontManager([&](FontManagerInterface& fontManager) {
      return fontManager.DeactivateFonts(batch, nullptr, fontsDeactivated, ProgressCallback,
                                         &progress);
    });
  }
};

int FontActivationTracker::CloseAllFontsForIdentifier(const std::string& sDocumentIdentifier,
                                                      bool bDeactivateClosedFonts,
                                                      bool bShowProgress,
                                                      const FontRecordArray& fontsDeactivated) {
  const OperationTrace trace(__func__);
  if (ConnectedFontManager() == nullptr) return trace.Return(kErrorKestraneNotRunning);
  GScopedLock lock(m_mutex);
  bool allClosed = bDeactivateClosedFonts;
  int result = 0;
  const auto document = m_mDocuments.find(sDocumentIdentifier);
  if (document == m_mDocuments.end()) {
    OutputFormattedDebugString("No entry in FontActivationTracker::m_mDocuments for '%s'",
                               sDocumentIdentifier.c_str());
  } else if (document->second.fontIDs.empty()) {
    OutputFormattedDebugString("No fonts registered for '%s'", sDocumentIdentifier.c_str());
    m_mDocuments.erase(document);
  } else {
    Closing closing{bDeactivateClosedFonts,
                    fontsDeactivated,
                    {true, m_pTarnInterface, nullptr},
                    bDeactivateClosedFonts};
    result = CloseRegisteredFonts(closing, sDocumentIdentifier, bShowProgress);
    allClosed = closing.allClosed;
  }
  TellFontManager([&](FontManagerInterface& fontManager) {
    fontManager.FinishClosingFontsForDocument(sDocumentIdentifier, allClosed);
  });
  SetCountForLongOperations(1);
  return trace.Return(result);
}

int FontActivationTracker::CloseRegisteredFonts(Closing& closing, const std::string& identifier,
                                                bool bShowProgress) {
  const std::size_t count = m_mDocuments[identifier].fontIDs.size();
  SetCountForLongOperations(count);
  const auto progress =
      ShowFontProgress(m_pTarnInterface, bShowProgress, count, "FontDeactivationWindowTitle",
                       "FontDeactivationHeaderForDoc");
  closing.progress.progress = progress.get();
  // The window turns the host's run loop, and what that ran may have closed the document.
  const auto document = m_mDocuments.find(identifier);
  if (document == m_mDocuments.end()) return 0;
  decltype(m_mDocuments)::node_type closed;
  try {
    if (!AskForStates(closing, document->second.fontIDs)) return kErrorKestraneNotRunning;
    // Out of the books: what is opened under this identifier from now on is another's to close.
    closed = m_mDocuments.extract(document);
    const std::vector<std::uint32_t>& fontIDs = closed.mapped().fontIDs;
    const int result = closing.inOneBatch ? CloseFontsInOneBatch(closing, fontIDs)
                                          : CloseFontsOneByOne(closing, fontIDs);
    EndActivationChange();
    return result;
  } catch (...) {
    if (closed.empty()) m_mDocuments.erase(identifier);
    EndActivationChange();
    SetCountForLongOperations(1);
    OutputFormattedDebugString(
        "FontActivationTracker::CloseAllFontsForIdentifier() exiting abnormally");
    throw;
  }
}

bool FontActivationTracker::AskForStates(Closing& closing,
                                         const std::vector<std::uint32_t>& fontIDs) {
  const int result = AskFontManager([&](FontManagerInterface& fontManager) {
    closing.states = fontManager.GetClientFontActivationStates(fontIDs);
    closing.inOneBatch = fontManager.ConnectedToCoreAgent();
    return 0;
  });
  return result == 0;
}

bool FontActivationTracker::DropReference(SFontRecord& font, bool& allClosed) {
  const bool wasLast = font.refCount == 1;
  if (font.refCount > 0) --font.refCount;
  if (!wasLast) allClosed = false;
  return wasLast;
}

int FontActivationTracker::CloseFontsInOneBatch(Closing& closing,
                                                const std::vector<std::uint32_t>& fontIDs) {
  const FontRecordArray batch = MakeFontRecordArray();
  for (const std::uint32_t id : fontIDs) {
    const auto entry = m_mFonts.find(id);
    if (entry == m_mFonts.end()) {
      OutputFormattedDebugString(
          "No entry found for nDatabaseID(%d) in FontManagerInterface::m_mFonts",
          static_cast<int>(id));
      continue;
    }
    OutputFormattedDebugString("Considering whether to deactivate databaseID %d",
                               static_cast<int>(id));
    SFontRecord& font = entry->second;
    const bool wasLast = DropReference(font, closing.allClosed);
    if (!closing.deactivate) continue;
    const char* name = font.postscriptName.c_str();
    if (!wasLast) {
      OutputFormattedDebugString("Not deactivating '%s' because its ref count is %d", name,
                                 static_cast<int>(font.refCount));
      continue;
    }
    if (!IsStillOurs(closing.states, id)) {
      OutputFormattedDebugString("Not deactivating '%s' because it is no longer plugin activated",
                                 name);
    } else if (!font.wasAlreadyActive) {
      OutputFormattedDebugString("Adding '%s' to fontsToDeactivate.", name);
      batch->Append(font.fontInfo);
    } else {
      OutputFormattedDebugString("Not deactivating '%s' because it was already active", name);
    }
    m_mFonts.erase(entry);
  }
  return closing.DeactivateBatch(batch);
}

int FontActivationTracker::CloseFontsOneByOne(Closing& closing,
                                              const std::vector<std::uint32_t>& fontIDs) {
  int result = 0;
  for (std::size_t i = 0; i < fontIDs.size(); ++i) {
    const auto entry = m_mFonts.find(fontIDs[i]);
    if (entry == m_mFonts.end()) continue;
    const bool wasLast = DropReference(entry->second, closing.allClosed);
    if (!wasLast || !closing.deactivate) continue;
    // A copy: a progress window turns the host's run loop, and what it runs may come back here, and
    // open or close this very font.
    const SFontRecord font = entry->second;
    if (!font.wasAlreadyActive) {
      ProgressCallback(static_cast<int>(i) + 1, static_cast<int>(fontIDs.size()),
                       font.postscriptName, &closing.progress);
      if (!IsUnheld(fontIDs[i])) continue;
      const int code = DeactivateOne(font.fontInfo, font.activationContext);
      if (code == kErrorKestraneNotRunning) return code;
      if (code != 0) {
        result = code;
      } else if (closing.fontsDeactivated) {
        closing.fontsDeactivated->Append(font.fontInfo);
      }
    }
    if (IsUnheld(fontIDs[i])) m_mFonts.erase(fontIDs[i]);
  }
  return result;
}

bool FontActivationTracker::IsUnheld(std::uint32_t databaseID) const {
  const auto entry = m_mFonts.find(databaseID);
  return entry != m_mFonts.end() && entry->second.refCount == 0;
}

int FontActivationTracker::CloseAllFonts(bool bDeactivateClosedFonts, bool bShowProgress) {
  const OperationTrace trace(__func__);
  if (ConnectedFontManager() == nullptr) return trace.Return(kErrorKestraneNotRunning);
  if (m_mFonts.empty()) return trace.Return(0);
  GScopedLock lock(m_mutex);
  OutputFormattedDebugString("Calling FontManagerInterface::SetCountForLongOperations(%d)",
                             static_cast<int>(m_mFonts.size()));
  SetCountForLongOperations(m_mFonts.size());
  const auto progress =
      ShowFontProgress(m_pTarnInterface, bShowProgress, m_mFonts.size(),
                       "FontDeactivationWindowTitle", "FontDeactivationHeaderForQuit");
  std::vector<std::uint32_t> fontIDs;
  for (const auto& [id, font] : m_mFonts) fontIDs.push_back(id);
  Closing closing{bDeactivateClosedFonts, nullptr, {true, m_pTarnInterface, progress.get()}};
  int result = kErrorKestraneNotRunning;
  try {
    if (AskForStates(closing, fontIDs)) {
      result = closing.inOneBatch ? CloseEverythingInOneBatch(closing, fontIDs)
                                  : CloseEverythingOneByOne(closing, fontIDs);
    }
    EndActivationChange();
  } catch (...) {
    m_mFonts.clear();
    EndActivationChange();
    OutputFormattedDebugString("FontActivationTracker::CloseAllFonts() exiting abnormally");
    throw;
  }
  m_mFonts.clear();
  return trace.Return(result);
}

int FontActivationTracker::CloseEverythingInOneBatch(Closing& closing,
                                                     const std::vector<std::uint32_t>& fontIDs) {
  const FontRecordArray batch = MakeFontRecordArray();
  for (const std::uint32_t id : fontIDs) {
    SFontRecord& font = m_mFonts[id];
    if (!font.fontInfo) continue;
    if (font.isOpen && !font.wasAlreadyActive && closing.deactivate &&
        IsStillOurs(closing.states, id)) {
      batch->Append(font.fontInfo);
    }
    font.Release();
  }
  return closing.DeactivateBatch(batch);
}

int FontActivationTracker::CloseEverythingOneByOne(Closing& closing,
                                                   const std::vector<std::uint32_t>& fontIDs) {
  int result = 0;
  for (std::size_t i = 0; i < fontIDs.size(); ++i) {
    const auto entry = m_mFonts.find(fontIDs[i]);
    if (entry == m_mFonts.end() || !entry->second.isOpen) continue;
    const SFontRecord font = entry->second;  // see CloseFontsOneByOne
    if (!font.wasAlreadyActive && closing.deactivate) {
      const int code = DeactivateOne(font.fontInfo, font.activationContext);
      if (code == kErrorKestraneNotRunning) return code;
      if (code != 0) result = code;
    }
    if (const auto rest = m_mFonts.find(fontIDs[i]); rest != m_mFonts.end()) {
      rest->second.Release();
    }
    ProgressCallback(static_cast<int>(i) + 1, static_cast<int>(fontIDs.size()), font.postscriptName,
                     &closing.progress);
  }
  return result;
}
