// Logging levels from a tree.
#include "foundation/GKVTree.h"
#include "foundation/GLogger.h"

void GLogger::SetLoggingLevelsFromKVTree(const GKVTree& levels) {
  std::vector<std::string> identifiers;
  levels.GetKeys(identifiers);
  for (const std::string& identifier : identifiers) {
    const GValue* value = levels.GetValuePtrForKey(identifier);
    if (value->GetValueType() != GValue::kValueType_string || value->GetCount() == 0) continue;
    std::string text;
    if (value->GetValue(text) != CoreErrorCodes::kSuccess) continue;
    const LoggingLevel level = StringToLevel(text);
    if (level != eUnknown) SetLoggingLevelForIdentifier(identifier, level);
  }
}
