#include "foundation/GValue.h"

#include <gtest/gtest.h>

#include <boost/make_shared.hpp>
#include <limits>
#include <nlohmann/json.hpp>
#include <sstream>
#include <tuple>

#include "foundation/GKVTree.h"
#include "foundation/GLibXMLDoc.h"
#include "support/RecordingAppender.h"

namespace {

using nlohmann::json;

__extension__ typedef __int128 Wide;

constexpr TModuleErrorCode kOk = CoreErrorCodes::kSuccess;

std::string ToXML(const GValue& value, int indent = GValue::kNoIndent) {
  std::ostringstream stream;
  const TModuleErrorCode code = value.WriteToXMLStream(stream, indent);
  return code == kOk ? stream.str() : GetNameForErrorCode(code) + stream.str();
}

TModuleErrorCode FromXML(const std::string& xml, GValue& value) {
  GLibXMLDoc document;
  GLibXMLNode root;
  if (document.SetFromBuffer(xml.data(), xml.size()) != kOk) return GLibXML::kParseFailed;
  return document.GetRootNode(root) == kOk ? value.SetFromXMLNode(root) : GLibXMLDoc::kNullObject;
}

// Through the value, its XML and back.
template <class T>
void ExpectKept(const std::vector<T>& values, GValue::EValueType type, const std::string& name) {
  const GValue array = values;
  EXPECT_EQ(array.GetValueType(), type);
  EXPECT_EQ(GValue::GetTypeFromString(name), type);
  ASSERT_EQ(array.GetCount(), values.size());
  EXPECT_TRUE(array.IsArray());
  const std::string xml = ToXML(array);
  const std::string start = "<value type=\"" + name + "\" isArray=\"true\" size=\"" +
                            std::to_string(values.size()) + "\">";
  EXPECT_TRUE(xml.starts_with(start)) << xml;
  GValue back;
  ASSERT_EQ(FromXML(xml, back), kOk) << xml;
  ASSERT_EQ(FromXML(ToXML(array, 3), back), kOk);
  EXPECT_EQ(ToXML(back), xml);
  std::vector<T> read(1);
  ASSERT_EQ(back.GetValue(read), kOk);
  EXPECT_EQ(read, values);
  for (unsigned int i = 0; i < values.size(); ++i) {
    const GValue scalar = T(values[i]);
    EXPECT_EQ(scalar.GetValueType(), type);
    EXPECT_FALSE(scalar.IsArray());
    T element{};
    EXPECT_EQ(scalar.GetValue(element), kOk);
    EXPECT_EQ(element, values[i]);
    EXPECT_EQ(scalar.GetValue(element, 1), GValue::kArrayIndexError);
    EXPECT_EQ(array.GetValue(element, i), kOk);
    EXPECT_EQ(element, values[i]);
  }
  GValue none = std::vector<T>();
  EXPECT_TRUE(none.IsArray());
  ASSERT_EQ(FromXML(ToXML(none), none), kOk);
  EXPECT_EQ(none.GetValueType(), type);
  EXPECT_EQ(none.GetValue(read), kOk);
  EXPECT_TRUE(read.empty());
}

template <class T>
void ExpectIntegersKept(GValue::EValueType type, const std::string& name) {
  using Limits = std::numeric_limits<T>;
  ExpectKept<T>({T{0}, T{1}, Limits::min(), Limits::max()}, type, name);
}

TEST(GValue, EveryTypeIsKept) {
  ExpectKept<bool>({true, false, true}, GValue::kValueType_bool, "bool");
  ExpectIntegersKept<char>(GValue::kValueType_byte, "TByte");
  ExpectIntegersKept<unsigned char>(GValue::kValueType_ubyte, "TUByte");
  ExpectIntegersKept<short>(GValue::kValueType_short, "TSInt16");
  ExpectIntegersKept<int>(GValue::kValueType_long, "TSInt32");
  ExpectIntegersKept<unsigned int>(GValue::kValueType_ulong, "TUInt32");
  ExpectIntegersKept<unsigned long long>(GValue::kValueType_uLongLong, "TUInt64");
  using Limits = std::numeric_limits<double>;
  ExpectKept<double>({0.1, -1e300, Limits::denorm_min(), Limits::infinity()},
                     GValue::kValueType_double, "double");
  ExpectKept<std::string>({"", "  ", "\n lead", "a\r\nb\rc\t", "<&>'\"]]>", "\xC3\xA9\x7F\xC2\x85",
                           "&#13;&amp;", "\xF0\x9F\x98\x80"},
                          GValue::kValueType_string, "string");
}

TEST(GValue, OtherWaysIn) {
  std::set<unsigned int> numbers;
  EXPECT_EQ(GValue(std::set<unsigned int>{7, 3}).GetValue(numbers), kOk);
  EXPECT_EQ(numbers, (std::set<unsigned int>{3, 7}));
  std::set<unsigned long long> wide;
  EXPECT_EQ(GValue(std::vector<int>{5, 4, 5}).GetValue(wide), kOk);
  EXPECT_EQ(wide, (std::set<unsigned long long>{4, 5}));
  EXPECT_EQ(GValue(std::vector<int>{5, -4}).GetValue(wide), GValue::kValueConversionError);
  EXPECT_EQ(wide.size(), 2U);
  std::set<std::string> texts;
  EXPECT_EQ(GValue(std::set<std::string>{"b", "a"}).GetValue(texts), kOk);
  EXPECT_EQ(GValue(std::vector<const char*>{"b", nullptr}).GetValue(texts), kOk);
  EXPECT_EQ(texts, (std::set<std::string>{"", "b"}));
  GValue value = "text";
  EXPECT_EQ(value.GetValueType(), GValue::kValueType_string);
  value = static_cast<const char*>(nullptr);
  std::string text = "x";
  EXPECT_EQ(value.GetValue(text), kOk);
  EXPECT_EQ(text, "");
  static_assert(!std::is_constructible_v<GValue, const int*>, "no pointer is a bool");
  static_assert(!std::is_constructible_v<GValue, long> && !std::is_constructible_v<GValue, float>);
}

TEST(GValue, TreesAreCopiedOrShared) {
  GKVTree tree;
  tree.SetValueForKey(1, "a");
  const GValue copied = tree;
  const auto shared = boost::make_shared<GKVTree>(tree);
  const GValue sharing = std::vector<GKVTreePtr>{shared, shared, nullptr};
  tree.Clear();
  shared->SetValueForKey("new", "a");
  GKVTree out;
  EXPECT_EQ(copied.GetValue(out), kOk);
  EXPECT_EQ(out.GetValueTypeForKey("a"), GValue::kValueType_long);
  EXPECT_EQ(sharing.GetValue(out, 1), kOk);
  EXPECT_EQ(out.GetValueTypeForKey("a"), GValue::kValueType_string);
  GKVTreePtr pointer;
  EXPECT_EQ(sharing.GetValue(pointer), kOk);
  EXPECT_EQ(pointer, shared);
  EXPECT_EQ(sharing.GetValue(pointer, 2), CoreErrorCodes::kNullPointer);
  EXPECT_EQ(ToXML(sharing), "CoreErrorCodes::kNullPointer");
}

TEST(GValue, CopiesShareUntilAssigned) {
  const GValue first = std::vector<int>{1, 2};
  GValue copy = first;
  GValue moved = std::move(copy);
  EXPECT_EQ(copy.GetCount(), 2U);  // NOLINT(bugprone-use-after-move): still a value
  copy = 2.5;
  EXPECT_EQ(first.GetValueType(), GValue::kValueType_long);
  EXPECT_EQ(moved.GetCount(), 2U);
  EXPECT_EQ(copy.GetValueType(), GValue::kValueType_double);
}

template <class T>
void ExpectReadAs(const GValue& value, TModuleErrorCode code, T expected) {
  T read{42};
  EXPECT_EQ(value.GetValue(read), code) << ToXML(value);
  EXPECT_EQ(read, code == kOk ? expected : T{42}) << ToXML(value);
}

// Every integer type against a slow twin's range test.
TEST(GValue, IntegersConvertWhereTheyFit) {
  using Integers =
      std::tuple<signed char, unsigned char, short, int, unsigned int, unsigned long long>;
  const auto valueOf = []<class T>(T number) {
    if constexpr (std::is_same_v<T, signed char>) return GValue(static_cast<char>(number));
    if constexpr (!std::is_same_v<T, signed char>) return GValue(number);
  };
  const auto readAs = [&]<class From, class To>(From number, To) {
    const auto wide = static_cast<Wide>(number);
    const bool fits =
        wide >= std::numeric_limits<To>::min() && wide <= std::numeric_limits<To>::max();
    const TModuleErrorCode code = fits ? kOk : GValue::kValueConversionError;
    using Asked = std::conditional_t<std::is_same_v<To, signed char>, char, To>;
    ExpectReadAs<Asked>(valueOf(number), code, static_cast<Asked>(number));
  };
  const auto readAsAll = [&]<class From>(From number) {
    std::apply([&](auto... to) { (readAs(number, to), ...); }, Integers());
  };
  const auto tryType = [&]<class From>(From) {
    for (const Wide number : {-2147483648LL, -32769LL, -32768LL, -129LL, -128LL, -1LL, 0LL, 127LL,
                              128LL, 255LL, 256LL, 32767LL, 32768LL, 2147483647LL, 2147483648LL,
                              4294967295LL, 4294967296LL, -1LL + (1LL << 62)}) {
      if (static_cast<Wide>(static_cast<From>(number)) == number)
        readAsAll(static_cast<From>(number));
    }
    readAsAll(std::numeric_limits<From>::max());
  };
  std::apply([&](auto... from) { (tryType(from), ...); }, Integers());
}

TEST(GValue, NothingElseConverts) {
  const GValue values[] = {true, 1, 1.0, "1", GKVTree()};
  const auto codes = [](const GValue& value) {
    std::string reads;
    const auto tryType = [&](auto out) {
      const std::vector<decltype(out)> one(1, out);
      std::vector<decltype(out)> all = one;
      const TModuleErrorCode code = value.GetValue(out);
      EXPECT_TRUE(code == kOk || code == GValue::kValueTypeError);
      EXPECT_EQ(value.GetValue(all), code);
      reads += code == kOk ? 'x' : '.';
    };
    tryType(false), tryType(0), tryType(0.0), tryType(std::string()), tryType(GKVTree());
    return reads;
  };
  const char* expected[] = {"xx...", "xx...", "..x..", "...x.", "....x"};
  for (std::size_t i = 0; i < std::size(values); ++i) EXPECT_EQ(codes(values[i]), expected[i]);
  ExpectReadAs<int>(GValue(true), kOk, 1);
  bool flag = false;
  EXPECT_EQ(GValue(2).GetValue(flag), GValue::kValueConversionError);
  EXPECT_EQ(GValue(1).GetValue(flag), kOk);
  EXPECT_TRUE(flag);
  const GValue none;
  int number = 0;
  std::vector<int> numbers(1);
  EXPECT_EQ(none.GetValueType(), GValue::kValueType_NULL);
  EXPECT_EQ(none.GetCount(), 0U);
  EXPECT_FALSE(none.IsArray());
  EXPECT_EQ(none.GetValue(number), GValue::kArrayIndexError);
  EXPECT_EQ(none.GetValue(numbers), GValue::kValueTypeError);
  EXPECT_EQ(GValue(std::vector<std::string>()).GetValue(numbers), GValue::kValueTypeError);
}

TEST(GValue, RecordsQuoteTheChecks) {
  RecordingAppender& log = RecordingAppender::Install();
  int number = 0;
  GValue("1").GetValue(number);
  GValue(1).GetValue(number, 1);
  ASSERT_EQ(log.Lines().size(), 2U);
  EXPECT_NE(log.Lines()[0].find("Expression='m_eValueType != type'"), std::string::npos);
  EXPECT_NE(log.Lines()[1].find("Expression='index >= m_dataPtr->size()'"), std::string::npos);
}

TEST(GValue, WritesNothingThatCannotBeReadBack) {
  using namespace std::string_literals;
  for (const std::string& text :
       {"\0"s, "a\x01"s, "\x1F"s, "\xFF"s, "\xED\xA0\x80"s, "\uFFFE"s, "\uFFFF"s, "\xC3"s}) {
    EXPECT_EQ(ToXML(GValue(std::vector<std::string>{"fine", text})),
              "GLibXMLSerializable::kInvalidTextContent");
  }
  EXPECT_EQ(ToXML(GValue()), "GValue::kValueTypeError");
  EXPECT_EQ(ToXML(GValue(std::string(GValue::kMaxXMLBytes - 40, 'x'))),
            "CoreErrorCodes::kNotSupported");
  const GValue largest(std::string(GValue::kMaxXMLBytes - 100, 'x'));
  GValue back;
  EXPECT_EQ(FromXML(ToXML(largest), back), kOk);
  std::ostringstream broken;
  broken.setstate(std::ios::failbit);
  EXPECT_EQ(GValue(1).WriteToXMLStream(broken), CoreErrorCodes::kError);
}

TEST(GValue, ReadsNumbers) {
  using S = GLibXMLSerializable;
  const struct {
    const char* type;
    const char* text;
    const char* written;
    TModuleErrorCode code = kOk;
  } rows[] = {
      {"TSInt32", "-5", "-5"},
      {"TSInt32", "4294967291", "-5"},
      {"TSInt32", "18446744073709551611", "-5"},
      {"TSInt32", "0xfffffffb", "-5"},
      {"TByte", "255", "-1"},
      {"TByte", "-128", "-128"},
      {"TUInt64", "0xFFFFFFFFFFFFFFFF", "18446744073709551615"},
      {"TUInt64", "007", "7"},
      {"bool", "0x1", "1"},
      {"TByte", "256", "", GValue::kValueConversionError},
      {"TByte", "-129", "", GValue::kValueConversionError},
      {"TUByte", "-1", "", GValue::kValueConversionError},
      {"TUByte", "256", "", GValue::kValueConversionError},
      {"TSInt16", "-9223372036854775809", "", GValue::kValueConversionError},
      {"TUInt32", "4294967296", "", GValue::kValueConversionError},
      {"TUInt64", "18446744073709551616", "", GValue::kValueConversionError},
      {"bool", "2", "", GValue::kValueConversionError},
      {"double", "-1", "", GValue::kValueConversionError},
      {"TSInt32", "", "", S::kRequiredTextIsBlank},
      {"TSInt32", "0x", "", S::kInvalidTextContent},
      {"TSInt32", "-0x5", "", S::kInvalidTextContent},
      {"TSInt32", "0x-5", "", S::kInvalidTextContent},
      {"TSInt32", "--5", "", S::kInvalidTextContent},
      {"TSInt32", "+5", "", S::kInvalidTextContent},
      {"TSInt32", " 5", "", S::kInvalidTextContent},
      {"TSInt32", "5x", "", S::kInvalidTextContent},
      {"TSInt32", "99999999999999999999x", "", S::kInvalidTextContent},
      {"TSInt32", "<!--5-->", "", GLibXMLNode::kUnexpectedNodes},
      {"string", "5", "", S::kWrongElementName},
      {"kvtree", "5", "", S::kWrongElementName},
      {"null", "5", "", S::kInvalidAttributeContent},
      {"tsint32", "5", "", S::kInvalidAttributeContent},
      {"", "5", "", S::kMissingRequiredAttribute},
  };
  for (const auto& row : rows) {
    const std::string start = std::string("<value type=\"") + row.type + "\"";
    GValue value = "before";
    EXPECT_EQ(FromXML(start + " size='1'><integer>" + row.text + "</integer></value>", value),
              row.code)
        << row.type << row.text;
    EXPECT_EQ(ToXML(value), row.code == kOk ? start + " isArray=\"false\" size=\"1\"><integer>" +
                                                  row.written + "</integer></value>"
                                            : ToXML("before"));
  }
}

TEST(GValue, BecomesJson) {
  json out;
  const auto dump = [&](const GValue& value) {
    const TModuleErrorCode code = value.ConvertToJSON(out);
    return code == kOk ? out.dump() : GetNameForErrorCode(code);
  };
  EXPECT_EQ(dump(true), "true");
  EXPECT_EQ(dump(static_cast<char>(-5)), "-5");
  EXPECT_EQ(dump(static_cast<unsigned char>('A')), "65");
  EXPECT_EQ(dump(18446744073709551615ULL), "18446744073709551615");
  EXPECT_EQ(dump(2.0), "2.0");
  EXPECT_EQ(dump("a\"\x01"), "\"a\\\"\\u0001\"");
  EXPECT_EQ(dump(std::vector<bool>{true, false}), "[true,false]");
  EXPECT_EQ(dump(std::vector<double>()), "[]");
  EXPECT_EQ(dump(std::vector<std::string>{"one"}), "\"one\"");
  out = "before";
  EXPECT_EQ(dump(GValue()), "CoreErrorCodes::kNotImplemented");
  EXPECT_EQ(dump(std::vector<std::string>{"a", "\xFF"}), "GValue::kValueConversionError");
  EXPECT_EQ(dump(std::numeric_limits<double>::quiet_NaN()), "GValue::kValueConversionError");
  EXPECT_EQ(out, json("before"));
}

}  // namespace
