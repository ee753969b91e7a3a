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
  const char* const operation = __func__;
  RemoveFromBack(fonts, [&](std::size_t i) {
    const FontRecord record = fonts->DictionaryAt(i);
    const std::string name = RecordString(record, kFP_PostScriptNameKey);
    if (!StandsForNoFont(name) || CountOf(record->GetArray(kFP_PossibleReplacementsKey)) != 0) {
      return false;
    }
    OutputFormattedDebugString("%s() removing '%s' from problemFonts", operation, name.c_str());
    return true;
  });
}

void RemoveMatchingFonts(const FontRecordArray& fonts, const std::string& prefix) {
  const char* const operation = __func__;
  if (prefix.empty()) return;
  RemoveFromBack(fonts, [&](std::size_t i) {
    const std::string name = RecordString(fonts->DictionaryAt(i), kFP_PostScriptNameKey);
    if (!name.starts_with(prefix)) return false;
    OutputFormattedDebugString("%s() removing '%s' because it starts with '%s'", operation,
                               name.c_str(), prefix.c_str());
    return true;
  });
}

}  // namespace CommonFunctionality
