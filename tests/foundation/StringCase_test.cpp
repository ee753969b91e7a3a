#include <gtest/gtest.h>

#include "foundation/GString.h"
#include "foundation/GStringUtils.h"

namespace {

using namespace GStringUtils;

TEST(StringCase, OrdersByFolding) {
  const std::tuple<std::string, std::string, int> rows[] = {
      {"", "", 0},
      {"", "a", -1},
      {"Arial", "aRIAL", 0},
      {"Arial", "Arial Bold", -1},
      {"a_", "aZ", -1},  // "_" stands before "z", though behind "Z"
      {{"a\0B", 3}, {"a\0c", 3}, -1},
      {"STRASSE", "straße", 0},
      {"strasse", "straẞe", 0},
      {"straßen", "STRASSE", 1},
      {"ΣΊΣΥΦΟΣ", "σίσυφος", 0},  // a sigma at the end
      {"ﬁt", "FIT", 0},
      {"\u212A", "k", 0},  // the Kelvin sign
      {"I", "ı", -1},
      {"İ", "i", 1},        // no language
      {"é", "e\u0301", 1},  // not normalised
      {"z", "é", -1},
      {"\uFFFD", "😀", -1},  // by code points
      {"a\xFF", "A\xFF", 0},
      {"\xFFÉ", "\xFFé", -1},  // no UTF-8: ASCII letters only
      {"é", "\xC3", 1},
      {"a\xC3", "A\xC3\xA9", -1}};
  for (const auto& [a, b, order] : rows) {
    EXPECT_EQ(CompareStringsNoCase(a, b), order) << a << ' ' << b;
    EXPECT_EQ(CompareStringsNoCase(b, a), -order) << a << ' ' << b;
    EXPECT_EQ(ISUTF8StringLessThanNoCase(a, b), order < 0);
  }
}

TEST(StringCase, OrdersTextsOfOtherEncodings) {
  const std::tuple<const char*, const char*, const char*, int> rows[] = {
      {"ISO-8859-1", "\xC9z", "\xE9Z", 0},
      {"ISO-8859-1", "\xDFz", "SSZ", 0},
      {"UTF-8", "A\xFF", "a\xFF", 0},
      {"NO-SUCH-ENCODING", "aÉ", "Aé", -1}};
  for (const auto& [encoding, a, b, order] : rows) {
    EXPECT_EQ(OSCompareStringsNoCase(encoding, a, b), order) << a;
  }
}

TEST(StringCase, FindsWholeCharactersInTheSource) {
  const std::tuple<const char*, const char*, std::size_t> rows[] = {
      {"", "", 0},
      {"abc", "", 0},
      {"", "a", npos},
      {"aAcAAB", "AAB", 3},
      {"ababAbabac", "ABABAC", 4},
      {"Straße", "SS", 4},
      {"Straße", "ASSE", 3},
      {"Straße", "as", npos},
      {"Straße", "se", npos},  // an end within the expansion
      {"ßßs", "sss", 2},       // the first match of bytes ends within a character
      {"xßßß", "sSß", 1},
      {"ﬃFFI", "ffi", 0},
      {"İx", "X", 2},     // folds to three bytes
      {"ẞÉ", "é", 3},     // folds to two bytes of three
      {"aé", "\xA9", 2},  // a part that is no UTF-8: by bytes
      {"É\xFF", "é", npos},
      {"é\xFFZ", "\xFFz", 2}};
  for (const auto& [text, part, at] : rows) {
    EXPECT_EQ(StringFindNoCase(text, part), at) << text << ' ' << part;
  }
}

// Each would take minutes if the search began anew at each position.
TEST(StringCase, FindsInLongTexts) {
  constexpr std::size_t kSize = 1 << 20;
  const std::string letters(kSize, 'a');
  EXPECT_EQ(StringFindNoCase(letters + 'B', std::string(kSize / 2, 'A') + 'b'), kSize / 2);
  std::string sharp;
  for (std::size_t i = 0; i < kSize / 2; ++i) sharp += "ß";
  EXPECT_EQ(StringFindNoCase(sharp, std::string(kSize / 4 + 1, 's')), npos);
  EXPECT_EQ(CompareStringsNoCase(sharp, std::string(kSize, 'S')), 0);
}

TEST(StringCase, MapsByCharactersWithoutALanguage) {
  const std::tuple<const char*, const char*, const char*> rows[] = {
      {"", "", ""},
      {"aZ[1", "az[1", "AZ[1"},
      {"Straße É", "straße é", "STRASSE É"},
      {"ΟΔΟΣ ς", "οδος ς", "ΟΔΟΣ Σ"},
      {"Iiıİ", "iiıi\u0307", "IIIİ"},
      {"aÉ\xFF", "aÉ\xFF", "AÉ\xFF"}};
  for (const auto& [text, lower, upper] : rows) {
    EXPECT_EQ(OSToLowerCase(text), lower);
    EXPECT_EQ(OSToUpperCase(text), upper);
  }
  EXPECT_EQ(AsciiToLowerCase("AZ[@É"), "az[@É");
  EXPECT_TRUE(AsciiEqualsNoCase("aZ", "Az"));
  EXPECT_FALSE(AsciiEqualsNoCase("a", "ab"));
  EXPECT_FALSE(AsciiEqualsNoCase("@", "`"));
}

// The Cherokee letters have no lower case where an upper one is asked for, and so on: what must
// hold for every character is that its mappings are text, and that it is found in itself.
TEST(StringCase, EveryCharacterMapsToText) {
  for (char32_t character = 1; character < 0x110000; ++character) {
    if (character == 0xD800) character = 0xE000;
    const std::string text = GString::OSUnicodeToUtf8({&character, 1});
    const std::string upper = OSToUpperCase(text);
    ASSERT_TRUE(GString::IsValidUtf8(OSToLowerCase(text)) && GString::IsValidUtf8(upper)) << text;
    ASSERT_EQ(StringFindNoCase(std::string(1, '\0') + text, text), 1U) << text;
    // The dotted and the dotless i need a language.
    if (text == "İ" || text == "ı") continue;
    ASSERT_EQ(CompareStringsNoCase(text, upper), 0) << text;
  }
}

}  // namespace
