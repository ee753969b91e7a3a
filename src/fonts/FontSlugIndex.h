// The look-up of GetFaceprintDictionaryFromArrayWithPostscriptName for many names in one array that
// stays as it is: in time that does not grow with the array.
#pragma once

#include <cstddef>
#include <set>
#include <string>
#include <unordered_map>

#include "propertylist/FontRecord.h"

namespace FaceprintSupport {

class FontSlugIndex {
 public:
  explicit FontSlugIndex(const FontRecordArray& slugs);

  // Null if there is none.
  FontRecord Find(const std::string& name) const;

 private:
  using Places = std::unordered_map<std::string, std::size_t>;

  const FontRecordArray& mSlugs;
  Places mNames;
  Places mBases;
  std::set<std::size_t> mBaseLengths;
};

}  // namespace FaceprintSupport
