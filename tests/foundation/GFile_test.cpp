#include "foundation/GFile.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstring>

#include "foundation/GFileSystem.h"
#include "support/RecordingAppender.h"
#include "support/ScratchHome.h"
#include "tests/foundation/FileTestSupport.h"

namespace {

class GFileTest : public testing::Test {
 protected:
  RecordingAppender& mLog = RecordingAppender::Install();
  ScratchHome mHome;
};

TEST_F(GFileTest, ModeStrings) {
  const std::pair<int, const char*> rows[] = {
      {GFile::eRead, "rb"},
      {GFile::eRead | GFile::eTruncate | GFile::eBinary, "rb"},
      {GFile::eWrite | GFile::eTruncate, "wb"},
      {GFile::eWrite, "ab"},
      {GFile::eWrite | GFile::eAppend, "ab"},
      {GFile::eRead | GFile::eWrite | GFile::eTruncate, "w+b"},
      {GFile::eRead | GFile::eWrite | GFile::eTruncate | GFile::eAppend, "w+b"},
      {GFile::eRead | GFile::eWrite | GFile::eAppend, "a+b"},
      {GFile::eRead | GFile::eWrite, "r+b"},
      {GFile::eBinary | GFile::eTruncate, ""},
  };
  for (const auto& [mode, text] : rows) EXPECT_EQ(GFile::GetModeString(mode), text) << mode;
}

TEST_F(GFileTest, FailedOpensTellWhatIsMissing) {
  const std::string home = mHome.Path();
  const std::string missing = home + "/missing/file";
  const std::string plain = mHome.WriteFile("plain", "");
  ASSERT_EQ(mkfifo((home + "/fifo").c_str(), 0600), 0);
  const struct {
    std::string path;
    int mode;
    TModuleErrorCode code;
  } rows[] = {
      {missing, GFile::eRead, GFileSystem::kFileNotFound},
      {missing, GFile::eRead | GFile::eWrite, GFileSystem::kFileNotFound},
      {missing, GFile::eRead | GFile::eWrite | GFile::eTruncate, GFileSystem::kFileNotFound},
      {missing, GFile::eRead | GFile::eWrite | GFile::eAppend, GFileSystem::kFileNotFound},
      {missing, GFile::eWrite, GFile::kOpenFailed},
      {plain + "/x", GFile::eRead, GFile::kOpenFailed},
      {home, GFile::eRead, GFile::kOpenFailed},
      {home + "/new", 0, GFile::kOpenFailed},
      {home + "/" + std::string(256, 'n'), GFile::eWrite, GFile::kOpenFailed},
      {home + "/fifo", GFile::eRead, GFile::kOpenFailed},
      {home + "/fifo", GFile::eWrite, GFile::kOpenFailed},
      {home + "/fifo", GFile::eRead | GFile::eWrite, GFile::kOpenFailed},
      {"/dev/null", GFile::eWrite, GFile::kOpenFailed},
      {"", GFile::eRead, GFileSystem::kFileNotFound},
  };
  GFile file;
  for (const auto& [path, mode, code] : rows) {
    EXPECT_EQ(file.Open(path, mode), code) << path << " " << mode;
    EXPECT_FALSE(file.IsOpen());
  }
  EXPECT_EQ(file.OpenResourceFork(plain, GFile::eRead), GFileSystem::kFileNotFound);
  EXPECT_EQ(file.OpenResourceFork(plain, GFile::eWrite), GFile::kOpenFailed);
  EXPECT_FALSE(file.IsOpen());

  chmod(home.c_str(), 0755);
  chmod(plain.c_str(), 0);
  const AsNobody nobody;
  EXPECT_EQ(file.Open(plain, GFile::eRead), GFile::kOpenFailed);
}

TEST_F(GFileTest, FilesWithContentsAndNoSizeAreReadWhole) {
  GFile file;
  unsigned long long size = 1;
  std::string text;
  if (file.Open("/proc/self/status", GFile::eRead) != 0) GTEST_SKIP() << "no /proc here";
  if (file.GetFileSize(size) == 0) {
    EXPECT_EQ(size, 0U);
  }
  EXPECT_EQ(file.Read(text), 0U);
  EXPECT_NE(text.find("\nPid:"), std::string::npos);
}

TEST_F(GFileTest, StartedProgramsDoNotInheritIt) {
  GFile file;
  const std::string path = mHome.WriteFile("file", "");
  ASSERT_EQ(file.Open(path, GFile::eRead | GFile::eWrite), 0U);
  int found = 0;
  for (int descriptor = 3; descriptor < 256; ++descriptor) {
    char target[4096] = {};
    const std::string link = "/proc/self/fd/" + std::to_string(descriptor);
    if (readlink(link.c_str(), target, sizeof(target) - 1) < 0 || path != target) continue;
    ++found;
    EXPECT_NE(fcntl(descriptor, F_GETFD) & FD_CLOEXEC, 0);
  }
  EXPECT_EQ(found, 1);
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
  EXPECT_EQ(file.SetFilePosition(GFile::eFromStart, 6), 0U);
  EXPECT_EQ(file.SetFilePosition(GFile::eFromCurrent, 1), 0U);
  EXPECT_EQ(file.Read(rest), 0U);
  EXPECT_EQ(rest, "l");
  EXPECT_EQ(file.SetFilePosition(GFile::eFromEnd, 0ULL - 3), 0U);
  EXPECT_EQ(file.SetFilePosition(GFile::eFromCurrent, 0ULL - 1), 0U);
  EXPECT_EQ(file.Read(rest), 0U);
  EXPECT_EQ(rest, "tail");
  EXPECT_EQ(file.SetFilePosition(GFile::eFromEnd, 0), 0U);
  EXPECT_EQ(file.GetFilePosition(number), 0U);
  EXPECT_EQ(number, 8U);
  constexpr unsigned long long kLargest = (1ULL << 63) - 1;
  const std::pair<int, unsigned long long> refused[] = {
      {3, 0},
      {GFile::eFromStart, kLargest + 1},
      {GFile::eFromStart, 0ULL - 2},
      {GFile::eFromCurrent, kLargest},
      {GFile::eFromEnd, 0ULL - 9},
  };
  for (const auto& [origin, offset] : refused) {
    EXPECT_EQ(file.SetFilePosition(static_cast<GFile::EPosition>(origin), offset),
              CoreErrorCodes::kInvalidParam)
        << origin << " " << offset;
  }
  EXPECT_EQ(file.SetFileSize(kLargest + 1), CoreErrorCodes::kInvalidParam);
}

TEST_F(GFileTest, ReadsAndWritesFollowEachOther) {
  const std::string path = mHome.WriteFile("both", "0123456789");
  GFile file;
  std::vector<char> bytes;
  std::string rest;
  unsigned int number = 0;
  unsigned short half = 0;
  ASSERT_EQ(file.Open(path, GFile::eRead | GFile::eWrite), 0U);
  EXPECT_EQ(file.Read(2, bytes), 0U);
  EXPECT_EQ(file.Write(std::string("AB")), 0U);
  EXPECT_EQ(file.Read(2, bytes), 0U);
  EXPECT_EQ(bytes, (std::vector<char>{'4', '5'}));
  EXPECT_EQ(file.Write("C", 1), 0U);
  EXPECT_EQ(file.Read(rest), 0U);
  EXPECT_EQ(rest, "789");
  EXPECT_EQ(file.Write(0x01020304U), 0U);
  EXPECT_EQ(file.Write(static_cast<unsigned short>(0x0506)), 0U);
  EXPECT_EQ(file.Read(rest), 0U);
  EXPECT_EQ(rest, "");
  EXPECT_EQ(file.SetFilePosition(GFile::eFromStart, 10), 0U);
  EXPECT_EQ(file.Read(number), 0U);
  EXPECT_EQ(file.Read(half), 0U);
  EXPECT_EQ(number, 0x01020304U);
  EXPECT_EQ(half, 0x0506);
  EXPECT_EQ(file.Read(half), CoreErrorCodes::kError);
  EXPECT_EQ(half, 0x0506);
  ASSERT_EQ(file.Close(), 0U);
  EXPECT_EQ(ReadWholeFile(path).substr(0, 10), "01AB45C789");

  ASSERT_EQ(file.Open(path, GFile::eRead), 0U);
  EXPECT_EQ(file.Write(std::string(100'000, 'x')), CoreErrorCodes::kError);
  EXPECT_EQ(file.Read(rest), 0U);
  ASSERT_EQ(file.Open(path, GFile::eWrite), 0U);
  EXPECT_EQ(file.Read(rest), CoreErrorCodes::kError);
  EXPECT_NE(mLog.Lines().back().find("Expression='0 != ferror(mpFile)'"), std::string::npos);
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

TEST_F(GFileTest, NoRoomHasACodeOfItsOwn) {
  const std::string large(200'000, 'x');
  const auto meetsTheEnd = [&](const std::string& path) {
    GFile file;
    ASSERT_EQ(file.Open(path, GFile::eWrite | GFile::eTruncate), 0U);
    EXPECT_EQ(file.Write(large), GFileSystem::kDiskFull);
    EXPECT_EQ(file.Write("x", 1), 0U);  // still in the buffer
    EXPECT_EQ(file.Flush(), GFileSystem::kDiskFull);
    EXPECT_NE(mLog.Lines().back().find("Expression='fflush(mpFile) != 0'"), std::string::npos);
    EXPECT_EQ(file.Write("x", 1), 0U);
    EXPECT_EQ(file.Close(), GFileSystem::kDiskFull);
    EXPECT_NE(mLog.Lines().back().find("Expression='0 != fclose(mpFile)'"), std::string::npos);
    EXPECT_FALSE(file.IsOpen());
  };
  {
    const FileSizeLimit limit(8192);
    meetsTheEnd(mHome.Path() + "/limited");
  }
  const std::string folder = mHome.MakeFolder("disk");
  const SmallDisk disk(folder);
  if (!disk.IsThere()) GTEST_SKIP() << "no right to mount a small disk";
  meetsTheEnd(folder + "/file");
}

TEST_F(GFileTest, MagicNumber) {
  const auto isZip = [this](const std::string& contents) {
    bool result = true;
    EXPECT_EQ(GFile::IsZipFile(mHome.WriteFile("file", contents), result), 0U);
    return result;
  };
  EXPECT_TRUE(isZip("PK\x03\x04 and more"));
  EXPECT_FALSE(isZip("PK\x03\x05"));
  EXPECT_FALSE(isZip("PK\x03"));
  bool result = false;
  EXPECT_EQ(GFile::IsAppleSingleFile(mHome.WriteFile("f", std::string("\0\5\x16\0", 4)), result),
            0U);
  EXPECT_TRUE(result);
  EXPECT_TRUE(mLog.Lines().empty());
  EXPECT_EQ(GFile::FileHasMagicNumber(mHome.Path() + "/none", 1, 2, 3, 4, result),
            GFileSystem::kFileNotFound);
  EXPECT_FALSE(result);
  EXPECT_NE(mLog.Lines().back().find("[FileSystem]\t[Error]"), std::string::npos);
  EXPECT_NE(mLog.Lines().back().find("Expression='file.Open(fileSpec, eRead | eBinary)'"),
            std::string::npos);
}

}  // namespace
