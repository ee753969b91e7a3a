#include "propertylist/XmlForm.h"

#include <locale.h>
#include <plist/plist.h>

#include <cmath>
#include <cstdlib>
#include <memory>

#include "foundation/XMLText.h"
#include "propertylist/XmlCheck.h"

namespace PropertyList {

namespace {

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
// The library's own form of a reference in an archive: a dictionary of this one key.
constexpr const char* kUidKey = "CF$UID";

struct FreeNode {
  void operator()(void* node) const { plist_free(node); }
};
using Node = std::unique_ptr<void, FreeNode>;

struct FreeMemory {
  void operator()(void* memory) const { std::free(memory); }
};
using Text = std::unique_ptr<char, FreeMemory>;

// The library reads and writes reals by the locale of the thread.
class NumbersOfC {
 public:
  NumbersOfC() : mBefore(uselocale(Numbers())) {}
  ~NumbersOfC() { uselocale(mBefore); }
  NumbersOfC(const NumbersOfC&) = delete;
  NumbersOfC& operator=(const NumbersOfC&) = delete;

 private:
  // Kept for the process's life.
  static locale_t Numbers() {
    static const locale_t sNumbers = newlocale(LC_NUMERIC_MASK, "C", nullptr);
    return sNumbers;
  }

  locale_t mBefore;
};

// Builds the library's tree. Shared containers are written as often as they are held, so bytes and
// values are counted on the way.
class TreeBuilder {
 public:
  Node Build(const Value& value, int depth) {
    mValueCount += 1;
    if (mValueCount > kMaxXmlValues) return nullptr;
    if (const bool* flag = value.AsBool()) return Node(plist_new_bool(*flag ? 1 : 0));
    if (const std::int64_t* number = value.AsInteger()) {
      return Node(plist_new_uint(static_cast<std::uint64_t>(*number)));
    }
    if (const double* number = value.AsReal()) {
      return std::isfinite(*number) ? Node(plist_new_real(*number)) : nullptr;
    }
    if (const std::string* text = value.AsString()) {
      return Accept(*text) ? Node(plist_new_string(text->c_str())) : nullptr;
    }
    if (const Data* data = value.AsData()) return BuildData(*data);
    if (depth >= kMaxXmlDepth) return nullptr;
    if (const Array* array = value.AsArray()) return BuildArray(*array, depth + 1);
    if (const Dictionary* dictionary = value.AsDictionary()) {
      return BuildDictionary(*dictionary, depth + 1);
    }
    return nullptr;
  }

 private:
  bool Count(std::size_t bytes) {
    mByteCount += bytes;
    return mByteCount <= kMaxXmlBytes;
  }

  bool Accept(const std::string& text) { return Count(text.size()) && XMLText::IsPossible(text); }

  Node BuildData(const Data& data) {
    if (!Count(data.size())) return nullptr;
    static const char kNothing = 0;
    const char* bytes = data.empty() ? &kNothing : reinterpret_cast<const char*>(data.data());
    return Node(plist_new_data(bytes, data.size()));
  }

  Node BuildArray(const Array& array, int depth) {
    Node node(plist_new_array());
    for (const Value& value : array.Values()) {
      Node child = Build(value, depth);
      if (!child) return nullptr;
      plist_array_append_item(node.get(), child.release());
    }
    return node;
  }

  Node BuildDictionary(const Dictionary& dictionary, int depth) {
    if (dictionary.Count() > kMaxXmlKeys) return nullptr;
    Node node(plist_new_dict());
    for (const auto& [key, value] : dictionary.Entries()) {
      if (!Accept(key)) return nullptr;
      Node child = Build(value, depth);
      if (!child) return nullptr;
      plist_dict_set_item(node.get(), key.c_str(), child.release());
    }
    return node;
  }

