#include "host/ActionSuites.h"

#include <cstring>

#include "host/ActionObjects.h"

namespace {

// Copies text into a caller's buffer, cut to fit and terminated.
void CopyText(const std::string& text, char* out, std::uint32_t size) {
  if (size == 0) return;
  const std::size_t length = std::min<std::size_t>(text.size(), size - 1);
  std::memcpy(out, text.data(), length);
  out[length] = 0;
}

template <typename Handle, typename Data>
SPErr MakeObject(Handle* out) {
  if (out == nullptr) return kSPBadParameterError;
  *out = new Data;
  return 0;
}

// Frees a handle that Make or a getter gave out; the caller gives its ownership back here.
template <typename Data>
SPErr FreeObject(Data* object) {
  delete object;
  return 0;
}

// Where an item stands: under a key of a descriptor or at an index of a list.
const ActionItem* Find(PIActionDescriptor descriptor, std::uint32_t key) {
  return descriptor ? descriptor->Find(key) : nullptr;
}
const ActionItem* Find(PIActionList list, std::uint32_t index) {
  return list && index < list->items.size() ? &list->items[index] : nullptr;
}

template <typename T, typename Container>
const T* FindValue(Container container, std::uint32_t place) {
  const ActionItem* item = Find(container, place);
  return item ? std::get_if<T>(&item->value) : nullptr;
}

template <typename T, typename Container>
SPErr GetPlain(Container container, std::uint32_t place, T* out) {
  const T* value = FindValue<T>(container, place);
  if (value == nullptr || out == nullptr) return kPSItemMissingError;
  *out = *value;
  return 0;
}

template <typename T>
SPErr PutPlain(PIActionDescriptor descriptor, DescriptorKeyID key, T value) {
  if (descriptor == nullptr) return kSPBadParameterError;
  descriptor->Put(key, ActionItem{std::move(value)});
  return 0;
}

template <typename Container>
SPErr GetType(Container container, std::uint32_t place, DescriptorTypeID* out) {
  const ActionItem* item = Find(container, place);
  if (item == nullptr || out == nullptr) return kPSItemMissingError;
  *out = item->Type();
  return 0;
}

template <typename Container>
SPErr GetStringLength(Container container, std::uint32_t place, std::uint32_t* out) {
  const std::string* text = FindValue<std::string>(container, place);
  if (text == nullptr || out == nullptr) return kPSItemMissingError;
  *out = static_cast<std::uint32_t>(text->size());
  return 0;
}

template <typename Container>
SPErr GetString(Container container, std::uint32_t place, char* out, std::uint32_t size) {
  const std::string* text = FindValue<std::string>(container, place);
  if (text == nullptr || out == nullptr) return kPSItemMissingError;
  CopyText(*text, out, size);
  return 0;
}

template <bool kGlobal, typename Container>
SPErr GetObject(Container container, std::uint32_t place, DescriptorClassID* type,
                PIActionDescriptor* out) {
  const ActionObject* object = FindValue<ActionObject>(container, place);
  if (object == nullptr || object->global != kGlobal || out == nullptr) return kPSItemMissingError;
  if (type) *type = object->type;
  *out = new PIActionDescriptorData(*object->value);
  return 0;
}

template <bool kGlobal>
ActionItem MakeObjectItem(DescriptorClassID type, PIActionDescriptor value) {
  return {ActionObject{type, std::make_shared<const PIActionDescriptorData>(*value), kGlobal}};
}

template <typename Container>
SPErr GetList(Container container, std::uint32_t place, PIActionList* out) {
  const auto* list = FindValue<std::shared_ptr<const PIActionListData>>(container, place);
  if (list == nullptr || out == nullptr) return kPSItemMissingError;
  *out = new PIActionListData(**list);
  return 0;
}

template <bool kGlobal>
SPErr PutObjectUnderKey(PIActionDescriptor descriptor, DescriptorKeyID key, DescriptorClassID type,
                        PIActionDescriptor value) {
  if (descriptor == nullptr || value == nullptr) return kSPBadParameterError;
  descriptor->Put(key, MakeObjectItem<kGlobal>(type, value));
  return 0;
}

template <bool kGlobal>
SPErr AppendObject(PIActionList list, DescriptorClassID type, PIActionDescriptor value) {
  if (list == nullptr || value == nullptr) return kSPBadParameterError;
  list->items.push_back(MakeObjectItem<kGlobal>(type, value));
  return 0;
}

SPErr AppendStep(PIActionReference reference, PIActionReferenceData::Step step) {
  if (reference == nullptr) return kSPBadParameterError;
  reference->steps.push_back(step);
  return 0;
}

using Form = PIActionReferenceData::Form;

}  // namespace

