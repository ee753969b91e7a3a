// The dialog framework: texts, preferences that processes share, dialogs with and without a
// terminal.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <pty.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>
#include <functional>

#include "frameworks/FrameworkLibraries.h"
#include "propertylist/FontRecord.h"
#include "sdk/FontRecordKeys.h"
#include "support/ScratchHome.h"

namespace {

namespace fs = std::filesystem;

class Dialogs : public testing::Test {
 protected:
  std::string Text(const char* key) {
    return PropertyList::AdoptString(tarn.TarnLocalizedString(key));
  }
  std::string File() const { return home.Path() + "/.config/Vendrel/preferences.conf"; }

  ScratchHome home;
  DialogTable tarn;
};

// The exit code of `body` in a process of its own.
int InChild(const std::function<int()>& body) {
  const pid_t child = fork();
  if (child == 0) _exit(body());
  int status = 0;
  waitpid(child, &status, 0);
  return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
}

// The same on a terminal where a person types `input`.
int OnTerminal(const std::string& input, const std::function<int()>& body, std::string* screen) {
  int terminal = -1;
  const pid_t child = forkpty(&terminal, nullptr, nullptr, nullptr);
  if (child == 0) _exit(body());
  EXPECT_EQ(write(terminal, input.data(), input.size()), static_cast<ssize_t>(input.size()));
  char buffer[4096];
  for (ssize_t count; (count = read(terminal, buffer, sizeof(buffer))) > 0;) {
    if (screen != nullptr) screen->append(buffer, static_cast<std::size_t>(count));
  }
  int status = 0;
  waitpid(child, &status, 0);
  close(terminal);
  return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
}

FontRecord Font(const char* name) {
  const FontRecord font = MakeFontRecord();
  font->Set(kFP_PostScriptNameKey, name);
  return font;
}

}  // namespace

TEST_F(Dialogs, ServesAllButTheDesktopDialogs) {
  EXPECT_EQ(tarn.TarnAskForOneString, nullptr);
  EXPECT_EQ(tarn.TarnShowPreferences, nullptr);
  EXPECT_EQ(tarn.TarnShowSelectWorkgroup, nullptr);
  EXPECT_EQ(tarn.TarnShowCommandBox, nullptr);
  EXPECT_EQ(tarn.TarnShowMissingFonts, nullptr);
  EXPECT_EQ(tarn.TarnForceSelectWorkgroupWindowToFront, nullptr);
  int served = 0;
#define COUNT(result, name, arguments) served += tarn.name != nullptr ? 1 : 0;
  TARN_ENTRY_POINTS(COUNT)
#undef COUNT
  EXPECT_EQ(served, 19);
  EXPECT_TRUE(tarn.TarnIsVersionCompatible("1.0"));
  EXPECT_FALSE(tarn.TarnIsVersionCompatible("1.1"));
  EXPECT_FALSE(tarn.TarnIsVersionCompatible(nullptr));
  EXPECT_EQ(tarn.TarnInitializeFramework(nullptr), 0);
}

