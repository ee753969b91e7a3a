// Arrays over the border of sdk/PropertyList.h.
#include "propertylist/Border.h"

using namespace PropertyList::Border;
using PropertyList::Array;
using PropertyList::Value;

namespace {

const Value* Find(PLArrayRef array, size_t index) {
  return array == nullptr || index >= Of(array)->Count() ? nullptr : &Of(array)->At(index);
}

void Append(PLArrayRef array, Value value) {
  if (array != nullptr) Of(array)->Append(std::move(value));
}

}  // namespace

#pragma GCC visibility push(default)
extern "C" {

PLArrayRef PLArrayCreate(void) noexcept { return Array::Create().Detach(); }

PLArrayRef PLArrayCopy(PLArrayRef array) noexcept {
  return array == nullptr ? nullptr : Of(array)->Copy().Detach();
}

PLArrayRef PLArrayRetain(PLArrayRef array) noexcept { return Retained(array); }

void PLArrayRelease(PLArrayRef array) noexcept { Released(array); }

bool PLArrayEquals(PLArrayRef array, PLArrayRef other) noexcept {
  return Value(PropertyList::FromHandle(array)).Equals(PropertyList::FromHandle(other));
}

PLStringRef PLArrayCopyXml(PLArrayRef array) noexcept {
  return CopyXml(PropertyList::FromHandle(array));
}

size_t PLArrayGetCount(PLArrayRef array) noexcept {
  return array == nullptr ? 0 : Of(array)->Count();
}

PLKind PLArrayGetKind(PLArrayRef array, size_t index) noexcept {
  return KindOf(Find(array, index));
}

const char* PLArrayGetString(PLArrayRef array, size_t index, size_t* length) noexcept {
  return StringOf(Find(array, index), length);
}

const void* PLArrayGetData(PLArrayRef array, size_t index, size_t* length) noexcept {
  return BytesOf(Find(array, index), length);
}

bool PLArrayGetBool(PLArrayRef array, size_t index, bool* value) noexcept {
  return BoolOf(Find(array, index), value);
}

bool PLArrayGetInteger(PLArrayRef array, size_t index, int64_t* value) noexcept {
  return IntegerOf(Find(array, index), value);
}

bool PLArrayGetReal(PLArrayRef array, size_t index, double* value) noexcept {
  return RealOf(Find(array, index), value);
}

PLArrayRef PLArrayGetArray(PLArrayRef array, size_t index) noexcept {
  return ArrayOf(Find(array, index));
}

PLDictionaryRef PLArrayGetDictionary(PLArrayRef array, size_t index) noexcept {
  return DictionaryOf(Find(array, index));
}

void PLArrayAppendNull(PLArrayRef array) noexcept { Append(array, {}); }

void PLArrayAppendString(PLArrayRef array, const char* bytes, size_t length) noexcept {
  Append(array, TextOf(bytes, length));
}

void PLArrayAppendData(PLArrayRef array, const void* bytes, size_t length) noexcept {
  Append(array, DataOf(bytes, length));
}

void PLArrayAppendBool(PLArrayRef array, bool value) noexcept { Append(array, value); }

void PLArrayAppendInteger(PLArrayRef array, int64_t value) noexcept { Append(array, value); }

void PLArrayAppendReal(PLArrayRef array, double value) noexcept { Append(array, value); }

void PLArrayAppendArray(PLArrayRef array, PLArrayRef value) noexcept {
  if (value != nullptr) Append(array, PropertyList::FromHandle(value));
}

void PLArrayAppendDictionary(PLArrayRef array, PLDictionaryRef value) noexcept {
  if (value != nullptr) Append(array, PropertyList::FromHandle(value));
}

void PLArrayMove(PLArrayRef array, size_t from, size_t to) noexcept {
  if (array != nullptr) Of(array)->Move(from, to);
}

void PLArrayRemove(PLArrayRef array, size_t index) noexcept {
  if (Find(array, index) != nullptr) Of(array)->Remove(index);
}

void PLArrayClear(PLArrayRef array) noexcept {
  if (array != nullptr) Of(array)->Clear();
}

}  // extern "C"
#pragma GCC visibility pop
