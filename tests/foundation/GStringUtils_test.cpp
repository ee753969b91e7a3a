#include "foundation/GStringUtils.h"

#include <gtest/gtest.h>

namespace {

using Texts = std::vector<std::string>;

TEST(GStringUtils, TokenizeDropsEmptyTokens) {
  EXPECT_EQ(GStringUtils::OSTokenizeString("\r\na\r\n\r\nb\n", "\r\n"), (Texts{"a", "b"}));
  EXPECT_EQ(GStringUtils::OSTokenizeString("a,b;c", ",;"), (Texts{"a", "b", "c"}));
  EXPECT_EQ(GStringUtils::OSTokenizeString(",,", ","), Texts{});
  EXPECT_EQ(GStringUtils::OSTokenizeString("a b", ""), Texts{"a b"});
}

TEST(GStringUtils, ReplaceScansOnlyTheSource) {
  EXPECT_EQ(GStringUtils::StringReplace("aaaa", "aa", "a", -1), "aa");
  EXPECT_EQ(GStringUtils::StringReplace("aaa", "a", "aa"), "aaaaaa");
  EXPECT_EQ(GStringUtils::StringReplace("aaa", "a", "b", 2), "bba");
  EXPECT_EQ(GStringUtils::StringReplace("aaa", "a", "b", 0), "aaa");
  EXPECT_EQ(GStringUtils::StringReplace("aaa", "", "b"), "aaa");
}

TEST(GStringUtils, StripAndCase) {
  EXPECT_EQ(GStringUtils::StripWhitespace(" \t\v\f a b\r\n"), "a b");
  EXPECT_EQ(GStringUtils::StripWhitespace(" \n"), "");
  EXPECT_EQ(GStringUtils::AsciiToLowerCase("AZ[\xC3\x89"), "az[\xC3\x89");
  EXPECT_TRUE(GStringUtils::AsciiEqualsNoCase("aZ", "Az"));
  EXPECT_FALSE(GStringUtils::AsciiEqualsNoCase("a", "ab"));
  EXPECT_FALSE(GStringUtils::AsciiEqualsNoCase("@", "`"));
}

}  // namespace
