#include "support/FakeDialogFramework.h"

#include <cstring>

#include "sdk/Tarn.h"

namespace {

FakeDialogFramework* gFramework = nullptr;

void Show(const std::string& what) {
  gFramework->shown.push_back(what);
  if (gFramework->onDialog) gFramework->onDialog();
}

bool IsVersionCompatible(const char* version) { return std::strcmp(version, kTarnVersion) == 0; }
std::int32_t InitializeFramework(PLDictionaryRef) { return 0; }
// The key itself stands for the text.
PLStringRef LocalizedString(const char* key) { return PLStringCreate(key, std::strlen(key)); }
std::int8_t GetPreference(const char* key) {
  const auto found = gFramework->flags.find(key);
  return found != gFramework->flags.end() && found->second ? 1 : 0;
}
void SetPreference(const char* key, std::int8_t value) { gFramework->flags[key] = value != 0; }
std::int32_t GetLong(const char* key) {
  const auto found = gFramework->numbers.find(key);
  return found == gFramework->numbers.end() ? 0 : found->second;
}
void SetLong(const char* key, std::int32_t value) { gFramework->numbers[key] = value; }
bool DoPreferencesExist() { return gFramework->preferencesExist; }
void ShowAboutBox() { Show("TarnShowAboutBox"); }
std::int32_t ShowMessageBox(const char*, const char* message, std::uint32_t) {
  Show(std::string("TarnShowMessageBox:") + (message ? message : ""));
  return 1;
}
void ShowResolveFonts(PLArrayRef) { Show("TarnShowResolveFonts"); }
void ShowRestrictedFonts(PLArrayRef) { Show("TarnShowRestrictedFonts"); }
void ShowProgress(PLDictionaryRef progress) {
  std::int64_t indeterminate = 0;
  PLDictionaryGetInteger(progress, kTarnIsIndeterminate, &indeterminate);
  Show(indeterminate != 0 ? "TarnShowProgress:indeterminate" : "TarnShowProgress");
}
void UpdateProgress(PLDictionaryRef) { Show("TarnUpdateProgress"); }
void HideProgress() { Show("TarnHideProgress"); }

template <typename Function>
void* Symbol(Function* function) {
  return reinterpret_cast<void*>(function);
}

}  // namespace

FakeDialogFramework::FakeDialogFramework(FakePlatform& platform, bool withFramework) {
  gFramework = this;
  const std::string plugin = "/host/Plug-ins/AutoActivation.plugin";
  FakeBundle& bundle = platform.bundles.AddLoaded(plugin, kPluginBundleID);
  bundle.values["CFBundleShortVersionString"] = "22.0.1";
  bundle.values["HostApp"] = "PhotoshopCC2021";
  if (!withFramework) return;
  platform.bundles
      .Add(plugin + "/Contents/Frameworks/VendrelPlugins.framework", "com.vendrel.plugins")
      .symbols = {{"TarnIsVersionCompatible", Symbol(IsVersionCompatible)},
                  {"TarnInitializeFramework", Symbol(InitializeFramework)},
                  {"TarnLocalizedString", Symbol(LocalizedString)},
                  {"TarnGetPreferenceForKey", Symbol(GetPreference)},
                  {"TarnSetPreferenceForKey", Symbol(SetPreference)},
                  {"TarnGetLongPreferenceForKey", Symbol(GetLong)},
                  {"TarnSetLongPreferenceForKey", Symbol(SetLong)},
                  {"TarnDoPreferencesExist", Symbol(DoPreferencesExist)},
                  {"TarnShowAboutBox", Symbol(ShowAboutBox)},
                  {"TarnShowMessageBox", Symbol(ShowMessageBox)},
                  {"TarnShowResolveFonts", Symbol(ShowResolveFonts)},
                  {"TarnShowRestrictedFonts", Symbol(ShowRestrictedFonts)},
                  {"TarnShowProgress", Symbol(ShowProgress)},
                  {"TarnUpdateProgress", Symbol(UpdateProgress)},
                  {"TarnHideProgress", Symbol(HideProgress)}};
}

FakeDialogFramework::~FakeDialogFramework() { gFramework = nullptr; }
