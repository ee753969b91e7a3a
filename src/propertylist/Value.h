// The property-list value: null, bool, integer, real, string, data, array, dictionary. Arrays and
// dictionaries are counted and shared, so a record in two arrays is one record; everything else is
// a value. The counts are atomic and intrusive, so that a handle over a library border
// (sdk/PropertyList.h) is a plain pointer to the same object.
#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

#include "sdk/PropertyList.h"

namespace PropertyList {

// Base of what is shared. A new object has one count.
class Object {
 public:
  Object() = default;
  Object(const Object&) = delete;
  Object& operator=(const Object&) = delete;

  void Retain() { mCount.fetch_add(1, std::memory_order_relaxed); }
  void Release() {
    if (mCount.fetch_sub(1, std::memory_order_acq_rel) == 1) Destroy();
  }
  // For tests and for "is anybody else holding this".
  std::uint32_t GetRetainCount() const { return mCount.load(std::memory_order_relaxed); }

 protected:
  virtual ~Object() = default;

 private:
  // Deletes this and what only this holds, however deep that is nested.
  void Destroy();

  std::atomic<std::uint32_t> mCount{1};
  Object* mNextPending = nullptr;  // used while being destroyed
};

// Shares an Object; may be null.
template <typename T>
class Ref {
 public:
  Ref() = default;
  Ref(std::nullptr_t) {}  // NOLINT(google-explicit-constructor)
  Ref(const Ref& other) : mObject(other.mObject) {
    if (mObject) mObject->Retain();
  }
  Ref(Ref&& other) noexcept : mObject(std::exchange(other.mObject, nullptr)) {}
  ~Ref() {
    if (mObject) mObject->Release();
  }
  Ref& operator=(Ref other) noexcept {
    std::swap(mObject, other.mObject);
    return *this;
  }

  // Takes over the count that the caller holds.
  static Ref Adopt(T* object) {
    Ref ref;
    ref.mObject = object;
    return ref;
  }
  // Adds a count of its own.
  static Ref Share(T* object) {
    if (object) object->Retain();
    return Adopt(object);
  }
  // Gives the count away, to a border or an out parameter.
  [[nodiscard]] T* Detach() { return std::exchange(mObject, nullptr); }

  T* Get() const { return mObject; }
  T* operator->() const { return mObject; }
  T& operator*() const { return *mObject; }
  explicit operator bool() const { return mObject != nullptr; }
  // Identity, not contents.
  friend bool operator==(const Ref& a, const Ref& b) { return a.mObject == b.mObject; }

 private:
  T* mObject = nullptr;
};

class Array;
class Dictionary;
using ArrayRef = Ref<Array>;
using DictionaryRef = Ref<Dictionary>;
using Data = std::vector<unsigned char>;

class Value {
 public:
  Value() = default;
  Value(bool value) : mValue(value) {}                           // NOLINT
  Value(int value) : mValue(std::int64_t{value}) {}              // NOLINT
  Value(std::int64_t value) : mValue(value) {}                   // NOLINT
  Value(double value) : mValue(value) {}                         // NOLINT
  Value(const char* value) : mValue(std::string(value)) {}       // NOLINT
  Value(std::string value) : mValue(std::move(value)) {}         // NOLINT
  Value(std::string_view value) : mValue(std::string(value)) {}  // NOLINT
  Value(Data value) : mValue(std::move(value)) {}                // NOLINT
  Value(ArrayRef value);                                         // NOLINT: null gives a null value
  Value(DictionaryRef value);                                    // NOLINT: null gives a null value

  // Defined in one place: inlined into a caller with a sanitizer, moving an integer reads to the
  // compiler like moving every other kind too.
  Value(const Value& other);
  Value(Value&& other) noexcept;
  Value& operator=(const Value& other);
  Value& operator=(Value&& other) noexcept;
  ~Value();

  PLKind Kind() const;
  bool IsNull() const { return std::holds_alternative<std::monostate>(mValue); }
  // Null if the value is of another kind.
  const bool* AsBool() const { return std::get_if<bool>(&mValue); }
  const std::int64_t* AsInteger() const { return std::get_if<std::int64_t>(&mValue); }
  const double* AsReal() const { return std::get_if<double>(&mValue); }
  const std::string* AsString() const { return std::get_if<std::string>(&mValue); }
  const Data* AsData() const { return std::get_if<Data>(&mValue); }
  Array* AsArray() const;
  Dictionary* AsDictionary() const;

