#include "activation/DocumentFontGathering.h"

#include "foundation/PluginLog.h"
#include "sdk/FontRecordKeys.h"

namespace CommonFunctionality {
namespace {

bool StandsForNoFont(const std::string& name) {
  return name == "PhotoshopKinsokuHard" || name == "AdobeInvisFont";
}

}  // namespace

void RemoveFontsThatHaveNoPossibleReplacement(const FontRecordArray& fonts) {
  for (std::size_t i = CountOf(fonts); i-- > 0;) {
    const FontRecord record = fonts->DictionaryAt(i);
    const std::string name = RecordString(record, kFP_PostScriptNameKey);
    if (!StandsForNoFont(name) || CountOf(record->GetArray(kFP_PossibleReplacementsKey)) != 0) {
      continue;
    }
    OutputFormattedDebugString("%s() removing '%s' from problemFonts", __func__, name.c_str());
    fonts->Remove(i);
  }
}

void RemoveMatchingFonts(const FontRecordArray& fonts, const std::string& prefix) {
  if (prefix.empty()) return;
  for (std::size_t i = CountOf(fonts); i-- > 0;) {
    const std::string name = RecordString(fonts->DictionaryAt(i), kFP_PostScriptNameKey);
    if (!name.starts_with(prefix)) continue;
    OutputFormattedDebugString("%s() removing '%s' because it starts with '%s'", __func__,
                               name.c_str(), prefix.c_str());
    fonts->Remove(i);
  }
}

}  // namespace CommonFunctionality
