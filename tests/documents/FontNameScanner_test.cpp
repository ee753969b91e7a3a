#include "documents/FontNameScanner.h"

#include <gtest/gtest.h>

#include <random>

#include "tests/documents/MemoryByteSource.h"
#include "tests/documents/NaiveByteScan.h"

using namespace std::string_literals;
using Names = std::vector<std::string>;

namespace {

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr int kTwinRuns = 12'500;
#else
constexpr int kTwinRuns = 125'000;
#endif

Names ScanRow(const std::string& bytes, FontNameRow row, unsigned pageBits = 3) {
  MemoryByteSource source(bytes);
  FontNameListener quiet;
  FontNameScanner scanner(source, quiet, {}, pageBits);
  const FontNameRow rows[] = {row};
  scanner.ScanRows(rows);
  EXPECT_FALSE(scanner.Failed());
  return scanner.Names();
}

Names ScanFontSets(const std::string& bytes) {
  MemoryByteSource source(bytes);
  FontNameListener quiet;
  FontNameScanner scanner(source, quiet, {}, 3);
  scanner.ScanFontSets();
  return scanner.Names();
}

// UTF-16 big-endian behind its mark, as far as ASCII goes.
std::string Utf16(const std::string& ascii) {
  std::string bytes = "\xFE\xFF";
  for (const char c : ascii) bytes += "\0"s + c;
  return bytes;
}

}  // namespace

TEST(FontNameScanner, FindsNamesByRow) {
  struct Case {
    const char* what;
    FontNameRow row;
    std::string bytes;
    Names names;
  };
  const Case cases[] = {
      {"subset prefix", kRowFontName, "<</FontName/ABCDEF+Helvetica/Flags 4>>", {"Helvetica"}},
      {"spaced", kRowFontNameSpaced, "<< /FontName /Times-Roman /Flags 4 >>", {"Times-Roman"}},
      {"first plus only", kRowFontName, "<</FontName/Foo+Bar+Baz/>>", {"Bar+Baz"}},
      {"punctuation at the end", kRowFontName, "<</FontName/Name!/>>", {"Name"}},
      {"one letter is not trimmed", kRowFontName, "<</FontName/A!/>>", {"A!"}},
      {"no length", kRowFontName, "<</FontName//>>", {""}},
      {"plus as the last byte is kept and trimmed", kRowFontName, "<</FontName/AB+/>>", {"AB"}},
      {"a byte of 128",
       kRowFontName,
       "<</FontName/A\x80"
       "B/>>",
       {""}},
      {"sections without a name",
       kRowFontName,
       "<</Type/Font>><<\\/FontName/A/>><</FontName/B/>>",
       {"B"}},
      {"two in a section", kRowFontName, "<</FontName/A//FontName/B/>>", {"A", "B"}},
      {"the section ends first", kRowFontName, "<</FontName>>/A/", {}},
      {"the name ends behind the section",
       kRowFontName,
       "<</FontName/AB>>/B<</FontName/C/>>",
       {"AB", "C"}},
      {"no section end", kRowFontName, "<</FontName/A/", {}},
      {"font set",
       kRowFontSet,
       "/FontSet [ << /Name (" + Utf16("Arial-Bold") + ") >> << /Name (" + Utf16("Zapf") + ") >> ]",
       {"Arial-Bold", "Zapf"}},
      {"escaped end of name", kRowFontSet, "/FontSet [/Name (ab\\)cd)]", {"ab\\)cd"}},
      {"escaped end of section", kRowFontSet, "/FontSet [  \\] /Name (ab)]", {"ab"}},
      {"escaped, but one byte from the origin", kRowFontSet, "/FontSet [\\] /Name (ab)]", {}},
      {"escaped begin", kRowFontSet, "  \\/FontSet [/Name (ab)]", {}},
      {"escaped begin one byte from the origin", kRowFontSet, "\\/FontSet [/Name (ab)]", {"ab"}},
      {"escaped name begin one byte behind a name",
       kRowFontSet,
       "/FontSet [/Name (a)\\/Name (b)x\\/Name (c)]",
       {"a", "b"}},
      {"mark inside the name",
       kRowFontSet,
       "/FontSet [/Name (xyz\xFE\xFF"
       "ab)]",
       {"ab"}},
      {"a zero byte takes the end pattern along",
       kRowFontSet,
       "/FontSet [/Name (\xFE\xFF\0)]"s,
       {")"}},
      {"two zero bytes give one", kRowFontSet, "/FontSet [/Name (a\0\0b)]"s, {"a\0b"s}},
      {"cool type",
       kRowCoolTypeFont,
       "<< /99 /CoolTypeFont /0 << /0 (" + Utf16("Futura") + ") /2 0 >> >>",
       {"Futura"}},
      {"cool type with a bracket",
       kRowCoolTypeFont,
       "<< /99 /CoolTypeFont /0 << /0 (a) b) /2 >>",
       {"a) b"}},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(c.names, ScanRow(c.bytes, c.row)) << c.what;
    NaiveScan naive(c.bytes);
    naive.ScanRow(kFontNameRows[c.row]);
    EXPECT_EQ(c.names, naive.names) << c.what << ", twin";
  }
}

