// The border of the framework: C arguments to our types and back, nothing else.
#include <string>
#include <string_view>

#include "frameworks/Wall.h"
#include "frameworks/plugins/Dialogs.h"
#include "frameworks/plugins/HostDetails.h"
#include "frameworks/plugins/PreferenceStore.h"
#include "frameworks/plugins/ProgressBar.h"
#include "frameworks/plugins/Terminal.h"
#include "frameworks/plugins/Texts.h"
#include "sdk/Tarn.h"

namespace {

std::string_view TextIn(const char* text) { return text ? text : ""; }

PLStringRef TextOut(const std::string& text) { return PLStringCreate(text.data(), text.size()); }

}  // namespace

bool TarnIsVersionCompatible(const char* version) { return TextIn(version) == kTarnVersion; }

int32_t TarnInitializeFramework(PLDictionaryRef hostDetails) {
  return BehindWall<int32_t>(-1, [&] {
    HostDetails::Shared().Replace(PropertyList::FromHandle(hostDetails));
    return 0;
  });
}

void TarnSetHostDetails(PLDictionaryRef details) {
  BehindWall([&] { HostDetails::Shared().Merge(PropertyList::FromHandle(details)); });
}

void TarnSetIsOnline(bool isOnline) {
  BehindWall([&] { HostDetails::Shared().SetIsOnline(isOnline); });
}

PLStringRef TarnLocalizedString(const char* key) {
  return BehindWall<PLStringRef>(nullptr,
                                 [&] { return key ? TextOut(LocalizedText(key)) : nullptr; });
}

int8_t TarnGetPreferenceForKey(const char* key) {
  return BehindWall<int8_t>(
      0, [&]() -> int8_t { return PreferenceStore::Shared().GetNumber(key) != 0 ? 1 : 0; });
}

void TarnSetPreferenceForKey(const char* key, int8_t value) {
  BehindWall([&] { PreferenceStore::Shared().Set(key, value != 0 ? "1" : "0"); });
}

int32_t TarnGetLongPreferenceForKey(const char* key) {
  return BehindWall<int32_t>(0, [&] { return PreferenceStore::Shared().GetNumber(key); });
}

void TarnSetLongPreferenceForKey(const char* key, int32_t value) {
  BehindWall([&] { PreferenceStore::Shared().Set(key, std::to_string(value)); });
}

PLStringRef TarnGetStringPreferenceForKey(const char* key) {
  return BehindWall<PLStringRef>(nullptr, [&]() -> PLStringRef {
    const auto text = PreferenceStore::Shared().Get(key);
    return text ? TextOut(*text) : nullptr;
  });
}

void TarnSetStringPreferenceForKey(const char* key, const char* value) {
  BehindWall([&] { PreferenceStore::Shared().Set(key, std::string(TextIn(value))); });
}

bool TarnDoPreferencesExist(void) {
  return BehindWall(
      false, [] { return PreferenceStore::Shared().Get(kTarnLastDefaultPreference).has_value(); });
}

void TarnShowAboutBox(void) {
  BehindWall([] { ShowAbout(Terminal::Standard()); });
}

int32_t TarnShowMessageBox(const char* titleKey, const char* message, uint32_t style) {
  return BehindWall<int32_t>(kSecondButton, [&] {
    return ShowMessage(Terminal::Standard(), TextIn(titleKey), TextIn(message),
                       style == kTarnTwoButtons);
  });
}

void TarnShowRestrictedFonts(PLArrayRef fonts) {
  BehindWall([&] { ShowRestricted(Terminal::Standard(), PropertyList::FromHandle(fonts)); });
}

void TarnShowResolveFonts(PLArrayRef fonts) {
  BehindWall([&] { ResolveFonts(Terminal::Standard(), PropertyList::FromHandle(fonts)); });
}

void TarnShowProgress(PLDictionaryRef progress) {
  BehindWall([&] { ProgressBar::Standard().Show(PropertyList::FromHandle(progress)); });
}

void TarnUpdateProgress(PLDictionaryRef progress) {
  BehindWall([&] { ProgressBar::Standard().Update(PropertyList::FromHandle(progress)); });
}

void TarnHideProgress(void) {
  BehindWall([] { ProgressBar::Standard().Hide(); });
}