  std::size_t mByteCount = 0;
  std::size_t mValueCount = 0;
};

std::optional<Value> ValueOfNode(plist_t node);

std::optional<Value> ArrayOfNode(plist_t node) {
  ArrayRef array = Array::Create();
  plist_array_iter created = nullptr;
  plist_array_new_iter(node, &created);
  const std::unique_ptr<void, FreeMemory> iterator(created);
  for (;;) {
    plist_t child = nullptr;
    plist_array_next_item(node, iterator.get(), &child);
    if (child == nullptr) return Value(array);
    std::optional<Value> value = ValueOfNode(child);
    if (!value) return std::nullopt;
    array->Append(std::move(*value));
  }
}

std::optional<Value> DictionaryOfNode(plist_t node) {
  std::vector<Dictionary::Entry> entries;
  entries.reserve(plist_dict_get_size(node));
  plist_dict_iter created = nullptr;
  plist_dict_new_iter(node, &created);
  const std::unique_ptr<void, FreeMemory> iterator(created);
  for (;;) {
    char* createdKey = nullptr;
    plist_t child = nullptr;
    plist_dict_next_item(node, iterator.get(), &createdKey, &child);
    const Text key(createdKey);
    if (child == nullptr) return Value(Dictionary::CreateOfDistinct(std::move(entries)));
    std::optional<Value> value = ValueOfNode(child);
    if (!value) return std::nullopt;
    entries.emplace_back(key ? key.get() : "", std::move(*value));
  }
}

Value DataOfNode(plist_t node) {
  std::uint64_t length = 0;
  const char* bytes = plist_get_data_ptr(node, &length);
  if (bytes == nullptr) return Data();
  return Data(bytes, bytes + length);
}

std::int64_t IntegerOfNode(plist_t node) {
  std::uint64_t number = 0;
  plist_get_uint_val(node, &number);
  return static_cast<std::int64_t>(number);
}

Value DictionaryOfUidNode(plist_t node) {
  std::uint64_t number = 0;
  plist_get_uid_val(node, &number);
  DictionaryRef dictionary = Dictionary::Create();
  dictionary->Set(kUidKey, static_cast<std::int64_t>(number));
  return dictionary;
}

// Depth is bounded by the check before.
std::optional<Value> ValueOfNode(plist_t node) {
  switch (plist_get_node_type(node)) {
    case PLIST_BOOLEAN: {
      std::uint8_t flag = 0;
      plist_get_bool_val(node, &flag);
      return Value(flag != 0);
    }
    case PLIST_UINT:
      return Value(IntegerOfNode(node));
    case PLIST_REAL: {
      double number = 0;
      plist_get_real_val(node, &number);
      return Value(number);
    }
    case PLIST_STRING: {
      std::uint64_t length = 0;
      const char* text = plist_get_string_ptr(node, &length);
      return text == nullptr ? Value("") : Value(std::string(text, length));
    }
    case PLIST_DATA:
      return DataOfNode(node);
    case PLIST_UID:
      return DictionaryOfUidNode(node);
    case PLIST_ARRAY:
      return ArrayOfNode(node);
    case PLIST_DICT:
      return DictionaryOfNode(node);
    default:
      return std::nullopt;
  }
}

}  // namespace

std::optional<std::string> WriteXml(const Value& value) {
  const Node root = TreeBuilder().Build(value, 0);
  if (!root) return std::nullopt;
  const NumbersOfC numbers;
  char* created = nullptr;
  std::uint32_t length = 0;
  plist_to_xml(root.get(), &created, &length);
  const Text text(created);
  if (!text || length > kMaxXmlBytes) return std::nullopt;
  return std::string(text.get(), length);
}

std::optional<Value> ReadXml(std::string_view text) {
  if (text.starts_with(kByteOrderMark)) text.remove_prefix(kByteOrderMark.size());
  const std::optional<std::string> xml = CheckXml(text);
  if (!xml) return std::nullopt;
  const NumbersOfC numbers;
  plist_t created = nullptr;  // the library reads it
  plist_from_xml(xml->data(), static_cast<std::uint32_t>(xml->size()), &created);
  const Node root(created);
  if (!root) return std::nullopt;
  return ValueOfNode(root.get());
}

}  // namespace PropertyList
