#include "dialogs/TarnDictionary.h"

#include <cstdint>
#include <cstdlib>

namespace {

std::int64_t NumberForKey(const PropertyList::DictionaryRef& dictionary, const char* key) {
  const PropertyList::Value* value = dictionary && key ? dictionary->Find(key) : nullptr;
  if (value == nullptr) return 0;
  if (const bool* flag = value->AsBool()) return *flag ? 1 : 0;
  if (const std::int64_t* number = value->AsInteger()) return *number;
  return 0;
}

}  // namespace

// Kept as a number, which is what the dialog framework reads.
void TarnDictionary::SetBoolForKey(const char* key, bool value) {
  if (mDictionary && key) mDictionary->Set(key, std::int64_t{value});
}

bool TarnDictionary::GetBoolForKey(const char* key) const {
  return NumberForKey(mDictionary, key) != 0;
}

const std::string* TarnDictionary::GetStringForKey(const char* key) const {
  return mDictionary && key ? mDictionary->GetString(key) : nullptr;
}

void TarnDictionary::SetStringForKey(const char* key, const char* value) {
  if (mDictionary && key && value) mDictionary->Set(key, value);
}

void TarnDictionary::SetIntForKey(const char* key, int value) {
  if (mDictionary && key) mDictionary->Set(key, value);
}

int TarnDictionary::GetIntForKey(const char* key) const {
  return static_cast<int>(NumberForKey(mDictionary, key));
}

void TarnDictionary::SetStringFromLongForKey(const char* key, long value) {
  SetStringForKey(key, std::to_string(value).c_str());
}

void TarnDictionary::SetStringFromULongForKey(const char* key, unsigned long value) {
  SetStringForKey(key, std::to_string(value).c_str());
}

long TarnDictionary::GetLongFromStringForKey(const char* key) const {
  const std::string* text = GetStringForKey(key);
  return text ? std::strtol(text->c_str(), nullptr, 10) : 0;
}

void TarnDictionary::AppendItemToArrayForKey(const char* key, const TarnDictionary& item) {
  if (!mDictionary || key == nullptr || !item.mDictionary) return;
  PropertyList::ArrayRef array = mDictionary->GetArray(key);
  if (!array) {
    array = PropertyList::Array::Create();
    mDictionary->Set(key, array);
  }
  array->Append(item.mDictionary);
}
