#include "propertylist/PlatformString.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace {

PlatformString Made(const std::string& bytes) {
  PlatformString text{};
  text[0] = static_cast<unsigned char>(bytes.size());
  std::copy(bytes.begin(), bytes.end(), text.begin() + 1);
  return text;
}

TEST(PlatformStrings, LengthByteDecides) {
  PlatformString text;
  std::string accented;  // 255 bytes of MacRoman, though more of UTF-8
  for (int i = 0; i < 255; ++i) accented += "\xC3\xA9";
  for (const std::string& fitting : {std::string("a\xC3\xA9"), accented}) {
    EXPECT_TRUE(CopyUTF8CStringToMacRomanPascalString(text, fitting));
    EXPECT_EQ(text[2], 0x8E);
    EXPECT_EQ(XCFStringCreateWithPlatformString(text.data()), fitting);
  }
  EXPECT_EQ(GetPlatformStringLength(text.data()), 255U);
  for (const std::string& none : {std::string(256, 'x'), std::string("\xE4\xB8\xAD")}) {
    EXPECT_FALSE(CopyUTF8CStringToMacRomanPascalString(text, none));
    EXPECT_EQ(text, PlatformString{});
  }
  EXPECT_EQ(GetPlatformStringLength(nullptr), 0U);
  EXPECT_FALSE(XCFStringCreateWithPlatformString(nullptr));
}

TEST(PlatformStrings, WrittenInTheSystemEncoding) {
  const std::string accented = "a\xC3\xA9";
  std::array<unsigned char, 5> buffer{9, 9, 9, 9, 9};
  EXPECT_TRUE(XCFStringGetPlatformString(&accented, buffer));
  EXPECT_EQ(buffer, (std::array<unsigned char, 5>{2, 'a', 0x8E, 0, 9}));
  // Without room for the zero byte, and without room for the text.
  EXPECT_TRUE(XCFStringGetPlatformString(&accented, std::span(buffer).first(3)));
  testing::internal::CaptureStdout();
  EXPECT_FALSE(XCFStringGetPlatformString(&accented, std::span(buffer).first(2)));
  EXPECT_EQ(testing::internal::GetCapturedStdout(),
            "CFStringGetSystemEncoding() (0) didn't work.  Trying kCFStringEncodingMacRoman\n"
            "Hmm.  kCFStringEncodingMacRoman (0) didn't work either\n");
  EXPECT_EQ(buffer[0], 0);
  EXPECT_FALSE(XCFStringGetPlatformString(&accented, {}));
  EXPECT_FALSE(XCFStringGetPlatformString(nullptr, buffer));
}

TEST(PlatformStrings, AsBytes) {
  const PlatformString text = Made(std::string("a\x8E\0b", 4));
  EXPECT_EQ(STLStringFromPlatformString(text.data()), "a\x8E");
  EXPECT_EQ(STLStringFromPascalString(nullptr), "");
  std::array<char, 5> out{};
  EXPECT_TRUE(CopyPascalStringToCString(out, text.data()));
  EXPECT_EQ(std::string(out.data(), 5), std::string("a\x8E\0b\0", 5));
  EXPECT_FALSE(CopyPascalStringToCString(std::span(out).first(4), text.data()));
  EXPECT_FALSE(CopyPascalStringToCString(out, nullptr));
  EXPECT_FALSE(CopyPascalStringToCString({}, text.data()));

  // The length byte wraps, the bytes are all there.
  std::array<unsigned char, 301> wide{};
  const std::string bytes(300, 'x');
  EXPECT_TRUE(CopyCStringToPascalString(wide, bytes.c_str()));
  EXPECT_EQ(wide[0], 44);
  EXPECT_EQ(wide[300], 'x');
  EXPECT_FALSE(CopyCStringToPascalString(std::span(wide).first(300), bytes.c_str()));
  EXPECT_FALSE(CopyCStringToPascalString(wide, nullptr));
}

TEST(PlatformStrings, CopiedAndJoined) {
  const std::tuple<std::size_t, std::size_t, std::size_t> rows[] = {
      {250, 10, 255}, {255, 1, 255}, {0, 255, 255}, {3, 4, 7}, {0, 0, 0}};
  for (const auto& [first, second, whole] : rows) {
    PlatformString text = Made("old text");
    PlatformStringCopy(text, Made(std::string(first, 'a')).data());
    PlatformStringConcat(text, Made(std::string(second, 'b')).data());
    EXPECT_EQ(STLStringFromPlatformString(text.data()),
              std::string(first, 'a') + std::string(whole - first, 'b'));
  }
  PlatformString text = Made(std::string(200, 'c'));
  PlatformStringConcat(text, text.data());
  PlatformStringConcat(text, nullptr);
  PlatformStringCopy(text, text.data());
  EXPECT_EQ(STLStringFromPlatformString(text.data()), std::string(255, 'c'));
  PlatformStringCopy(text, nullptr);
  EXPECT_EQ(text[0], 0);
}

}  // namespace
