#include "host/ActionObjects.h"

#include <algorithm>

const ActionItem* PIActionDescriptorData::Find(DescriptorKeyID key) const {
  const auto found = std::find_if(items.begin(), items.end(),
                                  [key](const auto& item) { return item.first == key; });
  return found == items.end() ? nullptr : &found->second;
}

void PIActionDescriptorData::Put(DescriptorKeyID key, ActionItem item) {
  for (auto& [existing, value] : items) {
    if (existing == key) {
      value = std::move(item);
      return;
    }
  }
  items.emplace_back(key, std::move(item));
}

DescriptorTypeID ActionItem::Type() const {
  static constexpr DescriptorTypeID kTypes[] = {
      kTypeInteger, kTypeBoolean, kTypeFloat,     kTypeChar,           kTypeEnumerated,
      kTypeAlias,   kTypeObject,  kTypeValueList, kTypeObjectReference};
  static_assert(std::size(kTypes) == std::variant_size_v<decltype(value)>);
  const auto* object = std::get_if<ActionObject>(&value);
  return object && object->global ? kTypeGlobalObject : kTypes[value.index()];
}