TEST_F(Dialogs, KnowsEveryTextOfTheMessageBoxes) {
  for (const char* key : {
           "FontManagerNotFoundHeader",
           "FontManagerNotFoundMessage",
           "KestraneOldVersionHeader",
           "KestraneOldVersionMessage",
           "ConnectionLostHeader",
           "ConnectionLostMessage",
           "NotLoggedInHeader",
           "NotLoggedInOfferLoginMessage",
           "NotLoggedInPluginDisabledMessage",
           "LoggedOffHeader",
           "LoggedOffOfferLoginMessage",
           "LoggedOffPluginDisabledMessage",
           "KDCoreAgentMissingHeader",
           "OMCoreAgentMissingHeader",
           "KDCoreAgentMissingMessage",
           "OMCoreAgentMissingMessage",
           "GoOnlineErrorHeader",
           "GoOnlineErrorMessage",
           "MustBeOnlineMessage",
           "SomeFontsOfflineHeader",
           "SomeFontsOfflineMessage",
           "NoWorkgroupsHeader",
           "NoLibrariesHeader",
           "NoWorkgroupsMessage",
           "NoLibrariesMessage",
           "CannotExportHeader",
           "CannotExportMessage",
           "MissingFontsExportHeader",
           "MissingFontsOfflineExportMessage",
           "MissingFontsExportMessage",
           "SetNameTooLongHeader",
           "SetNameTooLongMessage",
           "OMCoreAgentOutOfSyncHeader",
           "KDCoreAgentOutOfSyncHeader",
           "OMCoreAgentOutOfSyncMessage",
           "KDCoreAgentOutOfSyncMessage",
           "FontVaultClosedMsg",
           "CouldNotOpenVaultInUseLaunchPrefs",
           "CouldNotOpenVaultLaunchPrefs",
           "VaultNeedsUpgradeTitle",
           "VaultNeedsUpgradeMessage",
           "SomeLayersMissingFontsMessage",
           "CommandNotAvailableHeader",
           "CreateDocSetNotAvailableMessage",
           "PhotoshopMissingFonts",
           "FontActivationWindowTitle",
           "FontActivationHeaderFormat",
           "FontDeactivationWindowTitle",
           "FontDeactivationHeaderForDoc",
           "FontDeactivationHeaderForQuit",
           "AllServerFontsWorkgroup",
           "ServerBasedPersonalWorkgroup",
           "LocalPersonalWorkgroup",
           "SystemWorkgroup",
           "MasterGoogleFontsLibrary",
       }) {
    EXPECT_NE(Text(key), key);
    EXPECT_NE(Text(key), "") << key;
  }
  EXPECT_EQ(Text("All Libraries"), "All Libraries");
  EXPECT_EQ(Text("Font Library"), "Font Library");
  EXPECT_EQ(Text("no such key"), "no such key");
  EXPECT_EQ(tarn.TarnLocalizedString(nullptr), nullptr);
}

TEST_F(Dialogs, FillsPlaceholdersFromTheHostDetails) {
  const char* const key = "[FONT_MANAGER_MODIFIER] Auto-Activation Plug-in for [host app]";
  const auto start = PropertyList::Dictionary::Create();
  start->Set(kTarnHostApp, "Easel");
  tarn.TarnInitializeFramework(start.Get());
  EXPECT_EQ(Text(key), "Vendrel Auto-Activation Plug-in for Easel");
  const auto later = PropertyList::Dictionary::Create();
  later->Set(kTarnFontManager, "Typeroom");
  tarn.TarnSetHostDetails(later.Get());
  EXPECT_EQ(Text(key), "Typeroom Auto-Activation Plug-in for Easel");
}

TEST_F(Dialogs, KeepsPreferencesForTheNextProcess) {
  EXPECT_FALSE(tarn.TarnDoPreferencesExist());
  EXPECT_EQ(tarn.TarnGetStringPreferenceForKey("LastAddress"), nullptr);
  const std::string address = " a=b;#\\ \n\xC3\xA9[x]";
  ASSERT_EQ(InChild([&] {
              tarn.TarnSetPreferenceForKey("EnablePlugin", 1);
              tarn.TarnSetLongPreferenceForKey("RMF5", -2147483647 - 1);
              tarn.TarnSetStringPreferenceForKey("LastAddress", address.c_str());
              return 0;
            }),
            0);
  EXPECT_FALSE(tarn.TarnDoPreferencesExist()) << "the defaults are not whole yet";
  tarn.TarnSetPreferenceForKey(kTarnLastDefaultPreference, 0);
  EXPECT_TRUE(tarn.TarnDoPreferencesExist());
  EXPECT_EQ(tarn.TarnGetPreferenceForKey("EnablePlugin"), 1);
  EXPECT_EQ(tarn.TarnGetLongPreferenceForKey("EnablePlugin"), 1);
  EXPECT_EQ(tarn.TarnGetLongPreferenceForKey("RMF5"), -2147483647 - 1);
  EXPECT_EQ(tarn.TarnGetPreferenceForKey("RMF4"), 0);
  EXPECT_EQ(PropertyList::AdoptString(tarn.TarnGetStringPreferenceForKey("LastAddress")), address);
  struct stat info {};
  ASSERT_EQ(stat(File().c_str(), &info), 0);
  EXPECT_EQ(info.st_mode & 0777u, 0600u);
}

