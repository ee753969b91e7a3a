#include "foundation/GValue.h"

#include <boost/make_shared.hpp>

#include "foundation/ErrorChecks.h"
#include "foundation/GKVTree.h"
#include "foundation/GValueImpl.h"

namespace {

using EValueType = GValue::EValueType;

GValueImpl MakeElement(bool value) { return GValueImpl(std::uint64_t{value}); }
GValueImpl MakeElement(double value) { return GValueImpl(std::bit_cast<std::uint64_t>(value)); }
GValueImpl MakeElement(const std::string& value) { return GValueImpl(value); }
GValueImpl MakeElement(const char* value) { return GValueImpl(std::string(value ? value : "")); }
GValueImpl MakeElement(const GKVTreePtr& value) { return GValueImpl(value); }
GValueImpl MakeElement(const GKVTree& value) {
  return GValueImpl(boost::make_shared<GKVTree>(value));
}
template <GValueInteger T>
GValueImpl MakeElement(T value) {
  return GValueImpl(static_cast<std::uint64_t>(static_cast<GValueRange<T>>(value)));
}

bool IsSigned(EValueType type) {
  return type == GValue::kValueType_byte || type == GValue::kValueType_short ||
         type == GValue::kValueType_long;
}

bool IsIntegral(EValueType type) {
  return IsSigned(type) || type == GValue::kValueType_bool || type == GValue::kValueType_ubyte ||
         type == GValue::kValueType_ulong || type == GValue::kValueType_uLongLong;
}

// The type that a value of type `present` has to have to be read as T.
template <class T>
EValueType TypeToRead(EValueType present) {
  if constexpr (std::integral<T>) {
    if (IsIntegral(present)) return present;
  }
  return GValueTypeOf<T>();
}

template <std::integral T>
bool IsInRange(std::uint64_t bits, EValueType type) {
  if constexpr (std::is_same_v<T, bool>) {
    return bits <= 1;
  } else {
    using Range = GValueRange<T>;
    return IsSigned(type) ? std::in_range<Range>(static_cast<std::int64_t>(bits))
                          : std::in_range<Range>(bits);
  }
}

}  // namespace

GValue::GValue() : m_eValueType(kValueType_NULL) {
  static const boost::shared_ptr<Data>& none =
      *new boost::shared_ptr<Data>(boost::make_shared<Data>());
  m_dataPtr = none;
}

GValue::GValue(EValueType type, Data&& data)
    : m_eValueType(type), m_dataPtr(boost::make_shared<Data>(std::move(data))) {}

template <class Container>
GValue GValue::FromContainer(const Container& values) {
  using Element = typename Container::value_type;
  Data data;
  data.reserve(values.size());
  for (const Element& value : values) data.push_back(MakeElement(value));
  if constexpr (std::is_same_v<Element, const char*>) {
    return {kValueType_string, std::move(data)};
  } else {
    return {GValueTypeOf<Element>(), std::move(data)};
  }
}

template <GValueElement T>
GValue::GValue(const T& value) : GValue(GValueTypeOf<T>(), Data{MakeElement(value)}) {}

template <GValueElement T>
GValue::GValue(const std::vector<T>& values) : GValue(FromContainer(values)) {}

template <GValueSetElement T>
GValue::GValue(const std::set<T>& values) : GValue(FromContainer(values)) {}

GValue::GValue(const char* text) : GValue(kValueType_string, Data{MakeElement(text)}) {}

GValue::GValue(const std::vector<const char*>& texts) : GValue(FromContainer(texts)) {}

unsigned int GValue::GetCount() const { return static_cast<unsigned int>(m_dataPtr->size()); }

bool GValue::IsArray() const { return m_eValueType != kValueType_NULL && m_dataPtr->size() != 1; }

template <class T>
TModuleErrorCode GValue::GetIntegralValueAtIndex(unsigned int index, T& value) const {
  const EValueType type = TypeToRead<T>(m_eValueType);
  G_CHECK_CONDITION(index >= m_dataPtr->size(), kArrayIndexError);
  G_CHECK_CONDITION(m_eValueType != type, kValueTypeError);
  const std::uint64_t bits = (*m_dataPtr)[index].Bits();
  if constexpr (std::is_same_v<T, double>) {
    value = std::bit_cast<double>(bits);
  } else {
    G_CHECK_CONDITION(!IsInRange<T>(bits, type), kValueConversionError);
    value = static_cast<T>(bits);
  }
  return CoreErrorCodes::kSuccess;
}

template <GValueElement T>
TModuleErrorCode GValue::GetValue(T& value, unsigned int index) const {
  if constexpr (std::is_arithmetic_v<T>) {
    return GetIntegralValueAtIndex(index, value);
  } else {
    const EValueType type = TypeToRead<T>(m_eValueType);
    G_CHECK_CONDITION(index >= m_dataPtr->size(), kArrayIndexError);
    G_CHECK_CONDITION(m_eValueType != type, kValueTypeError);
    const GValueImpl& element = (*m_dataPtr)[index];
    if constexpr (std::is_same_v<T, std::string>) {
      value = element.Text();
    } else {
      const GKVTreePtr tree = element.Tree();
      G_CHECK_NULL(tree);
      if constexpr (std::is_same_v<T, GKVTree>) {
        value = *tree;
      } else {
        value = tree;
      }
    }
    return CoreErrorCodes::kSuccess;
  }
}

