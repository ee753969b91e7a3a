#include <memory>
#include <string>

#include "dialogs/ProgressProperties.h"
#include "dialogs/TarnInterface.h"
#include "documents/AdobeByteScan.h"
#include "foundation/PluginLog.h"
#include "foundation/WallClock.h"
#include "photoshop/AutoSuite.h"
#include "photoshop/HostText.h"
#include "photoshop/PhotoshopFontUtils.h"
#include "propertylist/MacRoman.h"
#include "sdk/Tarn.h"
#include "state/KestraneGlobals.h"

namespace PhotoshopFontUtils {
namespace {

constexpr int kProgressMaximum = 100;

// The window that spans a close and the open that follows it. Not freed by a static destructor:
// its dictionary may be on the dialog framework's screen.
std::unique_ptr<FontProgressProperties>& pProgressProperties() {
  static auto& properties = *new std::unique_ptr<FontProgressProperties>;
  return properties;
}

void ShowIndeterminateProgress() {
  TarnInterface* tarn = KestraneGlobals::GetSharedTarnInterface();
  auto& properties = pProgressProperties();
  if (!tarn || properties) return;
  properties = std::make_unique<FontProgressProperties>(
      kProgressMaximum, tarn->LocalizedString("FontActivationWindowTitle"),
      tarn->LocalizedString("FontActivationHeaderFormat"));
  properties->Dictionary().SetBoolForKey(kTarnIsIndeterminate, true);
  tarn->ShowProgress(properties->Dictionary());
  tarn->UpdateProgress(properties->Dictionary());
  OutputFormattedDebugString("Indeterminate progress dialog created at %d",
                             static_cast<int>(WallClock::Now()));
}

void HideIndeterminateProgress() {
  auto& properties = pProgressProperties();
  if (!properties) return;
  TarnInterface* tarn = KestraneGlobals::GetSharedTarnInterface();
  if (!tarn) return;
  tarn->HideProgress();
  properties.reset();
  OutputFormattedDebugString("Indeterminate progress dialog destroyed at %d",
                             static_cast<int>(WallClock::Now()));
}

SPErr PlaySilently(DescriptorEventID event, PIActionDescriptor parameters) {
  sPSActionDescriptor.AcquireSuite(true);  // which frees the answer
  OwnedDescriptor answer;
  return sPSActionControl->Play(answer.Out(), event, parameters, kPSDialogSilent);
}

SPErr PlayOpenOfFile(const std::string& utf8Path) {
  OwnedAlias alias;
  if (const SPErr error = sPSAlias->NewAlias(utf8Path.c_str(), alias.Out())) return error;
  OwnedDescriptor parameters;
  if (const SPErr error = sPSActionDescriptor->Make(parameters.Out())) return error;
  if (const SPErr error = sPSActionDescriptor->PutAlias(parameters.Get(), keyNull, alias.Get())) {
    return error;
  }
  return PlaySilently(eventOpen, parameters.Get());
}

SPErr PlayByName(const char* eventName) {
  DescriptorTypeID event = 0;
  if (const SPErr error = sPSActionControl->StringIDToTypeID(eventName, &event)) return error;
  return PlaySilently(event, nullptr);
}

}  // namespace

OSErr PlayeventClose() {
  const OperationTrace trace(__func__);
  ShowIndeterminateProgress();
  OwnedDescriptor parameters;
  if (const SPErr error = sPSActionDescriptor->Make(parameters.Out()))
    return trace.Return(ShortError(error));
  if (const SPErr error =
          sPSActionDescriptor->PutEnumerated(parameters.Get(), keySaving, typeYesNo, enumNo)) {
    return trace.Return(ShortError(error));
  }
  return trace.Return(ShortError(PlaySilently(eventClose, parameters.Get())));
}

OSErr PlayeventOpen(const std::string& path) {
  const OperationTrace trace(__func__);
  struct ProgressEnd {
    ~ProgressEnd() { HideIndeterminateProgress(); }
  } progressEnd;
  // The host's alias suite takes paths of the file system, which are UTF-8 here.
  return trace.Return(ShortError(PlayOpenOfFile(MacRomanToUtf8(path))));
}

OSErr PlayreplaceSubstitutes() {
  const OperationTrace trace(__func__);
  if (!GetReplaceSubstitutes()) return trace.Return<OSErr>(0);
  PlayByName("updateLayouts");
  return trace.Return(ShortError(PlayByName("replaceSubstitutes")));
}

bool CanReplaceSubstitutes() { return true; }

}  // namespace PhotoshopFontUtils
