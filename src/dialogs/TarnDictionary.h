// An owned dictionary that passes structured data over the dialog framework's border. Every
// operation does nothing, or gives 0 or nothing, when the dictionary or key is missing.
#pragma once

#include <string>

#include "propertylist/Value.h"

class TarnDictionary {
 public:
  TarnDictionary() : mDictionary(PropertyList::Dictionary::Create()) {}
  explicit TarnDictionary(PropertyList::DictionaryRef dictionary)
      : mDictionary(std::move(dictionary)) {}

  void SetBoolForKey(const char* key, bool value);
  bool GetBoolForKey(const char* key) const;
  // Lent until the dictionary changes; null if absent.
  const std::string* GetStringForKey(const char* key) const;
  void SetStringForKey(const char* key, const char* value);  // a null value does nothing
  void SetIntForKey(const char* key, int value);
  int GetIntForKey(const char* key) const;
  // Numbers kept as decimal text.
  void SetStringFromLongForKey(const char* key, long value);
  void SetStringFromULongForKey(const char* key, unsigned long value);
  long GetLongFromStringForKey(const char* key) const;
  // Appends to the array under the key, which is made when missing.
  void AppendItemToArrayForKey(const char* key, const TarnDictionary& item);

  const PropertyList::DictionaryRef& Get() const { return mDictionary; }
  PLDictionaryRef Handle() const { return PropertyList::AsHandle(mDictionary); }

 private:
  PropertyList::DictionaryRef mDictionary;
};
