#include "fonts/FontNameIndex.h"

#include "fonts/FontNames.h"
#include "fonts/RecordAccess.h"
#include "sdk/FontRecordKeys.h"

namespace FaceprintSupport {

FontNameIndex::FontNameIndex(const FontRecordArray& fonts) {
  for (std::size_t i = 0; i < CountOf(fonts); ++i) Add(fonts->DictionaryAt(i), i);
}

std::string FontNameIndex::Form(const std::string& name, int form) {
  return form == 0 ? name : GFontToolUtils_StripCharsAndNormalizeString(name, form == 2);
}

std::optional<std::size_t> FontNameIndex::Find(const std::string& name) const {
  for (int form = 0; form < kForms; ++form) {
    const auto found = mForms[form].find(Form(name, form));
    if (found != mForms[form].end()) return *found->second.begin();
  }
  return std::nullopt;
}

void FontNameIndex::Add(const FontRecord& record, std::size_t index) {
  const std::string* name = FindString(record, kFP_PostScriptNameKey);
  if (name == nullptr) return;
  for (int form = 0; form < kForms; ++form) mForms[form][Form(*name, form)].insert(index);
}

void FontNameIndex::Remove(const FontRecord& record, std::size_t index) {
  const std::string* name = FindString(record, kFP_PostScriptNameKey);
  if (name == nullptr) return;
  for (int form = 0; form < kForms; ++form) {
    const auto found = mForms[form].find(Form(*name, form));
    if (found == mForms[form].end()) continue;
    found->second.erase(index);
    if (found->second.empty()) mForms[form].erase(found);
  }
}

}  // namespace FaceprintSupport
