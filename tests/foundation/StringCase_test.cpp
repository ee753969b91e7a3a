#include <gtest/gtest.h>

#include <algorithm>

#include "foundation/GString.h"
#include "foundation/GStringUtils.h"

namespace {

using namespace GStringUtils;

// No language: neither is the dotless i an I nor the dotted one an i. By code points, not
// normalised. "_" stands before "z", though behind "Z". What is no UTF-8: ASCII letters only.
TEST(StringCase, OrdersByFolding) {
  constexpr const char* kRows =
      "= <a Arial=aRIAL Arial<Arial-Bold a_<aZ a\1B<a\1c STRASSE=straße strasse=straẞe "
      "STRASSE<straßen ΣΊΣΥΦΟΣ=σίσυφος ﬁt=FIT \u212A=k I<ı i<İ e\u0301<é z<é \uFFFD<😀 "
      "a\xFF=A\xFF \xFFÉ<\xFFé \xC3<é a\xC3<A\xC3\xA9";
  for (const std::string& row : Split(kRows, " ")) {
    const std::size_t at = row.find_first_of("<=");
    std::string a = row.substr(0, at);
    std::string b = row.substr(at + 1);
    for (std::string* text : {&a, &b}) std::replace(text->begin(), text->end(), '\1', '\0');
    const int order = row[at] == '<' ? -1 : 0;
    EXPECT_EQ(CompareStringsNoCase(a, b), order) << row;
    EXPECT_EQ(CompareStringsNoCase(b, a), -order) << row;
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
  // The first matches of bytes may end within an expansion. Letters may fold to more bytes or
  // fewer. Where one of both is no UTF-8: by bytes.
  constexpr const char* kRows =
      "abc//0 aAcAAB/AAB/3 ababAbabac/ABABAC/4 Straße/SS/4 Straße/ASSE/3 ßßs/sss/2 xßßß/sSß/1 "
      "ﬃFFI/ffi/0 İx/X/2 ẞÉ/é/3 aé/\xA9/2 é\xFFZ/\xFFz/2 /a/- Straße/as/- Straße/se/- É\xFF/é/-";
  for (const std::string& row : Split(kRows, " ")) {
    const std::vector<std::string> parts = Split(row, "/");
    const std::size_t at = parts[2] == "-" ? npos : UTF8StringToUInt64(parts[2]);
    EXPECT_EQ(StringFindNoCase(parts[0], parts[1]), at) << row;
  }
  EXPECT_EQ(StringFindNoCase("", ""), 0U);
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
  EXPECT_EQ(OSToTitleCase("the 3d o'hara type-WORKS"), "The 3D O'hara Type-Works");
  EXPECT_EQ(OSToTitleCase("émile ǆ"), "Émile ǅ");
  EXPECT_EQ(OSToTitleCase("a\xFF"), "a\xFF");
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
