#include "foundation/GStringUtils.h"

#include <gtest/gtest.h>
#include <pthread.h>

#include <limits>
#include <locale>

#include "support/RecordingAppender.h"

namespace {

using namespace GStringUtils;
using Texts = std::vector<std::string>;

TEST(GStringUtils, TruncatesAtCharacters) {
  RecordingAppender& log = RecordingAppender::Install();
  const std::tuple<std::string, unsigned, std::string> rows[] = {
      {"aé", 3, "aé"},  {"aé", 2, "a"}, {"é", 1, ""},
      {"漢😀", 6, "漢"}, {"", 0, ""},    {{"a\0b", 3}, 2, {"a\0", 2}}};
  for (const auto& [source, most, left] : rows) {
    std::string text = source;
    EXPECT_EQ(OSTruncateUTF8String(text, most), 0U);
    EXPECT_EQ(text, left);
  }
  EXPECT_TRUE(log.Lines().empty());
  std::string bad = "ab\xFF";
  EXPECT_EQ(OSTruncateUTF8String(bad, 9), CoreErrorCodes::kNullPointer);
  EXPECT_EQ(bad, "ab\xFF");
  ASSERT_EQ(log.Lines().size(), 1U);
  EXPECT_NE(log.Lines()[0].find("(nativeString) == nullptr"), std::string::npos);
}

TEST(GStringUtils, SplitsAndJoins) {
  EXPECT_EQ(OSTokenizeString("\r\na\r\n\r\nb\n", "\r\n"), (Texts{"a", "b"}));
  EXPECT_EQ(OSTokenizeString("a b", ""), Texts{"a b"});
  const std::tuple<std::string, std::string, Texts, Texts> rows[] = {
      {"", ",", {""}, {}},
      {",", ",", {"", ""}, {}},
      {"a,,b,", ",", {"a", "", "b", ""}, {"a", "b"}},
      {"a, b,c", ", ", {"a", "b,c"}, {"a", "b,c"}},
      {"a---b", "--", {"a", "-b"}, {"a", "-b"}},
      {"a b", "", {"a b"}, {"a b"}}};
  for (const auto& [text, separator, parts, tokens] : rows) {
    EXPECT_EQ(Split(text, separator), parts) << text;
    EXPECT_EQ(TokenizeString(text, separator), tokens) << text;
    EXPECT_EQ(Join(parts, separator), text);
  }
  EXPECT_EQ(Join({}, ","), "");
}

TEST(GStringUtils, ReplacesAndStrips) {
  EXPECT_EQ(StringReplace("aaaa", "aa", "a", -1), "aa");
  EXPECT_EQ(StringReplace("aaa", "a", "aa"), "aaaaaa");  // goes on behind the replacement
  EXPECT_EQ(StringReplace("aaa", "a", "b", 2), "bba");
  EXPECT_EQ(StringReplace("aaa", "a", "b", 0), "aaa");
  EXPECT_EQ(StringReplace("aaa", "", "b"), "aaa");
  const std::tuple<const char*, const char*, const char*, const char*, std::size_t> rows[] = {
      {" \t\v\f a b\r\n", "a b", "a b\r\n", " \t\v\f a b", 5},
      {"", "", "", "", npos},
      {" \n", "", "", "", npos}};
  for (const auto& [text, both, preceding, trailing, first] : rows) {
    EXPECT_EQ(StripWhitespace(text), both);
    EXPECT_EQ(StripPrecedingWhitespace(text), preceding);
    EXPECT_EQ(StripTrailingWhitespace(text), trailing);
    EXPECT_EQ(FirstNonWhiteSpaceCharacterLoc(text), first);
  }
  EXPECT_EQ(StripPrecedingString("ababc", "ab"), "abc");
  EXPECT_EQ(StripTrailingString("cabab", "ab"), "cab");
  EXPECT_EQ(StripTrailingString("b", "ab"), "b");
  std::string text = "a";
  for (int i = 0; i < 2; ++i) EnsureEndsWith(text, "/");
  EXPECT_EQ(text, "a/");
}

TEST(GStringUtils, IsNumberIsACheapTest) {
  for (const char* text : {"1", "10", "-5", "+5", " 5", "0", "-0", "0abc", "2147483648"}) {
    EXPECT_TRUE(IsNumber(text)) << text;
  }
  for (const char* text : {"", "-", "a", "12a", "5 ", " 0", "99999999999"}) {
    EXPECT_FALSE(IsNumber(text)) << text;
  }
  EXPECT_EQ(NumberFromString(" -12ab"), -12);
  EXPECT_EQ(NumberFromString("99999999999999999999"), 2147483647);
  EXPECT_EQ(NumberFromString("-2147483649"), -2147483647 - 1);
}

// A host's choice: groups of three digits, and a decimal comma.
struct Grouping : std::numpunct<char> {
  char do_thousands_sep() const override { return '.'; }
  char do_decimal_point() const override { return ','; }
  std::string do_grouping() const override { return "\3"; }
};

TEST(GStringUtils, NumbersAreExtractedWithoutALocale) {
  const std::locale before = std::locale::global({std::locale(), new Grouping});
  EXPECT_EQ(UTF8StringToSInt32(" +1234.567"), 1234);
  EXPECT_EQ(UTF8StringToTFloat64("1234.5x"), 1234.5);
  EXPECT_EQ(AsciiStringFromNumber(-1234567), "-1234567");
  EXPECT_EQ(AsciiStringFromUnsignedNumber(4294967295U), "4294967295");
  std::locale::global(before);

  for (const char* none : {"", "x", "-", " "}) {
    EXPECT_EQ(UTF8StringToSInt16(none), 0);
    EXPECT_EQ(UTF8StringToUInt64(none), 0U);
  }
  EXPECT_EQ(UTF8StringToSInt16("32768"), 32767);
  EXPECT_EQ(UTF8StringToSInt16("-99999"), -32768);
  EXPECT_EQ(UTF8StringToUInt16("65536"), 65535);
  EXPECT_EQ(UTF8StringToUInt16("-1"), 65535);
  EXPECT_EQ(UTF8StringToSInt32("-2147483649"), std::numeric_limits<std::int32_t>::min());
  EXPECT_EQ(UTF8StringToUInt32("-1"), 4294967295U);
  EXPECT_EQ(UTF8StringToUInt32("4294967296"), 4294967295U);
  EXPECT_EQ(UTF8StringToSInt64("9223372036854775808"), std::numeric_limits<std::int64_t>::max());
  EXPECT_EQ(UTF8StringToUInt64("18446744073709551616"), std::numeric_limits<std::uint64_t>::max());
  EXPECT_EQ(UTF8StringToUInt64("0x10"), 0U);
  EXPECT_EQ(UTF8StringToTFloat64("1e999"), std::numeric_limits<double>::max());
  EXPECT_EQ(UTF8StringToTFloat64("-1e999"), std::numeric_limits<double>::lowest());
  for (const char* none : {"nan", "inf", "1e", "", "-"}) EXPECT_EQ(UTF8StringToTFloat64(none), 0);
  for (const char* text : {" YES ", "True", "1", "01", "2", "-1", "1abc"}) {
    EXPECT_TRUE(UTF8StringToBool(text)) << text;
  }
  for (const char* text : {"", "0", "no", "false", "y", "0.5", "yes!"}) {
    EXPECT_FALSE(UTF8StringToBool(text)) << text;
  }
}

TEST(GStringUtils, BytesAndHexadecimalDigits) {
  std::string digits;
  for (int i = -128; i < 128; ++i) {
    if (IsValidHexChar(static_cast<char>(i))) digits += static_cast<char>(i);
  }
  EXPECT_EQ(digits, "0123456789ABCDEFabcdef");
  EXPECT_EQ(HexadecimalString("\x00\x7F\xA0\xFFz", 4), "007fa0ff");
  EXPECT_EQ(StringToByteVector({"a\0\xFF", 3}), (std::vector<char>{'a', 0, '\xFF'}));
  EXPECT_EQ(StringToUByteVector("a\xFF"), (std::vector<unsigned char>{'a', 0xFF}));
}

TEST(GStringUtils, Escapes) {
  EXPECT_EQ(EscapeRequiredXMLEntities("<a b='&'>\""), "&lt;a b=&apos;&amp;&apos;&gt;&quot;");
  EXPECT_EQ(UnescapeRequiredXMLEntities("&amp;lt; &lt; &#65; &"), "&lt; < &#65; &");
  for (const char* text : {"&amp;amp;lt;", "<'>\"&quot;", "&&amp;;", ""}) {
    EXPECT_EQ(UnescapeRequiredXMLEntities(EscapeRequiredXMLEntities(text)), text);
  }
  EXPECT_EQ(EscapeURL("azAZ09-./:_~é+ ", false), "azAZ09-./:%5f%7e%c3%a9%2b%20");
  EXPECT_EQ(EscapeURLComponent("a-b./:"), "a-b.%2f%3a");
  EXPECT_EQ(EscapeJSON({"/\b\t\n\f\r\"\\\0\x01\x7F\xC3\xA9", 13}),
            std::string("\\/\\b\\t\\n\\f\\r\\\"\\\\\0\x01\x7F\xC3\xA9", 21));
}

TEST(GStringUtils, RegularExpressionsMatchWholeTexts) {
  // The dots are bytes.
  for (const std::string row :
       {"/", "abc/a.c", "2024-01-31/\\d{4}-\\d{2}-\\d{2}", "Arial Bold/(Arial|Times)( \\w+)?",
        "a1/(?=.*\\d)[a-z\\d]+", "é/..", "aaaaaaaa/((a{1,}){1,}){1,}"}) {
    EXPECT_TRUE(IsRegExMatch(Split(row, "/")[0], Split(row, "/")[1])) << row;
  }
  for (const std::string row :
       {"abcd/a.c", "a/(", "a/[z-a]", "aa/(a)\\1", "aa/a{2", "a/a{99999999999999999999}"}) {
    EXPECT_FALSE(IsRegExMatch(Split(row, "/")[0], Split(row, "/")[1])) << row;
  }
}

// Matching and reading recurse over states, so the hardest patterns run on a small stack.
TEST(GStringUtils, HardRegularExpressionsNeedLittleStackAndTime) {
  const auto match = [](void*) -> void* {
    const auto repeated = [](std::string_view text, int count) {
      std::string all;
      while (count-- > 0) all += text;
      return all;
    };
    const std::string letters(8'000, 'a');
    const std::tuple<std::string, std::string, bool> rows[] = {
        {letters, repeated("a*", 128), true},
        {letters.substr(0, 256), repeated("a", 256), true},
        {"a", repeated("(", 32) + "a" + repeated(")*", 32), true},
        {"a", "a{0,240}", true},
        {letters, "(a+)+b", false},
        {repeated("ab", 150'000), "(a|b)*", true},
        // What is beyond the bounds, though it would match.
        {letters.substr(0, 257), repeated("a", 257), false},
        {"a", "((a?){20}){20}", false},
        {"a", "a{0,20}{0,20}", false},
        {letters, "((?=a*).)*", false},
        {"a", repeated("(", 33) + "a" + repeated(")", 33), false}};
    for (const auto& [text, pattern, matches] : rows) {
      EXPECT_EQ(IsRegExMatch(text, pattern), matches) << pattern;
    }
    return nullptr;
  };
  pthread_attr_t attributes;
  pthread_attr_init(&attributes);
  pthread_attr_setstacksize(&attributes, 524'288);
  pthread_t thread{};
  ASSERT_EQ(pthread_create(&thread, &attributes, match, nullptr), 0);
  pthread_join(thread, nullptr);
  pthread_attr_destroy(&attributes);
}

}  // namespace
