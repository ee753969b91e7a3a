#include "foundation/GString.h"

#include <gtest/gtest.h>

#include <stdexcept>

namespace {

TEST(GString, Utf8IsStrict) {
  const std::string_view good[] = {"",
                                   "a",
                                   "\xC2\x80",
                                   "\xDF\xBF",
                                   "\xE0\xA0\x80",
                                   "\xED\x9F\xBF",
                                   "\xEE\x80\x80",
                                   "\xF0\x90\x80\x80",
                                   "\xF4\x8F\xBF\xBF",
                                   std::string_view("\0x", 2)};
  for (const std::string_view text : good) EXPECT_TRUE(GString::IsValidUtf8(text)) << text;
  const std::string_view bad[] = {
      "\x80",              // no lead
      "\xC0\x80",          // longer than need be
      "\xC1\xBF",          //
      "\xE0\x9F\xBF",      //
      "\xF0\x8F\xBF\xBF",  //
      "\xED\xA0\x80",      // surrogates
      "\xED\xBF\xBF",      //
      "\xF4\x90\x80\x80",  // above U+10FFFF
      "\xF8\x88\x80\x80\x80",
      "\xFF",
      "\xC3",           // cut
      "\xE2\x82",       //
      "a\xF0\x9F\x98",  //
      "\xC3(",          // wrong trail
  };
  for (const std::string_view text : bad) {
    EXPECT_FALSE(GString::IsValidUtf8(text)) << testing::PrintToString(text);
    EXPECT_EQ(GString::OSUtf8ToUnicode(text), U"");
  }
}

TEST(GString, WideFormsConvertOrFailAsAWhole) {
  const std::u32string wide = {0x41, 0xE9, 0x20AC, 0x1F600};
  const std::string utf8 = "A\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80";
  EXPECT_EQ(GString::OSUnicodeToUtf8(wide), utf8);
  EXPECT_EQ(GString::OSUtf8ToUnicode(utf8), wide);
  EXPECT_EQ(GString::OSUnicodeToUtf8(std::u32string{0x41, 0xD800}), "");
  EXPECT_EQ(GString::OSUnicodeToUtf8(std::u32string{0x41, 0x110000}), "");
  EXPECT_EQ(GString::OSUnicodeToUtf8(std::u32string{0xFFFFFFFF}), "");

  const auto fromUtf16 = [](std::string_view bytes) {
    return GString::OSUtf16BigEndianToUtf8(bytes);
  };
  EXPECT_EQ(fromUtf16({"\0A\0\xE9\x20\xAC\xD8\x3D\xDE\x00", 10}), utf8);
  EXPECT_EQ(fromUtf16({"\0A\0", 3}), "");
  EXPECT_EQ(fromUtf16({"\0A\xD8\x3D", 4}), "");
  EXPECT_EQ(fromUtf16({"\xD8\x3D\0A", 4}), "");
  EXPECT_EQ(fromUtf16({"\xDE\x00\0A", 4}), "");
}

TEST(Iconv, ConvertsOrTellsWhyNot) {
  EXPECT_EQ(iconv_string("\xE9", "UTF-8", "ISO-8859-1"), "\xC3\xA9");
  EXPECT_EQ(iconv_string("", "UTF-8", "ISO-8859-1"), "");
  // Three times as long as its source, so that the buffer grows.
  EXPECT_EQ(iconv_string(std::string(1000, '\x80'), "UTF-8", "CP1252").size(), 3000U);
  const auto messageOf = [](std::string_view text, const char* to, const char* from) {
    try {
      return iconv_string(text, to, from);
    } catch (const std::runtime_error& error) {
      return std::string(error.what());
    }
  };
  EXPECT_EQ(messageOf("a", "UTF-8", "NO-SUCH-ENCODING"), "Unable to initialize iconv (error 22)");
  EXPECT_TRUE(messageOf("\xC3\x28", "UTF-16LE", "UTF-8")
                  .starts_with("Unable to convert string to UTF-16LE (error 84): "));
  EXPECT_TRUE(messageOf("a\xC3", "UTF-16LE", "UTF-8")
                  .starts_with("Unable to convert string to UTF-16LE (error 22): "));
}

}  // namespace