const PSActionDescriptorProcs& ActionDescriptorSuite() {
  static const PSActionDescriptorProcs suite = {
      .Make = MakeObject<PIActionDescriptor, PIActionDescriptorData>,
      .Free = FreeObject<PIActionDescriptorData>,
      .Clear = [](PIActionDescriptor descriptor) -> SPErr {
        if (descriptor == nullptr) return kSPBadParameterError;
        descriptor->items.clear();
        return 0;
      },
      .GetCount = [](PIActionDescriptor descriptor, std::uint32_t* out) -> SPErr {
        if (descriptor == nullptr || out == nullptr) return kSPBadParameterError;
        *out = static_cast<std::uint32_t>(descriptor->items.size());
        return 0;
      },
      .GetKey = [](PIActionDescriptor descriptor, std::uint32_t index,
                   DescriptorKeyID* out) -> SPErr {
        if (descriptor == nullptr || out == nullptr) return kSPBadParameterError;
        if (index >= descriptor->items.size()) return kPSItemMissingError;
        *out = descriptor->items[index].first;
        return 0;
      },
      .HasKey = [](PIActionDescriptor descriptor, DescriptorKeyID key, bool* out) -> SPErr {
        if (descriptor == nullptr || out == nullptr) return kSPBadParameterError;
        *out = descriptor->Find(key) != nullptr;
        return 0;
      },
      .GetType = GetType<PIActionDescriptor>,
      .GetInteger = GetPlain<std::int32_t, PIActionDescriptor>,
      .PutInteger = PutPlain<std::int32_t>,
      .GetBoolean = GetPlain<bool, PIActionDescriptor>,
      .PutBoolean = PutPlain<bool>,
      .GetFloat = GetPlain<double, PIActionDescriptor>,
      .PutFloat = PutPlain<double>,
      .GetStringLength = GetStringLength<PIActionDescriptor>,
      .GetString = GetString<PIActionDescriptor>,
      .PutString = [](PIActionDescriptor descriptor, DescriptorKeyID key,
                      const char* value) -> SPErr {
        return value ? PutPlain(descriptor, key, std::string(value)) : kSPBadParameterError;
      },
      .GetEnumerated = [](PIActionDescriptor descriptor, DescriptorKeyID key,
                          DescriptorTypeID* type, DescriptorEnumID* value) -> SPErr {
        const auto* found = FindValue<ActionEnumeration>(descriptor, key);
        if (found == nullptr) return kPSItemMissingError;
        if (type) *type = found->type;
        if (value) *value = found->value;
        return 0;
      },
      .PutEnumerated = [](PIActionDescriptor descriptor, DescriptorKeyID key, DescriptorTypeID type,
                          DescriptorEnumID value) -> SPErr {
        return PutPlain(descriptor, key, ActionEnumeration{type, value});
      },
      .GetAlias = [](PIActionDescriptor descriptor, DescriptorKeyID key,
                     AliasHandle* out) -> SPErr {
        const auto* alias = FindValue<PIAliasData>(descriptor, key);
        if (alias == nullptr || out == nullptr) return kPSItemMissingError;
        *out = new PIAliasData(*alias);
        return 0;
      },
      .PutAlias = [](PIActionDescriptor descriptor, DescriptorKeyID key, AliasHandle value)
          -> SPErr { return value ? PutPlain(descriptor, key, *value) : kSPBadParameterError; },
      .GetObject = GetObject<false, PIActionDescriptor>,
      .PutObject = PutObjectUnderKey<false>,
      .GetGlobalObject = GetObject<true, PIActionDescriptor>,
      .PutGlobalObject = PutObjectUnderKey<true>,
      .GetList = GetList<PIActionDescriptor>,
      .PutList = [](PIActionDescriptor descriptor, DescriptorKeyID key,
                    PIActionList value) -> SPErr {
        return value ? PutPlain(descriptor, key, std::make_shared<const PIActionListData>(*value))
                     : kSPBadParameterError;
      },
      .GetReference = [](PIActionDescriptor descriptor, DescriptorKeyID key,
                         PIActionReference* out) -> SPErr {
        const auto* reference = FindValue<PIActionReferenceData>(descriptor, key);
        if (reference == nullptr || out == nullptr) return kPSItemMissingError;
        *out = new PIActionReferenceData(*reference);
        return 0;
      },
      .PutReference = [](PIActionDescriptor descriptor, DescriptorKeyID key,
                         PIActionReference value) -> SPErr {
        return value ? PutPlain(descriptor, key, *value) : kSPBadParameterError;
      },
  };
  return suite;
}

