// The message boxes of TarnInterface: a table of their texts' keys, and which row each one shows.
#include "dialogs/TarnInterface.h"
#include "dialogs/TextFormat.h"
#include "fontmanager/FontManagerInterface.h"

#define TARN_NO_PROTOTYPES
#include "sdk/Tarn.h"

namespace {

struct MessageBoxTexts {
  const char* titleKey;  // null for a box without a title
  const char* messageKey;
  unsigned style;
};

constexpr MessageBoxTexts kFontManagerNotFound{"FontManagerNotFoundHeader",
                                               "FontManagerNotFoundMessage", kTarnOneButton};
constexpr MessageBoxTexts kKestraneOldVersion{"KestraneOldVersionHeader",
                                              "KestraneOldVersionMessage", kTarnOneButton};
constexpr MessageBoxTexts kConnectionLost{"ConnectionLostHeader", "ConnectionLostMessage",
                                          kTarnOneButton};
constexpr MessageBoxTexts kGoOnlineError{"GoOnlineErrorHeader", "GoOnlineErrorMessage",
                                         kTarnOneButton};
constexpr MessageBoxTexts kMustBeOnline{"GoOnlineErrorHeader", "MustBeOnlineMessage",
                                        kTarnOneButton};
constexpr MessageBoxTexts kSomeFontsOffline{"SomeFontsOfflineHeader", "SomeFontsOfflineMessage",
                                            kTarnTwoButtons};
constexpr MessageBoxTexts kCannotExport{"CannotExportHeader", "CannotExportMessage",
                                        kTarnOneButton};
constexpr MessageBoxTexts kSetNameTooLong{"SetNameTooLongHeader", "SetNameTooLongMessage",
                                          kTarnOneButton};
constexpr MessageBoxTexts kVaultClosed{nullptr, "FontVaultClosedMsg", kTarnOneButton};
constexpr MessageBoxTexts kVaultNeedsUpgrade{"VaultNeedsUpgradeTitle", "VaultNeedsUpgradeMessage",
                                             kTarnOneButton};
constexpr MessageBoxTexts kSomeLayersMissingFonts{nullptr, "SomeLayersMissingFontsMessage",
                                                  kTarnOneButton};

// Boxes with a choice of texts: [0] for false, [1] for true.
constexpr MessageBoxTexts kNotLoggedIn[] = {
    {"NotLoggedInHeader", "NotLoggedInPluginDisabledMessage", kTarnOneButton},
    {"NotLoggedInHeader", "NotLoggedInOfferLoginMessage", kTarnTwoButtons}};
constexpr MessageBoxTexts kLoggedOff[] = {
    {"LoggedOffHeader", "LoggedOffPluginDisabledMessage", kTarnOneButton},
    {"LoggedOffHeader", "LoggedOffOfferLoginMessage", kTarnTwoButtons}};
constexpr MessageBoxTexts kFontsMissingForExport[] = {
    {"MissingFontsExportHeader", "MissingFontsExportMessage", kTarnTwoButtons},
    {"MissingFontsExportHeader", "MissingFontsOfflineExportMessage", kTarnTwoButtons}};

// Boxes bound to the edition: [0] server, [1] desktop.
constexpr MessageBoxTexts kCoreAgentMissing[] = {
    {"OMCoreAgentMissingHeader", "OMCoreAgentMissingMessage", kTarnTwoButtons},
    {"KDCoreAgentMissingHeader", "KDCoreAgentMissingMessage", kTarnTwoButtons}};
constexpr MessageBoxTexts kNoWorkgroups[] = {
    {"NoWorkgroupsHeader", "NoWorkgroupsMessage", kTarnOneButton},
    {"NoLibrariesHeader", "NoLibrariesMessage", kTarnOneButton}};
constexpr MessageBoxTexts kCoreAgentOutOfSync[] = {
    {"OMCoreAgentOutOfSyncHeader", "OMCoreAgentOutOfSyncMessage", kTarnOneButton},
    {"KDCoreAgentOutOfSyncHeader", "KDCoreAgentOutOfSyncMessage", kTarnOneButton}};

// Was the first button pressed?
bool Show(TarnInterface& tarn, const MessageBoxTexts& texts) {
  return tarn.ShowMessageBox(texts.titleKey, texts.messageKey, texts.style) == 1;
}

// Nothing is shown, and the answer is no, while there is no font manager to tell the edition.
bool ShowForEdition(TarnInterface& tarn, const MessageBoxTexts (&texts)[2]) {
  FontManagerInterface* fontManager = FontManagerInterface::GetFontManager();
  return fontManager && Show(tarn, texts[fontManager->RunningStandalone() ? 1 : 0]);
}

void ShowWithName(TarnInterface& tarn, const char* formatKey, const std::string& name) {
  const std::string message = FormatOneValue(tarn.LocalizedString(formatKey), "s@", name);
  tarn.ShowMessageBox(nullptr, message.c_str(), kTarnOneButton);
}

}  // namespace

void TarnInterface::ShowFontManagerNotFoundMessageBox() { Show(*this, kFontManagerNotFound); }

void TarnInterface::ShowKestraneOldVersionMessageBox() { Show(*this, kKestraneOldVersion); }

void TarnInterface::ShowConnectionLostMessageBox() { Show(*this, kConnectionLost); }

bool TarnInterface::ShowNotLoggedInMessageBox(bool offerLogin) {
  return Show(*this, kNotLoggedIn[offerLogin ? 1 : 0]);
}

bool TarnInterface::ShowLoggedOffMessageBox(bool offerLogin) {
  return Show(*this, kLoggedOff[offerLogin ? 1 : 0]);
}

bool TarnInterface::ShowCoreAgentMissingMessageBox() {
  return ShowForEdition(*this, kCoreAgentMissing);
}

void TarnInterface::ShowGoOnlineErrorMessageBox() { Show(*this, kGoOnlineError); }

void TarnInterface::ShowMustBeOnlineMessageBox() { Show(*this, kMustBeOnline); }

bool TarnInterface::ShowSomeFontsOfflineMessageBox() { return Show(*this, kSomeFontsOffline); }

void TarnInterface::ShowNoWorkgroupsMessageBox() { ShowForEdition(*this, kNoWorkgroups); }

void TarnInterface::ShowCannotExportMessageBox() { Show(*this, kCannotExport); }

bool TarnInterface::ShowFontsMissingForExportMessageBox(bool offline) {
  return Show(*this, kFontsMissingForExport[offline ? 1 : 0]);
}

void TarnInterface::ShowSetNameTooLongMessageBox() { Show(*this, kSetNameTooLong); }

void TarnInterface::ShowCoreAgentOutOfSyncMessageBox() {
  ShowForEdition(*this, kCoreAgentOutOfSync);
}

void TarnInterface::ShowVaultClosedMessage() { Show(*this, kVaultClosed); }

void TarnInterface::ShowVaultInUseMessage(const std::string& name) {
  ShowWithName(*this, "CouldNotOpenVaultInUseLaunchPrefs", name);
}

void TarnInterface::ShowVaultNotAvailableMessage(const std::string& name) {
  ShowWithName(*this, "CouldNotOpenVaultLaunchPrefs", name);
}

void TarnInterface::ShowVaultNeedsUpgradeMessage() { Show(*this, kVaultNeedsUpgrade); }

void TarnInterface::ShowSomeLayersMissingFontsMessage() { Show(*this, kSomeLayersMissingFonts); }
