#include "propertylist/StringConversion.h"

#include <gtest/gtest.h>

namespace {

TEST(UncertainEncoding, Utf8FirstThenMacRoman) {
  EXPECT_EQ(CFStringCreateWithUncertainEncoding("\xC3\xA9"), "\xC3\xA9");
  EXPECT_EQ(CreateUTF8StringFromUncertainEncoding("\xE9"), "\xC3\x88");  // E with grave
  EXPECT_EQ(CreateUTF8StringFromUncertainEncoding("ok \xC3("), "ok \xE2\x88\x9A(");
  EXPECT_EQ(CFStringCreateWithUncertainEncoding(""), "");
  EXPECT_FALSE(CFStringCreateWithUncertainEncoding(nullptr));
}

TEST(UncertainEncoding, TextOfAString) {
  const std::string good = "\xC3\xA9";
  const std::string bad = "\xE9";
  std::string out = "old";
  EXPECT_EQ(GetStdString(&good), good);
  EXPECT_EQ(GetStdString(&bad), "");
  EXPECT_EQ(GetStdString(nullptr), "");
  GetUTF8String(nullptr, out);
  EXPECT_EQ(out, "");
}

TEST(ReplaceAll, GoesOnBehindTheReplacement) {
  EXPECT_EQ(replaceAll("aaa", "a", "aa"), "aaaaaa");
  EXPECT_EQ(replaceAll("abc", "", "x"), "abc");
}

}  // namespace
