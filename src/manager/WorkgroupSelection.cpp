// Which workgroup the plug-in works in: the selected ID lives in the preferences.
#include <utility>

#include "dialogs/TarnInterface.h"
#include "fontmanager/FontManagerInterface.h"
#include "foundation/PluginLog.h"
#include "sdk/FontRecordKeys.h"
#include "state/KestraneGlobals.h"

namespace {

constexpr int kNoWorkgroupID = 0;

// Raised for the length of a selection, so that one does not start within another.
class InProgressGuard {
 public:
  explicit InProgressGuard(std::int16_t& flag) : mFlag(flag) { mFlag = 1; }
  ~InProgressGuard() { mFlag = 0; }
  InProgressGuard(const InProgressGuard&) = delete;
  InProgressGuard& operator=(const InProgressGuard&) = delete;

 private:
  std::int16_t& mFlag;
};

// Signed 32-bit numbers; nothing where there is none, or one beyond that.
std::optional<int> WorkgroupIDOf(const PropertyList::DictionaryRef& record) {
  if (!RecordHas(record, kFP_WorkgroupIDKey)) return std::nullopt;
  const std::int64_t id = RecordInteger(record, kFP_WorkgroupIDKey);
  if (!std::in_range<int>(id)) return std::nullopt;
  return static_cast<int>(id);
}

// The first workgroup that can be selected.
std::optional<int> FirstWorkgroupID(const PropertyList::ArrayRef& workgroups) {
  for (std::size_t i = 0; i < CountOf(workgroups); ++i) {
    const std::optional<int> id = WorkgroupIDOf(workgroups->DictionaryAt(i));
    if (id && *id != kNoWorkgroupID) return id;
  }
  return std::nullopt;
}

// Not through an instance: the font manager may be gone when a message box is.
void WriteCurrentWorkgroupID(int id) {
  if (TarnInterface* tarn = KestraneGlobals::GetSharedTarnInterface()) {
    tarn->SetCurrentWorkgroupID(id);
  }
}

// The first workgroup of this ID; null if there is none.
PropertyList::DictionaryRef FindWorkgroup(const PropertyList::ArrayRef& workgroups, long id) {
  for (std::size_t i = 0; i < CountOf(workgroups); ++i) {
    auto workgroup = workgroups->DictionaryAt(i);
    if (WorkgroupIDOf(workgroup) == id) return workgroup;
  }
  return nullptr;
}

PropertyList::DictionaryRef FindWorkgroupByName(const PropertyList::ArrayRef& workgroups,
                                                const std::string& name) {
  for (std::size_t i = 0; i < CountOf(workgroups); ++i) {
    auto workgroup = workgroups->DictionaryAt(i);
    const std::string* found = workgroup ? workgroup->GetString(kFP_WorkgroupNameKey) : nullptr;
    if (found && *found == name) return workgroup;
  }
  return nullptr;
}

// The user's own workgroups: no pseudo-entry, no special ones. Null if they can't be loaded.
PropertyList::ArrayRef LoadUserWorkgroups(FontManagerInterface& fontManager) {
  PropertyList::ArrayRef workgroups;
  if (fontManager.GetAllWorkgroupsForUser(workgroups, false, false, false) != 0) return nullptr;
  return workgroups;
}

}  // namespace

bool FontManagerInterface::AutoActivationIsReady() {
  const TarnInterface* tarn = KestraneGlobals::GetSharedTarnInterface();
  if (!tarn || !tarn->IsValid() || !tarn->GetEnabledAutoActivationPref()) return false;
  if (!KestraneGlobals::ArePluginServicesEnabled()) return false;
  FontManagerInterface* fontManager = GetFontManager();
  return fontManager && fontManager->IsLoggedIn();
}

