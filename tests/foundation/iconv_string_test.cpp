#include "foundation/iconv_string.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <random>
#include <stdexcept>

#include "foundation/GString.h"

namespace {

std::string Converted(std::string_view text, const char* to, const char* from) {
  try {
    return iconv_string(text, to, from);
  } catch (const std::runtime_error& error) {
    return error.what();
  }
}

TEST(IconvString, ConvertsOrTellsWhyNot) {
  const std::string failed = "Unable to convert string to UTF-16LE (error ";
  const std::tuple<std::string, const char*, const char*, std::string> rows[] = {
      {"\xE9", "UTF-8", "ISO-8859-1", "é"},
      {{"a\0b", 3}, "UTF-16BE", "UTF-8", {"\0a\0\0\0b", 6}},
      // The way back to ASCII is a part of the text.
      {"日", "ISO-2022-JP", "UTF-8", "\x1B$BF|\x1B(B"},
      {"a", "UTF-8", "NO-SUCH-ENCODING", "Unable to initialize iconv (error 22)"},
      {"\xC3\x28", "UTF-16LE", "UTF-8",
       failed + "84): Invalid or incomplete multibyte or wide character"},
      {"a\xC3", "UTF-16LE", "UTF-8", failed + "22): Invalid argument"},
      {"a\xFFé\xC3", "UTF-8//IGNORE", "UTF-8", "aé"},
      {"\x80\x80", "UTF-8//IGNORE", "UTF-8", ""}};
  for (const auto& [text, to, from, expected] : rows) {
    EXPECT_EQ(Converted(text, to, from), expected) << from << " " << to;
  }
  // Three times as long as its source, so that the buffer grows.
  EXPECT_EQ(iconv_string(std::string(1 << 20, '\x80'), "UTF-8", "CP1252").size(), 3U << 20);
}

TEST(IconvString, IgnoringDropsWhatDoesNotConvertAndNothingElse) {
  // Good characters beside single bad bytes; the good ones are what must be left, at each position
  // of the buffer's end.
  std::mt19937 random(1);
  const std::string_view pieces[] = {"a", "é", "漢", "😀", "\xFF", "\x80", "\xC0"};
  std::string mixed;
  std::string good;
  for (int i = 0; i < 300'000; ++i) {
    const std::string_view piece = pieces[random() % std::size(pieces)];
    mixed += piece;
    if (GString::IsValidUtf8(piece)) good += piece;
  }
  EXPECT_TRUE(iconv_string(mixed, "UTF-8//IGNORE", "UTF-8") == good);
  std::string latin;
  for (int i = 0; i < 5'000; ++i) latin += "\xE9\xFF";
  for (std::size_t size = 9'900; size < latin.size(); ++size) {
    EXPECT_EQ(local_to_utf8(latin.substr(0, size) + "x").back(), 'x');
  }
}

// The process's own locale is "C" all the time.
TEST(IconvString, LocalIsTheEnvironmentsEncoding) {
  setenv("LC_ALL", "C.UTF-8", 1);
  EXPECT_EQ(local_to_utf8("é\xFF"), "é");
  EXPECT_EQ(utf8_to_local("é"), "é");
  EXPECT_THROW(utf8_to_local("\xFF"), std::runtime_error);
  for (const char* locale : {"C", "no_SUCH.locale"}) {
    setenv("LC_ALL", locale, 1);
    EXPECT_EQ(local_to_utf8("aé"), "a") << locale;
    EXPECT_EQ(utf8_to_local("a"), "a");
    EXPECT_THROW(utf8_to_local("é"), std::runtime_error);
  }
}

}  // namespace