const PSActionListProcs& ActionListSuite() {
  static const PSActionListProcs suite = {
      .Make = MakeObject<PIActionList, PIActionListData>,
      .Free = FreeObject<PIActionListData>,
      .GetCount = [](PIActionList list, std::uint32_t* out) -> SPErr {
        if (list == nullptr || out == nullptr) return kSPBadParameterError;
        *out = static_cast<std::uint32_t>(list->items.size());
        return 0;
      },
      .GetType = GetType<PIActionList>,
      .GetStringLength = GetStringLength<PIActionList>,
      .GetString = GetString<PIActionList>,
      .PutString = [](PIActionList list, const char* value) -> SPErr {
        if (list == nullptr || value == nullptr) return kSPBadParameterError;
        list->items.push_back(ActionItem{std::string(value)});
        return 0;
      },
      .GetObject = GetObject<false, PIActionList>,
      .PutObject = AppendObject<false>,
      .GetGlobalObject = GetObject<true, PIActionList>,
      .PutGlobalObject = AppendObject<true>,
      .GetList = GetList<PIActionList>,
      .PutList = [](PIActionList list, PIActionList value) -> SPErr {
        if (list == nullptr || value == nullptr) return kSPBadParameterError;
        list->items.push_back(ActionItem{std::make_shared<const PIActionListData>(*value)});
        return 0;
      },
  };
  return suite;
}

const PSActionReferenceProcs& ActionReferenceSuite() {
  static const PSActionReferenceProcs suite = {
      .Make = MakeObject<PIActionReference, PIActionReferenceData>,
      .Free = FreeObject<PIActionReferenceData>,
      .PutProperty = [](PIActionReference reference, DescriptorClassID type,
                        DescriptorKeyID key) -> SPErr {
        return AppendStep(reference, {Form::eProperty, type, key});
      },
      .PutEnumerated = [](PIActionReference reference, DescriptorClassID type, DescriptorTypeID,
                          DescriptorEnumID value) -> SPErr {
        return AppendStep(reference, {Form::eEnumerated, type, value});
      },
      .PutIndex = [](PIActionReference reference, DescriptorClassID type,
                     std::uint32_t index) -> SPErr {
        return AppendStep(reference, {Form::eIndex, type, index});
      },
      .PutIdentifier = [](PIActionReference reference, DescriptorClassID type,
                          std::uint32_t identifier) -> SPErr {
        return AppendStep(reference, {Form::eIdentifier, type, identifier});
      },
  };
  return suite;
}

const PSAliasProcs& AliasSuite() {
  static const PSAliasProcs suite = {
      .NewAlias = [](const char* path, AliasHandle* out) -> SPErr {
        if (path == nullptr || out == nullptr) return kSPBadParameterError;
        *out = new PIAliasData{path};
        return 0;
      },
      .DisposeAlias = FreeObject<PIAliasData>,
      .AliasToFullPath = [](AliasHandle alias, char* out, std::uint32_t size) -> SPErr {
        if (alias == nullptr || out == nullptr) return kSPBadParameterError;
        CopyText(alias->path, out, size);
        return 0;
      },
  };
  return suite;
}
