#include "foundation/GStringUtils.h"

#include <gtest/gtest.h>
#include <pthread.h>

#include <limits>
#include <locale>

#include "support/RecordingAppender.h"

namespace {

using Texts = std::vector<std::string>;

TEST(GStringUtils, TruncatesAtCharacters) {
  RecordingAppender& log = RecordingAppender::Install();
  struct Row {
    std::string text;
    unsigned int most;
    std::string left;
  };
  const Row rows[] = {
      {"aé", 3, "aé"}, {"aé", 2, "a"},   {"aé", 1, "a"}, {"aé", 0, ""},
      {"é", 1, ""},    {"漢😀", 6, "漢"}, {"", 0, ""},    {{"a\0b", 3}, 2, {"a\0", 2}},
  };
  for (const Row& row : rows) {
    std::string text = row.text;
    EXPECT_EQ(GStringUtils::OSTruncateUTF8String(text, row.most), 0U);
    EXPECT_EQ(text, row.left);
  }
  EXPECT_TRUE(log.Lines().empty());
  std::string bad = "ab\xFF";
  EXPECT_EQ(GStringUtils::OSTruncateUTF8String(bad, 9), CoreErrorCodes::kNullPointer);
  EXPECT_EQ(bad, "ab\xFF");
  ASSERT_EQ(log.Lines().size(), 1U);
  EXPECT_NE(log.Lines()[0].find("(nativeString) == nullptr"), std::string::npos);
}

TEST(GStringUtils, SplitsAndJoins) {
  EXPECT_EQ(GStringUtils::OSTokenizeString("\r\na\r\n\r\nb\n", "\r\n"), (Texts{"a", "b"}));
  EXPECT_EQ(GStringUtils::OSTokenizeString(",,", ","), Texts{});
  EXPECT_EQ(GStringUtils::OSTokenizeString("a b", ""), Texts{"a b"});
  struct Row {
    std::string text;
    std::string separator;
    Texts parts;
    Texts tokens;
  };
  const Row rows[] = {
      {"", ",", {""}, {}},
      {",", ",", {"", ""}, {}},
      {"a,,b,", ",", {"a", "", "b", ""}, {"a", "b"}},
      {"a, b,c", ", ", {"a", "b,c"}, {"a", "b,c"}},
      {"a---b", "--", {"a", "-b"}, {"a", "-b"}},
      {"a b", "", {"a b"}, {"a b"}},
  };
  for (const Row& row : rows) {
    EXPECT_EQ(GStringUtils::Split(row.text, row.separator), row.parts) << row.text;
    EXPECT_EQ(GStringUtils::TokenizeString(row.text, row.separator), row.tokens) << row.text;
    EXPECT_EQ(GStringUtils::Join(row.parts, row.separator), row.text);
  }
  EXPECT_EQ(GStringUtils::Join({}, ","), "");
}

TEST(GStringUtils, ReplaceScansOnlyTheSource) {
  EXPECT_EQ(GStringUtils::StringReplace("aaaa", "aa", "a", -1), "aa");
  EXPECT_EQ(GStringUtils::StringReplace("aaa", "a", "aa"), "aaaaaa");
  EXPECT_EQ(GStringUtils::StringReplace("aaa", "a", "b", 2), "bba");
  EXPECT_EQ(GStringUtils::StringReplace("aaa", "a", "b", 0), "aaa");
  EXPECT_EQ(GStringUtils::StringReplace("aaa", "", "b"), "aaa");
}

TEST(GStringUtils, Strips) {
  const std::string all = " \t\v\f a b\r\n";
  EXPECT_EQ(GStringUtils::StripWhitespace(all), "a b");
  EXPECT_EQ(GStringUtils::StripPrecedingWhitespace(all), "a b\r\n");
  EXPECT_EQ(GStringUtils::StripTrailingWhitespace(all), " \t\v\f a b");
  EXPECT_EQ(GStringUtils::FirstNonWhiteSpaceCharacterLoc(all), 5U);
  for (const char* blank : {"", " \n"}) {
    EXPECT_EQ(GStringUtils::StripWhitespace(blank), "");
    EXPECT_EQ(GStringUtils::StripPrecedingWhitespace(blank), "");
    EXPECT_EQ(GStringUtils::FirstNonWhiteSpaceCharacterLoc(blank), GStringUtils::npos);
  }
  EXPECT_EQ(GStringUtils::StripPrecedingString("ababc", "ab"), "abc");
  EXPECT_EQ(GStringUtils::StripTrailingString("cabab", "ab"), "cab");
  EXPECT_EQ(GStringUtils::StripTrailingString("b", "ab"), "b");
  std::string text = "a";
  for (int i = 0; i < 2; ++i) GStringUtils::EnsureEndsWith(text, "/");
  EXPECT_EQ(text, "a/");
}

TEST(GStringUtils, IsNumberIsACheapTest) {
  for (const char* text : {"1", "123", "10", "-5", "+5", " 5", "0", "-0", "0abc", "2147483648"}) {
    EXPECT_TRUE(GStringUtils::IsNumber(text)) << text;
  }
  for (const char* text : {"", "-", "a", "12a", "5 ", " 0", "99999999999"}) {
    EXPECT_FALSE(GStringUtils::IsNumber(text)) << text;
  }
  EXPECT_EQ(GStringUtils::NumberFromString(" -12ab"), -12);
  EXPECT_EQ(GStringUtils::NumberFromString("99999999999999999999"), 2147483647);
  EXPECT_EQ(GStringUtils::NumberFromString("-2147483649"), -2147483647 - 1);
}

// A host's choice: groups of three digits, and a decimal comma.
struct Grouping : std::numpunct<char> {
  char do_thousands_sep() const override { return '.'; }
  char do_decimal_point() const override { return ','; }
  std::string do_grouping() const override { return "\3"; }
};

TEST(GStringUtils, NumbersAreExtractedWithoutALocale) {
  using namespace GStringUtils;
  const std::locale before = std::locale::global({std::locale(), new Grouping});
  EXPECT_EQ(UTF8StringToSInt32(" +1234.567"), 1234);
  EXPECT_EQ(UTF8StringToTFloat64("1234.5x"), 1234.5);
  EXPECT_EQ(AsciiStringFromNumber(-1234567), "-1234567");
  EXPECT_EQ(AsciiStringFromUnsignedNumber(4294967295U), "4294967295");
  std::locale::global(before);

  for (const char* none : {"", "x", "-", " "}) {
    EXPECT_EQ(UTF8StringToSInt16(none), 0);
    EXPECT_EQ(UTF8StringToUInt64(none), 0U);
    EXPECT_EQ(UTF8StringToTFloat64(none), 0);
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
  for (const char* none : {"nan", "inf", "1e"}) EXPECT_EQ(UTF8StringToTFloat64(none), 0) << none;

  for (const char* text : {" YES ", "True", "1", "01", "2", "-1", "1abc"}) {
    EXPECT_TRUE(UTF8StringToBool(text)) << text;
  }
  for (const char* text : {"", "0", "no", "false", "y", "0.5", "yes!"}) {
    EXPECT_FALSE(UTF8StringToBool(text)) << text;
  }
}

TEST(GStringUtils, HexadecimalDigits) {
  int count = 0;
  for (int i = -128; i < 128; ++i) count += GStringUtils::IsValidHexChar(static_cast<char>(i));
  EXPECT_EQ(count, 22);
  for (const char edge : std::string_view("/:@G`g")) {
    EXPECT_FALSE(GStringUtils::IsValidHexChar(edge));
  }
  EXPECT_EQ(GStringUtils::HexadecimalString("\x00\x7F\xA0\xFFz", 4), "007fa0ff");
}

TEST(GStringUtils, Escapes) {
  EXPECT_EQ(GStringUtils::EscapeRequiredXMLEntities("<a b='&'>\""),
            "&lt;a b=&apos;&amp;&apos;&gt;&quot;");
  EXPECT_EQ(GStringUtils::UnescapeRequiredXMLEntities("&amp;lt; &lt; &#65; &"), "&lt; < &#65; &");
  for (const char* text : {"a&b", "&amp;", "&amp;amp;lt;", "<'>\"&quot;", "&&amp;;", ""}) {
    const std::string escaped = GStringUtils::EscapeRequiredXMLEntities(text);
    EXPECT_EQ(GStringUtils::UnescapeRequiredXMLEntities(escaped), text);
  }
  EXPECT_EQ(GStringUtils::EscapeURL("a b/c", false), "a%20b/c");
  EXPECT_EQ(GStringUtils::EscapeURL("azAZ09-./:_~é+", false), "azAZ09-./:%5f%7e%c3%a9%2b");
  EXPECT_EQ(GStringUtils::EscapeURLComponent("a-b./:"), "a-b.%2f%3a");
  EXPECT_EQ(GStringUtils::EscapeJSON("a/b"), "a\\/b");
  EXPECT_EQ(GStringUtils::EscapeJSON({"\b\t\n\f\r\"\\\0\x01\x7F"
                                      "é",
                                      12}),
            std::string("\\b\\t\\n\\f\\r\\\"\\\\\0\x01\x7F"
                        "é",
                        19));
}

TEST(GStringUtils, RegularExpressionsMatchWholeTexts) {
  struct Row {
    std::string text;
    std::string pattern;
    bool matches;
  };
  const Row rows[] = {
      {"", "", true},
      {"abc", "a.c", true},
      {"abcd", "a.c", false},
      {"2024-01-31", "\\d{4}-\\d{2}-\\d{2}", true},
      {"Arial Bold", "(Arial|Times)( \\w+)?", true},
      {"a1", "(?=.*\\d)[a-z\\d]+", true},
      {"é", "..", true},  // bytes
      {"a", "(", false},
      {"a", "[z-a]", false},
      {"aa", "(a)\\1", false},
      {"aa", "a{2", false},
      {"a", "a{99999999999999999999}", false},
      {"aaaaaaaa", "((a{1,}){1,}){1,}", true},
  };
  for (const Row& row : rows) {
    EXPECT_EQ(GStringUtils::IsRegExMatch(row.text, row.pattern), row.matches) << row.pattern;
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
    EXPECT_TRUE(GStringUtils::IsRegExMatch(letters, repeated("a*", 128)));
    EXPECT_TRUE(GStringUtils::IsRegExMatch(letters.substr(0, 256), repeated("a", 256)));
    EXPECT_TRUE(GStringUtils::IsRegExMatch("a", repeated("(", 32) + "a" + repeated(")*", 32)));
    EXPECT_TRUE(GStringUtils::IsRegExMatch("a", "a{0,240}"));
    EXPECT_FALSE(GStringUtils::IsRegExMatch(letters, "(a+)+b"));
    EXPECT_TRUE(GStringUtils::IsRegExMatch(repeated("ab", 150'000), "(a|b)*"));
    // What is beyond the bounds, though it would match.
    EXPECT_FALSE(GStringUtils::IsRegExMatch(letters.substr(0, 257), repeated("a", 257)));
    EXPECT_FALSE(GStringUtils::IsRegExMatch("a", "((a?){20}){20}"));
    EXPECT_FALSE(GStringUtils::IsRegExMatch("a", "a{0,20}{0,20}"));
    EXPECT_FALSE(GStringUtils::IsRegExMatch(letters, "((?=a*).)*"));
    EXPECT_FALSE(GStringUtils::IsRegExMatch("a", repeated("(", 33) + "a" + repeated(")", 33)));
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

TEST(GStringUtils, BytesAndFormatting) {
  EXPECT_EQ(GStringUtils::StringToByteVector({"a\0\xFF", 3}), (std::vector<char>{'a', 0, '\xFF'}));
  EXPECT_EQ(GStringUtils::StringToUByteVector("a\xFF"), (std::vector<unsigned char>{'a', 0xFF}));
}

}  // namespace