bool FontManagerInterface::CheckSelectWorkgroup() {
  const OperationTrace trace(__func__);
  KestraneGlobals::SetUserHasWorkgroups(true);
  if (GetValidWorkgroupSelected()) return trace.Return(true);
  if (!KestraneGlobals::ArePluginServicesEnabled()) return trace.Return(false);
  const TarnInterface* tarn = KestraneGlobals::GetSharedTarnInterface();
  if (!tarn || !tarn->GetEnabledAutoActivationPref()) return trace.Return(false);
  FontManagerInterface* fontManager = GetFontManager();
  if (!fontManager) return trace.Return(false);
  if (!fontManager->IsLoggedIn() && !fontManager->RunningStandalone()) return trace.Return(false);

  if (sSelectWorkgroupInProgress) {
    OutputFormattedDebugString(
        "*** UH-OH, can't display Select Workgroup dialog, because it's already being displayed!");
  } else {
    fontManager->HandleSelectWorkgroup();
  }
  return trace.Return(KestraneGlobals::ArePluginServicesEnabled());
}

int FontManagerInterface::SetDefaultWorkgroupID(int id) {
  WriteCurrentWorkgroupID(id);
  return 0;
}

int FontManagerInterface::SetDefaultWorkgroupName(const std::optional<std::string>& name) {
  if (!name) return kErrorGeneral;
  int id = kNoWorkgroupID;
  const int error = GetWorkgroupID(name, &id);
  return error != 0 ? error : SetDefaultWorkgroupID(id);
}

std::optional<std::string> FontManagerInterface::GetDefaultWorkgroupName() {
  return GetWorkgroupNameFromID(GetCurrentWorkgroupID());
}

int FontManagerInterface::GetWorkgroupID(const std::optional<std::string>& name, int* outID) {
  if (!name || !outID) return kErrorGeneral;
  PropertyList::ArrayRef workgroups;
  if (GetAllWorkgroupsForUser(workgroups, false, true, false) != 0) return kErrorGeneral;
  if (CanActivateFromAllWorkgroups() && *name == AllWorkgroupsName()) {
    *outID = kAllWorkgroupsID;
    return 0;
  }
  const std::optional<int> id = WorkgroupIDOf(FindWorkgroupByName(workgroups, *name));
  if (!id) return kErrorGeneral;
  *outID = *id;
  return 0;
}

std::string FontManagerInterface::AllWorkgroupsName() {
  const char* key = RunningStandalone() ? "All Libraries" : "All Workgroups";
  const TarnInterface* tarn = KestraneGlobals::GetSharedTarnInterface();
  return tarn ? tarn->LocalizedString(key) : key;
}

std::optional<std::string> FontManagerInterface::GetWorkgroupNameFromID(long id) {
  PropertyList::ArrayRef workgroups;
  if (GetAllWorkgroupsForUser(workgroups, true, true, false) != 0) return std::nullopt;
  return FindWorkgroupIDGetName(id, workgroups);
}

std::optional<std::string> FontManagerInterface::FindWorkgroupIDGetName(
    long id, const PropertyList::ArrayRef& workgroups) {
  const auto workgroup = FindWorkgroup(workgroups, id);
  const std::string* name = workgroup ? workgroup->GetString(kFP_WorkgroupNameKey) : nullptr;
  if (!name) return std::nullopt;
  return *name;
}

int FontManagerInterface::AddWorkgroupNamesToFonts(const FontRecordArray& fonts) {
  PropertyList::ArrayRef workgroups;
  if (GetAllWorkgroupsForUser(workgroups, false, true, false) != 0) return kErrorGeneral;
  int result = kErrorGeneral;
  for (std::size_t i = 0; i < CountOf(fonts); ++i) {
    const FontRecord font = fonts->DictionaryAt(i);
    const std::optional<int> id = WorkgroupIDOf(font);
    if (!id) continue;
    if (const auto name = FindWorkgroupIDGetName(*id, workgroups)) {
      font->Set(kFP_WorkgroupNameKey, *name);
      result = 0;
    }
  }
  return result;
}

bool FontManagerInterface::IsValidWorkgroupForUser(int id) {
  if (id == kNoWorkgroupID) return false;
  if (IsAllWorkgroups(id)) return CanActivateFromAllWorkgroups();
  const auto name = GetWorkgroupNameFromID(id);
  return name && FindWorkgroupByName(LoadUserWorkgroups(*this), *name);
}

