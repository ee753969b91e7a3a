// What the sources of the C border share.
#pragma once

#include <string_view>
#include <utility>

#include "propertylist/Value.h"

// Immutable counted text.
struct PLString final : PropertyList::Object {
  explicit PLString(std::string_view bytes) : text(bytes) {}
  explicit PLString(std::string&& bytes) : text(std::move(bytes)) {}
  const std::string text;
};

namespace PropertyList::Border {

inline std::string_view TextOf(const char* bytes, std::size_t length) {
  return bytes == nullptr ? std::string_view() : std::string_view(bytes, length);
}

inline Data DataOf(const void* bytes, std::size_t length) {
  if (bytes == nullptr) return {};
  const auto* first = static_cast<const unsigned char*>(bytes);
  return Data(first, first + length);
}

inline Array* Of(PLArrayRef handle) { return static_cast<Array*>(handle); }
inline Dictionary* Of(PLDictionaryRef handle) { return static_cast<Dictionary*>(handle); }

template <typename Handle>
Handle Retained(Handle handle) {
  if (handle != nullptr) handle->Retain();
  return handle;
}

template <typename Handle>
void Released(Handle handle) {
  if (handle != nullptr) handle->Release();
}

// The parts of a value that was found; null is an absent one.

inline PLKind KindOf(const Value* value) { return value == nullptr ? kPLAbsent : value->Kind(); }

// False if the value is absent or of another kind; `out` then stays as it was.
template <typename T>
bool Give(const T* found, T* out) {
  if (found == nullptr) return false;
  if (out != nullptr) *out = *found;
  return true;
}

inline bool BoolOf(const Value* value, bool* out) {
  return Give(value == nullptr ? nullptr : value->AsBool(), out);
}
inline bool IntegerOf(const Value* value, int64_t* out) {
  return Give(value == nullptr ? nullptr : value->AsInteger(), out);
}
inline bool RealOf(const Value* value, double* out) {
  return Give(value == nullptr ? nullptr : value->AsReal(), out);
}

inline const char* StringOf(const Value* value, std::size_t* length) {
  const std::string* text = value == nullptr ? nullptr : value->AsString();
  if (length != nullptr) *length = text == nullptr ? 0 : text->size();
  return text == nullptr ? nullptr : text->c_str();
}

inline const void* BytesOf(const Value* value, std::size_t* length) {
  static constexpr unsigned char kNothing = 0;
  const Data* data = value == nullptr ? nullptr : value->AsData();
  if (length != nullptr) *length = data == nullptr ? 0 : data->size();
  if (data == nullptr) return nullptr;
  return data->empty() ? &kNothing : data->data();
}

inline PLArrayRef ArrayOf(const Value* value) {
  return value == nullptr ? nullptr : value->AsArray();
}
inline PLDictionaryRef DictionaryOf(const Value* value) {
  return value == nullptr ? nullptr : value->AsDictionary();
}

// The XML form as a string handle of one count; null if there is none.
PLStringRef CopyXml(const Value& value);

}  // namespace PropertyList::Border
