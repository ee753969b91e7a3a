#include "propertylist/Value.h"

#include <algorithm>

namespace PropertyList {

namespace {

constexpr int kMaxEqualsDepth = 64;

// Of values, so that containers which share much come to an end.
constexpr std::size_t kMaxComparisons = std::size_t{1} << 20;

}  // namespace

// What an object holds is deleted after it and not within it, so that nesting needs no stack.
void Object::Destroy() {
  thread_local Object* sPending = nullptr;
  thread_local bool sIsDestroying = false;
  mNextPending = std::exchange(sPending, this);
  if (sIsDestroying) return;
  sIsDestroying = true;
  while (sPending != nullptr) {
    Object* const object = sPending;
    sPending = object->mNextPending;
    delete object;
  }
  sIsDestroying = false;
}

Value::Value(ArrayRef value) {
  if (value) mValue = std::move(value);
}

Value::Value(DictionaryRef value) {
  if (value) mValue = std::move(value);
}

Value::Value(const Value& other) = default;
Value::Value(Value&& other) noexcept = default;

// What is assigned may stand within what is replaced.
Value& Value::operator=(const Value& other) {
  Value copy(other);
  mValue.swap(copy.mValue);
  return *this;
}
Value& Value::operator=(Value&& other) noexcept {
  Value taken(std::move(other));
  mValue.swap(taken.mValue);
  return *this;
}

Value::~Value() = default;

PLKind Value::Kind() const {
  constexpr PLKind kKinds[] = {kPLNull,       kPLBool, kPLInteger,   kPLReal,
                               kPLStringKind, kPLData, kPLArrayKind, kPLDictionaryKind};
  static_assert(std::size(kKinds) == std::variant_size_v<decltype(mValue)>);
  return kKinds[mValue.index()];
}

Array* Value::AsArray() const {
  const ArrayRef* array = std::get_if<ArrayRef>(&mValue);
  return array == nullptr ? nullptr : array->Get();
}

Dictionary* Value::AsDictionary() const {
  const DictionaryRef* dictionary = std::get_if<DictionaryRef>(&mValue);
  return dictionary == nullptr ? nullptr : dictionary->Get();
}

struct Value::Comparison {
  std::size_t left = kMaxComparisons;

  bool Compare(const Value& a, const Value& b, int depth) {
    if (left == 0 || a.mValue.index() != b.mValue.index()) return false;
    left -= 1;
    // Kinds without a value inside of them, and one and the same container.
    if (a.mValue == b.mValue) return true;
    if (depth >= kMaxEqualsDepth) return false;
    if (const Array* array = a.AsArray()) return Compare(*array, *b.AsArray(), depth + 1);
    if (const Dictionary* dictionary = a.AsDictionary()) {
      return Compare(*dictionary, *b.AsDictionary(), depth + 1);
    }
    return false;
  }

  bool Compare(const Array& a, const Array& b, int depth) {
    return std::equal(
        a.Values().begin(), a.Values().end(), b.Values().begin(), b.Values().end(),
        [this, depth](const Value& x, const Value& y) { return Compare(x, y, depth); });
  }

  // In any order of the keys.
  bool Compare(const Dictionary& a, const Dictionary& b, int depth) {
    if (a.Count() != b.Count()) return false;
    return std::all_of(a.Entries().begin(), a.Entries().end(),
                       [this, &b, depth](const Dictionary::Entry& entry) {
                         const Value* other = b.Find(entry.first);
                         return other != nullptr && Compare(entry.second, *other, depth);
                       });
  }
};

bool Value::Equals(const Value& other) const { return Comparison().Compare(*this, other, 0); }

DictionaryRef Array::DictionaryAt(std::size_t index) const {
  if (index >= mValues.size()) return nullptr;
  return DictionaryRef::Share(mValues[index].AsDictionary());
}

bool Array::Move(std::size_t from, std::size_t to) {
  if (from >= mValues.size() || to >= mValues.size()) return false;
  const auto at = [this](std::size_t i) {
    return mValues.begin() + static_cast<std::ptrdiff_t>(i);
  };
  if (from < to) {
    std::rotate(at(from), at(from) + 1, at(to) + 1);
  } else {
    std::rotate(at(to), at(from), at(from) + 1);
  }
  return true;
}

ArrayRef Array::Copy() const {
  ArrayRef copy = Create();
  copy->mValues = mValues;
  return copy;
}

DictionaryRef Dictionary::CreateOfDistinct(std::vector<Entry> entries) {
  DictionaryRef dictionary = Create();
  dictionary->mEntries = std::move(entries);
  return dictionary;
}

const Value* Dictionary::Find(std::string_view key) const {
  const auto found = std::find_if(mEntries.begin(), mEntries.end(),
                                  [key](const Entry& entry) { return entry.first == key; });
  return found == mEntries.end() ? nullptr : &found->second;
}

void Dictionary::Set(std::string_view key, Value value) {
  for (Entry& entry : mEntries) {
    if (entry.first != key) continue;
    entry.second = std::move(value);
    return;
  }
  mEntries.emplace_back(key, std::move(value));
}

bool Dictionary::Remove(std::string_view key) {
  const auto found = std::find_if(mEntries.begin(), mEntries.end(),
                                  [key](const Entry& entry) { return entry.first == key; });
  if (found == mEntries.end()) return false;
  mEntries.erase(found);
  return true;
}

DictionaryRef Dictionary::Copy() const {
  DictionaryRef copy = Create();
  copy->mEntries = mEntries;
  return copy;
}

const std::string* Dictionary::GetString(std::string_view key) const {
  const Value* value = Find(key);
  return value == nullptr ? nullptr : value->AsString();
}

ArrayRef Dictionary::GetArray(std::string_view key) const {
  const Value* value = Find(key);
  return value == nullptr ? nullptr : ArrayRef::Share(value->AsArray());
}

DictionaryRef Dictionary::GetDictionary(std::string_view key) const {
  const Value* value = Find(key);
  return value == nullptr ? nullptr : DictionaryRef::Share(value->AsDictionary());
}

}  // namespace PropertyList
