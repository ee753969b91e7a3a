#include "fonts/FontSlugIndex.h"

#include "fonts/FontNames.h"
#include "fonts/RecordAccess.h"
#include "sdk/FontRecordKeys.h"

namespace FaceprintSupport {

FontSlugIndex::FontSlugIndex(const FontRecordArray& slugs) : mSlugs(slugs) {
  for (std::size_t i = 0; i < CountOf(slugs); ++i) {
    const FontRecord record = slugs->DictionaryAt(i);
    const std::string* name = FindString(record, kFP_PostScriptNameKey);
    if (name == nullptr) continue;
    mNames.try_emplace(*name, i);
    if (!IsMultipleMaster(record)) continue;
    mBases.try_emplace(*name, i);
    mBaseLengths.insert(name->size());
  }
}

FontRecord FontSlugIndex::Find(const std::string& name) const {
  const auto exact = mNames.find(name);
  std::size_t place = exact == mNames.end() ? CountOf(mSlugs) : exact->second;
  const std::string* baseName = nullptr;
  for (const std::size_t length : mBaseLengths) {
    if (length >= name.size()) break;
    if (name[length] != '_') continue;
    const auto base = mBases.find(name.substr(0, length));
    if (base == mBases.end() || base->second > place) continue;
    place = base->second;
    baseName = &base->first;
  }
  if (baseName != nullptr) TellOfMultipleMasterBase(*baseName, name);
  return place < CountOf(mSlugs) ? mSlugs->DictionaryAt(place) : nullptr;
}

}  // namespace FaceprintSupport
