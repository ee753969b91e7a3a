#include "documents/AdobeByteScan.h"

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>

#include "documents/FontNameScanner.h"
#include "foundation/PluginLog.h"
#include "sdk/FontRecordKeys.h"
#include "support/ScratchHome.h"

using namespace std::string_literals;
using CommonFunctionality::FileExtensionIs;
using CommonFunctionality::GetFontNamesFromNonXMPSectionOfAdobeDocument;
using Names = std::vector<std::string>;

namespace {

const std::string kFontSet = "/FontSet [ << /Name (\xFE\xFF\0A\0b) >> ]"s;
const std::string kCoolType = "<< /99 /CoolTypeFont /0 << /0 (\xFE\xFF\0C\0d) /2 0 >> >>"s;
const std::string kFontName = "<</FontName/ABCDEF+Ef/Flags 4>>";

Names ScanDocument(const std::string& path) {
  Names names;
  GetFontNamesFromNonXMPSectionOfAdobeDocument(path.c_str(), names);
  return names;
}

// The lines of the plug-in log while this object lives.
class LogLines {
 public:
  LogLines() {
    SetPluginLogSinks([](const char*) {}, [this](const char* text) { mText += text; });
    StartLogging();
  }
  ~LogLines() {
    StopLogging();
    SetPluginLogSinks({}, {});
  }
  bool Hold(const std::string& line) const { return mText.find(line + "\n") != std::string::npos; }
  std::size_t CountOf(const std::string& text) const {
    std::size_t count = 0;
    for (std::size_t at = 0; (at = mText.find(text, at)) != std::string::npos; ++at) ++count;
    return count;
  }

 private:
  std::string mText;
};

// In kilobytes; never goes down.
long PeakMemory() {
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  return usage.ru_maxrss;
}

}  // namespace

TEST(AdobeByteScan, TellsExtensions) {
  const LogLines log;
  EXPECT_TRUE(FileExtensionIs("/a/FOO.AEP", ".aep"));
  EXPECT_TRUE(FileExtensionIs("/a/foo.psd", "psd"));
  EXPECT_TRUE(FileExtensionIs("/a.b/foo", ".b/foo"));  // the last dot of the path, wherever it is
  EXPECT_FALSE(FileExtensionIs("/a/foo.psd.bak", ".psd"));
  EXPECT_FALSE(FileExtensionIs("/a/foo.aep", ".ae"));
  EXPECT_FALSE(FileExtensionIs("/a/foo", "foo"));
  EXPECT_FALSE(FileExtensionIs(nullptr, "psd"));
  EXPECT_TRUE(log.Hold("FileExtensionIs('/a/FOO.AEP', '.aep') returning 1"));
  EXPECT_TRUE(log.Hold("FileExtensionIs('/a/foo', 'foo') returning 0"));
}

TEST(AdobeByteScan, TriesThePatternsOfTheTypeFirst) {
  const ScratchHome home;
  const std::string all = kFontSet + kCoolType + kFontName;
  EXPECT_EQ(Names{"Ab"}, ScanDocument(home.WriteFile("a.psb", all)));
  EXPECT_EQ(Names{"Cd"}, ScanDocument(home.WriteFile("FOO.AEP", all)));
  EXPECT_EQ(Names{"Ef"}, ScanDocument(home.WriteFile("a.ait", all)));
  // In the order of the patterns, not of the file.
  EXPECT_EQ((Names{"Ef", "Ab", "Cd"}), ScanDocument(home.WriteFile("a.unknown", all)));
  EXPECT_EQ(Names{"Ab"}, ScanDocument(home.WriteFile("b.ai", kFontSet)));
  // Names that are there already make the second pass needless.
  Names names{"Before"};
  GetFontNamesFromNonXMPSectionOfAdobeDocument((home.Path() + "/b.ai").c_str(), names);
  EXPECT_EQ(Names{"Before"}, names);
  GetFontNamesFromNonXMPSectionOfAdobeDocument((home.Path() + "/a.psb").c_str(), names);
  EXPECT_EQ((Names{"Before", "Ab"}), names);

  const FontRecordArray fonts =
      CommonFunctionality::CreateFontArrayFromNonXMPSectionOfAdobeDocument(
          (home.Path() + "/a.unknown").c_str());
  ASSERT_EQ(3u, CountOf(fonts));
  EXPECT_EQ("Cd", RecordString(fonts->DictionaryAt(2), kFP_PostScriptNameKey));
}

