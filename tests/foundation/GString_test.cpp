#include "foundation/GString.h"

#include <gtest/gtest.h>

namespace {

TEST(GString, Utf8IsStrict) {
  std::u32string wide;
  for (const std::string_view text : {"", "\xC2\x80", "\xDF\xBF", "\xE0\xA0\x80", "\xED\x9F\xBF",
                                      "\xEE\x80\x80", "\xF0\x90\x80\x80", "\xF4\x8F\xBF\xBF"}) {
    EXPECT_TRUE(GString::IsValidUtf8(text)) << text;
    EXPECT_EQ(GString::OSUnicodeToUtf8(GString::OSUtf8ToUnicode(text)), text);
    wide += GString::OSUtf8ToUnicode(text);
  }
  EXPECT_EQ(wide, U"\x80\x7FF\x800\xD7FF\xE000\x10000\x10FFFF");
  EXPECT_EQ(GString::OSUtf8ToUnicode({"\0x", 2}), std::u32string(U"\0x", 2));
  // No lead; longer than need be; surrogates; above U+10FFFF; cut, and a wrong trail.
  for (const char* text :
       {"\x80", "\xC0\x80", "\xC1\xBF", "\xE0\x9F\xBF", "\xF0\x8F\xBF\xBF", "\xED\xA0\x80",
        "\xED\xBF\xBF", "\xF4\x90\x80\x80", "\xF8\x88\x80\x80\x80", "\xFF", "\xC3", "\xE2\x82",
        "a\xF0\x9F\x98", "\xC3("}) {
    EXPECT_FALSE(GString::IsValidUtf8(text)) << testing::PrintToString(text);
    EXPECT_EQ(GString::OSUtf8ToUnicode(text), U"");
  }
  for (const char32_t none : {0xD800U, 0xDFFFU, 0x110000U, 0xFFFFFFFFU}) {
    EXPECT_EQ(GString::OSUnicodeToUtf8(std::u32string{0x41, none}), "");
  }
}

TEST(GString, Utf16ConvertsOrFailsAsAWhole) {
  const std::pair<std::string_view, const char*> rows[] = {
      {{"\0A\0\xE9\x20\xAC\xD8\x3D\xDE\x00", 10}, "A\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80"},
      {{"\0A\0", 3}, ""},
      {{"\0A\xD8\x3D", 4}, ""},
      {{"\xD8\x3D\0A", 4}, ""},
      {{"\xDE\x00\0A", 4}, ""}};
  for (const auto& [utf16, utf8] : rows) EXPECT_EQ(GString::OSUtf16BigEndianToUtf8(utf16), utf8);
}

}  // namespace
