// A map from keys to values, where a value may be a tree again: the foundation's general record.
//
// Copies share the values' data and are cheap. Trees that hold each other through shared pointers
// are never freed; writing such a circle, or converting it, ends at kMaxTreeDepth.
//
// Not synchronised: [any-thread], one at a time for a tree; reading may go on beside reading.
#pragma once

#include <nlohmann/json_fwd.hpp>

#include <cstddef>
#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "foundation/GLibXMLSerializable.h"
#include "foundation/GValue.h"

class GKVTree : public GLibXMLSerializable {
 public:
  static constexpr TModuleErrorCode kMisformedFormatString = MakeErrorCode(0x00101B, 1);

  GKVTree() = default;
  GKVTree(const GKVTree&) = default;
  GKVTree& operator=(const GKVTree& tree);
  // In a stack of constant depth, however deep the trees within.
  ~GKVTree() override;

  // The tree may be one within this one.
  void Assign(const GKVTree& tree);
  void Clear();

  // In the order of their bytes; what `keys` held goes.
  void GetKeys(std::vector<std::string>& keys) const;
  // Lent, until the entry goes; null if there is none.
  const GValue* GetValuePtrForKey(std::string_view key) const;
  GValue* GetWritableValuePtrForKey(std::string_view key);
  // kValueType_NULL if there is no entry.
  GValue::EValueType GetValueTypeForKey(std::string_view key) const;
  // Adds the entry or replaces it. Any key does, but XML wants one that is not empty.
  void SetValueForKey(const GValue& value, const std::string& key);
  void ClearValueForKey(std::string_view key);

  // <kvtree><kv key="..."><value ...>...</value></kv>...</kvtree>; see GValue for the values. An
  // empty tree is <kvtree></kvtree>.
  //
  // Reading a stranger's document is safe and bounded: see GLibXMLDoc for what counts as one
  // (GLibXML::kParseFailed, CoreErrorCodes::kNotSupported). After a failure the tree is what it
  // was. kWrongElementName, kInvalidChildNode (anything but elements and blanks between them),
  // kMissingRequiredAttribute (a key that is empty, too), kMissingRequiredChildElement (an entry
  // without a value), kInvalidChildElement (an entry with two), CoreErrorCodes::kItemAlreadyExists
  // (a key that comes twice), CoreErrorCodes::kNotSupported beyond kMaxTreeDepth, and the codes of
  // the values.
  TModuleErrorCode SetFromXMLNode(const GLibXMLNode& node) override;
  TModuleErrorCode SetFromXMLBuffer(const char* buffer, unsigned long size);
  // kInvalidAttributeContent for a key that is empty or that XML cannot hold, and the codes of the
  // values: one value that cannot be written is a failure of the whole.
  TModuleErrorCode WriteToXMLStream(std::ostream& stream, int indent = kNoIndent) const override;

  // An object with the tree's keys. Failures as of GValue; kValueConversionError for a key that is
  // no UTF-8, too.
  TModuleErrorCode ConvertToJSON(nlohmann::json& json) const;

 private:
  friend class GValue;
  using Map = std::map<std::string, GValue, std::less<>>;

  // `depth` is the number of trees, this one included.
  TModuleErrorCode ReadXML(const GLibXMLNode& node, unsigned int depth);
  TModuleErrorCode ReadXMLEntries(const GLibXMLNode& tree, unsigned int depth);
  TModuleErrorCode ReadXMLEntry(const GLibXMLNode& entry, unsigned int depth);
  TModuleErrorCode AppendXML(std::string& xml, int indent, unsigned int depth) const;
  TModuleErrorCode MakeJSON(nlohmann::json& json, unsigned int depth, std::size_t& room) const;
  struct Remains;
  static void TakeApart(Map& values, Remains& remains);
  static void TakeApart(const GValue& value, Remains& remains);

  Map m_values;
};
