#include "support/FakeTarn.h"

#include <algorithm>

#include "support/FakePlatform.h"

#define TARN_NO_PROTOTYPES
#include "sdk/Tarn.h"

namespace {

FakeTarn* sCurrent = nullptr;

FakeTarn& Tarn() { return FakeTarn::Current(); }

void Show(const std::string& what) {
  Tarn().shown.push_back(what);
  if (Tarn().onDialog) Tarn().onDialog();
}

template <typename Value>
Value Stored(const std::map<std::string, Value>& values, const char* key) {
  const auto found = values.find(key);
  return found == values.end() ? Value() : found->second;
}

PLStringRef MakeString(const std::string& text) { return PLStringCreate(text.data(), text.size()); }

bool TarnIsVersionCompatible(const char* version) {
  return Tarn().isCompatible && std::string(version) == kTarnVersion;
}

void TarnSetHostDetails(PLDictionaryRef details) {
  for (std::size_t i = 0; i < PLDictionaryGetCount(details); ++i) {
    const char* key = PLDictionaryGetKeyAt(details, i);
    const char* text = PLDictionaryGetString(details, key, nullptr);
    if (text) Tarn().hostDetails[key] = text;
  }
}

std::int32_t TarnInitializeFramework(PLDictionaryRef details) {
  TarnSetHostDetails(details);
  return Tarn().startCode;
}

PLStringRef TarnLocalizedString(const char* key) {
  if (Tarn().unknownTexts.contains(key)) return nullptr;
  const auto found = Tarn().texts.find(key);
  return MakeString(found == Tarn().texts.end() ? key : found->second);
}

std::int8_t TarnGetPreferenceForKey(const char* key) {
  return Stored(Tarn().preferences, key) ? 1 : 0;
}

void TarnSetPreferenceForKey(const char* key, std::int8_t value) {
  Tarn().preferences[key] = value != 0;
}

std::int32_t TarnGetLongPreferenceForKey(const char* key) {
  return static_cast<std::int32_t>(Stored(Tarn().longPreferences, key));
}

void TarnSetLongPreferenceForKey(const char* key, std::int32_t value) {
  Tarn().longPreferences[key] = value;
}

PLStringRef TarnGetStringPreferenceForKey(const char* key) {
  const auto found = Tarn().stringPreferences.find(key);
  return found == Tarn().stringPreferences.end() ? nullptr : MakeString(found->second);
}

void TarnSetStringPreferenceForKey(const char* key, const char* value) {
  Tarn().stringPreferences[key] = value;
}

bool TarnDoPreferencesExist() { return Tarn().preferences.contains(kTarnLastDefaultPreference); }

void TarnShowAboutBox() { Show("TarnShowAboutBox"); }

std::int32_t TarnShowMessageBox(const char* title, const char* message, std::uint32_t style) {
  Tarn().messages.push_back({title ? title : "-", message ? message : "", style});
  Show("TarnShowMessageBox:" + Tarn().messages.back().message);
  return Tarn().button;
}

void TarnShowResolveFonts(PLArrayRef) { Show("TarnShowResolveFonts"); }
void TarnShowRestrictedFonts(PLArrayRef) { Show("TarnShowRestrictedFonts"); }

void TarnShowProgress(PLDictionaryRef progress) {
  std::int64_t indeterminate = 0;
  PLDictionaryGetInteger(progress, kTarnIsIndeterminate, &indeterminate);
  Show(indeterminate != 0 ? "TarnShowProgress:indeterminate" : "TarnShowProgress");
}

void TarnUpdateProgress(PLDictionaryRef) { Show("TarnUpdateProgress"); }
void TarnHideProgress() { Show("TarnHideProgress"); }
void TarnSetIsOnline(bool isOnline) { Tarn().onlineStates.push_back(isOnline); }

std::vector<std::string> Take(std::vector<FakeTarn::Message>& messages,
                              std::string FakeTarn::Message::*field) {
  std::vector<std::string> taken;
  for (const auto& message : messages) taken.push_back(message.*field);
  messages.clear();
  return taken;
}

}  // namespace

FakeTarn::FakeTarn() { sCurrent = this; }
FakeTarn::~FakeTarn() { sCurrent = nullptr; }
FakeTarn& FakeTarn::Current() { return *sCurrent; }

void FakeTarn::Install(FakePlatform& platform) {
  InstallIn(platform, platform.bundles.systemFrameworksPath);
}

FakeBundle& FakeTarn::InstallIn(FakePlatform& platform, const std::string& folder) {
  FakeBundle& bundle =
      platform.bundles.Add(folder + "/VendrelPlugins.framework", "com.vendrel.VendrelPlugins");
#define FAKE_ENTRY_POINT(name) bundle.symbols[#name] = reinterpret_cast<void*>(&name);
  FAKE_ENTRY_POINT(TarnIsVersionCompatible)
  FAKE_ENTRY_POINT(TarnInitializeFramework)
  FAKE_ENTRY_POINT(TarnSetHostDetails)
  FAKE_ENTRY_POINT(TarnLocalizedString)
  FAKE_ENTRY_POINT(TarnGetPreferenceForKey)
  FAKE_ENTRY_POINT(TarnSetPreferenceForKey)
  FAKE_ENTRY_POINT(TarnGetLongPreferenceForKey)
  FAKE_ENTRY_POINT(TarnSetLongPreferenceForKey)
  FAKE_ENTRY_POINT(TarnGetStringPreferenceForKey)
  FAKE_ENTRY_POINT(TarnSetStringPreferenceForKey)
  FAKE_ENTRY_POINT(TarnDoPreferencesExist)
  FAKE_ENTRY_POINT(TarnShowAboutBox)
  FAKE_ENTRY_POINT(TarnShowMessageBox)
  FAKE_ENTRY_POINT(TarnShowResolveFonts)
  FAKE_ENTRY_POINT(TarnShowRestrictedFonts)
  FAKE_ENTRY_POINT(TarnShowProgress)
  FAKE_ENTRY_POINT(TarnUpdateProgress)
  FAKE_ENTRY_POINT(TarnHideProgress)
  FAKE_ENTRY_POINT(TarnSetIsOnline)
#undef FAKE_ENTRY_POINT
  return bundle;
}

std::vector<std::string> FakeTarn::TakeTitles() { return Take(messages, &Message::title); }
std::vector<std::string> FakeTarn::TakeMessages() { return Take(messages, &Message::message); }

std::ptrdiff_t FakeTarn::CountShown(const std::string& what) const {
  return std::ranges::count(shown, what);
}
