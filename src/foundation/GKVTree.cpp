#include "foundation/GKVTree.h"

#include <utility>

#include "foundation/GValueImpl.h"

// What is still to be taken apart. Each holder of what is shared is let go of on its own, so that
// the last one finds it held by nobody else.
struct GKVTree::Remains {
  std::vector<GValue> values;
  std::vector<GKVTreePtr> trees;
};

void GKVTree::TakeApart(Map& values, Remains& remains) {
  for (auto& [key, value] : values) {
    if (value.GetValueType() != GValue::kValueType_kvtree) continue;
    remains.values.push_back(value);
    value = GValue();
  }
}

void GKVTree::TakeApart(const GValue& value, Remains& remains) {
  if (value.m_dataPtr.use_count() != 1) return;
  for (GValueImpl& element : *value.m_dataPtr) remains.trees.push_back(std::move(element.Tree()));
  value.m_dataPtr->clear();
}

GKVTree::~GKVTree() {
  Remains remains;
  TakeApart(m_values, remains);
  while (!remains.values.empty() || !remains.trees.empty()) {
    if (!remains.trees.empty()) {
      const GKVTreePtr tree = std::move(remains.trees.back());
      remains.trees.pop_back();
      if (tree && tree.use_count() == 1) TakeApart(tree->m_values, remains);
    } else {
      const GValue value = remains.values.back();
      remains.values.pop_back();
      TakeApart(value, remains);
    }
  }
}

GKVTree& GKVTree::operator=(const GKVTree& tree) {
  Assign(tree);
  return *this;
}

void GKVTree::Assign(const GKVTree& tree) {
  Map values = tree.m_values;
  m_values.swap(values);
}

void GKVTree::Clear() { Assign(GKVTree()); }

void GKVTree::GetKeys(std::vector<std::string>& keys) const {
  keys.clear();
  keys.reserve(m_values.size());
  for (const auto& [key, value] : m_values) keys.push_back(key);
}

const GValue* GKVTree::GetValuePtrForKey(std::string_view key) const {
  const auto found = m_values.find(key);
  return found == m_values.end() ? nullptr : &found->second;
}

GValue* GKVTree::GetWritableValuePtrForKey(std::string_view key) {
  const auto found = m_values.find(key);
  return found == m_values.end() ? nullptr : &found->second;
}

GValue::EValueType GKVTree::GetValueTypeForKey(std::string_view key) const {
  const GValue* value = GetValuePtrForKey(key);
  return value ? value->GetValueType() : GValue::kValueType_NULL;
}

void GKVTree::SetValueForKey(const GValue& value, const std::string& key) {
  m_values.insert_or_assign(key, GValue(value));
}

void GKVTree::ClearValueForKey(std::string_view key) {
  const auto found = m_values.find(key);
  if (found != m_values.end()) m_values.erase(found);
}
