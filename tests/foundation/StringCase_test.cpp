#include <gtest/gtest.h>

#include <algorithm>

#include "foundation/GString.h"
#include "foundation/GStringUtils.h"

namespace {

using GStringUtils::CompareStringsNoCase;
using GStringUtils::npos;
using GStringUtils::StringFindNoCase;

TEST(StringCase, OrdersByFolding) {
  struct Row {
    std::string a;
    std::string b;
    int order;
  };
  const Row rows[] = {
      {"", "", 0},
      {"", "a", -1},
      {"Arial", "aRIAL", 0},
      {"Arial", "Arial Bold", -1},
      {"a_", "aZ", -1},  // "_" stands before "z", though behind "Z"
      {{"a\0B", 3}, {"a\0c", 3}, -1},
      {"STRASSE", "straße", 0},
      {"strasse", "straẞe", 0},
      {"straßen", "STRASSE", 1},
      {"MÜLLER", "müller", 0},
      {"ΣΊΣΥΦΟΣ", "σίσυφος", 0},  // a sigma at the end
      {"ﬁt", "FIT", 0},
      {"\u212A", "k", 0},         // the Kelvin sign
      {"I", "ı", -1},             // no language: neither is the dotless i an I
      {"İ", "i", 1},              // nor the dotted one an i
      {"é", "e\u0301", 1},        // not normalised
      {"z", "é", -1},             // by code points
      {"\uFFFD", "😀", -1},        // also beyond the 16-bit ones
      {"a\xFF", "A\xFF", 0},      // no UTF-8: ASCII letters only
      {"\xFFÉ", "\xFFé", -1},     //
      {"é", "\xC3", 1},           //
      {"a\xC3", "A\xC3\xA9", -1}  //
  };
  for (const Row& row : rows) {
    EXPECT_EQ(CompareStringsNoCase(row.a, row.b), row.order) << row.a << ' ' << row.b;
    EXPECT_EQ(CompareStringsNoCase(row.b, row.a), -row.order) << row.a << ' ' << row.b;
    EXPECT_EQ(GStringUtils::ISUTF8StringLessThanNoCase(row.a, row.b), row.order < 0);
  }
}

TEST(StringCase, OrdersTextsOfOtherEncodings) {
  const auto latin = [](std::string_view a, std::string_view b) {
    return GStringUtils::OSCompareStringsNoCase("ISO-8859-1", a, b);
  };
  EXPECT_EQ(latin("\xC9"
                  "A",
                  "\xE9"
                  "a"),
            0);
  EXPECT_EQ(latin("stra\xDF"
                  "e",
                  "STRASSE"),
            0);
  EXPECT_EQ(GStringUtils::OSCompareStringsNoCase("UTF-8", "A\xFF", "a\xFF"), 0);
  EXPECT_EQ(GStringUtils::OSCompareStringsNoCase("NO-SUCH-ENCODING", "aÉ", "Aé"), -1);
}

TEST(StringCase, FindsWholeCharactersInTheSource) {
  struct Row {
    std::string text;
    std::string part;
    std::size_t at;
  };
  const Row rows[] = {
      {"", "", 0},
      {"abc", "", 0},
      {"", "a", npos},
      {"aAcAAB", "AAB", 3},
      {"ababAbabac", "ABABAC", 4},
      {"Straße", "SS", 4},
      {"Straße", "ASSE", 3},
      {"Straße", "as", npos},  // ends within the expansion
      {"Straße", "se", npos},  // begins there
      {"ßßs", "sss", 2},       // the first match of bytes ends within a character
      {"xßßß", "sSß", 1},
      {"ﬃFFI", "ffi", 0},
      {"İx", "X", 2},        // folds to three bytes
      {"ẞÉ", "é", 3},        // folds to two bytes of three
      {"aé", "\xA9", 2},     // a part that is no UTF-8: by bytes
      {"É\xFF", "é", npos},  // no UTF-8: ASCII letters only
      {"é\xFFZ", "\xFFz", 2},
  };
  for (const Row& row : rows) {
    EXPECT_EQ(StringFindNoCase(row.text, row.part), row.at) << row.text << ' ' << row.part;
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
  struct Row {
    std::string text;
    std::string lower;
    std::string upper;
  };
  const Row rows[] = {
      {"", "", ""},
      {"aZ[1", "az[1", "AZ[1"},
      {"Straße É", "straße é", "STRASSE É"},
      {"ΟΔΟΣ ς", "οδος ς", "ΟΔΟΣ Σ"},
      {"Iiıİ", "iiıi\u0307", "IIIİ"},
      {"aÉ\xFF", "aÉ\xFF", "AÉ\xFF"},
  };
  for (const Row& row : rows) {
    EXPECT_EQ(GStringUtils::OSToLowerCase(row.text), row.lower);
    EXPECT_EQ(GStringUtils::OSToUpperCase(row.text), row.upper);
  }
  EXPECT_EQ(GStringUtils::AsciiToLowerCase("AZ[É"), "az[É");
  EXPECT_TRUE(GStringUtils::AsciiEqualsNoCase("aZ", "Az"));
  EXPECT_FALSE(GStringUtils::AsciiEqualsNoCase("a", "ab"));
  EXPECT_FALSE(GStringUtils::AsciiEqualsNoCase("@", "`"));
}

// The Cherokee letters have no lower case where an upper one is asked for, and so on: what must
// hold for every character is that its mappings are text, and that it is found in itself.
TEST(StringCase, EveryCharacterMapsToText) {
  const std::string before(1, '\0');
  for (char32_t character = 1; character < 0x110000; ++character) {
    if (character == 0xD800) character = 0xE000;
    const std::string text = GString::OSUnicodeToUtf8({&character, 1});
    const std::string lower = GStringUtils::OSToLowerCase(text);
    const std::string upper = GStringUtils::OSToUpperCase(text);
    ASSERT_TRUE(GString::IsValidUtf8(lower) && GString::IsValidUtf8(upper)) << text;
    ASSERT_EQ(StringFindNoCase(before + text, text), 1U) << text;
    // The dotted and the dotless i need a language.
    if (text == "İ" || text == "ı") continue;
    ASSERT_EQ(CompareStringsNoCase(text, upper), 0) << text;
  }
}

}  // namespace
