#include "foundation/GConfigurationFile.h"

#include "foundation/GFile.h"
#include "foundation/GFileSystem.h"
#include "tests/foundation/FileTestSupport.h"

namespace {

using namespace std::string_literals;
using GConfigurationFileTest = FileTest;
using Pairs = std::map<std::string, std::string>;

TEST_F(GConfigurationFileTest, LinesCommentsAndAnyBytes) {
  const std::string value(std::size_t{64} << 20, 'v');
  const std::pair<std::string, Pairs> rows[] = {
      {"Path = /a/b # the tool", {{"path", "/a/b"}}},
      {"a=b=c", {{"a", "b=c"}}},
      {"key=\n#x=y\n  \nKEY2 =V\nkey2= W ", {{"key", ""}, {"key2", "W"}}},
      {"", {}},
      {"a=1\n\r\n\rb=2\r\n", {{"a", "1"}, {"b", "2"}}},
      {"a\0b=c\0d\r\xFF=\xFE"s, {{"a\0b"s, "c\0d"s}, {"\xFF", "\xFE"}}},
      {"a=" + value + "\nb=2", {{"a", value}, {"b", "2"}}},
      {"=value\njust text\n # =\nrest=1", {{"rest", "1"}}}};
  for (const auto& [text, expected] : rows) {
    Pairs values = {{"old", "value"}};
    EXPECT_EQ(GConfigurationFile::ParseString(text, values), 0U);
    EXPECT_TRUE(values == expected) << text.substr(0, 80);
  }
  ASSERT_EQ(mLog.Lines().size(), 2U);
  for (const std::size_t i : {0U, 1U}) {
    const std::string line = i == 0 ? "=value\n" : "just text\n";
    EXPECT_NE(mLog.Lines()[i].find("[Warning]"), std::string::npos);
    EXPECT_NE(mLog.Lines()[i].find("\tIgnoring illegal line in configuration:\n" + line),
              std::string::npos);
  }
}

TEST_F(GConfigurationFileTest, FilesRoundTrip) {
  const std::string path = Path("launch.conf");
  Pairs values = {{"nodrix.path", "/opt/x y"}, {"Args", "--a=b"}};
  EXPECT_EQ(GConfigurationFile::WriteFile(path, values), 0U);
  EXPECT_EQ(ReadWholeFile(path), "Args=--a=b\r\nnodrix.path=/opt/x y\r\n");
  EXPECT_EQ(GConfigurationFile::ParseFile(path, values), 0U);
  EXPECT_EQ(values, (Pairs{{"args", "--a=b"}, {"nodrix.path", "/opt/x y"}}));
  EXPECT_EQ(GConfigurationFile::ParseFile(Path("none"), values), GFileSystem::kFileNotFound);
  EXPECT_EQ(values.size(), 2U);
  EXPECT_TRUE(IsRecorded("confFile.Open(confFileSpec, GFile::eRead|GFile::eBinary)"));
  EXPECT_EQ(GConfigurationFile::WriteFile(Path("none/x"), values), GFile::kOpenFailed);
}

}  // namespace
