#include "activation/Pipeline.h"

#include "activation/ConnectedFontManager.h"
#include "dialogs/TarnInterface.h"
#include "fonts/FontRecordOperations.h"
#include "fonts/MatchRules.h"
#include "fonts/RecordAccess.h"
#include "foundation/PluginLog.h"

namespace FaceprintSupport {
namespace {

// Where the fonts of one document go, and by which rules.
struct Sorting {
  const FontRecordArray& matchedFonts;
  const FontRecordArray& problemFonts;
  bool pickBestMatch;
  long workgroupID;
};

void Match(const FontRecord& font, const FontRecord& candidate, const Sorting& sorting) {
  font->Set(kFP_MatchedFontKey, candidate);
  sorting.matchedFonts->Append(font);
}

// Candidates are sorted best first, so the first perfect one is the best of them. All are tested:
// the log tells of each why it is another font.
FontRecord FirstPerfectMatch(const FontRecord& font, const FontRecordArray& candidates) {
  FontRecord first;
  for (std::size_t i = 0; i < candidates->Count(); ++i) {
    FontRecord candidate = candidates->DictionaryAt(i);
    if (IsPerfectMatch(font, candidate) && !first) first = std::move(candidate);
  }
  return first;
}

FontRecord FirstActive(const FontRecordArray& candidates) {
  for (std::size_t i = 0; i < candidates->Count(); ++i) {
    FontRecord candidate = candidates->DictionaryAt(i);
    if (KeyValueContains(candidate, kFP_IsActiveKey, "1")) return candidate;
  }
  return nullptr;
}

// The candidate that can be taken without asking anybody; null if there is none.
FontRecord ChooseCandidate(const FontRecord& font, const FontRecordArray& candidates,
                           bool pickBestMatch) {
  if (FontRecord perfect = FirstPerfectMatch(font, candidates)) return perfect;
  if (candidates->IsEmpty()) return nullptr;
  const bool nameOnly = IsPostScriptNameOnly(font);
  if (pickBestMatch || (nameOnly && candidates->Count() == 1)) return candidates->DictionaryAt(0);
  return nameOnly ? FirstActive(candidates) : nullptr;
}

void SortUnknownFont(const FontRecord& font, const Sorting& sorting) {
  const std::string name = RecordString(font, kFP_PostScriptNameKey);
  if (!FontManagerInterface::IsFontActive(name)) {
    sorting.problemFonts->Append(font);
    return;
  }
  OutputFormattedDebugString(
      "Font '%s' would be reported as missing, but appears to be active.  Must be of a type "
      "Kestrane does not support.",
      name.c_str());
}

int CategorizeOneFont(const FontRecord& font, const Sorting& sorting) {
  FontRecordArray candidates = MakeFontRecordArray();
  bool excludedRemote = false;
  const int result = AskConnectedFontManager([&](FontManagerInterface& fontManager) {
    return fontManager.GetFaceprintData(font, kPostScriptFontName, &excludedRemote,
                                        sorting.workgroupID, candidates);
  });
  if (result != 0) return result;
  static_cast<void>(AskFontManager([&](FontManagerInterface& fontManager) {
    return fontManager.RemoveRemoteFonts(candidates);
  }));
  if (FontManagerInterface::GetFontManager() == nullptr) return kErrorKestraneNotRunning;
  if (const FontRecord chosen = ChooseCandidate(font, candidates, sorting.pickBestMatch)) {
    Match(font, chosen, sorting);
  } else if (candidates->IsEmpty()) {
    SortUnknownFont(font, sorting);
  } else {
    static_cast<void>(AskFontManager([&](FontManagerInterface& fontManager) {
      return fontManager.AddWorkgroupNamesToFonts(candidates);
    }));
    font->Set(kFP_PossibleReplacementsKey, candidates);
    sorting.problemFonts->Append(font);
  }
  return 0;
}

int CategorizeFonts(const FontRecordArray& fonts, const Sorting& sorting) {
  int result = 0;
  const std::size_t count = fonts->Count();  // an output may be the same array
  for (std::size_t i = 0; i < count; ++i) {
    const FontRecord font = fonts->DictionaryAt(i);
    if (FindString(font, kFP_PostScriptNameKey) == nullptr) {
      OutputFormattedDebugString(
          "...Could not get fontName from entry %d in ProcessDocumentFontsForAutoActivation's "
          "allDocumentFonts array.",
          static_cast<int>(i));
      continue;
    }
    result = CategorizeOneFont(font, sorting);
    if (result == kErrorKestraneNotRunning) break;
  }
  return result;
}

int CountWithFaceprintData(const FontRecordArray& fonts) {
  int count = 0;
  for (std::size_t i = 0; i < CountOf(fonts); ++i) {
    if (FontRefContainsFaceprintData(fonts->DictionaryAt(i))) ++count;
  }
  return count;
}

}  // namespace

int ProcessDocumentFontsForAutoActivation(const FontRecordArray& allDocumentFonts,
                                          const FontRecordArray& matchedFonts,
                                          const FontRecordArray& problemFonts,
                                          bool faceprintEnabled, bool pickBestMatch,
                                          long workgroupID, TarnInterface* tarn) {
  const OperationTrace trace(__func__);
  if (ConnectedFontManager() == nullptr) return trace.Return(kErrorKestraneNotRunning);
  if (!allDocumentFonts || !matchedFonts || !problemFonts) return trace.Return(kErrorBadArgument);
  OutputFormattedDebugString("ProcessDocumentFontsForAutoActivation: faceprintEnabled=%d",
                             faceprintEnabled ? 1 : 0);
  const Sorting sorting{matchedFonts, problemFonts, pickBestMatch, workgroupID};
  int result = 0;
  try {
    result = CategorizeFonts(allDocumentFonts, sorting);
  } catch (...) {
    if (tarn != nullptr) tarn->HideProgress();
    OutputFormattedDebugString("Exiting ProcessDocumentFontsForAutoActivation via throw.");
    throw;
  }
  if (tarn != nullptr) tarn->HideProgress();
  OutputFormattedDebugString(
      "Exiting ProcessDocumentFontsForAutoActivation with %d matchedFonts (%d with Faceprint data) "
      "and %d problemFonts (%d with Faceprint data).",
      static_cast<int>(matchedFonts->Count()), CountWithFaceprintData(matchedFonts),
      static_cast<int>(problemFonts->Count()), CountWithFaceprintData(problemFonts));
  return trace.Return(result);
}

}  // namespace FaceprintSupport
