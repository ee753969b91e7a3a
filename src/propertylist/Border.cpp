// The C functions of sdk/PropertyList.h. No exception crosses: memory that runs out ends the
// process, as everywhere.
#include "propertylist/Value.h"

// Immutable counted text.
struct PLString final : PropertyList::Object {
  explicit PLString(std::string_view bytes) : text(bytes) {}
  const std::string text;
};

namespace {

using PropertyList::Array;
using PropertyList::ArrayRef;
using PropertyList::Dictionary;
using PropertyList::DictionaryRef;
using PropertyList::Value;

std::string_view TextOf(const char* bytes, size_t length) {
  return bytes == nullptr ? std::string_view() : std::string_view(bytes, length);
}

Array* Of(PLArrayRef handle) { return static_cast<Array*>(handle); }

Dictionary* Of(PLDictionaryRef handle) { return static_cast<Dictionary*>(handle); }

const Value* Find(PLArrayRef array, size_t index) {
  return array == nullptr || index >= Of(array)->Count() ? nullptr : &Of(array)->At(index);
}

const Value* Find(PLDictionaryRef dictionary, const char* key) {
  return dictionary == nullptr || key == nullptr ? nullptr : Of(dictionary)->Find(key);
}

void Set(PLDictionaryRef dictionary, const char* key, Value value) {
  if (dictionary != nullptr && key != nullptr) Of(dictionary)->Set(key, std::move(value));
}

template <typename Handle>
Handle Retained(Handle handle) {
  if (handle != nullptr) handle->Retain();
  return handle;
}

template <typename Handle>
void Released(Handle handle) {
  if (handle != nullptr) handle->Release();
}

PLKind KindOf(const Value* value) { return value == nullptr ? kPLAbsent : value->Kind(); }

const char* StringOf(const Value* value, size_t* length) {
  const std::string* text = value == nullptr ? nullptr : value->AsString();
  if (length != nullptr) *length = text == nullptr ? 0 : text->size();
  return text == nullptr ? nullptr : text->c_str();
}

// `found` is null if the value is absent or of another kind; `out` then stays as it was.
template <typename T>
bool Give(const T* found, T* out) {
  if (found == nullptr) return false;
  if (out != nullptr) *out = *found;
  return true;
}

bool IntegerOf(const Value* value, int64_t* out) {
  return Give(value == nullptr ? nullptr : value->AsInteger(), out);
}

}  // namespace

std::string PropertyList::AdoptString(PLStringRef handle) {
  if (handle == nullptr) return {};
  std::string text = handle->text;
  handle->Release();
  return text;
}

