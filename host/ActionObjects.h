// What stands behind the action model's opaque handles: plain values, deep copied.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include "sdk/HostActions.h"

struct PIAliasData {
  std::string path;  // empty: leads nowhere
};

struct PIActionReferenceData {
  enum class Form { eProperty, eEnumerated, eIndex, eIdentifier };
  struct Step {
    Form form;
    DescriptorClassID type;
    std::uint32_t value;  // key, enumeration, 1-based index or identifier
  };
  std::vector<Step> steps;  // from the inside out
};

struct ActionItem;

struct PIActionListData {
  std::vector<ActionItem> items;
};

struct PIActionDescriptorData {
  std::vector<std::pair<DescriptorKeyID, ActionItem>> items;

  const ActionItem* Find(DescriptorKeyID key) const;
  void Put(DescriptorKeyID key, ActionItem item);
};

struct ActionEnumeration {
  DescriptorTypeID type;
  DescriptorEnumID value;
};

struct ActionObject {
  DescriptorClassID type;
  std::shared_ptr<const PIActionDescriptorData> value;  // never changed once it is in here
  bool global;
};

struct ActionItem {
  std::variant<std::int32_t, bool, double, std::string, ActionEnumeration, PIAliasData,
               ActionObject, std::shared_ptr<const PIActionListData>, PIActionReferenceData>
      value;

  DescriptorTypeID Type() const;
};
