#include "fontmanager/FontManagerInterface.h"

#include <gtest/gtest.h>

#include "support/FakePlatform.h"

TEST(IsFontActive, AsksForTheNameAfterARoundTripThroughMacRoman) {
  const std::string tooLong(256, 'x');
  FakePlatform platform;
  // What has no place in MacRoman, or in a platform string, is asked for as it is.
  for (const std::string& name : {std::string("Foo-Bold"), std::string("Café"), std::string("明朝"),
                                  tooLong, std::string()}) {
    platform.fonts.questions.clear();
    platform.fonts.visible = {name};
    EXPECT_TRUE(FontManagerInterface::IsFontActive(name)) << name;
    EXPECT_EQ(platform.fonts.questions, std::vector<std::string>{name});
  }
  platform.fonts.visible = {"foo-bold", "Foo-Bold2", "Café"};
  EXPECT_FALSE(FontManagerInterface::IsFontActive("Foo-Bold"));
  const PlatformString name = {4, 'C', 'a', 'f', 0x8E};
  EXPECT_TRUE(FontManagerInterface::IsFontActive(name));
  const PlatformString shorter = {3, 'C', 'a', 'f', 0x8E};
  EXPECT_FALSE(FontManagerInterface::IsFontActive(shorter));
}
