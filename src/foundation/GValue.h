// A value, or an array of values of one type. Copies share their data, which never changes:
// assigning to a copy gives it other data and leaves the first as it was. A scalar is an array of
// one, so a vector of one element makes a scalar.
//
// [any-thread] Reading, copies included, may go on beside reading. A tree within is shared as it
// stands: who changes it through a shared pointer changes it for all.
#pragma once

#include <nlohmann/json_fwd.hpp>

#include <boost/shared_ptr.hpp>

#include <cstddef>
#include <cstdint>
#include <set>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

#include "foundation/GLibXMLSerializable.h"

class GKVTree;
class GValueImpl;

using GKVTreePtr = boost::shared_ptr<GKVTree>;

template <class T, class... Types>
concept GOneOf = (std::is_same_v<T, Types> || ...);

// The integers among the types of elements, beside bool; `char` is signed and has 8 bits.
template <class T>
concept GValueInteger =
    GOneOf<T, char, unsigned char, short, int, unsigned int, unsigned long long>;

// No other type converts to one of these in passing.
template <class T>
concept GValueElement =
    GValueInteger<T> || GOneOf<T, bool, double, std::string, GKVTree, GKVTreePtr>;

template <class T>
concept GValueSetElement = GOneOf<T, unsigned int, unsigned long long, std::string>;

class GValue : public GLibXMLSerializable {
 public:
  enum EValueType : std::uint32_t {
    kValueType_bool = 0,
    kValueType_byte = 1,    // char
    kValueType_ubyte = 2,   // unsigned char
    kValueType_short = 3,   // short
    kValueType_long = 4,    // int
    kValueType_ulong = 5,   // unsigned int
    kValueType_double = 6,  // double
    kValueType_string = 7,
    kValueType_NULL = 8,       // no value, or an unknown type
    kValueType_uLongLong = 9,  // unsigned long long
    kValueType_kvtree = 10
  };

  static constexpr TModuleErrorCode kValueTypeError = MakeErrorCode(0x001007, 1);
  static constexpr TModuleErrorCode kArrayIndexError = MakeErrorCode(0x001007, 2);
  static constexpr TModuleErrorCode kEmptyValueBytes = MakeErrorCode(0x001007, 3);
  static constexpr TModuleErrorCode kValueSizeMismatch = MakeErrorCode(0x001007, 4);
  static constexpr TModuleErrorCode kValueConversionError = MakeErrorCode(0x001007, 5);

  static constexpr const char* kStrElementName_value = "value";

  // kValueType_NULL, without elements.
  GValue();
  // From one value, a vector or a set; assignment goes through these. A GKVTree is copied, a shared
  // pointer to one is shared, and a null one makes reading and writing end in
  // CoreErrorCodes::kNullPointer.
  template <GValueElement T>
  GValue(const T& value);
  template <GValueElement T>
  GValue(const std::vector<T>& values);
  template <GValueSetElement T>
  GValue(const std::set<T>& values);
  // Strings; null is an empty one.
  GValue(const char* text);
  GValue(const std::vector<const char*>& texts);
  // Copying only: a value that was moved from is still a value.
  GValue(const GValue&) = default;
  GValue& operator=(const GValue&) = default;
  ~GValue() override = default;

  EValueType GetValueType() const { return m_eValueType; }
  unsigned int GetCount() const;
  // Any count but one; a value of kValueType_NULL is no array.
  bool IsArray() const;

  // Element `index`. After a failure `value` is what it was.
  // kArrayIndexError at or beyond the count. An integer or bool may be read as any of these types
  // that holds the number (a bool 0 and 1), kValueConversionError if it does not; any other type is
  // read as itself only, kValueTypeError.
  template <GValueElement T>
  TModuleErrorCode GetValue(T& value, unsigned int index = 0) const;
  // All elements; what `values` held goes. Failures as above, and kValueTypeError even if there are
  // no elements.
  template <GValueElement T>
  TModuleErrorCode GetValue(std::vector<T>& values) const;
  template <GValueSetElement T>
  TModuleErrorCode GetValue(std::set<T>& values) const;

  // From a type's name in XML, such as "TSInt32"; kValueType_NULL for any other text.
  static EValueType GetTypeFromString(std::string_view name);

  // <value type="TSInt32" isArray="false" size="1"><integer>-5</integer></value>
  //
  // Doubles are written by their bits, so that each comes back as it was; signed integers with
  // their sign, bool as 0 or 1. Reading takes hexadecimal after "0x" too, and negative numbers also
  // as their unsigned form of the type's own or of 64 bits. Blanks around a number are refused.
  //
  // Reading: "isArray" is not looked at, since the count tells. kMissingRequiredAttribute,
  // kInvalidAttributeContent (an unknown type, which "null" counts as, or a size that is no
  // number), kWrongElementName, kInvalidChildNode (anything but elements and blanks between them;
  // the GLibXMLNode codes within a text), kRequiredTextIsBlank, kInvalidTextContent,
  // kValueConversionError (a number beyond the type), kValueSizeMismatch (another count than
  // "size"), CoreErrorCodes::kNotSupported beyond kMaxTreeDepth.
  TModuleErrorCode SetFromXMLNode(const GLibXMLNode& node) override;
  // kValueTypeError for kValueType_NULL, which has no form; kInvalidTextContent for a string that
  // XML cannot hold: bad UTF-8, control characters, U+FFFE and U+FFFF.
  TModuleErrorCode WriteToXMLStream(std::ostream& stream, int indent = kNoIndent) const override;

  // A scalar as itself, an array as an array, a tree as an object. After a failure `json` is what
  // it was. CoreErrorCodes::kNotImplemented for kValueType_NULL; kValueConversionError for what
  // JSON cannot hold, a double that is not finite or a string that is no UTF-8;
  // CoreErrorCodes::kNotSupported beyond kMaxTreeDepth or about kMaxXMLBytes of result.
  TModuleErrorCode ConvertToJSON(nlohmann::json& json) const;

 private:
  friend class GKVTree;
  using Data = std::vector<GValueImpl>;

  GValue(EValueType type, Data&& data);
  template <class Container>
  static GValue FromContainer(const Container& values);
  template <class T>
  TModuleErrorCode GetIntegralValueAtIndex(unsigned int index, T& value) const;
  template <class Container>
  TModuleErrorCode FillWithIntegers(Container& values) const;
  template <class Container>
  TModuleErrorCode FillWithElements(Container& values) const;
  // `depth` is the number of trees around the value.
  TModuleErrorCode ReadXML(const GLibXMLNode& valueNode, unsigned int depth);
  TModuleErrorCode ReadXMLElement(const GLibXMLNode& node, unsigned int depth, Data& data) const;
  TModuleErrorCode AppendXML(std::string& xml, int indent, unsigned int depth) const;
  TModuleErrorCode AppendXMLElement(std::string& xml, unsigned int index, int indent,
                                    unsigned int depth) const;
  // `room` is what the result may still take.
  TModuleErrorCode MakeJSON(nlohmann::json& json, unsigned int depth, std::size_t& room) const;
  TModuleErrorCode MakeJSONElement(nlohmann::json& json, unsigned int index, unsigned int depth,
                                   std::size_t& room) const;

  EValueType m_eValueType;
  boost::shared_ptr<Data> m_dataPtr;  // never null
};
