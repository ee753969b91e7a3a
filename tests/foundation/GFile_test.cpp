#include "foundation/GFile.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstring>

#include "foundation/GFileSystem.h"
#include "support/RecordingAppender.h"
#include "support/ScratchHome.h"

namespace {

class GFileTest : public testing::Test {
 protected:
  RecordingAppender& mLog = RecordingAppender::Install();
  ScratchHome mHome;
};

TEST_F(GFileTest, ModeStrings) {
  const std::pair<int, const char*> rows[] = {
      {GFile::eRead, "r"},
      {GFile::eRead | GFile::eTruncate | GFile::eBinary, "r"},
      {GFile::eWrite | GFile::eTruncate, "w"},
      {GFile::eWrite, "a"},
      {GFile::eWrite | GFile::eAppend, "a"},
      {GFile::eRead | GFile::eWrite | GFile::eTruncate, "w+"},
      {GFile::eRead | GFile::eWrite | GFile::eTruncate | GFile::eAppend, "w+"},
      {GFile::eRead | GFile::eWrite | GFile::eAppend, "a+"},
      {GFile::eRead | GFile::eWrite, "r+"},
      {GFile::eBinary | GFile::eTruncate, ""},
  };
  for (const auto& [mode, text] : rows) EXPECT_EQ(GFile::GetModeString(mode), text) << mode;
}

TEST_F(GFileTest, FailedOpensTellWhatIsMissing) {
  const std::string missing = mHome.Path() + "/missing/file";
  GFile file;
  EXPECT_EQ(file.Open(missing, GFile::eRead), GFileSystem::kFileNotFound);
  EXPECT_EQ(file.Open(missing, GFile::eRead | GFile::eWrite), GFileSystem::kFileNotFound);
  EXPECT_EQ(file.Open(missing, GFile::eWrite), GFile::kOpenFailed);
  EXPECT_EQ(file.Open(mHome.WriteFile("plain", "") + "/x", GFile::eRead), GFile::kOpenFailed);
  EXPECT_EQ(file.Open(mHome.Path(), GFile::eRead), GFile::kOpenFailed);
  EXPECT_EQ(file.Open(mHome.Path() + "/new", 0), GFile::kOpenFailed);
  EXPECT_FALSE(file.IsOpen());
}

TEST_F(GFileTest, ClosedFileRefusesEverything) {
  GFile file;
  unsigned long long number = 0;
  std::string text;
  EXPECT_EQ(file.Close(), GFile::kFileNotOpen);
  EXPECT_NE(mLog.Lines().back().find("Expression='!IsOpen()'"), std::string::npos);
  EXPECT_EQ(file.GetFileSize(number), GFile::kFileNotOpen);
  EXPECT_EQ(file.Read(text), GFile::kFileNotOpen);
  EXPECT_EQ(file.Write("x", 1), GFile::kFileNotOpen);
  EXPECT_EQ(file.Flush(), GFile::kFileNotOpen);
}

TEST_F(GFileTest, WritesAppendsAndReadsBack) {
  const std::string path = mHome.Path() + "/data";
  GFile file;
  ASSERT_EQ(file.Open(path, GFile::eWrite | GFile::eTruncate), 0U);
  EXPECT_EQ(file.Write(std::vector<char>{'a', '\0', '\r', '\n'}), 0U);
  EXPECT_EQ(file.Write("", 0), 0U);
  ASSERT_EQ(file.Close(), 0U);
  ASSERT_EQ(file.Open(path, GFile::eWrite), 0U);
  EXPECT_EQ(file.Write("tail", 4), 0U);
  ASSERT_EQ(file.Open(path, GFile::eRead), 0U);  // closes the other first

  unsigned long long number = 0;
  EXPECT_EQ(file.SetFilePosition(GFile::eFromStart, 2), 0U);
  EXPECT_EQ(file.GetFileSize(number), 0U);
  EXPECT_EQ(number, 8U);
  EXPECT_EQ(file.GetFilePosition(number), 0U);
  EXPECT_EQ(number, 2U);
  std::string rest;
  EXPECT_EQ(file.Read(rest), 0U);
  EXPECT_EQ(rest, "\r\ntail");
  EXPECT_EQ(file.SetFilePosition(GFile::eFromEnd, 0ULL - 2), 0U);
  EXPECT_EQ(file.SetFilePosition(GFile::eFromCurrent, 1), 0U);
  EXPECT_EQ(file.Read(rest), 0U);
  EXPECT_EQ(rest, "l");
  EXPECT_EQ(file.SetFilePosition(static_cast<GFile::EPosition>(3), 0),
            CoreErrorCodes::kInvalidParam);
}

TEST_F(GFileTest, ShortReadsAreErrorsAndAskForLittleMemory) {
  GFile file;
  ASSERT_EQ(file.Open(mHome.WriteFile("five", std::string("\x01\x02\x03\x04\x05")), GFile::eRead),
            0U);
  std::vector<char> bytes;
  EXPECT_EQ(file.Read(std::uint64_t{1} << 60, bytes), CoreErrorCodes::kError);
  EXPECT_EQ(bytes.size(), 5U);
  unsigned int number = 0;
  unsigned short half = 0;
  ASSERT_EQ(file.SetFilePosition(GFile::eFromStart, 0), 0U);
  EXPECT_EQ(file.Read(number), 0U);
  const unsigned char expected[] = {1, 2, 3, 4};
  EXPECT_EQ(std::memcmp(&number, expected, sizeof(number)), 0);
  EXPECT_EQ(file.Read(half), CoreErrorCodes::kError);

  char buffer[4];
  std::size_t count = 0;
  ASSERT_EQ(file.SetFilePosition(GFile::eFromStart, 3), 0U);
  EXPECT_EQ(file.ReadSome(buffer, sizeof(buffer), count), 0U);
  EXPECT_EQ(count, 2U);
  EXPECT_EQ(file.ReadSome(buffer, sizeof(buffer), count), 0U);
  EXPECT_EQ(count, 0U);
}

TEST_F(GFileTest, PositionsBeyondFourGigabytes) {
  constexpr unsigned long long kFar = 5ULL << 30;
  GFile file;
  ASSERT_EQ(file.Open(mHome.Path() + "/sparse", GFile::eRead | GFile::eWrite | GFile::eTruncate),
            0U);
  EXPECT_EQ(file.SetFileSize(kFar), 0U);
  EXPECT_EQ(file.SetFilePosition(GFile::eFromStart, kFar), 0U);
  EXPECT_EQ(file.Write("x", 1), 0U);
  unsigned long long size = 0;
  EXPECT_EQ(file.GetFileSize(size), 0U);
  EXPECT_EQ(size, kFar + 1);
  EXPECT_EQ(file.SetFileSize(1), 0U);
  EXPECT_EQ(file.GetFileSize(size), 0U);
  EXPECT_EQ(size, 1U);
}

TEST_F(GFileTest, FullDiskHasACodeOfItsOwn) {
  if (access("/dev/full", W_OK) != 0) GTEST_SKIP() << "no /dev/full here";
  GFile file;
  ASSERT_EQ(file.Open("/dev/full", GFile::eWrite), 0U);
  EXPECT_EQ(file.Write("x", 1), 0U);  // still in the buffer
  EXPECT_EQ(file.Flush(), GFileSystem::kDiskFull);
  EXPECT_NE(mLog.Lines().back().find("Expression='fflush(mpFile) != 0'"), std::string::npos);
  EXPECT_EQ(file.Write(std::string(100'000, 'x').c_str(), 100'000), GFileSystem::kDiskFull);
}

TEST_F(GFileTest, MagicNumber) {
  const auto isZip = [this](const std::string& contents) {
    bool result = true;
    EXPECT_EQ(
        GFile::FileHasMagicNumber(mHome.WriteFile("file", contents), 0x50, 0x4B, 3, 4, result), 0U);
    return result;
  };
  EXPECT_TRUE(isZip("PK\x03\x04 and more"));
  EXPECT_FALSE(isZip("PK\x03\x05"));
  EXPECT_FALSE(isZip("PK\x03"));
  EXPECT_TRUE(mLog.Lines().empty());

  bool result = true;
  EXPECT_EQ(GFile::FileHasMagicNumber(mHome.Path() + "/none", 1, 2, 3, 4, result),
            GFileSystem::kFileNotFound);
  EXPECT_FALSE(result);
  EXPECT_NE(mLog.Lines().back().find("[FileSystem]\t[Error]"), std::string::npos);
  EXPECT_NE(mLog.Lines().back().find("Expression='file.Open(fileSpec, eRead | eBinary)'"),
            std::string::npos);
}

}  // namespace
