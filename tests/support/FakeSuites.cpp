#include "support/FakeSuites.h"

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <variant>

namespace {

FakeSuites* gHost = nullptr;

struct Object;
using ObjectRef = std::shared_ptr<Object>;

struct Enumerated {
  DescriptorTypeID type;
  DescriptorEnumID value;
};
struct AliasValue {
  std::string path;
};
struct Child {
  DescriptorTypeID type;  // object, global object or list
  DescriptorClassID childClass;
  ObjectRef object;
};
using Item = std::variant<int32_t, bool, double, std::string, Enumerated, AliasValue, Child>;

// What every handle of this host points to.
struct Object {
  std::vector<std::pair<DescriptorKeyID, Item>> items;  // a list's have no key
  // A reference.
  DescriptorKeyID property = 0;
  std::uint32_t index = 0;       // 0: the current one
  std::uint32_t identifier = 0;  // 0: not by identifier
};

// Handles are given out as pointers to a holder, so that a child's handle has a life of its own.
struct Holder {
  ObjectRef object;
  std::string aliasPath;
};
// Never destroyed: what a caller is known to keep must stay reachable for leak checkers.
std::set<Holder*>& gAlive = *new std::set<Holder*>;
std::map<std::string, DescriptorTypeID> gTypes;

template <typename Handle>
Handle Give(ObjectRef object, std::string aliasPath = {}) {
  auto* holder = new Holder{std::move(object), std::move(aliasPath)};
  gAlive.insert(holder);
  return reinterpret_cast<Handle>(holder);
}

// A handle that is not alive is a fault of the code under test: the test ends there.
template <typename Handle>
Holder& Held(Handle handle) {
  auto* holder = reinterpret_cast<Holder*>(handle);
  if (!gAlive.contains(holder)) std::abort();
  return *holder;
}

template <typename Handle>
Object& In(Handle handle) {
  return *Held(handle).object;
}

template <typename Handle>
SPErr Make(Handle* out) {
  *out = Give<Handle>(std::make_shared<Object>());
  return 0;
}

template <typename Handle>
SPErr Free(Handle handle) {
  Holder& holder = Held(handle);
  gAlive.erase(&holder);
  delete &holder;
  return 0;
}

Item* FindKey(PIActionDescriptor descriptor, DescriptorKeyID key) {
  for (auto& [candidate, item] : In(descriptor).items) {
    if (candidate == key) return &item;
  }
  return nullptr;
}

Item* FindIndex(PIActionList list, std::uint32_t index) {
  auto& items = In(list).items;
  return index < items.size() ? &items[index].second : nullptr;
}

void Put(PIActionDescriptor descriptor, DescriptorKeyID key, Item item) {
  if (Item* present = FindKey(descriptor, key)) {
    *present = std::move(item);
  } else {
    In(descriptor).items.emplace_back(key, std::move(item));
  }
}

struct TypeOf {
  DescriptorTypeID operator()(int32_t) const { return kTypeInteger; }
  DescriptorTypeID operator()(bool) const { return kTypeBoolean; }
  DescriptorTypeID operator()(double) const { return kTypeFloat; }
  DescriptorTypeID operator()(const std::string&) const { return kTypeChar; }
  DescriptorTypeID operator()(const Enumerated&) const { return kTypeEnumerated; }
  DescriptorTypeID operator()(const AliasValue&) const { return kTypeAlias; }
  DescriptorTypeID operator()(const Child& child) const { return child.type; }
};

SPErr TypeOfItem(const Item* item, DescriptorTypeID* out) {
  if (!item) return kPSItemMissingError;
  *out = std::visit(TypeOf(), *item);
  return 0;
}

template <typename T>
SPErr Read(const Item* item, T* out) {
  const T* value = item ? std::get_if<T>(item) : nullptr;
  if (!value) return kPSItemMissingError;
  *out = *value;
  return 0;
}

SPErr ReadLength(const Item* item, std::uint32_t* out) {
  std::string text;
  const SPErr error = Read(item, &text);
  if (error == 0) *out = static_cast<std::uint32_t>(text.size());
  return error;
}

void CopyCut(const std::string& text, char* out, std::uint32_t size) {
  if (size == 0) return;
  const std::size_t length = std::min<std::size_t>(text.size(), size - 1);
  std::memcpy(out, text.data(), length);
  out[length] = '\0';
}

SPErr ReadText(const Item* item, char* out, std::uint32_t size) {
  std::string text;
  const SPErr error = Read(item, &text);
  if (error == 0) CopyCut(text, out, size);
  return error;
}

template <typename Handle>
SPErr ReadChild(const Item* item, DescriptorTypeID type, DescriptorClassID* outClass, Handle* out) {
  const Child* child = item ? std::get_if<Child>(item) : nullptr;
  if (!child || child->type != type) return kPSItemMissingError;
  if (outClass) *outClass = child->childClass;
  *out = Give<Handle>(child->object);
  return 0;
}

template <typename Handle>
Child ChildOf(DescriptorTypeID type, DescriptorClassID childClass, Handle value) {
  return Child{type, childClass, std::make_shared<Object>(In(value))};
}

using D = PIActionDescriptor;
using Key = DescriptorKeyID;

const PSActionDescriptorProcs kDescriptors = {
    .Make = Make<D>,
    .Free = Free<D>,
    .Clear = [](D d) -> SPErr { return In(d).items.clear(), 0; },
    .GetCount = [](D d, std::uint32_t* out) -> SPErr {
      *out = static_cast<std::uint32_t>(In(d).items.size());
      return 0;
    },
    .GetKey = [](D d, std::uint32_t index, Key* out) -> SPErr {
      if (index >= In(d).items.size()) return kPSItemMissingError;
      *out = In(d).items[index].first;
      return 0;
    },
    .HasKey = [](D d, Key key, bool* out) -> SPErr { return *out = FindKey(d, key), 0; },
    .GetType = [](D d, Key key, DescriptorTypeID* out) { return TypeOfItem(FindKey(d, key), out); },
    .GetInteger = [](D d, Key key, int32_t* out) { return Read(FindKey(d, key), out); },
    .PutInteger = [](D d, Key key, int32_t value) -> SPErr { return Put(d, key, value), 0; },
    .GetBoolean = [](D d, Key key, bool* out) { return Read(FindKey(d, key), out); },
    .PutBoolean = [](D d, Key key, bool value) -> SPErr { return Put(d, key, value), 0; },
    .GetFloat = [](D d, Key key, double* out) { return Read(FindKey(d, key), out); },
    .PutFloat = [](D d, Key key, double value) -> SPErr { return Put(d, key, value), 0; },
    .GetStringLength = [](D d, Key key,
                          std::uint32_t* out) { return ReadLength(FindKey(d, key), out); },
    .GetString = [](D d, Key key, char* out,
                    std::uint32_t size) { return ReadText(FindKey(d, key), out, size); },
    .PutString = [](D d, Key key, const char* value) -> SPErr {
      return Put(d, key, std::string(value)), 0;
    },
    .GetEnumerated = [](D d, Key key, DescriptorTypeID* type, DescriptorEnumID* value) -> SPErr {
      Enumerated item{};
      const SPErr error = Read(FindKey(d, key), &item);
      *type = item.type;
      *value = item.value;
      return error;
    },
    .PutEnumerated = [](D d, Key key, DescriptorTypeID type, DescriptorEnumID value) -> SPErr {
      return Put(d, key, Enumerated{type, value}), 0;
    },
    .GetAlias = [](D d, Key key, AliasHandle* out) -> SPErr {
      AliasValue alias;
      const SPErr error = Read(FindKey(d, key), &alias);
      if (error == 0) *out = Give<AliasHandle>(nullptr, alias.path);
      return error;
    },
    .PutAlias = [](D d, Key key, AliasHandle value) -> SPErr {
      return Put(d, key, AliasValue{Held(value).aliasPath}), 0;
    },
    .GetObject = [](D d, Key key, DescriptorClassID* type,
                    D* out) { return ReadChild(FindKey(d, key), kTypeObject, type, out); },
    .PutObject = [](D d, Key key, DescriptorClassID type, D value) -> SPErr {
      return Put(d, key, ChildOf(kTypeObject, type, value)), 0;
    },
    .GetGlobalObject =
        [](D d, Key key, DescriptorClassID* type, D* out) {
          return ReadChild(FindKey(d, key), kTypeGlobalObject, type, out);
        },
    .PutGlobalObject = [](D d, Key key, DescriptorClassID type, D value) -> SPErr {
      return Put(d, key, ChildOf(kTypeGlobalObject, type, value)), 0;
    },
    .GetList =
        [](D d, Key key, PIActionList* out) {
          return ReadChild(FindKey(d, key), kTypeValueList, nullptr, out);
        },
    .PutList = [](D d, Key key, PIActionList value) -> SPErr {
      return Put(d, key, ChildOf(kTypeValueList, 0, value)), 0;
    },
    .GetReference =
        [](D d, Key key, PIActionReference* out) {
          return ReadChild(FindKey(d, key), kTypeObjectReference, nullptr, out);
        },
    .PutReference = [](D d, Key key, PIActionReference value) -> SPErr {
      return Put(d, key, ChildOf(kTypeObjectReference, 0, value)), 0;
    },
};

using L = PIActionList;

SPErr Append(L list, Item item) {
  In(list).items.emplace_back(0, std::move(item));
  return 0;
}

const PSActionListProcs kLists = {
    .Make = Make<L>,
    .Free = Free<L>,
    .GetCount = [](L l, std::uint32_t* out) -> SPErr {
      *out = static_cast<std::uint32_t>(In(l).items.size());
      return 0;
    },
    .GetType = [](L l, std::uint32_t index,
                  DescriptorTypeID* out) { return TypeOfItem(FindIndex(l, index), out); },
    .GetStringLength = [](L l, std::uint32_t index,
                          std::uint32_t* out) { return ReadLength(FindIndex(l, index), out); },
    .GetString = [](L l, std::uint32_t index, char* out,
                    std::uint32_t size) { return ReadText(FindIndex(l, index), out, size); },
    .PutString = [](L l, const char* value) { return Append(l, std::string(value)); },
    .GetObject = [](L l, std::uint32_t index, DescriptorClassID* type,
                    D* out) { return ReadChild(FindIndex(l, index), kTypeObject, type, out); },
    .PutObject = [](L l, DescriptorClassID type,
                    D value) { return Append(l, ChildOf(kTypeObject, type, value)); },
    .GetGlobalObject =
        [](L l, std::uint32_t index, DescriptorClassID* type, D* out) {
          return ReadChild(FindIndex(l, index), kTypeGlobalObject, type, out);
        },
    .PutGlobalObject = [](L l, DescriptorClassID type,
                          D value) { return Append(l, ChildOf(kTypeGlobalObject, type, value)); },
    .GetList = [](L l, std::uint32_t index,
                  L* out) { return ReadChild(FindIndex(l, index), kTypeValueList, nullptr, out); },
    .PutList = [](L l, L value) { return Append(l, ChildOf(kTypeValueList, 0, value)); },
};

using R = PIActionReference;

const PSActionReferenceProcs kReferences = {
    .Make = Make<R>,
    .Free = Free<R>,
    .PutProperty = [](R r, DescriptorClassID, Key key) -> SPErr { return In(r).property = key, 0; },
    .PutEnumerated = [](R, DescriptorClassID, DescriptorTypeID, DescriptorEnumID) -> SPErr {
      return 0;
    },
    .PutIndex = [](R r, DescriptorClassID, std::uint32_t index) -> SPErr {
      return In(r).index = index, 0;
    },
    .PutIdentifier = [](R r, DescriptorClassID, std::uint32_t identifier) -> SPErr {
      return In(r).identifier = identifier, 0;
    },
};

SPErr PutDocumentProperty(const Object& reference, D answer) {
  const auto& documents = gHost->documents;
  const std::uint32_t current = static_cast<std::uint32_t>(gHost->currentIndex);
  const std::uint32_t index = reference.index != 0 ? reference.index : current;
  if (index == 0 || index > documents.size()) return kPSNoSuchElementError;
  const FakeSuites::Document& document = documents[index - 1];
  if (reference.property == keyDocumentID) Put(answer, keyDocumentID, int32_t{document.id});
  if (reference.property == keyIsDirty) Put(answer, keyIsDirty, document.dirty);
  if (reference.property == keyFileReference) {
    Put(answer, keyFileReference, AliasValue{document.path});
  }
  return 0;
}

void PutFontList(D answer) {
  Child names{kTypeValueList, 0, std::make_shared<Object>()};
  for (const std::string& name : gHost->fontList) names.object->items.emplace_back(0, name);
  Child fonts{kTypeObject, 0, std::make_shared<Object>()};
  fonts.object->items.emplace_back(gHost->TypeID("fontPostScriptName"), names);
  Put(answer, gHost->TypeID("fontList"), fonts);
}

SPErr Get(D* out, R reference) {
  ++gHost->reads;
  const Object& asked = In(reference);
  if (const auto error = gHost->readErrors.find(asked.property); error != gHost->readErrors.end()) {
    return error->second;
  }
  Make(out);
  if (asked.property == keyNumberOfDocuments) {
    Put(*out, keyNumberOfDocuments, static_cast<int32_t>(gHost->documents.size()));
    return 0;
  }
  if (asked.property == gHost->TypeID("fontList")) {
    PutFontList(*out);
    return 0;
  }
  const SPErr error = PutDocumentProperty(asked, *out);
  if (error != 0) {
    Free(*out);
    *out = nullptr;
  }
  return error;
}

SPErr Play(D* out, DescriptorEventID event, D parameters, int32_t options) {
  *out = nullptr;
  FakeSuites::PlayedEvent played{event, options, {}, 0, 0};
  if (parameters) {
    AliasValue alias;
    Enumerated saving{};
    if (Read(FindKey(parameters, keyNull), &alias) == 0) played.aliasPath = alias.path;
    if (Read(FindKey(parameters, keySaving), &saving) == 0) played.saving = saving.value;
    const Item* target = FindKey(parameters, keyNull);
    if (const Child* child = target ? std::get_if<Child>(target) : nullptr) {
      played.selected = static_cast<int>(child->object->identifier);
    }
  }
  gHost->played.push_back(played);
  if (gHost->playError == 0 && gHost->onPlay) gHost->onPlay(played);
  return gHost->playError;
}

const PSActionControlProcs kControl = {
    .Get = Get,
    .Play = Play,
    .StringIDToTypeID = [](const char* text, DescriptorTypeID* out) -> SPErr {
      return *out = gHost->TypeID(text), 0;
    },
    .TypeIDToStringID = [](DescriptorTypeID type, char* out, std::uint32_t size) -> SPErr {
      for (const auto& [text, id] : gTypes) {
        if (id == type) return CopyCut(text, out, size), 0;
      }
      return kPSItemMissingError;
    },
    .AddNotify = [](SPPluginRef, DescriptorEventID event, PSEventNotifyProc procedure,
                    void*) -> std::int16_t {
      if (const auto error = gHost->addErrors.find(event); error != gHost->addErrors.end()) {
        return error->second;
      }
      gHost->notifiers.push_back(event);
      gHost->handlers[event] = procedure;
      return 0;
    },
    .RemoveNotify = [](SPPluginRef, DescriptorEventID event) -> std::int16_t {
      if (const auto error = gHost->removeErrors.find(event); error != gHost->removeErrors.end()) {
        return error->second;
      }
      std::erase(gHost->notifiers, event);
      gHost->handlers.erase(event);
      return 0;
    },
};

const PSAliasProcs kAliases = {
    .NewAlias = [](const char* path, AliasHandle* out) -> SPErr {
      return *out = Give<AliasHandle>(nullptr, path), 0;
    },
    .DisposeAlias = Free<AliasHandle>,
    .AliasToFullPath = [](AliasHandle alias, char* out, std::uint32_t size) -> SPErr {
      return CopyCut(Held(alias).aliasPath, out, size), 0;
    },
};

const SPBlocksSuite kBlocks = {
    .AllocateBlock = [](std::size_t size, const char*, void** block) -> SPErr {
      if (gHost->allocateError != 0) return gHost->allocateError;
      *block = std::malloc(size);
      ++gHost->blocksHeld;
      return 0;
    },
    .FreeBlock = [](void* block) -> SPErr {
      std::free(block);
      --gHost->blocksHeld;
      return 0;
    },
};

struct Suite {
  const char* name;
  int32_t version;
  const void* table;
};

const Suite kSuites[] = {
    {kPSActionDescriptorSuite, kPSActionDescriptorSuiteVersion, &kDescriptors},
    {kPSActionListSuite, kPSActionListSuiteVersion, &kLists},
    {kPSActionReferenceSuite, kPSActionReferenceSuiteVersion, &kReferences},
    {kPSActionControlSuite, kPSActionControlSuiteVersion, &kControl},
    {kPSAliasSuite, kPSAliasSuiteVersion, &kAliases},
    {kSPBlocksSuite, kSPBlocksSuiteVersion, &kBlocks},
};

const SPBasicSuite kBasic = {
    .AcquireSuite = [](const char* name, int32_t version, const void** suite) -> SPErr {
      for (const Suite& candidate : kSuites) {
        if (std::strcmp(candidate.name, name) != 0 || candidate.version != version) continue;
        if (gHost->missingSuites.contains(name)) break;
        *suite = candidate.table;
        ++gHost->suitesHeld;
        return 0;
      }
      return kSPSuiteNotFoundError;
    },
    .ReleaseSuite = [](const char*, int32_t) -> SPErr { return --gHost->suitesHeld, 0; },
    .IsEqual = [](const char* a, const char* b) { return std::strcmp(a, b) == 0; },
};

}  // namespace