  // Deep equality. A container equals itself; two of them that are nested deeper than 64 levels, or
  // without end, or hold more than 2^20 values, are unequal.
  bool Equals(const Value& other) const;

 private:
  struct Comparison;

  std::variant<std::monostate, bool, std::int64_t, double, std::string, Data, ArrayRef,
               DictionaryRef>
      mValue;
};

}  // namespace PropertyList

// The types behind the border's opaque handles.
struct PLArray : PropertyList::Object {};
struct PLDictionary : PropertyList::Object {};

namespace PropertyList {

class Array final : public PLArray {
 public:
  static ArrayRef Create() { return ArrayRef::Adopt(new Array); }

  std::size_t Count() const { return mValues.size(); }
  bool IsEmpty() const { return mValues.empty(); }
  // `index` below Count().
  const Value& At(std::size_t index) const { return mValues[index]; }
  // Null if the index is past the end or the entry is no dictionary.
  DictionaryRef DictionaryAt(std::size_t index) const;
  void Append(Value value) { mValues.push_back(std::move(value)); }
  void Set(std::size_t index, Value value) { mValues[index] = std::move(value); }
  void Remove(std::size_t index) {
    mValues.erase(mValues.begin() + static_cast<std::ptrdiff_t>(index));
  }
  // Moves an entry and those between by one place. False if either place is past the end.
  bool Move(std::size_t from, std::size_t to);
  void Clear() { mValues.clear(); }
  // Another array of the same entries.
  ArrayRef Copy() const;

  std::vector<Value>& Values() { return mValues; }
  const std::vector<Value>& Values() const { return mValues; }

 private:
  std::vector<Value> mValues;
};

// Keys in insertion order, in a flat vector: records are small.
class Dictionary final : public PLDictionary {
 public:
  using Entry = std::pair<std::string, Value>;

  static DictionaryRef Create() { return DictionaryRef::Adopt(new Dictionary); }
  // Of entries whose keys are known to differ: no key is looked for.
  static DictionaryRef CreateOfDistinct(std::vector<Entry> entries);

  std::size_t Count() const { return mEntries.size(); }
  // Null if absent. Lent until the dictionary changes.
  const Value* Find(std::string_view key) const;
  bool Has(std::string_view key) const { return Find(key) != nullptr; }
  // Replaces in place or appends.
  void Set(std::string_view key, Value value);
  // False if the key was absent.
  bool Remove(std::string_view key);
  // Removes the entries of which `isUnwanted(key)` says so, in linear time; how many there were.
  template <typename Predicate>
  std::size_t RemoveIf(Predicate isUnwanted) {
    return std::erase_if(mEntries, [&](const Entry& entry) { return isUnwanted(entry.first); });
  }
  void Clear() { mEntries.clear(); }
  // Another dictionary of the same entries; what they share stays shared.
  DictionaryRef Copy() const;

  // Null if absent or of another kind.
  const std::string* GetString(std::string_view key) const;
  ArrayRef GetArray(std::string_view key) const;
  DictionaryRef GetDictionary(std::string_view key) const;

  const std::vector<Entry>& Entries() const { return mEntries; }

 private:
  std::vector<Entry> mEntries;
};

// Handles of the border: AsHandle lends, FromHandle shares, AdoptHandle takes the caller's count.
inline PLArrayRef AsHandle(const ArrayRef& array) { return array.Get(); }
inline PLDictionaryRef AsHandle(const DictionaryRef& dictionary) { return dictionary.Get(); }
inline ArrayRef FromHandle(PLArrayRef handle) {
  return ArrayRef::Share(static_cast<Array*>(handle));
}
inline DictionaryRef FromHandle(PLDictionaryRef handle) {
  return DictionaryRef::Share(static_cast<Dictionary*>(handle));
}
inline ArrayRef AdoptHandle(PLArrayRef handle) {
  return ArrayRef::Adopt(static_cast<Array*>(handle));
}
inline DictionaryRef AdoptHandle(PLDictionaryRef handle) {
  return DictionaryRef::Adopt(static_cast<Dictionary*>(handle));
}
// The text of a string handle, whose count is given back; empty for null.
std::string AdoptString(PLStringRef handle);

}  // namespace PropertyList
