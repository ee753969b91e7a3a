#include "propertylist/MacRoman.h"

#include <gtest/gtest.h>

namespace {

TEST(MacRoman, EveryByteRoundTripsByTheHostApplicationsTable) {
  // Not the ohm sign (BD), not delta (C6), not the currency sign (DB).
  const std::pair<char, const char*> rows[] = {{'\x80', "\xC3\x84"},     {'\x8E', "\xC3\xA9"},
                                               {'\xBD', "\xCE\xA9"},     {'\xC6', "\xE2\x88\x86"},
                                               {'\xCA', "\xC2\xA0"},     {'\xDB', "\xE2\x82\xAC"},
                                               {'\xF0', "\xEF\xA3\xBF"}, {'\xFF', "\xCB\x87"}};
  for (const auto& [byte, utf8] : rows) EXPECT_EQ(MacRomanToUtf8({&byte, 1}), utf8);
  std::string all;
  for (int i = 0; i < 256; ++i) all.push_back(static_cast<char>(i));
  EXPECT_EQ(MacRomanToUtf8(all).substr(0, 128), all.substr(0, 128));
  EXPECT_EQ(Utf8ToMacRoman(MacRomanToUtf8(all)), all);
  for (const char* none : {"\xE4\xB8\xAD", "\xCE\x94", "a\xC3"}) EXPECT_FALSE(Utf8ToMacRoman(none));
}

}  // namespace