bool FontManagerInterface::UserHasAtLeastOneWorkgroup() {
  return CountOf(LoadUserWorkgroups(*this)) > 0;
}

int FontManagerInterface::GetCurrentWorkgroupID() {
  const TarnInterface* tarn = KestraneGlobals::GetSharedTarnInterface();
  return tarn ? tarn->GetCurrentWorkgroupID() : kNoWorkgroupID;
}

bool FontManagerInterface::IsAllWorkgroupsSelected() {
  return IsAllWorkgroups(GetCurrentWorkgroupID());
}

void FontManagerInterface::InitializeDefaultWorkgroup() {
  const OperationTrace trace(__func__);
  if (!IsRunning()) {
    OutputFormattedDebugString("Exiting because FontManager is not running.");
    return;
  }
  const int currentID = GetCurrentWorkgroupID();
  if (IsValidWorkgroupForUser(currentID)) {
    SetDefaultWorkgroupID(currentID);
    if (KestraneGlobals::GetUserHasWorkgroups()) SetValidWorkgroupSelected(true);
    return;
  }
  if (CanActivateFromAllWorkgroups()) {
    SetDefaultWorkgroupID(kAllWorkgroupsID);
    SetValidWorkgroupSelected(true);
    return;
  }
  const PropertyList::ArrayRef workgroups = LoadUserWorkgroups(*this);
  const std::optional<int> only =
      CountOf(workgroups) == 1 ? FirstWorkgroupID(workgroups) : std::nullopt;
  if (only) SetDefaultWorkgroupID(*only);
  SetValidWorkgroupSelected(only.has_value());
}

void FontManagerInterface::HandleSelectWorkgroup() {
  const OperationTrace trace(__func__);
  if (sSelectWorkgroupInProgress) {
    OutputFormattedDebugString(
        "*** FontManagerInterface::HandleSelectWorkgroup -- OOPS, Select Workgroup dialog is "
        "already being displayed!");
    return;
  }
  const bool wasValid = GetValidWorkgroupSelected();
  const InProgressGuard guard(sSelectWorkgroupInProgress);
  if (!IsFontManagerConnected()) return;
  const TarnInterface* tarn = KestraneGlobals::GetSharedTarnInterface();
  if (!tarn || !tarn->IsValid()) {
    SetDefaultWorkgroupID(kNoWorkgroupID);
    return;
  }
  const PropertyList::ArrayRef workgroups = LoadUserWorkgroups(*this);
  if (const std::optional<int> firstID = FirstWorkgroupID(workgroups)) {
    ChooseWorkgroup(workgroups, *firstID);
  } else {
    GiveUpWorkgroups(wasValid);
  }
}

void FontManagerInterface::ChooseWorkgroup(const PropertyList::ArrayRef& workgroups, int firstID) {
  int chosenID = GetCurrentWorkgroupID();
  if (chosenID == kNoWorkgroupID || !FindWorkgroup(workgroups, chosenID)) {
    chosenID = CanActivateFromAllWorkgroups() ? kAllWorkgroupsID : firstID;
  }
  KestraneGlobals::SetUserHasWorkgroups(true);
  SetValidWorkgroupSelected(true);
  SetDefaultWorkgroupID(chosenID);
}

void FontManagerInterface::GiveUpWorkgroups(bool wasValid) {
  FontManagerInterface* fontManager = GetFontManager();
  if (fontManager && !fontManager->RunningStandalone()) {
    OutputFormattedDebugString("HandleSelectWorkgroup:  Setting PluginServicesEnabled false");
    KestraneGlobals::SetUserHasWorkgroups(false);
    if (wasValid) {
      SetValidWorkgroupSelected(false);
      KestraneGlobals::GetSharedTarnInterface()->ShowNoWorkgroupsMessageBox();
    }
  }
  WriteCurrentWorkgroupID(kNoWorkgroupID);
}
