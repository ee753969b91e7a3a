// Borrowed text of a record, where absent and empty are not the same.
#pragma once

#include <string>
#include <string_view>

#include "propertylist/FontRecord.h"

namespace FaceprintSupport {

// Null for a null record, an absent key or another kind. Lent until the record changes.
inline const std::string* FindString(const FontRecord& record, std::string_view key) {
  return record ? record->GetString(key) : nullptr;
}

}  // namespace FaceprintSupport