TEST_F(Dialogs, LosesNoKeyOfConcurrentWriters) {
  constexpr int kWriters = 4, kKeys = 15;
  std::vector<pid_t> children;
  for (int writer = 0; writer < kWriters; ++writer) {
    const pid_t child = fork();
    if (child == 0) {
      for (int i = 0; i < kKeys; ++i) {
        tarn.TarnSetLongPreferenceForKey(("K" + std::to_string(writer * kKeys + i)).c_str(), i + 1);
      }
      _exit(0);
    }
    children.push_back(child);
  }
  for (const pid_t child : children) waitpid(child, nullptr, 0);
  for (int i = 0; i < kWriters * kKeys; ++i) {
    EXPECT_EQ(tarn.TarnGetLongPreferenceForKey(("K" + std::to_string(i)).c_str()), i % kKeys + 1);
  }
}

TEST_F(Dialogs, FollowsAHandThatEditsTheFileAndKeepsItsComments) {
  home.WriteFile(".config/Vendrel/preferences.conf", "# mine\n[Preferences]\nRMF5=7\n");
  EXPECT_EQ(tarn.TarnGetLongPreferenceForKey("RMF5"), 7);
  home.WriteFile(".config/Vendrel/preferences.conf", "# mine\n[Preferences]\nRMF5=seven\n\n[X]\n");
  EXPECT_EQ(tarn.TarnGetLongPreferenceForKey("RMF5"), 0);
  tarn.TarnSetPreferenceForKey("EnablePlugin", 1);
  const std::string text = ReadWholeFile(File());
  EXPECT_NE(text.find("# mine"), std::string::npos);
  EXPECT_NE(text.find("RMF5=seven"), std::string::npos);
  EXPECT_NE(text.find("EnablePlugin=1"), std::string::npos);
}

TEST_F(Dialogs, KeepsBrokenPreferencesAside) {
  for (const char* aside : {".broken", ".broken-2"}) {
    home.WriteFile(".config/Vendrel/preferences.conf", std::string("no key file ") + aside);
    const StandardErrorCapture words;
    EXPECT_FALSE(tarn.TarnDoPreferencesExist());
    EXPECT_EQ(tarn.TarnGetLongPreferenceForKey("RMF5"), 0);
    EXPECT_NE(words.Text().find(File() + aside + "\n"), std::string::npos) << words.Text();
    EXPECT_EQ(ReadWholeFile(File() + aside), std::string("no key file ") + aside);
    tarn.TarnSetLongPreferenceForKey("RMF5", 5);
    EXPECT_EQ(tarn.TarnGetLongPreferenceForKey("RMF5"), 5);
  }
}

TEST_F(Dialogs, RefusesKeysThatTheFileCannotHold) {
  const StandardErrorCapture words;
  for (const char* key : {"", "a=b", "a[b]", "#a", " a", "a\nb", "\xFF"}) {
    tarn.TarnSetLongPreferenceForKey(key, 1);
    EXPECT_EQ(tarn.TarnGetLongPreferenceForKey(key), 0);
  }
  EXPECT_FALSE(tarn.TarnDoPreferencesExist());
  EXPECT_FALSE(fs::exists(File()));
}

TEST_F(Dialogs, LeavesAPlaceThatIsNoFileAlone) {
  fs::create_directories(File());
  const StandardErrorCapture words;
  tarn.TarnSetLongPreferenceForKey("RMF5", 5);
  EXPECT_TRUE(fs::is_directory(File()));
  EXPECT_NE(words.Text().find("could not be stored"), std::string::npos);
}

