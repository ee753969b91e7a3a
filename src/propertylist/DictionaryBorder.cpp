// Dictionaries over the border of sdk/PropertyList.h.
#include "propertylist/Border.h"

using namespace PropertyList::Border;
using PropertyList::Dictionary;
using PropertyList::Value;

namespace {

const Value* Find(PLDictionaryRef dictionary, const char* key) {
  return dictionary == nullptr || key == nullptr ? nullptr : Of(dictionary)->Find(key);
}

void Set(PLDictionaryRef dictionary, const char* key, Value value) {
  if (dictionary != nullptr && key != nullptr) Of(dictionary)->Set(key, std::move(value));
}

}  // namespace

#pragma GCC visibility push(default)
extern "C" {

PLDictionaryRef PLDictionaryCreate(void) noexcept { return Dictionary::Create().Detach(); }

PLDictionaryRef PLDictionaryCopy(PLDictionaryRef dictionary) noexcept {
  return dictionary == nullptr ? nullptr : Of(dictionary)->Copy().Detach();
}

PLDictionaryRef PLDictionaryRetain(PLDictionaryRef dictionary) noexcept {
  return Retained(dictionary);
}

void PLDictionaryRelease(PLDictionaryRef dictionary) noexcept { Released(dictionary); }

bool PLDictionaryEquals(PLDictionaryRef dictionary, PLDictionaryRef other) noexcept {
  return Value(PropertyList::FromHandle(dictionary)).Equals(PropertyList::FromHandle(other));
}

PLStringRef PLDictionaryCopyXml(PLDictionaryRef dictionary) noexcept {
  return CopyXml(PropertyList::FromHandle(dictionary));
}

size_t PLDictionaryGetCount(PLDictionaryRef dictionary) noexcept {
  return dictionary == nullptr ? 0 : Of(dictionary)->Count();
}

const char* PLDictionaryGetKeyAt(PLDictionaryRef dictionary, size_t index) noexcept {
  if (dictionary == nullptr || index >= Of(dictionary)->Count()) return nullptr;
  return Of(dictionary)->Entries()[index].first.c_str();
}

PLKind PLDictionaryGetKind(PLDictionaryRef dictionary, const char* key) noexcept {
  return KindOf(Find(dictionary, key));
}

const char* PLDictionaryGetString(PLDictionaryRef dictionary, const char* key,
                                  size_t* length) noexcept {
  return StringOf(Find(dictionary, key), length);
}

const void* PLDictionaryGetData(PLDictionaryRef dictionary, const char* key,
                                size_t* length) noexcept {
  return BytesOf(Find(dictionary, key), length);
}

bool PLDictionaryGetBool(PLDictionaryRef dictionary, const char* key, bool* value) noexcept {
  return BoolOf(Find(dictionary, key), value);
}

bool PLDictionaryGetInteger(PLDictionaryRef dictionary, const char* key, int64_t* value) noexcept {
  return IntegerOf(Find(dictionary, key), value);
}

bool PLDictionaryGetReal(PLDictionaryRef dictionary, const char* key, double* value) noexcept {
  return RealOf(Find(dictionary, key), value);
}

PLArrayRef PLDictionaryGetArray(PLDictionaryRef dictionary, const char* key) noexcept {
  return ArrayOf(Find(dictionary, key));
}

PLDictionaryRef PLDictionaryGetDictionary(PLDictionaryRef dictionary, const char* key) noexcept {
  return DictionaryOf(Find(dictionary, key));
}

void PLDictionarySetNull(PLDictionaryRef dictionary, const char* key) noexcept {
  Set(dictionary, key, {});
}

void PLDictionarySetString(PLDictionaryRef dictionary, const char* key, const char* bytes,
                           size_t length) noexcept {
  Set(dictionary, key, TextOf(bytes, length));
}

void PLDictionarySetData(PLDictionaryRef dictionary, const char* key, const void* bytes,
                         size_t length) noexcept {
  Set(dictionary, key, DataOf(bytes, length));
}

void PLDictionarySetBool(PLDictionaryRef dictionary, const char* key, bool value) noexcept {
  Set(dictionary, key, value);
}

void PLDictionarySetInteger(PLDictionaryRef dictionary, const char* key, int64_t value) noexcept {
  Set(dictionary, key, value);
}

void PLDictionarySetReal(PLDictionaryRef dictionary, const char* key, double value) noexcept {
  Set(dictionary, key, value);
}

void PLDictionarySetArray(PLDictionaryRef dictionary, const char* key, PLArrayRef value) noexcept {
  if (value != nullptr) Set(dictionary, key, PropertyList::FromHandle(value));
}

void PLDictionarySetDictionary(PLDictionaryRef dictionary, const char* key,
                               PLDictionaryRef value) noexcept {
  if (value != nullptr) Set(dictionary, key, PropertyList::FromHandle(value));
}

void PLDictionaryRemove(PLDictionaryRef dictionary, const char* key) noexcept {
  if (dictionary != nullptr && key != nullptr) Of(dictionary)->Remove(key);
}

void PLDictionaryClear(PLDictionaryRef dictionary) noexcept {
  if (dictionary != nullptr) Of(dictionary)->Clear();
}

}  // extern "C"
#pragma GCC visibility pop
