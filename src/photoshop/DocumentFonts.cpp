// The activation of a document's fonts, with its dialogs.
#include <algorithm>

#include "activation/DocumentFontGathering.h"
#include "activation/FontActivationTracker.h"
#include "activation/Pipeline.h"
#include "dialogs/TarnInterface.h"
#include "documents/AdobeByteScan.h"
#include "fontmanager/FontManagerInterface.h"
#include "fonts/FontMerging.h"
#include "foundation/PluginLog.h"
#include "photoshop/DocumentActivation.h"
#include "state/HostAppInterface.h"
#include "state/KestraneGlobals.h"

namespace {

constexpr int kActivationResult = -1;  // that of every way out
// The host's own replacement font: a document is not called incomplete for it.
constexpr const char* kIgnoredProblemPrefix = "MyriadPro";

// One activation, from the file's names to what the record keeps.
class Activation {
 public:
  Activation(TarnInterface& tarn, FontManagerInterface& fontManager, OneTrackedDocument& document)
      : mTarn(tarn),
        mFontManager(fontManager),
        mDocument(document),
        mUseFaceprint(tarn.GetEnabledFaceprint()),
        mPickBestMatch(tarn.GetPickBestMatch()) {}

  // False if the document names no font.
  bool Sort(const std::string& path, bool bOpeningNewDocument);
  void LetUserResolve();
  // False if fonts were refused: nothing is left to be done.
  bool Open(int& numFontsActivated);
  void Finish(bool bOpeningNewDocument);
  bool RecordIsAlive() const { return IsRecordAlive(&mDocument); }

 private:
  bool OpenThroughTracker(FontActivationTracker& tracker, int& numFontsActivated);

  TarnInterface& mTarn;
  FontManagerInterface& mFontManager;
  OneTrackedDocument& mDocument;
  const bool mUseFaceprint;
  const bool mPickBestMatch;
  const FontRecordArray mMatched = MakeFontRecordArray();
  const FontRecordArray mProblem = MakeFontRecordArray();
  bool mResolved = true;
  int mResult = 0;
  int mFailed = 0;
};

bool Activation::Sort(const std::string& path, bool bOpeningNewDocument) {
  const FontRecordArray slugFonts = MakeFontRecordArray();  // empty until slugs are read
  FontRecordArray documentFonts = MakeFontRecordArray();
  PSGetDocumentFonts(&documentFonts, path, bOpeningNewDocument);
  if (CountOf(slugFonts) == 0 && CountOf(documentFonts) == 0) return false;
  const FontRecordArray work =
      CountOf(documentFonts) > 0
          ? FaceprintSupport::CreateFaceprintSlugsWithFaceprintFontsAndDocumentFonts(slugFonts,
                                                                                     documentFonts)
          : slugFonts->Copy();
  CommonFunctionality::RemoveFontsThatHaveNoPossibleReplacement(work);
  FaceprintSupport::ProcessDocumentFontsForAutoActivation(
      work, mMatched, mProblem, mUseFaceprint, mPickBestMatch, mFontManager.GetCurrentWorkgroupID(),
      nullptr);
  CommonFunctionality::RemoveMatchingFonts(mProblem, kIgnoredProblemPrefix);
  return true;
}

void Activation::LetUserResolve() {
  if (CountOf(mProblem) == 0 || mTarn.GetPickBestMatch()) return;
  mTarn.ShowResolveFonts(mProblem);
  mResolved = FaceprintSupport::AllFontsResolved(mProblem, mMatched);
}

bool Activation::Open(int& numFontsActivated) {
  if (CountOf(mMatched) == 0) {
    mDocument.SetCanExportFontsForDocument(false);
    return true;
  }
  mDocument.SetCanExportFontsForDocument(mFontManager.CanExportFromWorkgroup(mMatched));
  FontActivationTracker* tracker = KestraneGlobals::GetSharedFontActivationTracker();
  return !tracker || OpenThroughTracker(*tracker, numFontsActivated);
}

bool Activation::OpenThroughTracker(FontActivationTracker& tracker, int& numFontsActivated) {
  const int alreadyActive = FaceprintSupport::CountActiveFonts(mMatched);
  const FontRecordArray activated = MakeFontRecordArray();
  const FontRecordArray restricted = MakeFontRecordArray();
  mResult = tracker.OpenFontsForIdentifier(mMatched, mDocument.GetIdentifier(), false, activated,
                                           restricted);
  if (CountOf(restricted) > 0) {
    mTarn.ShowRestrictedFonts(restricted);
    return false;
  }
  numFontsActivated = static_cast<int>(CountOf(activated));
  const int notActivated = static_cast<int>(CountOf(mMatched)) - alreadyActive - numFontsActivated;
  mFailed = std::max(notActivated, 0) + FaceprintSupport::CountMissingFonts(mProblem);
  return true;
}

void Activation::Finish(bool bOpeningNewDocument) {
  if (!bOpeningNewDocument) {
    HostAppInterface::GetHostAppInterface()->SetCanExportFontsForDocument(
        mDocument.GetCanExportFontsForDocument());
  }
  const bool nothingLeft = mResolved && mResult == 0 && !mPickBestMatch;
  mDocument.SetUnresolvedFonts(nothingLeft ? FontRecordArray() : mProblem);
  if (mFailed > 0 && mPickBestMatch) mTarn.ShowSomeLayersMissingFontsMessage();
}

}  // namespace

int ActivateFontsForDocument(bool bOpeningNewDocument, int& numFontsActivated,
                             const std::string& path, OneTrackedDocument* document) {
  const OperationTrace trace(__func__);
  numFontsActivated = 0;
  FontManagerInterface* fontManager = FontManagerInterface::GetFontManager();
  TarnInterface* tarn = KestraneGlobals::GetSharedTarnInterface();
  if (!document || !fontManager || !tarn || !FontManagerInterface::AutoActivationIsReady()) {
    return trace.Return(kActivationResult);
  }
  if (bOpeningNewDocument && document->GetIdentifier().empty()) {
    document->SetIdentifier(FontActivationTracker::GenerateUniqueIdentifier());
  }
  Activation activation(*tarn, *fontManager, *document);
  if (!activation.Sort(path, bOpeningNewDocument)) return trace.Return(kActivationResult);
  activation.LetUserResolve();
  if (!activation.RecordIsAlive()) return trace.Return(kActivationResult);
  if (!activation.Open(numFontsActivated) || !activation.RecordIsAlive())
    return trace.Return(kActivationResult);
  activation.Finish(bOpeningNewDocument);
  return trace.Return(kActivationResult);
}
