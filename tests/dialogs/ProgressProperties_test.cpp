#include "dialogs/ProgressProperties.h"

#include <gtest/gtest.h>

#include <climits>

namespace {

std::string Text(FontProgressProperties& progress, const char* key) {
  const std::string* text = progress.Dictionary().GetStringForKey(key);
  return text ? *text : "(none)";
}

TEST(FontProgressProperties, CountsDownInTheHeader) {
  FontProgressProperties progress(5, "Title", "%d left");
  EXPECT_EQ(progress.Dictionary().GetIntForKey("MaxProgress"), 5);
  EXPECT_FALSE(progress.Dictionary().GetBoolForKey("IsIndeterminate"));
  EXPECT_EQ(Text(progress, "WindowTitle"), "Title");
  EXPECT_EQ(Text(progress, "Status"), "");
  EXPECT_EQ(Text(progress, "Header"), "5 left");
  progress.SetCurrentProgress(2);
  progress.SetCurrentPostscriptName("Foo-Bold");
  EXPECT_EQ(Text(progress, "Header"), "3 left");
  EXPECT_EQ(Text(progress, "Status"), "Foo-Bold");
  progress.SetCurrentProgress(4);
  progress.SetCurrentProgress(5);
  EXPECT_EQ(Text(progress, "Header"), "1 left");
  EXPECT_EQ(progress.Dictionary().GetIntForKey("CurrentProgress"), 5);

  FontProgressProperties bare(5, std::nullopt, std::nullopt);
  EXPECT_EQ(Text(bare, "WindowTitle"), "(none)");
  EXPECT_EQ(Text(bare, "Header"), "(none)");
  FontProgressProperties hostile(5, std::nullopt, "%s%n 100%% %ld %d%");
  EXPECT_EQ(Text(hostile, "Header"), "%s%n 100% 5 %d%");
}

TEST(TarnDictionary, MissingKeysAndDictionariesDoNothing) {
  TarnDictionary dictionary;
  dictionary.SetStringForKey("s", nullptr);
  dictionary.SetIntForKey(nullptr, 1);
  EXPECT_EQ(dictionary.Get()->Count(), 0U);
  EXPECT_EQ(dictionary.GetLongFromStringForKey("n"), 0);
  dictionary.SetStringFromLongForKey("n", LONG_MIN);
  EXPECT_EQ(dictionary.GetLongFromStringForKey("n"), LONG_MIN);
  dictionary.SetStringFromULongForKey("u", ULONG_MAX);
  EXPECT_EQ(*dictionary.GetStringForKey("u"), "18446744073709551615");
  dictionary.SetBoolForKey("b", true);
  EXPECT_TRUE(dictionary.GetBoolForKey("b"));
  EXPECT_EQ(dictionary.GetIntForKey("b"), 1);
  dictionary.AppendItemToArrayForKey("a", TarnDictionary());
  dictionary.AppendItemToArrayForKey("a", TarnDictionary());
  EXPECT_EQ(dictionary.Get()->GetArray("a")->Count(), 2U);

  TarnDictionary none(nullptr);
  none.SetIntForKey("i", 1);
  none.AppendItemToArrayForKey("a", dictionary);
  EXPECT_EQ(none.GetIntForKey("i"), 0);
  EXPECT_EQ(none.GetStringForKey("s"), nullptr);
}

}  // namespace