TEST_F(Dialogs, AsksNobodyWithoutATerminal) {
  const StandardErrorCapture words;
  EXPECT_EQ(tarn.TarnShowMessageBox("FontManagerNotFoundHeader", "FontManagerNotFoundMessage",
                                    kTarnOneButton),
            1);
  EXPECT_EQ(tarn.TarnShowMessageBox(nullptr, "plain \x1b[31mred", kTarnTwoButtons), 2);
  const std::string expected = Text("FontManagerNotFoundHeader") + "\n" +
                               Text("FontManagerNotFoundMessage") + "\nplain ?[31mred\n" +
                               "There is no terminal to ask on: taken as \"no\".\n";
  EXPECT_EQ(words.Text(), expected);
  tarn.TarnShowProgress(PropertyList::Dictionary::Create().Get());
  tarn.TarnUpdateProgress(nullptr);
  tarn.TarnHideProgress();
  EXPECT_EQ(words.Text(), expected) << "no progress outside a terminal";
}

TEST_F(Dialogs, TakesAnAnswerOnATerminal) {
  const auto ask = [&] {
    return tarn.TarnShowMessageBox("LoggedOffHeader", "LoggedOffOfferLoginMessage",
                                   kTarnTwoButtons);
  };
  EXPECT_EQ(OnTerminal("y\n", ask, nullptr), 1);
  EXPECT_EQ(OnTerminal("n\n", ask, nullptr), 2);
  EXPECT_EQ(OnTerminal("what\ny\n", ask, nullptr), 1);
  EXPECT_EQ(OnTerminal("\x04", ask, nullptr), 2) << "the end of the input";
  EXPECT_EQ(OnTerminal("a\nb\nc\ny\n", ask, nullptr), 2) << "three attempts";
}

TEST_F(Dialogs, SurvivesAReaderThatHasGone) {
  EXPECT_EQ(InChild([&] {
              std::signal(SIGPIPE, SIG_DFL);
              int ends[2];
              if (pipe(ends) != 0 || dup2(ends[1], STDERR_FILENO) < 0) return 1;
              close(ends[0]);
              return tarn.TarnShowMessageBox("LoggedOffHeader", "text", kTarnOneButton) == 1 ? 0
                                                                                             : 2;
            }),
            0);
}

TEST_F(Dialogs, ResolvesFontsOnlyWhereAPersonCanChoose) {
  const auto candidates = MakeFontRecordArray();
  candidates->Append(Font("First"));
  candidates->Append(Font("Second"));
  const auto fonts = MakeFontRecordArray();
  for (const char* name : {"A", "B", "C"}) {
    fonts->Append(Font(name));
    fonts->DictionaryAt(fonts->Count() - 1)->Set(kFP_PossibleReplacementsKey, candidates);
  }
  fonts->Append(Font("None"));
  {
    const StandardErrorCapture words;
    tarn.TarnShowResolveFonts(fonts.Get());
    EXPECT_NE(words.Text().find("A\n  1 First\n  2 Second\nB\n"), std::string::npos)
        << words.Text();
    EXPECT_FALSE(fonts->DictionaryAt(0)->Has(kFP_MatchedFontKey));
  }
  const auto chosen = [&](std::size_t i) {
    return RecordString(fonts->DictionaryAt(i)->GetDictionary(kFP_MatchedFontKey),
                        kFP_PostScriptNameKey);
  };
  EXPECT_EQ(OnTerminal(
                "2\n\n3\n1\n",
                [&] {
                  tarn.TarnShowResolveFonts(fonts.Get());
                  return chosen(0) == "Second" && chosen(1).empty() && chosen(2) == "First" &&
                                 chosen(3).empty()
                             ? 0
                             : 1;
                },
                nullptr),
            0);
}

TEST_F(Dialogs, DrawsProgressOnATerminal) {
  std::string screen;
  const auto progress = PropertyList::Dictionary::Create();
  progress->Set(kTarnWindowTitle, "Activating Fonts");
  progress->Set(kTarnMaxProgress, 4);
  progress->Set(kTarnCurrentProgress, 1);
  progress->Set(kTarnIsIndeterminate, 0);
  progress->Set(kTarnHeader, "3 fonts left to activate");
  progress->Set(kTarnStatus, "A\rB");
  OnTerminal(
      "",
      [&] {
        tarn.TarnShowProgress(progress.Get());
        tarn.TarnHideProgress();
        return 0;
      },
      &screen);
  EXPECT_EQ(screen,
            "Activating Fonts\r\n\r\x1b[K[######..................] 3 fonts left to activate A?B"
            "\r\x1b[K");
}
