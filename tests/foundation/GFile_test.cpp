#include "foundation/GFile.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <filesystem>

#include "foundation/GFileSystem.h"
#include "tests/foundation/FileTestSupport.h"

namespace {

constexpr TModuleErrorCode kError = CoreErrorCodes::kError;
constexpr int kBoth = GFile::eRead | GFile::eWrite;

class GFileTest : public FileTest {
 protected:
  std::string Rest() {
    std::string rest = "old";
    EXPECT_EQ(mFile.Read(rest), 0U);
    return rest;
  }
  GFile mFile;
};

TEST_F(GFileTest, ModeStrings) {
  const std::pair<int, const char*> rows[] = {{GFile::eRead, "rb"},
                                              {GFile::eRead | GFile::eTruncate, "rb"},
                                              {GFile::eWrite | GFile::eTruncate, "wb"},
                                              {GFile::eWrite, "ab"},
                                              {kBoth | GFile::eTruncate | GFile::eAppend, "w+b"},
                                              {kBoth | GFile::eAppend, "a+b"},
                                              {kBoth, "r+b"},
                                              {GFile::eBinary | GFile::eTruncate, ""}};
  for (const auto& [mode, text] : rows) EXPECT_EQ(GFile::GetModeString(mode), text) << mode;
}

TEST_F(GFileTest, FailedOpensTellWhatIsMissing) {
  const std::string missing = Path("missing/file");
  const std::string plain = mHome.WriteFile("plain", "");
  const std::string fifo = Path("fifo");
  ASSERT_EQ(mkfifo(fifo.c_str(), 0600), 0);
  EXPECT_EQ(mFile.Open(missing, GFile::eWrite), GFile::kOpenFailed);
  for (const int mode : {int{GFile::eRead}, kBoth | GFile::eAppend}) {
    EXPECT_EQ(mFile.Open(missing, mode), GFileSystem::kFileNotFound) << mode;
    EXPECT_EQ(mFile.Open("", mode), GFileSystem::kFileNotFound) << mode;
  }
  for (const std::string& path :
       {plain + "/x", mHome.Path(), Path(std::string(256, 'n')), fifo, std::string("/dev/null")}) {
    for (const int mode : {int{GFile::eRead}, int{GFile::eWrite}, kBoth}) {
      EXPECT_EQ(mFile.Open(path, mode), GFile::kOpenFailed) << path << " " << mode;
    }
  }
  EXPECT_EQ(mFile.Open(Path("new"), 0), GFile::kOpenFailed);
  EXPECT_FALSE(mFile.IsOpen());
  EXPECT_EQ(mFile.OpenResourceFork(plain, GFile::eRead), GFileSystem::kFileNotFound);
  EXPECT_EQ(mFile.OpenResourceFork(plain, GFile::eWrite), GFile::kOpenFailed);
  chmod(mHome.Path().c_str(), 0755);
  chmod(plain.c_str(), 0);
  const Until nobody = AsNobody();
  EXPECT_EQ(mFile.Open(plain, GFile::eRead), GFile::kOpenFailed);
}

TEST_F(GFileTest, FilesWithContentsAndNoSizeAreReadWhole) {
  ASSERT_EQ(mFile.Open("/proc/self/status", GFile::eRead), 0U);
  EXPECT_NE(Rest().find("\nPid:"), std::string::npos);
}

TEST_F(GFileTest, StartedProgramsDoNotInheritIt) {
  const int next = dup(STDERR_FILENO);  // and so the file's
  close(next);
  ASSERT_EQ(mFile.Open(mHome.WriteFile("file", ""), kBoth), 0U);
  EXPECT_EQ(fcntl(next, F_GETFD), FD_CLOEXEC);
}

TEST_F(GFileTest, ClosedFileRefusesEverything) {
  unsigned long long number = 0;
  std::string text;
  EXPECT_EQ(mFile.Close(), GFile::kFileNotOpen);
  EXPECT_TRUE(IsRecorded("!IsOpen()"));
  EXPECT_EQ(mFile.GetFileSize(number), GFile::kFileNotOpen);
  EXPECT_EQ(mFile.Read(text), GFile::kFileNotOpen);
  EXPECT_EQ(mFile.Write("x", 1), GFile::kFileNotOpen);
  EXPECT_EQ(mFile.Flush(), GFile::kFileNotOpen);
}

TEST_F(GFileTest, WritesAppendsAndReadsBack) {
  const std::string path = Path("data");
  ASSERT_EQ(mFile.Open(path, GFile::eWrite | GFile::eTruncate), 0U);
  EXPECT_EQ(mFile.Write(std::vector<char>{'a', '\0', '\r', '\n'}), 0U);
  ASSERT_EQ(mFile.Close(), 0U);
  ASSERT_EQ(mFile.Open(path, GFile::eWrite), 0U);
  EXPECT_EQ(mFile.Write("tail", 4), 0U);
  ASSERT_EQ(mFile.Open(path, GFile::eRead), 0U);  // closes the other first

  const std::tuple<GFile::EPosition, unsigned long long, std::string> rows[] = {
      {GFile::eFromStart, 2, "\r\ntail"}, {GFile::eFromCurrent, 0ULL - 1, "l"},
      {GFile::eFromEnd, 0ULL - 3, "ail"}, {GFile::eFromStart, 6, "il"},
      {GFile::eFromEnd, 0, ""},
  };
  unsigned long long number = 0;
  for (const auto& [origin, offset, rest] : rows) {
    EXPECT_EQ(mFile.SetFilePosition(origin, offset), 0U);
    EXPECT_EQ(mFile.GetFileSize(number), 0U);
    EXPECT_EQ(number, 8U);
    EXPECT_EQ(mFile.GetFilePosition(number), 0U);
    EXPECT_EQ(number, 8 - rest.size());
    EXPECT_EQ(Rest(), rest);
  }
  constexpr unsigned long long kLargest = (1ULL << 63) - 1;
  const std::pair<int, unsigned long long> refused[] = {{3, 0},
                                                        {GFile::eFromStart, kLargest + 1},
                                                        {GFile::eFromStart, 0ULL - 2},
                                                        {GFile::eFromCurrent, kLargest},
                                                        {GFile::eFromEnd, 0ULL - 9}};
  for (const auto& [origin, offset] : refused) {
    EXPECT_EQ(mFile.SetFilePosition(static_cast<GFile::EPosition>(origin), offset),
              CoreErrorCodes::kInvalidParam)
        << origin << " " << offset;
  }
  EXPECT_EQ(mFile.SetFileSize(kLargest + 1), CoreErrorCodes::kInvalidParam);
}

TEST_F(GFileTest, ReadsAndWritesFollowEachOther) {
  const std::string path = mHome.WriteFile("both", "0123456789");
  std::vector<char> bytes;
  unsigned int number = 0;
  unsigned short half = 0;
  ASSERT_EQ(mFile.Open(path, kBoth), 0U);
  EXPECT_EQ(mFile.Read(2, bytes), 0U);
  EXPECT_EQ(mFile.Write(std::string("AB")), 0U);
  EXPECT_EQ(mFile.Read(2, bytes), 0U);
  EXPECT_EQ(bytes, (std::vector<char>{'4', '5'}));
  EXPECT_EQ(mFile.Write("C", 1), 0U);
  EXPECT_EQ(Rest(), "789");
  EXPECT_EQ(mFile.Write(0x01020304U), 0U);
  EXPECT_EQ(mFile.Write(static_cast<unsigned short>(0x0506)), 0U);
  EXPECT_EQ(mFile.SetFilePosition(GFile::eFromStart, 10), 0U);
  EXPECT_EQ(mFile.Read(number), 0U);
  EXPECT_EQ(mFile.Read(half), 0U);
  EXPECT_EQ(number, 0x01020304U);
  EXPECT_EQ(mFile.Read(half), kError);
  EXPECT_EQ(half, 0x0506);
  ASSERT_EQ(mFile.Close(), 0U);
  EXPECT_EQ(ReadWholeFile(path).substr(0, 10), "01AB45C789");

  ASSERT_EQ(mFile.Open(path, GFile::eRead), 0U);
  EXPECT_EQ(mFile.Write(std::string(100'000, 'x')), kError);
  EXPECT_EQ(Rest().size(), 16U);
  ASSERT_EQ(mFile.Open(path, GFile::eWrite), 0U);
  EXPECT_EQ(mFile.Read(bytes), kError);
  EXPECT_TRUE(IsRecorded("0 != ferror(mpFile)"));
}

TEST_F(GFileTest, ShortReadsAreErrorsAndAskForLittleMemory) {
  ASSERT_EQ(mFile.Open(mHome.WriteFile("five", "12345"), GFile::eRead), 0U);
  std::vector<char> bytes;
  EXPECT_EQ(mFile.Read(std::uint64_t{1} << 60, bytes), kError);
  EXPECT_EQ(bytes.size(), 5U);
  char buffer[4];
  std::size_t count = 0;
  ASSERT_EQ(mFile.SetFilePosition(GFile::eFromStart, 3), 0U);
  for (const std::size_t expected : {2U, 0U}) {
    EXPECT_EQ(mFile.ReadSome(buffer, sizeof(buffer), count), 0U);
    EXPECT_EQ(count, expected);
  }
}

TEST_F(GFileTest, PositionsBeyondFourGigabytes) {
  constexpr unsigned long long kFar = 5ULL << 30;
  ASSERT_EQ(mFile.Open(Path("sparse"), kBoth | GFile::eTruncate), 0U);
  EXPECT_EQ(mFile.SetFileSize(kFar), 0U);
  EXPECT_EQ(mFile.SetFilePosition(GFile::eFromEnd, 0), 0U);
  EXPECT_EQ(mFile.Write("x", 1), 0U);
  unsigned long long size = 0;
  EXPECT_EQ(mFile.GetFileSize(size), 0U);
  EXPECT_EQ(size, kFar + 1);
  EXPECT_EQ(mFile.SetFileSize(1), 0U);
  EXPECT_EQ(std::filesystem::file_size(Path("sparse")), 1U);
}

TEST_F(GFileTest, NoRoomHasACodeOfItsOwn) {
  const auto meetsTheEnd = [this](const std::string& path) {
    ASSERT_EQ(mFile.Open(path, GFile::eWrite | GFile::eTruncate), 0U);
    EXPECT_EQ(mFile.Write(std::string(200'000, 'x')), GFileSystem::kDiskFull);
    EXPECT_EQ(mFile.Write("x", 1), 0U);  // still in the buffer
    EXPECT_EQ(mFile.Flush(), GFileSystem::kDiskFull);
    EXPECT_TRUE(IsRecorded("fflush(mpFile) != 0"));
    EXPECT_EQ(mFile.Write("x", 1), 0U);
    EXPECT_EQ(mFile.Close(), GFileSystem::kDiskFull);
    EXPECT_TRUE(IsRecorded("0 != fclose(mpFile)"));
    EXPECT_FALSE(mFile.IsOpen());
  };
  {
    const Until limit = Limited(RLIMIT_FSIZE, 8192);
    meetsTheEnd(Path("limited"));
  }
  const std::string folder = mHome.MakeFolder("disk");
  const Until disk = SmallDisk(folder);
  if (!disk) GTEST_SKIP() << "no right to mount a small disk";
  meetsTheEnd(folder + "/file");
}

TEST_F(GFileTest, MagicNumber) {
  const std::tuple<std::string, bool, bool> rows[] = {{"PK\x03\x04 and more", true, false},
                                                      {"PK\x03\x05", false, false},
                                                      {"PK\x03", false, false},
                                                      {{"\0\5\x16\0", 4}, false, true}};
  for (const auto& [contents, isZip, isAppleSingle] : rows) {
    const std::string path = mHome.WriteFile("file", contents);
    bool result = !isZip;
    EXPECT_EQ(GFile::IsZipFile(path, result), 0U);
    EXPECT_EQ(result, isZip);
    EXPECT_EQ(GFile::IsAppleSingleFile(path, result), 0U);
    EXPECT_EQ(result, isAppleSingle);
  }
  EXPECT_TRUE(mLog.Lines().empty());
  bool result = true;
  EXPECT_EQ(GFile::FileHasMagicNumber(Path("none"), 1, 2, 3, 4, result),
            GFileSystem::kFileNotFound);
  EXPECT_FALSE(result);
  EXPECT_TRUE(IsRecorded("file.Open(fileSpec, eRead | eBinary)"));
  EXPECT_NE(mLog.Lines().back().find("[FileSystem]\t[Error]"), std::string::npos);
}

}  // namespace
