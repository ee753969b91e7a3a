#include "foundation/GString.h"

#include <gtest/gtest.h>

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

}  // namespace