FakeSuites::FakeSuites() {
  gHost = this;
  mMessage.self = reinterpret_cast<SPPluginRef>(this);
  mMessage.basic = &kBasic;
}

FakeSuites::~FakeSuites() {
  for (PIActionDescriptor descriptor : mLent) Free(descriptor);
  gHost = nullptr;
}

const SPBasicSuite* FakeSuites::Basic() const { return &kBasic; }
const PSActionDescriptorProcs& FakeSuites::Descriptors() const { return kDescriptors; }
const PSActionListProcs& FakeSuites::Lists() const { return kLists; }
const PSAliasProcs& FakeSuites::Aliases() const { return kAliases; }

DescriptorTypeID FakeSuites::TypeID(const std::string& stringID) {
  const auto next = static_cast<DescriptorTypeID>(0x100 + gTypes.size());
  return gTypes.try_emplace(stringID, next).first->second;
}

PIActionDescriptor FakeSuites::NewDescriptor() {
  PIActionDescriptor descriptor = nullptr;
  Make(&descriptor);
  mLent.push_back(descriptor);
  return descriptor;
}

PIActionDescriptor FakeSuites::OpenDescriptor(const std::string& path) {
  PIActionDescriptor descriptor = NewDescriptor();
  Put(descriptor, keyNull, AliasValue{path});
  return descriptor;
}

PIActionDescriptor FakeSuites::SaveDescriptor(bool withDocumentID) {
  PIActionDescriptor descriptor = NewDescriptor();
  if (withDocumentID) Put(descriptor, keyDocumentID, int32_t{1});
  return descriptor;
}

PIActionDescriptor FakeSuites::MakeEventDescriptor(DescriptorClassID type) {
  PIActionDescriptor descriptor = NewDescriptor();
  Put(descriptor, keyNew, Child{kTypeObject, type, std::make_shared<Object>()});
  return descriptor;
}

void FakeSuites::Deliver(DescriptorEventID event, PIActionDescriptor descriptor) {
  const auto handler = handlers.find(event);
  if (handler != handlers.end()) handler->second(event, descriptor, 0, nullptr);
}

std::size_t FakeSuites::ObjectsAlive() const { return gAlive.size() - mLent.size(); }
