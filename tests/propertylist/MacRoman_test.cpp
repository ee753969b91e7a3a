#include "propertylist/MacRoman.h"

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
  for (int i = 0; i < 256; ++i) {
    all.push_back(static_cast<char>(i));
    if (i < 0x80) {
      EXPECT_EQ(MacRomanToUtf8({&all.back(), 1}), std::string(1, all.back()));
    }
  }
  EXPECT_EQ(Utf8ToMacRoman(MacRomanToUtf8(all)), all);
  EXPECT_EQ(Utf8ToMacRoman(""), "");
  EXPECT_FALSE(Utf8ToMacRoman("\xE4\xB8\xAD"));
  EXPECT_FALSE(Utf8ToMacRoman("\xCE\x94"));  // Greek delta has no place
  EXPECT_FALSE(Utf8ToMacRoman("a\xC3"));
}

}  // namespace
