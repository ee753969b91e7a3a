#include "propertylist/StringConversion.h"

#include <gtest/gtest.h>

namespace {

TEST(UncertainEncoding, Utf8FirstThenMacRoman) {
  EXPECT_EQ(CFStringCreateWithUncertainEncoding("\xC3\xA9"), "\xC3\xA9");
  EXPECT_EQ(CreateUTF8StringFromUncertainEncoding("\xE9"), "\xC3\x88");  // E with grave
  EXPECT_EQ(CreateUTF8StringFromUncertainEncoding("ok \xC3("), "ok \xE2\x88\x9A(");
  EXPECT_FALSE(CFStringCreateWithUncertainEncoding(nullptr));
  const std::string bad = "\xE9";
  std::string out = "old";
  GetUTF8String(&bad, out);
  EXPECT_EQ(out, "");
  EXPECT_EQ(GetStdString(nullptr), "");
}

}  // namespace
