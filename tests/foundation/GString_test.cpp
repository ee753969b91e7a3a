#include "foundation/GString.h"

#include <gtest/gtest.h>

namespace {

TEST(GString, Utf8IsStrict) {
  const std::pair<std::string_view, std::u32string_view> good[] = {
      {"", U""},
      {{"\0x", 2}, {U"\0x", 2}},
      {"\xC2\x80", U"\x80"},
      {"\xDF\xBF", U"\x7FF"},
      {"\xE0\xA0\x80", U"\x800"},
      {"\xED\x9F\xBF", U"\xD7FF"},
      {"\xEE\x80\x80", U"\xE000"},
      {"\xF0\x90\x80\x80", U"\x10000"},
      {"\xF4\x8F\xBF\xBF", U"\x10FFFF"}};
  for (const auto& [utf8, wide] : good) {
    EXPECT_TRUE(GString::IsValidUtf8(utf8)) << utf8;
    EXPECT_EQ(GString::OSUtf8ToUnicode(utf8), wide);
    EXPECT_EQ(GString::OSUnicodeToUtf8(wide), utf8);
  }
  const char* const bad[] = {"\x80",  // no lead
                             "\xC0\x80",
                             "\xC1\xBF",
                             "\xE0\x9F\xBF",
                             "\xF0\x8F\xBF\xBF",  // longer than need be
                             "\xED\xA0\x80",
                             "\xED\xBF\xBF",  // surrogates
                             "\xF4\x90\x80\x80",
                             "\xF8\x88\x80\x80\x80",
                             "\xFF",  // above U+10FFFF
                             "\xC3",
                             "\xE2\x82",
                             "a\xF0\x9F\x98",
                             "\xC3("};  // cut, and a wrong trail
  for (const char* text : bad) {
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
