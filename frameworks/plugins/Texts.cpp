#include "frameworks/plugins/Texts.h"

#include <algorithm>
#include <utility>

#include "frameworks/plugins/HostDetails.h"
#include "propertylist/StringConversion.h"
#include "sdk/Tarn.h"

namespace {

struct Text {
  std::string_view key;
  std::string_view text;
};

constexpr Text kTexts[] = {
#define TEXT(key, text) {key, text},
#include "frameworks/plugins/Texts.def"
#undef TEXT
};

std::string OrElse(std::string text, const char* fallback) {
  return text.empty() ? fallback : std::move(text);
}

}  // namespace

std::string LocalizedText(std::string_view key) {
  const auto* const found = std::find_if(std::begin(kTexts), std::end(kTexts),
                                         [&](const Text& text) { return text.key == key; });
  std::string text(found == std::end(kTexts) ? key : found->text);
  if (text.find('[') == std::string::npos) return text;
  const HostDetails& details = HostDetails::Shared();
  text = replaceAll(std::move(text), "[FONT_MANAGER_MODIFIER]",
                    OrElse(details.Get(kTarnFontManager), "Vendrel"));
  return replaceAll(std::move(text), "[host app]",
                    OrElse(details.Get(kTarnHostApp), "the host application"));
}