TEST(FontNameScanner, DecodesPhotoshopNames) {
  struct Case {
    const char* what;
    std::string name;
    std::string expected;
  };
  const Case cases[] = {
      {"plain", Utf16("Arial"), "Arial"},
      {"empty", "", ""},
      {"mark only", "\xFE\xFF", ""},
      {"the mark is taken for granted", "??\0A"s, "A"},
      {"escaped low byte", "\xFE\xFF\0a\0\\(\0b\0\\)"s, "a(b)"},
      {"escaped high byte", "\xFE\xFF\\\x28\x01\0A"s, ""},  // three bytes are no UTF-16
      {"two escaped high bytes", "\xFE\xFF\\\x30\\\x42\0A"s,
       "\xE3\x81\x82"
       "A"},
      {"beyond ASCII", "\xFE\xFF\x5B\x8B\x4F\x53", "\xE5\xAE\x8B\xE4\xBD\x93"},
      {"lone surrogate", "\xFE\xFF\xD8\x00\0A"s, ""},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(Names{c.expected}, ScanFontSets("x/FontSet [ << /Name (" + c.name + ")>> ]"))
        << c.what;
  }
  EXPECT_EQ(Names{}, ScanFontSets("/FontSet [ ] /Name (" + Utf16("A") + ")"));
}

TEST(FontNameScanner, LeavesOutLongNamesAndEndsAtTheLimits) {
  const auto scan = [](const std::string& bytes, const FontNameLimits& limits) {
    MemoryByteSource source(bytes);
    FontNameListener quiet;
    FontNameScanner scanner(source, quiet, limits, 3);
    scanner.ScanFontSets();
    return scanner.Names();
  };
  const std::string bytes = "/FontSet [/Name (--AB)/Name (--ABCD)/Name (--EF)/Name (--GH)]";
  EXPECT_EQ((Names{"\xE4\x85\x82", "\xE4\x95\x86", "\xE4\x9D\x88"}), scan(bytes, {.nameBytes = 4}));
  EXPECT_EQ((Names{"\xE4\x85\x82", "\xE4\x95\x86"}), scan(bytes, {.nameBytes = 4, .names = 2}));
  EXPECT_EQ((Names{"\xE4\x85\x82"}), scan(bytes, {.allNamesBytes = 9}));
  // Exactly as long as a name may be, and a byte longer.
  const std::string name(kMaxScannedNameBytes - 2, 'A');
  EXPECT_EQ(1u, ScanFontSets("/FontSet [/Name (--" + name + ")]").size());
  EXPECT_EQ(0u, ScanFontSets("/FontSet [/Name (--A" + name + ")]").size());
}

