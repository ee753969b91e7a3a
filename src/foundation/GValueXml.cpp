// Values as XML.
#include <charconv>

#include <boost/make_shared.hpp>

#include "foundation/ErrorChecks.h"
#include "foundation/GKVTree.h"
#include "foundation/GLibXMLNode.h"
#include "foundation/GValueImpl.h"
#include "foundation/XMLText.h"

namespace {

struct TypeName {
  const char* name;
  GValue::EValueType type;
};

constexpr TypeName kTypeNames[] = {
    {"bool", GValue::kValueType_bool},     {"TByte", GValue::kValueType_byte},
    {"TUByte", GValue::kValueType_ubyte},  {"TSInt16", GValue::kValueType_short},
    {"TSInt32", GValue::kValueType_long},  {"TUInt32", GValue::kValueType_ulong},
    {"double", GValue::kValueType_double}, {"string", GValue::kValueType_string},
    {"null", GValue::kValueType_NULL},     {"TUInt64", GValue::kValueType_uLongLong},
    {"kvtree", GValue::kValueType_kvtree},
};

constexpr const char* kStrElementName_integer = "integer";
constexpr const char* kStrElementName_str = "str";
constexpr const char* kStrAttributeName_type = "type";
constexpr const char* kStrAttributeName_isArray = "isArray";
constexpr const char* kStrAttributeName_size = "size";

const char* NameOf(GValue::EValueType type) {
  for (const TypeName& row : kTypeNames) {
    if (row.type == type) return row.name;
  }
  return "";
}

// The whole of `digits` as a number.
template <class T>
TModuleErrorCode ParseDigits(std::string_view digits, int base, T& number) {
  const char* end = digits.data() + digits.size();
  const auto [stopped, error] = std::from_chars(digits.data(), end, number, base);
  if (error == std::errc::result_out_of_range && stopped == end)
    return GValue::kValueConversionError;
  return error == std::errc() && stopped == end ? CoreErrorCodes::kSuccess
                                                : GLibXMLSerializable::kInvalidTextContent;
}

// What a number means as a T, in the stored form: bool and double are their bits alone, signed
// types may come in the unsigned form of their own width.
template <class T>
TModuleErrorCode ConvertBits(bool isNegative, std::uint64_t& bits) {
  bool fits = !isNegative;
  if constexpr (std::is_same_v<T, bool>) {
    fits = fits && bits <= 1;
  } else if constexpr (GValueInteger<T>) {
    using Range = GValueRange<T>;
    const auto number = static_cast<std::int64_t>(bits);
    fits = fits && std::in_range<std::make_unsigned_t<Range>>(bits);
    if constexpr (std::is_signed_v<Range>) {
      if (fits) bits = static_cast<std::uint64_t>(std::int64_t{static_cast<Range>(bits)});
      fits = fits || std::in_range<Range>(number);
    }
  }
  return fits ? CoreErrorCodes::kSuccess : GValue::kValueConversionError;
}

template <class T>
TModuleErrorCode ParseInteger(std::string_view text, std::uint64_t& bits) {
  G_CHECK_CONDITION(text.empty(), GLibXMLSerializable::kRequiredTextIsBlank);
  bool isNegative = text.starts_with('-');
  if (isNegative) {
    std::int64_t number = 0;
    G_CHECK_CALL(ParseDigits(text, 10, number));
    bits = static_cast<std::uint64_t>(number);
    isNegative = number < 0;
  } else if (text.starts_with("0x")) {
    G_CHECK_CALL(ParseDigits(text.substr(2), 16, bits));
  } else {
    G_CHECK_CALL(ParseDigits(text, 10, bits));
  }
  G_CHECK_CALL(ConvertBits<T>(isNegative, bits));
  return CoreErrorCodes::kSuccess;
}

template <class T>
std::string IntegerText(std::uint64_t bits) {
  if constexpr (GValueInteger<T>) {
    if constexpr (std::is_signed_v<GValueRange<T>>)
      return std::to_string(static_cast<std::int64_t>(bits));
  }
  return std::to_string(bits);
}

void AppendElement(std::string& xml, const char* name, std::string_view text) {
  xml.append("<").append(name).append(">").append(text).append("</").append(name).append(">");
}

void AppendAttribute(std::string& xml, const char* name, std::string_view text) {
  xml.append(" ").append(name).append("=\"").append(text).append("\"");
}

}  // namespace

GValue::EValueType GValue::GetTypeFromString(std::string_view name) {
  for (const TypeName& row : kTypeNames) {
    if (name == row.name) return row.type;
  }
  return kValueType_NULL;
}

TModuleErrorCode GValue::SetFromXMLNode(const GLibXMLNode& node) { return ReadXML(node, 0); }