template <class Container>
TModuleErrorCode GValue::FillWithIntegers(Container& values) const {
  Container filled;
  for (unsigned int index = 0; index < GetCount(); ++index) {
    typename Container::value_type value{};
    G_CHECK_CALL(GetIntegralValueAtIndex(index, value));
    filled.insert(filled.end(), value);
  }
  values.swap(filled);
  return CoreErrorCodes::kSuccess;
}

template <class Container>
TModuleErrorCode GValue::FillWithElements(Container& values) const {
  using Element = typename Container::value_type;
  const EValueType type = TypeToRead<Element>(m_eValueType);
  G_CHECK_CONDITION(m_eValueType != type, kValueTypeError);
  if constexpr (GValueInteger<Element>) {
    return FillWithIntegers(values);
  } else {
    Container filled;
    for (unsigned int index = 0; index < GetCount(); ++index) {
      Element value{};
      G_CHECK_CALL(GetValue(value, index));
      filled.insert(filled.end(), std::move(value));
    }
    values.swap(filled);
    return CoreErrorCodes::kSuccess;
  }
}

template <GValueElement T>
TModuleErrorCode GValue::GetValue(std::vector<T>& values) const {
  return FillWithElements(values);
}

template <GValueSetElement T>
TModuleErrorCode GValue::GetValue(std::set<T>& values) const {
  return FillWithElements(values);
}

template GValue::GValue(const bool&);
template GValue::GValue(const char&);
template GValue::GValue(const unsigned char&);
template GValue::GValue(const short&);
template GValue::GValue(const int&);
template GValue::GValue(const unsigned int&);
template GValue::GValue(const unsigned long long&);
template GValue::GValue(const double&);
template GValue::GValue(const std::string&);
template GValue::GValue(const GKVTree&);
template GValue::GValue(const GKVTreePtr&);
template GValue::GValue(const std::vector<bool>&);
template GValue::GValue(const std::vector<char>&);
template GValue::GValue(const std::vector<unsigned char>&);
template GValue::GValue(const std::vector<short>&);
template GValue::GValue(const std::vector<int>&);
template GValue::GValue(const std::vector<unsigned int>&);
template GValue::GValue(const std::vector<unsigned long long>&);
template GValue::GValue(const std::vector<double>&);
template GValue::GValue(const std::vector<std::string>&);
template GValue::GValue(const std::vector<GKVTree>&);
template GValue::GValue(const std::vector<GKVTreePtr>&);
template TModuleErrorCode GValue::GetValue(bool&, unsigned int) const;
template TModuleErrorCode GValue::GetValue(char&, unsigned int) const;
template TModuleErrorCode GValue::GetValue(unsigned char&, unsigned int) const;
template TModuleErrorCode GValue::GetValue(short&, unsigned int) const;
template TModuleErrorCode GValue::GetValue(int&, unsigned int) const;
template TModuleErrorCode GValue::GetValue(unsigned int&, unsigned int) const;
template TModuleErrorCode GValue::GetValue(unsigned long long&, unsigned int) const;
template TModuleErrorCode GValue::GetValue(double&, unsigned int) const;
template TModuleErrorCode GValue::GetValue(std::string&, unsigned int) const;
template TModuleErrorCode GValue::GetValue(GKVTree&, unsigned int) const;
template TModuleErrorCode GValue::GetValue(GKVTreePtr&, unsigned int) const;
template TModuleErrorCode GValue::GetValue(std::vector<bool>&) const;
template TModuleErrorCode GValue::GetValue(std::vector<char>&) const;
template TModuleErrorCode GValue::GetValue(std::vector<unsigned char>&) const;
template TModuleErrorCode GValue::GetValue(std::vector<short>&) const;
template TModuleErrorCode GValue::GetValue(std::vector<int>&) const;
template TModuleErrorCode GValue::GetValue(std::vector<unsigned int>&) const;
template TModuleErrorCode GValue::GetValue(std::vector<unsigned long long>&) const;
template TModuleErrorCode GValue::GetValue(std::vector<double>&) const;
template TModuleErrorCode GValue::GetValue(std::vector<std::string>&) const;
template TModuleErrorCode GValue::GetValue(std::vector<GKVTree>&) const;
template TModuleErrorCode GValue::GetValue(std::vector<GKVTreePtr>&) const;
template GValue::GValue(const std::set<unsigned int>&);
template GValue::GValue(const std::set<unsigned long long>&);
template GValue::GValue(const std::set<std::string>&);
template TModuleErrorCode GValue::GetValue(std::set<unsigned int>&) const;
template TModuleErrorCode GValue::GetValue(std::set<unsigned long long>&) const;
template TModuleErrorCode GValue::GetValue(std::set<std::string>&) const;
