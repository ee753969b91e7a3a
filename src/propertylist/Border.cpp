// Strings and the XML form over the border of sdk/PropertyList.h. No exception crosses: memory that
// runs out ends the process, as everywhere.
#include "propertylist/Border.h"

#include "propertylist/XmlForm.h"

using namespace PropertyList::Border;
using PropertyList::Value;

namespace {

std::optional<Value> Read(const char* bytes, std::size_t length) {
  return PropertyList::ReadXml(TextOf(bytes, length));
}

}  // namespace

std::string PropertyList::AdoptString(PLStringRef handle) {
  if (handle == nullptr) return {};
  std::string text = handle->text;
  handle->Release();
  return text;
}

PLStringRef PropertyList::Border::CopyXml(const Value& value) {
  std::optional<std::string> xml = WriteXml(value);
  return xml ? new PLString(std::move(*xml)) : nullptr;
}

#pragma GCC visibility push(default)
extern "C" {

PLStringRef PLStringCreate(const char* bytes, size_t length) noexcept {
  return new PLString(TextOf(bytes, length));
}

PLStringRef PLStringRetain(PLStringRef string) noexcept { return Retained(string); }

void PLStringRelease(PLStringRef string) noexcept { Released(string); }

const char* PLStringGetText(PLStringRef string) noexcept {
  return string == nullptr ? "" : string->text.c_str();
}

size_t PLStringGetLength(PLStringRef string) noexcept {
  return string == nullptr ? 0 : string->text.size();
}

PLArrayRef PLArrayCreateFromXml(const char* bytes, size_t length) noexcept {
  const std::optional<Value> value = Read(bytes, length);
  return value ? Retained(ArrayOf(&*value)) : nullptr;
}

PLDictionaryRef PLDictionaryCreateFromXml(const char* bytes, size_t length) noexcept {
  const std::optional<Value> value = Read(bytes, length);
  return value ? Retained(DictionaryOf(&*value)) : nullptr;
}

}  // extern "C"
#pragma GCC visibility pop