TModuleErrorCode GValue::ReadXML(const GLibXMLNode& valueNode, unsigned int depth) {
  G_CHECK_CONDITION(!valueNode.VerifyName(kStrElementName_value), kWrongElementName);
  const std::string strType = valueNode.GetAttribute(kStrAttributeName_type);
  G_CHECK_CONDITION(strType.empty(), kMissingRequiredAttribute);
  const std::string strSize = valueNode.GetAttribute(kStrAttributeName_size);
  G_CHECK_CONDITION(strSize.empty(), kMissingRequiredAttribute);
  const EValueType eType = GetTypeFromString(strType);
  G_CHECK_CONDITION(eType == kValueType_NULL, kInvalidAttributeContent);
  std::uint64_t size = 0;
  const bool isSize = ParseDigits(strSize, 10, size) == CoreErrorCodes::kSuccess;
  G_CHECK_CONDITION(!isSize, kInvalidAttributeContent);

  GValue value(eType, Data());
  for (GLibXMLNode node = valueNode.GetFirstChild(); !node.IsNull(); node = node.GetNextSibling()) {
    if (node.IsElementNode()) {
      G_CHECK_CALL(value.ReadXMLElement(node, depth, *value.m_dataPtr));
    } else {
      G_CHECK_CONDITION(!node.IsNodeBlank(), kInvalidChildNode);
    }
  }
  G_CHECK_CONDITION(value.m_dataPtr->size() != size, kValueSizeMismatch);
  *this = value;
  return CoreErrorCodes::kSuccess;
}

TModuleErrorCode GValue::ReadXMLElement(const GLibXMLNode& node, unsigned int depth,
                                        Data& data) const {
  if (m_eValueType == kValueType_kvtree) {
    const auto tree = boost::make_shared<GKVTree>();
    G_CHECK_CALL(tree->ReadXML(node, depth + 1));
    data.emplace_back(tree);
    return CoreErrorCodes::kSuccess;
  }
  const bool isString = m_eValueType == kValueType_string;
  const char* name = isString ? kStrElementName_str : kStrElementName_integer;
  G_CHECK_CONDITION(!node.VerifyName(name), kWrongElementName);
  std::string text;
  G_CHECK_CALL(node.GetText(text));
  if (isString) {
    data.emplace_back(std::move(text));
    return CoreErrorCodes::kSuccess;
  }
  return WithGValueType(m_eValueType, kValueTypeError, [&]<class T>(std::type_identity<T>) {
    if constexpr (std::is_arithmetic_v<T>) {
      std::uint64_t bits = 0;
      G_CHECK_CALL(ParseInteger<T>(text, bits));
      data.emplace_back(bits);
    }
    return CoreErrorCodes::kSuccess;
  });
}

TModuleErrorCode GValue::WriteToXMLStream(std::ostream& stream, int indent) const {
  std::string xml = XMLText::FirstBlanks(indent);
  G_CHECK_CALL(AppendXML(xml, indent, 0));
  G_CHECK_CALL(XMLText::WriteInOnePiece(stream, xml));
  return CoreErrorCodes::kSuccess;
}

TModuleErrorCode GValue::AppendXML(std::string& xml, int indent, unsigned int depth) const {
  G_CHECK_CONDITION(m_eValueType == kValueType_NULL, kValueTypeError);
  xml.append("<").append(kStrElementName_value);
  AppendAttribute(xml, kStrAttributeName_type, NameOf(m_eValueType));
  AppendAttribute(xml, kStrAttributeName_isArray, IsArray() ? "true" : "false");
  AppendAttribute(xml, kStrAttributeName_size, std::to_string(GetCount()));
  xml.append(">");
  for (unsigned int index = 0; index < GetCount(); ++index) {
    XMLText::BreakLine(xml, XMLText::Deeper(indent));
    G_CHECK_CALL(AppendXMLElement(xml, index, XMLText::Deeper(indent), depth));
    G_CHECK_CONDITION(xml.size() > kMaxXMLBytes, CoreErrorCodes::kNotSupported);
  }
  if (GetCount() > 0) XMLText::BreakLine(xml, indent);
  xml.append("</").append(kStrElementName_value).append(">");
  return CoreErrorCodes::kSuccess;
}

TModuleErrorCode GValue::AppendXMLElement(std::string& xml, unsigned int index, int indent,
                                          unsigned int depth) const {
  const GValueImpl& element = (*m_dataPtr)[index];
  return WithGValueType(m_eValueType, kValueTypeError, [&]<class T>(std::type_identity<T>) {
    if constexpr (std::is_same_v<T, GKVTreePtr>) {
      const GKVTreePtr& tree = element.Tree();
      G_CHECK_NULL(tree);
      G_CHECK_CALL(tree->AppendXML(xml, indent, depth + 1));
    } else if constexpr (std::is_same_v<T, std::string>) {
      const std::string& text = element.Text();
      G_CHECK_CONDITION(xml.size() + text.size() > kMaxXMLBytes, CoreErrorCodes::kNotSupported);
      G_CHECK_CONDITION(!XMLText::IsPossible(text), kInvalidTextContent);
      AppendElement(xml, kStrElementName_str, XMLText::EscapeContent(text));
    } else {
      AppendElement(xml, kStrElementName_integer, IntegerText<T>(element.Bits()));
    }
    return CoreErrorCodes::kSuccess;
  });
}
