#include "frameworks/plugins/ProgressBar.h"

#include <glib.h>

#include <algorithm>
#include <cstdint>
#include <memory>
#include <string>

#include "sdk/Tarn.h"

namespace {

constexpr std::int64_t kBarWidth = 24;
constexpr glong kMaxCharacters = 25;  // of header and status each: all fit 80 columns

// A number or a bool.
std::int64_t Number(const PropertyList::Dictionary& progress, const char* key) {
  const PropertyList::Value* const value = progress.Find(key);
  if (value == nullptr) return 0;
  if (const std::int64_t* number = value->AsInteger()) return *number;
  const bool* const flag = value->AsBool();
  return flag != nullptr && *flag ? 1 : 0;
}

std::string Shortened(const PropertyList::Dictionary& progress, const char* key) {
  const std::string* const text = progress.GetString(key);
  if (text == nullptr) return {};
  const std::unique_ptr<char, decltype(&g_free)> valid(
      g_utf8_make_valid(text->data(), static_cast<gssize>(text->size())), g_free);
  const std::string_view whole(valid.get());
  if (g_utf8_strlen(valid.get(), -1) <= kMaxCharacters) return std::string(whole);
  const char* const end = g_utf8_offset_to_pointer(valid.get(), kMaxCharacters - 1);
  return std::string(whole.substr(0, static_cast<std::size_t>(end - valid.get()))) + "…";
}

std::string Bar(const PropertyList::Dictionary& progress) {
  const std::int64_t max = Number(progress, kTarnMaxProgress);
  if (max <= 0 || Number(progress, kTarnIsIndeterminate) != 0) return "…";
  const std::int64_t current =
      std::clamp(Number(progress, kTarnCurrentProgress), std::int64_t{0}, max);
  const auto filled =
      static_cast<std::size_t>(static_cast<double>(current) / static_cast<double>(max) * kBarWidth);
  return "[" + std::string(filled, '#') + std::string(kBarWidth - filled, '.') + "]";
}

}  // namespace

ProgressBar& ProgressBar::Standard() {
  static ProgressBar bar(Terminal::Standard());
  return bar;
}

void ProgressBar::Show(const PropertyList::DictionaryRef& progress) {
  if (!progress || !mTerminal.ShowsProgress()) return;
  const std::string* const title = progress->GetString(kTarnWindowTitle);
  if (!mShown && title != nullptr) mTerminal.WriteLine(*title);
  mShown = true;
  Update(progress);
}

void ProgressBar::Update(const PropertyList::DictionaryRef& progress) {
  if (!progress || !mShown) return;
  mTerminal.ReplaceLine(Bar(*progress) + " " + Shortened(*progress, kTarnHeader) + " " +
                        Shortened(*progress, kTarnStatus));
}

void ProgressBar::Hide() {
  if (mShown) mTerminal.ReplaceLine("");
  mShown = false;
}
