#include "fonts/FontDebugUtils.h"

#include "foundation/PluginLog.h"
#include "sdk/FontRecordKeys.h"

namespace FontDebugUtils {

void DumpFontNames(const FontRecordArray& fonts, const char* title) {
  OutputFormattedDebugString("%s (%d):", title != nullptr ? title : "",
                             static_cast<int>(CountOf(fonts)));
  for (std::size_t i = 0; i < CountOf(fonts); ++i) {
    OutputFormattedDebugString("   %d: %s", static_cast<int>(i),
                               RecordString(fonts->DictionaryAt(i), kFP_PostScriptNameKey).c_str());
  }
}

}  // namespace FontDebugUtils
