#include "foundation/GValue.h"

#include <gtest/gtest.h>

#include <boost/make_shared.hpp>
#include <cmath>
#include <limits>
#include <nlohmann/json.hpp>
#include <sstream>
#include <tuple>

#include "foundation/GKVTree.h"
#include "foundation/GLibXMLDoc.h"
#include "support/ErrorRecords.h"

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

// Alone and in an array, through XML and back.
template <class T>
void ExpectKept(const std::vector<T>& values, GValue::EValueType type, const std::string& name) {
  const GValue array = values;
  const std::string xml = ToXML(array);
  EXPECT_TRUE(xml.starts_with("<value type=\"" + name + "\" isArray=\"true\" size=\"" +
                              std::to_string(values.size()) + "\">"))
      << xml;
  GValue back;
  ASSERT_EQ(FromXML(ToXML(array, 3), back), kOk);
  EXPECT_EQ(ToXML(back), xml);
  EXPECT_EQ(back.GetValueType(), type);
  std::vector<T> read(1);
  ASSERT_EQ(back.GetValue(read), kOk);
  EXPECT_EQ(read, values);
  T element{};
  EXPECT_EQ(array.GetValue(element, array.GetCount()), GValue::kArrayIndexError);
  EXPECT_EQ(GValue(values[0]).GetValue(element), kOk);
  EXPECT_EQ(element, values[0]);
  GValue none = std::vector<T>();
  ASSERT_EQ(FromXML(ToXML(none), none), kOk);
  EXPECT_EQ(none.GetValue(read), kOk);
  EXPECT_TRUE(read.empty() && none.IsArray());
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

TEST(GValue, SetsAndPointers) {
  std::set<unsigned long long> wide;
  EXPECT_EQ(GValue(std::vector<int>{5, 4, 5}).GetValue(wide), kOk);
  EXPECT_EQ(GValue(std::vector<int>{5, -4}).GetValue(wide), GValue::kValueConversionError);
  EXPECT_EQ(wide, (std::set<unsigned long long>{4, 5}));
  std::set<std::string> texts;
  EXPECT_EQ(GValue(std::vector<const char*>{"b", nullptr}).GetValue(texts), kOk);
  EXPECT_EQ(texts, (std::set<std::string>{"", "b"}));
  EXPECT_EQ(ToXML(static_cast<const char*>(nullptr)), ToXML(std::string()));
  static_assert(!std::is_constructible_v<GValue, const int*>, "no pointer is a bool");
  static_assert(!std::is_constructible_v<GValue, long> && !std::is_constructible_v<GValue, float>);
}

TEST(GValue, CopiesShareUntilAssignedAndTreesIfAsked) {
  GKVTree tree;
  tree.SetValueForKey(1, "a");
  GValue copied = tree;
  const GValue again = copied;
  GValue moved = std::move(copied);
  EXPECT_EQ(copied.GetCount(), 1U);  // NOLINT(bugprone-use-after-move): still a value
  moved = 2.5;
  const auto shared = boost::make_shared<GKVTree>(tree);
  const GValue sharing = std::vector<GKVTreePtr>{shared, shared, nullptr};
  tree.Clear();
  shared->SetValueForKey("new", "a");
  GKVTree out;
  EXPECT_EQ(again.GetValue(out), kOk);
  EXPECT_EQ(out.GetValueTypeForKey("a"), GValue::kValueType_long);
  EXPECT_EQ(sharing.GetValue(out, 1), kOk);
  EXPECT_EQ(out.GetValueTypeForKey("a"), GValue::kValueType_string);
  GKVTreePtr pointer;
  EXPECT_EQ(sharing.GetValue(pointer), kOk);
  EXPECT_EQ(pointer, shared);
  EXPECT_EQ(sharing.GetValue(pointer, 2), CoreErrorCodes::kNullPointer);
  EXPECT_EQ(ToXML(sharing), "CoreErrorCodes::kNullPointer");
}

// Every integer type against a slow twin's range test.
TEST(GValue, IntegersConvertWhereTheyFit) {
  using Integers = std::tuple<char, unsigned char, short, int, unsigned int, unsigned long long>;
  const auto readAs = []<class From, class To>(From number, To) {
    const auto wide = static_cast<Wide>(number);
    using Limits = std::numeric_limits<To>;
    const bool fits = wide >= Limits::min() && wide <= Limits::max();
    To read{42};
    EXPECT_EQ(GValue(number).GetValue(read), fits ? kOk : GValue::kValueConversionError);
    EXPECT_EQ(read, fits ? static_cast<To>(number) : To{42}) << ToXML(number);
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
  const auto codes = [](const GValue& value) {
    std::string reads;
    const auto tryType = [&](auto out) {
      std::vector<decltype(out)> all(1, out);
      const TModuleErrorCode code = value.GetValue(out);
      EXPECT_EQ(value.GetValue(all), code);
      reads += code == kOk ? 'x' : code == GValue::kValueTypeError ? '.' : '?';
    };
    tryType(false), tryType(0), tryType(0.0), tryType(std::string()), tryType(GKVTree());
    return reads;
  };
  const std::pair<GValue, const char*> rows[] = {{true, "xx..."},        {1, "xx..."},
                                                 {2, "?x..."},           {1.0, "..x.."},
                                                 {GValue("1"), "...x."}, {GKVTree(), "....x"}};
  for (const auto& [value, reads] : rows) EXPECT_EQ(codes(value), reads) << reads;
  const GValue none;
  int number = 0;
  std::vector<int> numbers(1);
  EXPECT_FALSE(none.IsArray());
  EXPECT_EQ(none.GetValue(numbers), GValue::kValueTypeError);
  EXPECT_EQ(GValue(std::vector<std::string>()).GetValue(numbers), GValue::kValueTypeError);
  const RecordingAppender& log = RecordingAppender::Install();
  EXPECT_EQ(GValue("1").GetValue(number), GValue::kValueTypeError);
  EXPECT_EQ(none.GetValue(number), GValue::kArrayIndexError);
  EXPECT_EQ(ExpressionsOf(log), "m_eValueType != type\nindex >= m_dataPtr->size()\n");
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
  // "type text"
  const auto read = [&](const std::string& row, GValue& value) {
    return FromXML("<value type='" + row.substr(0, row.find(' ')) + "' size='1'><integer>" +
                       row.substr(row.find(' ') + 1) + "</integer></value>",
                   value);
  };
  const std::pair<GValue, std::vector<const char*>> rows[] = {
      {-5,
       {"TSInt32 -5", "TSInt32 4294967291", "TSInt32 0xfffffffb", "TSInt32 18446744073709551611"}},
      {static_cast<char>(-1), {"TByte 255", "TByte -1"}},
      {static_cast<char>(-128), {"TByte -128"}},
      {7ULL, {"TUInt64 007"}},
      {~0ULL, {"TUInt64 0xFFFFFFFFFFFFFFFF"}},
      {true, {"bool 0x1"}}};
  for (const auto& [expected, texts] : rows) {
    for (const char* text : texts) {
      GValue value;
      EXPECT_EQ(read(text, value), kOk) << text;
      EXPECT_EQ(ToXML(value), ToXML(expected)) << text;
    }
  }
  const std::pair<TModuleErrorCode, std::vector<const char*>> refused[] = {
      {GValue::kValueConversionError,
       {"TByte 256", "TByte -129", "TUByte -1", "TUByte 256", "TSInt16 -9223372036854775809",
        "TUInt32 4294967296", "TUInt64 18446744073709551616", "bool 2", "double -1"}},
      {S::kRequiredTextIsBlank, {"TSInt32 "}},
      {S::kInvalidTextContent,
       {"TSInt32 0x", "TSInt32 -0x5", "TSInt32 0x-5", "TSInt32 --5", "TSInt32 +5", "TSInt32  5",
        "TSInt32 5x", "TSInt32 99999999999999999999x"}},
      {GLibXMLNode::kUnexpectedNodes, {"TSInt32 <!--5-->"}},
      {S::kWrongElementName, {"string 5", "kvtree 5"}},
      {S::kInvalidAttributeContent, {"null 5", "tsint32 5"}},
      {S::kMissingRequiredAttribute, {" 5"}}};
  for (const auto& [code, texts] : refused) {
    for (const char* text : texts) {
      GValue value = "before";
      EXPECT_EQ(read(text, value), code) << text;
      EXPECT_EQ(ToXML(value), ToXML("before"));
    }
  }
}

TEST(GValue, BecomesJson) {
  json out;
  const auto dump = [&](const GValue& value) {
    const TModuleErrorCode code = value.ConvertToJSON(out);
    return code == kOk ? out.dump() : GetNameForErrorCode(code);
  };
  EXPECT_EQ(dump(true) + dump(static_cast<char>(-5)) + dump(static_cast<unsigned char>('A')),
            "true-565");
  EXPECT_EQ(dump(18446744073709551615ULL) + dump(2.0), "184467440737095516152.0");
  EXPECT_EQ(dump(std::vector<bool>{true, false}) + dump(std::vector<double>()), "[true,false][]");
  EXPECT_EQ(dump(std::vector<std::string>{"a\"\x01"}), "\"a\\\"\\u0001\"");
  out = "before";
  EXPECT_EQ(dump(GValue()), "CoreErrorCodes::kNotImplemented");
  EXPECT_EQ(dump(std::vector<std::string>{"a", "\xFF"}), "GValue::kValueConversionError");
  EXPECT_EQ(dump(std::nan("")), "GValue::kValueConversionError");
  EXPECT_EQ(out, json("before"));
}

}  // namespace
