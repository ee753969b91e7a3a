#include "foundation/GConfigurationFile.h"

#include <gtest/gtest.h>

#include "foundation/GFile.h"
#include "foundation/GFileSystem.h"
#include "support/RecordingAppender.h"
#include "support/ScratchHome.h"

namespace {

using Pairs = std::map<std::string, std::string>;

Pairs Parse(const std::string& text) {
  Pairs values = {{"old", "value"}};
  EXPECT_EQ(GConfigurationFile::ParseString(text, values), 0U);
  return values;
}

TEST(GConfigurationFile, LinesAndComments) {
  EXPECT_EQ(Parse("Path = /a/b # the tool"), (Pairs{{"path", "/a/b"}}));
  EXPECT_EQ(Parse("a=b=c"), (Pairs{{"a", "b=c"}}));
  EXPECT_EQ(Parse("key=\n#x=y\n  \nKEY2 =V\nkey2= W "), (Pairs{{"key", ""}, {"key2", "W"}}));
  EXPECT_EQ(Parse("a=1\r\nb=2\r\n"), Parse("a=1\nb=2"));
  EXPECT_EQ(Parse(""), Pairs{});
}

TEST(GConfigurationFile, AnyBytesAndAnyLength) {
  RecordingAppender::Install();
  using namespace std::string_literals;
  EXPECT_EQ(Parse("a\0b=c\0d\r\xFF=\xFE"s), (Pairs{{"a\0b"s, "c\0d"s}, {"\xFF", "\xFE"}}));
  EXPECT_EQ(Parse("\0=\0"s), (Pairs{{"\0"s, "\0"s}}));
  EXPECT_EQ(Parse("a=1\n\r\n\rb=2"), (Pairs{{"a", "1"}, {"b", "2"}}));
  const std::string value(std::size_t{64} << 20, 'v');
  EXPECT_EQ(Parse("a=" + value + "\nb=2"), (Pairs{{"a", value}, {"b", "2"}}));
}

TEST(GConfigurationFile, IllegalLinesAreToldAndSkipped) {
  RecordingAppender& log = RecordingAppender::Install();
  EXPECT_EQ(Parse("=value\njust text\n # =\nrest=1"), (Pairs{{"rest", "1"}}));
  ASSERT_EQ(log.Lines().size(), 2U);
  EXPECT_NE(log.Lines()[0].find("[Warning]"), std::string::npos);
  EXPECT_NE(log.Lines()[0].find("\tIgnoring illegal line in configuration:\n=value\n"),
            std::string::npos);
  EXPECT_NE(log.Lines()[1].find("\tIgnoring illegal line in configuration:\njust text\n"),
            std::string::npos);
}

TEST(GConfigurationFile, FilesRoundTrip) {
  RecordingAppender& log = RecordingAppender::Install();
  const ScratchHome home;
  const std::string path = home.Path() + "/launch.conf";
  Pairs values = {{"nodrix.path", "/opt/x y"}, {"Args", "--a=b"}};
  EXPECT_EQ(GConfigurationFile::WriteFile(path, values), 0U);
  EXPECT_EQ(ReadWholeFile(path), "Args=--a=b\r\nnodrix.path=/opt/x y\r\n");
  EXPECT_EQ(GConfigurationFile::ParseFile(path, values), 0U);
  EXPECT_EQ(values, (Pairs{{"args", "--a=b"}, {"nodrix.path", "/opt/x y"}}));

  EXPECT_EQ(GConfigurationFile::ParseFile(home.Path() + "/none", values),
            GFileSystem::kFileNotFound);
  EXPECT_EQ(values.size(), 2U);
  EXPECT_NE(log.Lines().back().find(
                "Expression='confFile.Open(confFileSpec, GFile::eRead|GFile::eBinary)'"),
            std::string::npos);
  EXPECT_EQ(GConfigurationFile::WriteFile(home.Path() + "/none/x", values), GFile::kOpenFailed);
}

}  // namespace
