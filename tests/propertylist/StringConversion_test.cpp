#include "propertylist/StringConversion.h"

#include <gtest/gtest.h>

namespace {

TEST(MacRoman, HostApplicationsTable) {
  const std::pair<char, const char*> rows[] = {
      {'A', "A"},
      {'\x80', "\xC3\x84"},      // A with diaeresis
      {'\x8E', "\xC3\xA9"},      // e with acute
      {'\xBD', "\xCE\xA9"},      // omega, not the ohm sign
      {'\xC6', "\xE2\x88\x86"},  // increment, not delta
      {'\xCA', "\xC2\xA0"},      // no-break space
      {'\xDB', "\xE2\x82\xAC"},  // euro, not the currency sign
      {'\xF0', "\xEF\xA3\xBF"},  // U+F8FF
      {'\xFF', "\xCB\x87"},      // caron
  };
  for (const auto& [byte, utf8] : rows) {
    EXPECT_EQ(MacRomanToUtf8({&byte, 1}), utf8);
    EXPECT_EQ(Utf8ToMacRoman(utf8), std::string(1, byte));
  }
}

TEST(MacRoman, EveryByteRoundTrips) {
  std::string all;
  for (int i = 0; i < 256; ++i) all.push_back(static_cast<char>(i));
  EXPECT_EQ(Utf8ToMacRoman(MacRomanToUtf8(all)), all);
  EXPECT_EQ(Utf8ToMacRoman(""), "");
  EXPECT_FALSE(Utf8ToMacRoman("\xE4\xB8\xAD"));
  EXPECT_FALSE(Utf8ToMacRoman("\xCE\x94"));  // Greek delta has no place
  EXPECT_FALSE(Utf8ToMacRoman("a\xC3"));
}

TEST(PlatformStrings, LengthByteDecides) {
  PlatformString text;
  EXPECT_TRUE(CopyUTF8CStringToMacRomanPascalString(text, "a\xC3\xA9"));
  EXPECT_EQ(text[0], 2);
  EXPECT_EQ(text[2], 0x8E);
  EXPECT_EQ(XCFStringCreateWithPlatformString(text.data()), "a\xC3\xA9");
  EXPECT_EQ(GetPlatformStringLength(text.data()), 2U);
  EXPECT_EQ(GetPlatformStringLength(nullptr), 0U);
  EXPECT_FALSE(XCFStringCreateWithPlatformString(nullptr));

  EXPECT_TRUE(CopyUTF8CStringToMacRomanPascalString(text, std::string(255, 'x')));
  EXPECT_EQ(text[0], 255);
  EXPECT_EQ(text[255], 'x');
  EXPECT_FALSE(CopyUTF8CStringToMacRomanPascalString(text, std::string(256, 'x')));
  EXPECT_EQ(text, PlatformString{});
  EXPECT_FALSE(CopyUTF8CStringToMacRomanPascalString(text, "\xE4\xB8\xAD"));
  // 255 bytes of MacRoman, though more of UTF-8.
  std::string accented;
  for (int i = 0; i < 255; ++i) accented += "\xC3\xA9";
  EXPECT_TRUE(CopyUTF8CStringToMacRomanPascalString(text, accented));
}

TEST(UncertainEncoding, Utf8FirstThenMacRoman) {
  EXPECT_EQ(CFStringCreateWithUncertainEncoding("\xC3\xA9"), "\xC3\xA9");
  EXPECT_EQ(CreateUTF8StringFromUncertainEncoding("\xE9"), "\xC3\x88");  // E with grave
  EXPECT_EQ(CreateUTF8StringFromUncertainEncoding("ok \xC3("), "ok \xE2\x88\x9A(");
  EXPECT_EQ(CFStringCreateWithUncertainEncoding(""), "");
  EXPECT_FALSE(CFStringCreateWithUncertainEncoding(nullptr));
}

TEST(ReplaceAll, GoesOnBehindTheReplacement) {
  EXPECT_EQ(replaceAll("aaa", "a", "aa"), "aaaaaa");
  EXPECT_EQ(replaceAll("abc", "", "x"), "abc");
}

}  // namespace
