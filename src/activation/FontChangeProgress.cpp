#include "activation/FontChangeProgress.h"

#include "dialogs/TarnInterface.h"
#include "sdk/Tarn.h"

void ProgressCallback(int current, int total, const std::string& name, void* context) {
  const auto* shown = static_cast<const ProgressCallbackContext*>(context);
  if (shown == nullptr || !shown->showProgress || shown->tarn == nullptr ||
      shown->progress == nullptr) {
    return;
  }
  shown->progress->Dictionary().SetIntForKey(kTarnMaxProgress, total);
  shown->progress->SetCurrentProgress(current);
  shown->progress->SetCurrentPostscriptName(name);
  shown->tarn->UpdateProgress(shown->progress->Dictionary());
}

std::unique_ptr<FontProgressProperties> ShowFontProgress(TarnInterface* tarn, bool wanted,
                                                         std::size_t maximum, const char* titleKey,
                                                         const char* headerFormatKey) {
  if (!wanted || tarn == nullptr) return nullptr;
  auto progress = std::make_unique<FontProgressProperties>(static_cast<int>(maximum),
                                                           tarn->LocalizedString(titleKey),
                                                           tarn->LocalizedString(headerFormatKey));
  tarn->ShowProgress(progress->Dictionary());
  return progress;
}
