#include <variant>

#include "dialogs/TarnInterface.h"
#include "photoshop/CommonStartup.h"
#define TARN_NO_PROTOTYPES
#include "sdk/Tarn.h"
#include "state/KestraneGlobals.h"

namespace CommonFunctionality {
namespace {

struct Default {
  const char* key;
  std::variant<bool, long> value;
};

// Written in this order; the last one tells that all are there.
constexpr Default kDefaults[] = {
    {kEnablePluginPrefKey, true},
    {kEnableFaceprintPrefKey, true},
    {kSuppressHostAppDialogsPrefKey, true},
    {kSuppressPluginCoreDialogsPrefKey, false},
    {kPickBestMatchPrefKey, true},
    {kSupportEmbeddedObjectsPrefKey, true},
    {kCloseFontsOnHostAppQuitPrefKey, true},
    {kCloseFontsOnDocClosePrefKey, false},
    {kActivateEntireFamiliesPrefKey, false},
    {"CS5PanelWidth", 260L},  // pixels
    {"CS5PanelHeight", 350L},
    {kTarnLastDefaultPreference, false},
};

}  // namespace

bool InitializeCommonPreferences() {
  TarnInterface* tarn = KestraneGlobals::GetSharedTarnInterface();
  if (!tarn || tarn->DoPreferencesExist()) return false;
  for (const Default& entry : kDefaults) {
    if (const bool* flag = std::get_if<bool>(&entry.value)) {
      tarn->SetPreferenceForKey(entry.key, *flag);
    } else {
      tarn->SetLongPreferenceForKey(entry.key, std::get<long>(entry.value));
    }
  }
  return true;
}

}  // namespace CommonFunctionality