TEST(FontNameScanner, ReadsAFileWithoutPatternsOnceForAllRows) {
  // Every byte of every pattern is there, and sections without names.
  std::string bytes;
  for (int i = 0; i < 20'000; ++i) bytes += "<< /99 /Cool >> /Font[ /Name (a) /Fon";
  MemoryByteSource source(bytes);
  FontNameListener quiet;
  FontNameScanner scanner(source, quiet, {}, 12);
  for (const FontNameRow row : {kRowFontName, kRowFontNameSpaced, kRowFontSet, kRowCoolTypeFont}) {
    scanner.ScanRows(std::span(&row, 1));
  }
  EXPECT_TRUE(scanner.Names().empty());
  EXPECT_EQ((bytes.size() + 4095) / 4096, scanner.GetPagesRead());
}

TEST(FontNameScanner, ReadsNoPageOftenWhateverTheInput) {
  // Ends that are missing, sections in which the name's end lies far away, and names that overlap.
  const std::string units[] = {
      "/FontSet [/Name (]",          "/FontSet [/Name (",    "/FontSet [\\]",  "<</FontName/>>",
      "<< /99 /CoolTypeFont /0 (>>", "/FontSet [/FontSet [", "<<<</FontName /"};
  for (const std::string& unit : units) {
    std::string bytes;
    while (bytes.size() < 1'000'000) bytes += unit;
    bytes += ")]";
    MemoryByteSource source(bytes);
    FontNameListener quiet;
    FontNameScanner scanner(source, quiet, {.nameBytes = 1024}, 12);
    scanner.ScanFontSets();
    for (const FontNameRow row :
         {kRowFontName, kRowFontNameSpaced, kRowFontSet, kRowCoolTypeFont}) {
      scanner.ScanRows(std::span(&row, 1));
    }
    const std::uint64_t pages = bytes.size() / 4096 + 1;
    // The survey, and each of five scans with its four searches, pass over a page once at most.
    EXPECT_LE(scanner.GetPagesRead(), pages * 21) << unit;
  }
}

TEST(FontNameScanner, FindsNothingInAFileThatShrinks) {
  std::string bytes = "/FontSet [/Name (\xFE\xFF\0A)]"s;
  bytes += std::string(500, ' ') + bytes;
  for (std::size_t end = 0; end < bytes.size(); ++end) {
    MemoryByteSource source(bytes);
    source.CutAt(end);
    FontNameListener quiet;
    FontNameScanner scanner(source, quiet, {}, 4);
    scanner.ScanFontSets();
    EXPECT_TRUE(scanner.Failed()) << end;
  }
}

namespace {

// Documents small enough for the twin and full of what is special about the patterns.
class DocumentGenerator {
 public:
  explicit DocumentGenerator(unsigned seed) : mRandom(seed) {}

  unsigned Below(unsigned count) {
    return std::uniform_int_distribution<unsigned>(0, count - 1)(mRandom);
  }

  std::string Document() {
    std::string bytes;
    const unsigned parts = 1 + Below(8);
    const unsigned row = Below(5);
    for (unsigned i = 0; i < parts; ++i) {
      bytes += Below(3) == 0 ? Noise() : Section(row < 4 && Below(4) != 0 ? row : Below(4));
    }
    return bytes;
  }

 private:
  std::string Token() {
    static const std::string kTokens[] = {"<<",
                                          ">>",
                                          "/FontName/",
                                          "/FontName /",
                                          "/FontSet [",
                                          "/Name (",
                                          "]",
                                          ")",
                                          ") /",
                                          "(",
                                          "<< /99 /CoolTypeFont /0",
                                          "/CoolTypeFont /0",
                                          "/",
                                          "+",
                                          " ",
                                          "\\",
                                          "\\",
                                          "\0"s,
                                          "\xFE\xFF",
                                          "\xFE",
                                          "\xFF",
                                          "\x80",
                                          "A",
                                          "Bc",
                                          "9",
                                          "!",
                                          "<",
                                          ">",
                                          "/F",
                                          "/FontSet",
                                          "\0A"s,
                                          "\0\\"s};
    return kTokens[Below(std::size(kTokens))];
  }
  std::string Noise() {
    std::string bytes;
    for (unsigned i = Below(6); i > 0; --i) bytes += Token();
    return bytes;
  }
  std::string Name() {
    std::string bytes = Below(2) ? "\xFE\xFF" : "";
    for (unsigned i = Below(5); i > 0; --i) {
      bytes += Below(2) ? "\0"s + static_cast<char>('A' + Below(26)) : Token();
    }
    return bytes;
  }
  std::string Maybe(std::string_view text) {
    if (Below(12) == 0) return Noise();
    return (Below(12) == 0 ? "\\" : "") + std::string(text) + (Below(6) == 0 ? Token() : "");
  }
  std::string Section(unsigned row) {
    const FontNamePatterns& patterns = kFontNameRows[row];
    std::string bytes = Maybe(patterns.sectionBegin);
    for (unsigned i = Below(4); i > 0; --i) {
      bytes += Maybe(patterns.nameBegin) + Name() + Maybe(patterns.nameEnd);
    }
    return bytes + Maybe(patterns.sectionEnd);
  }

  std::mt19937 mRandom;
};

void CompareWithTwin(unsigned seed) {
  DocumentGenerator generator(seed);
  static const std::vector<FontNameRow> kTypes[] = {
      {}, {kRowFontName, kRowFontNameSpaced}, {kRowFontSet}, {kRowCoolTypeFont}};
  static constexpr FontNameRow kAllRows[] = {kRowFontName, kRowFontNameSpaced, kRowFontSet,
                                             kRowCoolTypeFont};
  FontNameListener quiet;
  std::size_t found = 0;
  for (int run = 0; run < kTwinRuns; ++run) {
    const std::string bytes = generator.Document();
    FontNameLimits limits;
    if (generator.Below(4) == 0) {
      limits = {generator.Below(12), generator.Below(6), generator.Below(30)};
    }
    const unsigned pageBits = generator.Below(8);
    const std::vector<FontNameRow>& type = kTypes[generator.Below(4)];
    MemoryByteSource source(bytes);

    FontNameScanner scanner(source, quiet, limits, pageBits);
    scanner.ScanRows(type);
    if (scanner.Names().empty()) scanner.ScanRows(kAllRows);
    NaiveScan naive(bytes, limits);
    naive.ScanDocument(type);
    ASSERT_EQ(naive.names, scanner.Names()) << testing::PrintToString(bytes) << pageBits;

    FontNameScanner photoshop(source, quiet, limits, pageBits);
    photoshop.ScanFontSets();
    NaiveScan naivePhotoshop(bytes, limits);
    naivePhotoshop.ScanFontSets();
    ASSERT_EQ(naivePhotoshop.names, photoshop.Names()) << testing::PrintToString(bytes) << pageBits;
    found += naive.names.size() + naivePhotoshop.names.size();
  }
  // The documents are no empty exercise.
  EXPECT_GT(found, static_cast<std::size_t>(kTwinRuns));
}

}  // namespace

// A million documents in all, in parts that run beside each other.
TEST(FontNameScannerTwin, FindsTheSame1) { CompareWithTwin(1); }
TEST(FontNameScannerTwin, FindsTheSame2) { CompareWithTwin(2); }
TEST(FontNameScannerTwin, FindsTheSame3) { CompareWithTwin(3); }
TEST(FontNameScannerTwin, FindsTheSame4) { CompareWithTwin(4); }
TEST(FontNameScannerTwin, FindsTheSame5) { CompareWithTwin(5); }
TEST(FontNameScannerTwin, FindsTheSame6) { CompareWithTwin(6); }
TEST(FontNameScannerTwin, FindsTheSame7) { CompareWithTwin(7); }
TEST(FontNameScannerTwin, FindsTheSame8) { CompareWithTwin(8); }