#pragma GCC visibility push(default)
extern "C" {

PLStringRef PLStringCreate(const char* bytes, size_t length) {
  return new PLString(TextOf(bytes, length));
}

PLStringRef PLStringRetain(PLStringRef string) { return Retained(string); }

void PLStringRelease(PLStringRef string) { Released(string); }

const char* PLStringGetText(PLStringRef string) {
  return string == nullptr ? "" : string->text.c_str();
}

size_t PLStringGetLength(PLStringRef string) { return string == nullptr ? 0 : string->text.size(); }

PLArrayRef PLArrayCreate(void) { return Array::Create().Detach(); }

PLArrayRef PLArrayRetain(PLArrayRef array) { return Retained(array); }

void PLArrayRelease(PLArrayRef array) { Released(array); }

size_t PLArrayGetCount(PLArrayRef array) { return array == nullptr ? 0 : Of(array)->Count(); }

PLKind PLArrayGetKind(PLArrayRef array, size_t index) { return KindOf(Find(array, index)); }

PLDictionaryRef PLArrayGetDictionary(PLArrayRef array, size_t index) {
  const Value* value = Find(array, index);
  return value == nullptr ? nullptr : value->AsDictionary();
}

const char* PLArrayGetString(PLArrayRef array, size_t index, size_t* length) {
  return StringOf(Find(array, index), length);
}

bool PLArrayGetInteger(PLArrayRef array, size_t index, int64_t* value) {
  return IntegerOf(Find(array, index), value);
}

void PLArrayAppendDictionary(PLArrayRef array, PLDictionaryRef value) {
  if (array != nullptr && value != nullptr) Of(array)->Append(PropertyList::FromHandle(value));
}

void PLArrayAppendString(PLArrayRef array, const char* bytes, size_t length) {
  if (array != nullptr) Of(array)->Append(TextOf(bytes, length));
}

void PLArrayAppendInteger(PLArrayRef array, int64_t value) {
  if (array != nullptr) Of(array)->Append(value);
}

PLDictionaryRef PLDictionaryCreate(void) { return Dictionary::Create().Detach(); }

PLDictionaryRef PLDictionaryRetain(PLDictionaryRef dictionary) { return Retained(dictionary); }

void PLDictionaryRelease(PLDictionaryRef dictionary) { Released(dictionary); }

size_t PLDictionaryGetCount(PLDictionaryRef dictionary) {
  return dictionary == nullptr ? 0 : Of(dictionary)->Count();
}

const char* PLDictionaryGetKeyAt(PLDictionaryRef dictionary, size_t index) {
  if (dictionary == nullptr || index >= Of(dictionary)->Count()) return nullptr;
  return Of(dictionary)->Entries()[index].first.c_str();
}

PLKind PLDictionaryGetKind(PLDictionaryRef dictionary, const char* key) {
  return KindOf(Find(dictionary, key));
}

const char* PLDictionaryGetString(PLDictionaryRef dictionary, const char* key, size_t* length) {
  return StringOf(Find(dictionary, key), length);
}

bool PLDictionaryGetBool(PLDictionaryRef dictionary, const char* key, bool* value) {
  const Value* found = Find(dictionary, key);
  return Give(found == nullptr ? nullptr : found->AsBool(), value);
}

bool PLDictionaryGetInteger(PLDictionaryRef dictionary, const char* key, int64_t* value) {
  return IntegerOf(Find(dictionary, key), value);
}

bool PLDictionaryGetReal(PLDictionaryRef dictionary, const char* key, double* value) {
  const Value* found = Find(dictionary, key);
  return Give(found == nullptr ? nullptr : found->AsReal(), value);
}

PLArrayRef PLDictionaryGetArray(PLDictionaryRef dictionary, const char* key) {
  const Value* value = Find(dictionary, key);
  return value == nullptr ? nullptr : value->AsArray();
}

PLDictionaryRef PLDictionaryGetDictionary(PLDictionaryRef dictionary, const char* key) {
  const Value* value = Find(dictionary, key);
  return value == nullptr ? nullptr : value->AsDictionary();
}

void PLDictionarySetString(PLDictionaryRef dictionary, const char* key, const char* bytes,
                           size_t length) {
  Set(dictionary, key, TextOf(bytes, length));
}

void PLDictionarySetBool(PLDictionaryRef dictionary, const char* key, bool value) {
  Set(dictionary, key, value);
}

void PLDictionarySetInteger(PLDictionaryRef dictionary, const char* key, int64_t value) {
  Set(dictionary, key, value);
}

void PLDictionarySetReal(PLDictionaryRef dictionary, const char* key, double value) {
  Set(dictionary, key, value);
}

void PLDictionarySetArray(PLDictionaryRef dictionary, const char* key, PLArrayRef value) {
  if (value != nullptr) Set(dictionary, key, PropertyList::FromHandle(value));
}

void PLDictionarySetDictionary(PLDictionaryRef dictionary, const char* key, PLDictionaryRef value) {
  if (value != nullptr) Set(dictionary, key, PropertyList::FromHandle(value));
}

void PLDictionaryRemove(PLDictionaryRef dictionary, const char* key) {
  if (dictionary != nullptr && key != nullptr) Of(dictionary)->Remove(key);
}

}  // extern "C"
#pragma GCC visibility pop