TEST(AdobeByteScan, FindsNothingInWhatIsNoFile) {
  const ScratchHome home;
  const std::string fifo = home.Path() + "/fifo.psd";
  ASSERT_EQ(0, mkfifo(fifo.c_str(), 0600));
  for (const std::string& path :
       {fifo, home.MakeFolder("folder.psd"), "/dev/zero"s, home.Path() + "/missing.psd",
        "relative.psd"s, ""s, home.WriteFile("empty.psd", "")}) {
    EXPECT_EQ(Names{}, ScanDocument(path)) << path;
    FontRecordArray fonts;
    PSGetDocumentFonts(&fonts, path, false);
    ASSERT_TRUE(fonts) << path;
    EXPECT_EQ(0u, CountOf(fonts)) << path;
  }
  Names names;
  GetFontNamesFromNonXMPSectionOfAdobeDocument(nullptr, names);
  PSGetDocumentFonts(nullptr, fifo, false);
  EXPECT_EQ(0u,
            CountOf(CommonFunctionality::CreateFontArrayFromNonXMPSectionOfAdobeDocument(nullptr)));
}

TEST(AdobeByteScan, GivesPhotoshopFontsOnce) {
  const ScratchHome home;
  const auto name = [](const std::string& ascii) {
    std::string text = "/Name (\xFE\xFF";
    for (const char c : ascii) text += "\0"s + c;
    return text + ")";
  };
  const std::string path =
      home.WriteFile("a.psd", "/FontSet [" + name("Foo Bar") + name("Foo-Bar") + name("FooBar") +
                                  name("{}") + name("Zapf") + name("Foo-Bar#1") + "]");
  const LogLines log;
  EXPECT_FALSE(PhotoshopFontUtils::GetReplaceSubstitutes());
  FontRecordArray fonts;
  PSGetDocumentFonts(&fonts, path, true);
  // A blank goes; names that differ in more than their letters and digits only are one; a name
  // without anything is none.
  ASSERT_EQ(2u, CountOf(fonts));
  EXPECT_EQ("FooBar", RecordString(fonts->DictionaryAt(0), kFP_PostScriptNameKey));
  EXPECT_EQ("Zapf", RecordString(fonts->DictionaryAt(1), kFP_PostScriptNameKey));
  EXPECT_TRUE(log.Hold("In GetDocumentFonts(), adding 'Foo Bar'"));
  EXPECT_TRUE(log.Hold("2 font name(s) found."));
  // The flag is never cleared.
  EXPECT_TRUE(PhotoshopFontUtils::GetReplaceSubstitutes());
  PSGetDocumentFonts(&fonts, path, false);
  EXPECT_TRUE(PhotoshopFontUtils::GetReplaceSubstitutes());
}

TEST(AdobeByteScan, LogsMatchesThatDoNotCountButNotMillions) {
  const ScratchHome home;
  std::string bytes = "/FontSet [  ";
  for (int i = 0; i < 5'000; ++i) bytes += "\\]";
  const std::string path = home.WriteFile("a.psd", bytes + "/Name (\xFE\xFF\0A)]"s);
  const LogLines log;
  EXPECT_EQ(Names{"A"}, ScanDocument(path));
  EXPECT_TRUE(log.Hold("Ignoring match at offset 3 because previous char is 0x005c"));
  EXPECT_TRUE(log.Hold("In GetFontNamesFromByteVector(), adding 'A'"));
  EXPECT_EQ(100u, log.CountOf("Ignoring match"));
}

// A hole costs no room on the disk and no memory, however large it is.
TEST(AdobeByteScan, ReadsALargeFileInLittleMemory) {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
  constexpr std::uintmax_t kBytes = std::uintmax_t{256} << 20;
#else
  constexpr std::uintmax_t kBytes = std::uintmax_t{8} << 30;
#endif
  const ScratchHome home;
  const std::string path = home.WriteFile("large.psd", "");
  std::filesystem::resize_file(path, kBytes);
  std::ofstream(path, std::ios::binary | std::ios::app) << kFontSet;
  const long before = PeakMemory();
  EXPECT_EQ(Names{"Ab"}, ScanDocument(path));
#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
  EXPECT_LT(PeakMemory() - before, 16 << 10);
#else
  EXPECT_GT(before, 0);
#endif
}

// Small sections whose names all end at the same far place: names add up to far more than the file.
TEST(AdobeByteScan, TakesInOverlappingNamesInLittleMemory) {
  const ScratchHome home;
  std::string bytes;
  for (int group = 0; group < 40; ++group) {
    for (int i = 0; i < 3'600; ++i) bytes += "/FontSet [/Name (]";
    bytes += ")";
  }
  const std::string path = home.WriteFile("a.psd", bytes);
  const Names names = ScanDocument(path);
  std::size_t length = 0;
  for (const std::string& name : names) length += name.size();
  EXPECT_GT(names.size(), 30u);  // of 32 KiB and a half on average
  EXPECT_LE(length, kMaxScannedNamesBytes);
}

TEST(AdobeByteScan, GivesNothingOfAFileThatIsCutWhileItIsRead) {
  const ScratchHome home;
  const std::string path = home.WriteFile("a.psd", kFontSet + std::string(1 << 20, ' '));
  FileByteSource file;
  ASSERT_TRUE(file.Open(path));
  std::filesystem::resize_file(path, 1 << 19);
  FontNameListener quiet;
  FontNameScanner scanner(file, quiet);
  scanner.ScanFontSets();
  EXPECT_TRUE(scanner.Failed());
}
