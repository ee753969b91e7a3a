#include "propertylist/XmlForm.h"

#include <gtest/gtest.h>

#include <clocale>
#include <cmath>

#include "foundation/GString.h"
#include "foundation/GStringUtils.h"
#include "propertylist/FontRecord.h"

namespace {

using PropertyList::Array;
using PropertyList::ArrayRef;
using PropertyList::Data;
using PropertyList::Dictionary;
using PropertyList::DictionaryRef;
using PropertyList::ReadXml;
using PropertyList::Value;
using PropertyList::WriteXml;

constexpr const char* kHead =
    "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
    "<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" "
    "\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n"
    "<plist version=\"1.0\">\n";

std::string InPlist(const std::string& value) { return kHead + value + "\n</plist>\n"; }

// The text of a string value inside of XML, "(none)" if the XML is refused.
std::string ReadString(const std::string& content) {
  const std::optional<Value> value = ReadXml(InPlist("<string>" + content + "</string>"));
  return value && value->AsString() ? *value->AsString() : "(none)";
}

std::string Repeated(int count, const std::string& text) {
  std::string all;
  for (int i = 0; i < count; ++i) all += text;
  return all;
}

ArrayRef ArrayOf(const std::vector<Value>& values) {
  const ArrayRef array = Array::Create();
  for (const Value& value : values) array->Append(value);
  return array;
}

void ExpectRoundTrip(const Value& value) {
  const std::optional<std::string> xml = WriteXml(value);
  ASSERT_TRUE(xml);
  const std::optional<Value> read = ReadXml(*xml);
  ASSERT_TRUE(read) << *xml;
  EXPECT_TRUE(read->Equals(value)) << *xml;
  EXPECT_EQ(WriteXml(*read), xml);
}

TEST(XmlForm, WritesTheKnownForm) {
  const FontRecord record = MakeFontRecord();
  record->Set("PostScriptName", "A<B & \"C\"");
  record->Set("Alpha", "\xC3\xA9");
  const FontRecordArray fonts = MakeFontRecordArray();
  fonts->Append(record);
  fonts->Append(MakeFontRecord());
  EXPECT_EQ(WriteXml(fonts),
            InPlist("<array>\n\t<dict>\n\t\t<key>PostScriptName</key>\n"
                    "\t\t<string>A&lt;B &amp; \"C\"</string>\n\t\t<key>Alpha</key>\n"
                    "\t\t<string>\xC3\xA9</string>\n\t</dict>\n\t<dict/>\n</array>"));
}

TEST(XmlForm, EveryKindRoundTripsByteForByte) {
  const ArrayRef all =
      ArrayOf({true, false, Value(std::int64_t{INT64_MIN}), Value(std::int64_t{INT64_MAX}), 0.1,
               3.0, "  a\n\tb  ", "", Data(), Array::Create(), Dictionary::Create()});
  ExpectRoundTrip(all);
  EXPECT_EQ(ReadXml("\xEF\xBB\xBF" + WriteXml(all).value())->Equals(all), true);
}

TEST(XmlForm, ValuesAtTheEndsOfTheirKindsRoundTrip) {
  for (const double real : {-0.0, 1e308, 5e-324, -2.2250738585072009e-308, 1.0 / 3, 1e16, -1e-5,
                            0x1.fffffffffffffp+1023, 123456789.125}) {
    ExpectRoundTrip(real);
  }
  for (const double real : {HUGE_VAL, -HUGE_VAL, std::nan("")}) EXPECT_FALSE(WriteXml(real));
  for (std::size_t size = 0; size <= 10'000; size += size < 200 ? 1 : 977) {
    Data data(size);
    for (std::size_t i = 0; i < size; ++i) data[i] = static_cast<unsigned char>(i * 31 + size);
    ExpectRoundTrip(data);
  }
}

TEST(XmlForm, EveryCharacterRoundTripsInTextsAndKeys) {
  std::string all = "\r\n \t";
  for (char32_t c = 1; c <= 0x10FFFF; c += c < 0x3000 ? 1 : 0x101) {
    const std::string utf8 = GString::OSUnicodeToUtf8(std::u32string(1, c));
    const bool isXml = c >= 0x20 ? c < 0xFFFE || c > 0xFFFF : c == 9 || c == 10 || c == 13;
    if (!utf8.empty() && isXml) all += utf8;
  }
  all += "]]>&amp;&#65;<!--<![CDATA[ \r\n";
  const DictionaryRef record = Dictionary::Create();
  record->Set(all, all);
  record->Set("", "");
  record->Set("\r\n", "");
  record->Set(" ", " ");
  ExpectRoundTrip(ArrayOf({record, record}));  // held twice, written twice
}

TEST(XmlForm, ArchiveReferencesStayDictionaries) {
  for (const Value& value : {Value(3), Value(-1), Value("x"), Value(Array::Create())}) {
    const DictionaryRef reference = Dictionary::Create();
    reference->Set("CF$UID", value);
    ExpectRoundTrip(reference);
    ExpectRoundTrip(ArrayOf({reference}));
  }
}

TEST(XmlForm, ManyKeysStayInOrder) {
  const DictionaryRef record = Dictionary::Create();
  for (int i = 0; i < 2000; ++i) record->Set("key" + std::to_string(i * 7919 % 2000), i);
  const Value read = ReadXml(WriteXml(record).value()).value();
  EXPECT_EQ(read.AsDictionary()->Entries()[3].first, "key1757");  // 3 * 7919 mod 2000
  EXPECT_TRUE(read.Equals(record));
}

TEST(XmlForm, ReadsWhatOthersWrite) {
  EXPECT_EQ(ReadString("&amp;&lt;&gt;&apos;&quot;&#65;&#x20AC;&#x1F600;x"),
            "&<>'\"A\xE2\x82\xAC\xF0\x9F\x98\x80x");
  EXPECT_EQ(ReadString("&amp;lt;"), "&lt;");
  EXPECT_EQ(ReadString("a<![CDATA[<b>&amp;]]>c"), "a<b>&amp;c");
  EXPECT_EQ(*ReadXml("<string>bare</string>")->AsString(), "bare");
  EXPECT_EQ(*ReadXml("<plist><string/></plist> <!-- </plist> -->")->AsString(), "");
  EXPECT_EQ(*ReadXml("<plist>\n<integer> -42 </integer></plist>")->AsInteger(), -42);
  EXPECT_EQ(*ReadXml("<plist><real>+2.5e3</real></plist>")->AsReal(), 2500.0);
  EXPECT_EQ(*ReadXml("<plist><data>\n QUJ\n\tD </data></plist>")->AsData(), (Data{'A', 'B', 'C'}));
  const Value record = *ReadXml(
      "<plist><dict><!-- <dict> --><key>a</key><true/><key>a</key><string>2</string>"
      "</dict ></plist>");
  EXPECT_EQ(record.AsDictionary()->Count(), 1U);
  EXPECT_EQ(*record.AsDictionary()->GetString("a"), "2");
}

TEST(XmlForm, RefusesWhatIsNoPropertyList) {
  const std::string bad =
      "text|<plist></plist>|<plist/>|<plist><true/>|<plist><true/><true/></plist>|"
      "<true/><true/>|<plist><true/></plist><plist><true/></plist>|<plist><true/></plist>tail|"
      "<plist><true/></plist></plist>|<plist><plist><true/></plist></plist>|"
      "<array><plist><true/></plist></array>|<dict><key>a</key></dict>|"
      "<dict><string>a</string></dict>|<dict><key>a</key><key>b</key><true/></dict>|"
      "<dict><key>a</key><true/><true/></dict>|<array><key>a</key></array>|<key>a</key>|"
      "<array>text</array>|<array><true/></dict>|<array><true/>|</array>|<true>x</true>|"
      "<unknown/>|<set></set>|<date>2024-01-02T03:04:05Z</date>|<integer>12x</integer>|"
      "<integer/>|<integer>010</integer>|<integer>+-1</integer>|"
      "<integer>9223372036854775808</integer>|<integer>0x10</integer>|"
      "<integer>-9223372036854775809</integer>|<real>x</real>|<real>nan</real>|"
      "<real>-inf</real>|<real>1e999</real>|<real>+-1.5</real>|<real/>|<real>1,5</real>|"
      "<data>Q</data>|<data>QU=D</data>|<data>Q!JD</data>|<string>a<true/></string>|"
      "<string>a<!-- x --></string>|<string>a|<string>a</string|<string>a</key>|"
      "<string>&unknown;</string>|<string>&amp</string>|<string>&ampx;</string>|"
      "<string>&;</string>|<string>a&</string>|<string>&#0;</string>|<string>&#x1;</string>|"
      "<string>&#xD800;</string>|<string>&#x110000;</string>|<string>&#-1;</string>|"
      "<string>&#;</string>|<string><![CDATA[x</string>|<string a=\">\">x</string>|"
      "<string a=\"x>y</string>|<!DOCTYPE plist [<!ENTITY a \"b\">]><plist><true/></plist>|"
      "<!DOCTYPE p [<!ENTITY a \"&b;&b;\"><!ENTITY b \"&a;\">]><string>&a;</string>|"
      "<!-- <true/>|<?xml <true/>|<|<string>\xC3(</string>|<string>\x01</string>";
  for (const std::string& xml : GStringUtils::Split(bad, "|")) EXPECT_FALSE(ReadXml(xml)) << xml;
  for (const std::string& xml : {std::string(), std::string("<string>\0</string>", 18)}) {
    EXPECT_FALSE(ReadXml(xml));
  }
}

TEST(XmlForm, EveryTruncationIsRefused) {
  const std::string xml =
      InPlist("<array>\n<dict><key>a</key><string>b&amp;</string></dict><data>QUJD</data></array>");
  const std::size_t end = xml.rfind('>') + 1;
  for (std::size_t length = 0; length < end; ++length) {
    EXPECT_FALSE(ReadXml(std::string_view(xml).substr(0, length))) << length;
  }
  EXPECT_TRUE(ReadXml(std::string_view(xml).substr(0, end)));
}

TEST(XmlForm, DepthIsBounded) {
  const auto nested = [](int depth, const std::string& inner = "") {
    return Repeated(depth, "<array>") + inner + Repeated(depth, "</array>");
  };
  const Value deepest = ReadXml(nested(64)).value();
  ExpectRoundTrip(deepest);
  ExpectRoundTrip(ReadXml(nested(64, "<true/>")).value());
  EXPECT_FALSE(WriteXml(ArrayOf({deepest})));
  for (const std::string& xml :
       {nested(65), Repeated(1'000'000, "<array>"), Repeated(200'000, "<dict><key>a</key>"),
        Repeated(200'000, "<array><!-- </array> -->")}) {
    EXPECT_FALSE(ReadXml(xml)) << xml.substr(0, 100);
  }
  const ArrayRef snake = Array::Create();
  snake->Append(snake);
  EXPECT_FALSE(WriteXml(snake));
  snake->Clear();
}

TEST(XmlForm, ValuesAndKeysAreBoundedAndEntitiesAreNot) {
  EXPECT_FALSE(ReadXml("<array>" + Repeated(1 << 20, "<true/>") + "</array>"));
  // Thirty doublings: small in memory, a thousand million values in XML.
  Value value = "x";
  for (int i = 0; i < 30; ++i) value = ArrayOf({value, value});
  EXPECT_FALSE(WriteXml(value));
  std::string xml = "<dict>";
  for (int i = 0; i <= 1 << 16; ++i) xml += "<key>" + std::to_string(i) + "</key><true/>";
  EXPECT_FALSE(ReadXml(xml + "</dict>"));
  // The library alone would take hours.
  EXPECT_TRUE(ReadString(Repeated(4'000'000, "&lt;")) == std::string(4'000'000, '<'));
  EXPECT_EQ(ReadString("]]&gt;&#x5D;]><![CDATA[&amp;]]>&#228;"), "]]>]]>&amp;\xC3\xA4");
}

TEST(XmlForm, RefusesToWriteWhatXmlCantHold) {
  const std::string bad[] = {"\xC3(", "\x01", std::string("a\0b", 3), "\xEF\xBF\xBE",
                             "\xED\xA0\x80"};
  for (const std::string& text : bad) {
    EXPECT_FALSE(WriteXml(text)) << testing::PrintToString(text);
    const DictionaryRef record = Dictionary::Create();
    record->Set(text, 1);
    EXPECT_FALSE(WriteXml(record));
  }
  EXPECT_FALSE(WriteXml(Value()));
  EXPECT_FALSE(WriteXml(ArrayOf({Value()})));
}

TEST(XmlForm, RealsDoNotFollowTheLocale) {
  for (const char* name : {"de_DE.UTF-8", "fr_FR.UTF-8", "de_DE.utf8"}) {
    if (std::setlocale(LC_NUMERIC, name) != nullptr) break;
  }
  const std::optional<std::string> xml = WriteXml(1.5);
  const std::optional<Value> value = ReadXml("<plist><real>1.5</real></plist>");
  std::setlocale(LC_NUMERIC, "C");
  EXPECT_EQ(xml, InPlist("<real>1.5</real>"));
  EXPECT_EQ(*value.value().AsReal(), 1.5);
}

}  // namespace
