#include "foundation/GKVTree.h"

#include <utility>

#include "foundation/GValueImpl.h"

// Takes the trees that nothing but `values` holds.
void GKVTree::TakeTreesOut(Map& values, std::vector<GKVTreePtr>& trees) {
  for (auto& [key, value] : values) {
    if (value.GetValueType() != GValue::kValueType_kvtree) continue;
    if (value.m_dataPtr.use_count() != 1) continue;
    for (GValueImpl& element : *value.m_dataPtr) trees.push_back(std::move(element.Tree()));
    value.m_dataPtr->clear();
  }
}

GKVTree::~GKVTree() {
  std::vector<GKVTreePtr> trees;
  TakeTreesOut(m_values, trees);
  while (!trees.empty()) {
    const GKVTreePtr tree = std::move(trees.back());
    trees.pop_back();
    if (tree && tree.use_count() == 1) TakeTreesOut(tree->m_values, trees);
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
