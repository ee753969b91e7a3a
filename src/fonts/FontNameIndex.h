// The three-pass look-up of DoesArrayContainFontWithPostScriptName for many names in one growing
// array: a document may name a hundred thousand fonts, and looking each up in turn would take time
// in the square of that.
#pragma once

#include <cstddef>
#include <optional>
#include <set>
#include <string>
#include <unordered_map>

#include "propertylist/FontRecord.h"

namespace FaceprintSupport {

class FontNameIndex {
 public:
  explicit FontNameIndex(const FontRecordArray& fonts);

  // The index that DoesArrayContainFontWithPostScriptName gives.
  std::optional<std::size_t> Find(const std::string& name) const;
  // Tells of a record that came to, or left, this place of the array. Null and nameless records
  // don't matter.
  void Add(const FontRecord& record, std::size_t index);
  void Remove(const FontRecord& record, std::size_t index);

 private:
  // Exact, normalised, strict.
  static constexpr int kForms = 3;
  static std::string Form(const std::string& name, int form);

  std::unordered_map<std::string, std::set<std::size_t>> mForms[kForms];
};

}  // namespace FaceprintSupport
