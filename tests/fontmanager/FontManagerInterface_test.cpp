#include "fontmanager/FontManagerInterface.h"

#include <gtest/gtest.h>

#include "support/FakePlatform.h"

namespace {

PlatformString MakePlatformString(std::string_view bytes) {
  PlatformString text{};
  text[0] = static_cast<unsigned char>(bytes.size());
  std::copy(bytes.begin(), bytes.end(), text.begin() + 1);
  return text;
}

TEST(IsFontActive, AsksForTheNameAfterARoundTripThroughMacRoman) {
  struct Case {
    std::string name;
    std::string asked;
  };
  const std::string tooLong(256, 'x');
  const Case cases[] = {
      {"Foo-Bold", "Foo-Bold"},
      {"Caf\xC3\xA9", "Caf\xC3\xA9"},                            // has a place in MacRoman
      {"\xE6\x98\x8E\xE6\x9C\x9D", "\xE6\x98\x8E\xE6\x9C\x9D"},  // has none: as it is
      {tooLong, tooLong},
      {"", ""}};
  FakePlatform platform;
  for (const Case& c : cases) {
    platform.fonts.questions.clear();
    platform.fonts.visible = {c.asked};
    EXPECT_TRUE(FontManagerInterface::IsFontActive(c.name)) << c.name;
    EXPECT_EQ(platform.fonts.questions, std::vector<std::string>{c.asked});
  }
  platform.fonts.visible = {"foo-bold", "Foo-Bold2"};
  EXPECT_FALSE(FontManagerInterface::IsFontActive("Foo-Bold"));
}

TEST(IsFontActive, TakesAPlatformStringToo) {
  FakePlatform platform;
  platform.fonts.visible = {"Caf\xC3\xA9"};
  EXPECT_TRUE(FontManagerInterface::IsFontActive(MakePlatformString("Caf\x8E")));
  EXPECT_FALSE(FontManagerInterface::IsFontActive(MakePlatformString("Caf")));
}

}  // namespace
