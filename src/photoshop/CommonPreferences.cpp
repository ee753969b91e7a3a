#include "dialogs/TarnInterface.h"
#include "photoshop/CommonStartup.h"
#include "state/KestraneGlobals.h"

namespace CommonFunctionality {
namespace {

struct FlagDefault {
  const char* key;
  bool value;
};

struct NumberDefault {
  const char* key;
  long value;
};

constexpr FlagDefault kFlagDefaults[] = {
    {kEnablePluginPrefKey, true},
    {kEnableFaceprintPrefKey, true},
    {kSuppressHostAppDialogsPrefKey, true},
    {kSuppressPluginCoreDialogsPrefKey, false},
    {kPickBestMatchPrefKey, true},
    {kSupportEmbeddedObjectsPrefKey, true},
    {kCloseFontsOnHostAppQuitPrefKey, true},
    {kCloseFontsOnDocClosePrefKey, false},
    {kActivateEntireFamiliesPrefKey, false},
    {"DropDownSelection", false},
};

// Pixels.
constexpr NumberDefault kNumberDefaults[] = {{"CS5PanelWidth", 260}, {"CS5PanelHeight", 350}};

}  // namespace

bool InitializeCommonPreferences() {
  TarnInterface* tarn = KestraneGlobals::GetSharedTarnInterface();
  if (!tarn || tarn->DoPreferencesExist()) return false;
  for (const FlagDefault& entry : kFlagDefaults) tarn->SetPreferenceForKey(entry.key, entry.value);
  for (const NumberDefault& entry : kNumberDefaults) {
    tarn->SetLongPreferenceForKey(entry.key, entry.value);
  }
  return true;
}

}  // namespace CommonFunctionality
