#include "frameworks/plugins/Dialogs.h"

#include <charconv>
#include <optional>
#include <string>

#include "frameworks/plugins/HostDetails.h"
#include "frameworks/plugins/Texts.h"
#include "sdk/FontRecordKeys.h"
#include "sdk/Tarn.h"

namespace {

constexpr int kMaxAttempts = 3;  // at an answer that is none

std::optional<bool> YesOrNo(std::string_view answer) {
  if (answer == "y" || answer == "Y" || answer == "yes") return true;
  if (answer == "n" || answer == "N" || answer == "no") return false;
  return std::nullopt;
}

// "Name, version 1.5, Foundry, kind, workgroup", as far as it is known.
std::string Describe(const FontRecord& font) {
  std::string text = RecordString(font, kFP_PostScriptNameKey);
  const std::string version = RecordString(font, kFP_VersionKey);
  if (!version.empty()) text += ", version " + version;
  for (const char* key : {kFP_FoundryKey, kFP_KindKey, kFP_WorkgroupNameKey}) {
    const std::string part = RecordString(font, key);
    if (!part.empty()) text += ", " + part;
  }
  return text;
}

// 1 to `count`; 0 for an empty answer; nothing for anything else.
std::optional<std::size_t> Choice(const std::string& answer, std::size_t count) {
  if (answer.empty()) return 0;
  std::size_t number = 0;
  const char* const end = answer.data() + answer.size();
  const auto [rest, error] = std::from_chars(answer.data(), end, number);
  if (error != std::errc() || rest != end || number > count) return std::nullopt;
  return number;
}

// 0 if none is chosen; nothing at the end of the input.
std::optional<std::size_t> AskForChoice(const Terminal& terminal, std::size_t count) {
  for (int i = 0; i < kMaxAttempts; ++i) {
    terminal.WriteWithoutEnd(LocalizedText("ResolveFontsQuestion"));
    const auto answer = terminal.ReadLine();
    if (!answer) return std::nullopt;
    const auto choice = Choice(*answer, count);
    if (choice) return choice;
  }
  return 0;
}

void ListCandidates(const Terminal& terminal, const FontRecord& font,
                    const FontRecordArray& candidates) {
  terminal.WriteLine(Describe(font));
  if (CountOf(candidates) == 0) terminal.WriteLine(LocalizedText("ResolveFontsNoCandidate"));
  for (std::size_t i = 0; i < CountOf(candidates); ++i) {
    terminal.WriteLine("  " + std::to_string(i + 1) + " " + Describe(candidates->DictionaryAt(i)));
  }
}

void WriteDetail(const Terminal& terminal, const char* labelKey, const std::string& value) {
  if (!value.empty()) terminal.WriteLine(LocalizedText(labelKey) + ": " + value);
}

}  // namespace

std::int32_t ShowMessage(const Terminal& terminal, std::string_view titleKey,
                         std::string_view message, bool asksForAnswer) {
  if (!titleKey.empty()) terminal.WriteLine(LocalizedText(titleKey));
  terminal.WriteLine(LocalizedText(message));
  if (!asksForAnswer) return kFirstButton;
  if (!terminal.IsInteractive()) {
    terminal.WriteLine(LocalizedText("QuestionNotAsked"));
    return kSecondButton;
  }
  for (int i = 0; i < kMaxAttempts; ++i) {
    terminal.WriteWithoutEnd(LocalizedText("QuestionSuffix"));
    const auto answer = terminal.ReadLine();
    if (!answer) break;
    const auto yes = YesOrNo(*answer);
    if (yes) return *yes ? kFirstButton : kSecondButton;
  }
  return kSecondButton;
}

void ShowAbout(const Terminal& terminal) {
  const HostDetails& details = HostDetails::Shared();
  terminal.WriteLine(LocalizedText("AboutName"));
  WriteDetail(terminal, "AboutDialogs", AUTOACTIVATION_VERSION);
  WriteDetail(terminal, "AboutPlugin", details.Get(kTarnPluginVersion));
  WriteDetail(terminal, "AboutInterface", details.Get(kTarnPluginInterfaceVersion));
  WriteDetail(terminal, "AboutHost", details.Get(kTarnHostApp));
  if (!details.IsOnline()) terminal.WriteLine(LocalizedText("AboutOffline"));
}

void ShowRestricted(const Terminal& terminal, const FontRecordArray& fonts) {
  terminal.WriteLine(LocalizedText("RestrictedFontsHeader"));
  for (std::size_t i = 0; i < CountOf(fonts); ++i) {
    const FontRecord font = fonts->DictionaryAt(i);
    if (font) terminal.WriteLine("  " + Describe(font));
  }
}

void ResolveFonts(const Terminal& terminal, const FontRecordArray& fonts) {
  bool asks = terminal.IsInteractive();
  terminal.WriteLine(LocalizedText("ResolveFontsHeader"));
  for (std::size_t i = 0; i < CountOf(fonts); ++i) {
    const FontRecord font = fonts->DictionaryAt(i);
    if (!font) continue;
    const FontRecordArray candidates = font->GetArray(kFP_PossibleReplacementsKey);
    ListCandidates(terminal, font, candidates);
    if (!asks || CountOf(candidates) == 0) continue;
    const auto choice = AskForChoice(terminal, CountOf(candidates));
    if (!choice) asks = false;
    const FontRecord chosen =
        choice.value_or(0) > 0 ? candidates->DictionaryAt(*choice - 1) : nullptr;
    if (chosen) font->Set(kFP_MatchedFontKey, chosen);
  }
  if (!asks) terminal.WriteLine(LocalizedText("ResolveFontsNotAsked"));
}
