#include "photoshop/PIUtilities.h"

#include <cstdint>
#include <cstring>

namespace {

static_assert(sizeof(int) == sizeof(int32_t));

// Leaves all but the lowest byte alone, in either byte order.
void StoreInLowByte(int* target, bool value) {
  const auto bits = static_cast<std::uint32_t>(*target);
  *target = static_cast<int>((bits & ~std::uint32_t{0xFF}) | (value ? 1u : 0u));
}

SPErr ReadProperty(PIActionReference reference, OwnedDescriptor& answer) {
  sPSActionDescriptor.AcquireSuite(true);  // which frees the answer
  const SPErr error = sPSActionControl->Get(answer.Out(), reference);
  return error == 0 && !answer ? kPSItemMissingError : error;
}

SPErr GetByIndex(int index, DescriptorClassID type, DescriptorKeyID key, OwnedDescriptor& answer) {
  OwnedReference reference;
  if (const SPErr error = sPSActionReference->Make(reference.Out())) return error;
  if (const SPErr error = sPSActionReference->PutProperty(reference.Get(), classProperty, key)) {
    return error;
  }
  if (const SPErr error =
          sPSActionReference->PutIndex(reference.Get(), type, static_cast<std::uint32_t>(index))) {
    return error;
  }
  return ReadProperty(reference.Get(), answer);
}

}  // namespace

SPErr PIUGetSingleItemFromDescriptor(PIActionDescriptor descriptor, DescriptorKeyID key, int* first,
                                     bool*) {
  DescriptorTypeID type = 0;
  if (const SPErr error = sPSActionDescriptor->GetType(descriptor, key, &type)) return error;
  if (type == kTypeInteger) return sPSActionDescriptor->GetInteger(descriptor, key, first);
  if (type != kTypeBoolean) return kPSItemMissingError;
  bool value = false;
  const SPErr error = sPSActionDescriptor->GetBoolean(descriptor, key, &value);
  if (error == 0) StoreInLowByte(first, value);
  return error;
}

SPErr PIUGetSingleItemFromDescriptor(PIActionDescriptor descriptor, DescriptorKeyID key,
                                     OwnedAlias& alias) {
  sPSAlias.AcquireSuite(true);  // which frees the alias
  return sPSActionDescriptor->GetAlias(descriptor, key, alias.Out());
}

SPErr PIUGetInfo(DescriptorClassID type, DescriptorKeyID key, OwnedDescriptor& answer) {
  OwnedReference reference;
  if (const SPErr error = sPSActionReference->Make(reference.Out())) return error;
  if (const SPErr error = sPSActionReference->PutProperty(reference.Get(), classProperty, key)) {
    return error;
  }
  if (const SPErr error =
          sPSActionReference->PutEnumerated(reference.Get(), type, typeOrdinal, enumTarget)) {
    return error;
  }
  return ReadProperty(reference.Get(), answer);
}

SPErr PIUGetInfo(DescriptorClassID type, DescriptorKeyID key, int* first, bool* second) {
  OwnedDescriptor answer;
  if (const SPErr error = PIUGetInfo(type, key, answer)) return error;
  return PIUGetSingleItemFromDescriptor(answer.Get(), key, first, second);
}

SPErr PIUGetInfo(DescriptorClassID type, DescriptorKeyID key, OwnedAlias& alias) {
  OwnedDescriptor answer;
  if (const SPErr error = PIUGetInfo(type, key, answer)) return error;
  return PIUGetSingleItemFromDescriptor(answer.Get(), key, alias);
}

SPErr PIUGetInfoByIndex(int index, DescriptorClassID type, DescriptorKeyID key, int* first) {
  OwnedDescriptor answer;
  if (const SPErr error = GetByIndex(index, type, key, answer)) return error;
  return PIUGetSingleItemFromDescriptor(answer.Get(), key, first);
}

SPErr PIUGetInfoByIndex(int index, DescriptorClassID type, DescriptorKeyID key, OwnedAlias& alias) {
  OwnedDescriptor answer;
  if (const SPErr error = GetByIndex(index, type, key, answer)) return error;
  return PIUGetSingleItemFromDescriptor(answer.Get(), key, alias);
}

SPErr PIUSelectByID(DescriptorClassID type, int id) {
  OwnedReference reference;
  if (const SPErr error = sPSActionReference->Make(reference.Out())) return error;
  if (const SPErr error = sPSActionReference->PutIdentifier(reference.Get(), type,
                                                            static_cast<std::uint32_t>(id))) {
    return error;
  }
  OwnedDescriptor parameters;
  if (const SPErr error = sPSActionDescriptor->Make(parameters.Out())) return error;
  if (const SPErr error =
          sPSActionDescriptor->PutReference(parameters.Get(), keyNull, reference.Get())) {
    return error;
  }
  OwnedDescriptor answer;
  return sPSActionControl->Play(answer.Out(), eventSelect, parameters.Get(), kPSDialogSilent);
}
