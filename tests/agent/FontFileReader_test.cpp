#include "agent/FontFileReader.h"

#include <gtest/gtest.h>

#include "agent/NameTable.h"
#include "support/ScratchHome.h"
#include "support/TestFonts.h"

namespace Nodrix {
namespace {

std::string Told(const FontFileInfo& file) {
  std::string text;
  for (const FaceInfo& face : file.faces) {
    text += face.postScriptName + "|" + face.family + "|" + face.style + "|" + face.kind + "|" +
            face.foundry.value_or("-") + "|" + face.version + "|" + std::to_string(face.faceIndex) +
            "\n";
  }
  return text + file.error;
}

TEST(FontFileReader, TellsTheFacesOfEveryFormat) {
  const ScratchHome home;
  const struct {
    std::vector<std::string> arguments;
    std::string told;
  } cases[] = {
      {{"--format", "ttf", "--style", "Bold"}, "Ac-Me|Acme Sans|Bold|TrueType|TEST|2.137|0\n"},
      {{"--format", "ttf", "--gpos", "--maker", "The Maker", "--style", "Display"},
       "Ac-Me|Acme Sans|Display|OpenType - TT|The Maker|2.137|0\n"},
      {{"--format", "otf", "--vendor", "AB"}, "Ac-Me|Acme Sans|Regular|OpenType - PS|AB|2.137|0\n"},
      {{"--format", "pfb", "--style", "Bold"}, "Ac-Me|Acme Sans|Bold|Postscript|-|2.137|0\n"},
      {{"--format", "pfa", "--style", "Bold"}, "Ac-Me|Acme Sans|Bold|Postscript|-|2.137|0\n"},
      {{"--format", "ttc"},
       "Ac-Me-1|Acme Sans|Style 1|TrueType|TEST|2.137|0\n"
       "Ac-Me-2|Acme Sans|Style 2|TrueType|TEST|2.137|1\n"},
      {{"--format", "otc"},
       "Ac-Me-1|Acme Sans|Style 1|OpenType - PS|TEST|2.137|0\n"
       "Ac-Me-2|Acme Sans|Style 2|OpenType - PS|TEST|2.137|1\n"},
      // Instances have their number, from 1, in the upper half of the index.
      {{"--format", "var"},
       "Ac-Me|Acme Sans|Regular|TrueType|TEST|2.137|0\n"
       "AcmeSans-Light|Acme Sans|Light|TrueType|TEST|2.137|65536\n"
       "AcmeSans-Bold|Acme Sans|Bold|TrueType|TEST|2.137|131072\n"},
      // What no PostScript name may hold is left out of the font's own.
      {{"--format", "ttf", "--psname", "Ac Me (1)"},
       "AcMe1|Acme Sans|Regular|TrueType|TEST|2.137|0\n"},
  };
  FontFileReader reader;
  for (const auto& one : cases) {
    std::vector<std::string> arguments{"--family", "Acme Sans", "--psname",
                                       "Ac-Me",    "--version", "2.137"};
    arguments.insert(arguments.end(), one.arguments.begin(), one.arguments.end());
    const std::string path = home.Path() + "/font";
    BuildFont(path, arguments);
    EXPECT_EQ(Told(reader.Read(path)), one.told) << one.arguments[1];
  }
}

TEST(FontFileReader, TellsWhyAFileIsNoFont) {
  const ScratchHome home;
  BuildFont(home.Path() + "/good.ttf", "Good");
  BuildFont(home.Path() + "/nameless.ttf", {"--family", "N", "--psname", ""});
  const std::string good = ReadWholeFile(home.Path() + "/good.ttf");
  FontFileReader reader;
  EXPECT_EQ(reader.Read(home.Path() + "/nameless.ttf").error, "no PostScript name");
  EXPECT_EQ(reader.Read(home.WriteFile("empty.TTF", "")).error, "empty file");
  EXPECT_EQ(reader.Read(home.WriteFile("text.otf", "Hello, this is a text.")).error,
            "not a font file");
  EXPECT_FALSE(reader.Read(home.Path()).error.empty());
  // 2,000 faces that are all at offset 12.
  std::string collection("ttcf\0\1\0\0\0\0\x07\xD0", 12);
  for (int i = 0; i < 2000; ++i) {
    collection +=
        std::string("\0\0", 2) + static_cast<char>(8012 >> 8) + static_cast<char>(8012 & 0xFF);
  }
  // The tables' offsets count from the start of the file.
  std::string moved = good;
  const int tables = static_cast<unsigned char>(good[5]);
  for (int t = 0; t < tables; ++t) {
    const auto at = static_cast<std::size_t>(12 + 16 * t + 8);
    unsigned offset = 0;
    for (std::size_t b = 0; b < 4; ++b)
      offset = offset << 8 | static_cast<unsigned char>(good[at + b]);
    offset += 8012;
    for (std::size_t b = 0; b < 4; ++b) moved[at + b] = static_cast<char>(offset >> (24 - 8 * b));
  }
  // Enough that so many faces could be there.
  const std::string padding(64'000, 'x');
  EXPECT_EQ(reader.Read(home.WriteFile("many.ttc", collection + moved + padding)).error,
            "more than 1,024 faces");
}

// Whatever is cut off or overwritten: an answer, and one that makes sense.
TEST(FontFileReader, SurvivesDamage) {
  const ScratchHome home;
  FontFileReader reader;
  for (const std::string format : {"ttf", "otf", "pfb", "ttc", "var"}) {
    const std::string path = home.Path() + "/whole." + format;
    BuildFont(path, {"--family", "Acme", "--psname", "Acme-Regular", "--format", format});
    const std::string whole = ReadWholeFile(path);
    for (std::size_t size = 0; size < whole.size(); size += 1 + whole.size() / 60) {
      const FontFileInfo info = reader.Read(home.WriteFile("cut.ttf", whole.substr(0, size)));
      EXPECT_EQ(info.faces.empty(), !info.error.empty()) << format << " " << size;
    }
    for (std::size_t at = 0; at < whole.size(); at += 1 + whole.size() / 150) {
      std::string damaged = whole;
      damaged[at] = static_cast<char>(~damaged[at]);
      const FontFileInfo info = reader.Read(home.WriteFile("damaged.ttf", damaged));
      EXPECT_EQ(info.faces.empty(), !info.error.empty()) << format << " " << at;
    }
  }
}

TEST(FontFileReader, KnowsFontsByTheirFirstBytes) {
  const auto begins = [](std::string text) {
    text.resize(64);
    return BeginsLikeFont({text.begin(), text.end()});
  };
  EXPECT_TRUE(begins(std::string("\0\1\0\0\0\x0C", 6)));
  EXPECT_TRUE(begins(std::string("OTTO\0\1", 6)));
  EXPECT_TRUE(begins("ttcf"));
  EXPECT_TRUE(begins("%!PS-AdobeFont-1.0: X"));
  EXPECT_TRUE(begins("%!FontType1-1.0: X"));
  EXPECT_TRUE(begins(std::string("\x80\x01\x10\0\0\0", 6) + "%!PS-AdobeFont-1.0"));
  EXPECT_FALSE(begins("%!PS-Adobe-3.0 EPSF-3.0"));
  // A database of another program begins with a font's four bytes.
  EXPECT_FALSE(begins(std::string("\0\1\0\0Standard Jet DB", 19)));
  EXPECT_FALSE(begins("wOF2"));
}

TEST(FontFileReader, TakesTheDigitsOfAVersionText) {
  EXPECT_EQ(VersionDigits("Version 2.137;PS 002.137;hotconv 1.0.38"), "2.137");
  EXPECT_EQ(VersionDigits("OTF 1.010;PS 001.001"), "1.010");
  EXPECT_EQ(VersionDigits("001.005"), "001.005");
  EXPECT_EQ(VersionDigits("Release 3."), "3");
  EXPECT_EQ(VersionDigits("1.2.3beta"), "1.2.3");
  EXPECT_EQ(VersionDigits("none"), "");
}

// One record: platform, encoding, language, name ID, text.
struct NameRecord {
  int platform, encoding, language, id;
  std::string text;
};

NameTable Names(const std::vector<NameRecord>& records) {
  std::vector<std::uint8_t> table;
  std::string texts;
  const auto word = [&](std::size_t value) {
    table.push_back(static_cast<std::uint8_t>(value >> 8));
    table.push_back(static_cast<std::uint8_t>(value));
  };
  word(0);
  word(records.size());
  word(6 + 12 * records.size());
  for (const NameRecord& r : records) {
    for (const int n : {r.platform, r.encoding, r.language, r.id})
      word(static_cast<std::size_t>(n));
    word(r.text.size());
    word(texts.size());
    texts += r.text;
  }
  table.insert(table.end(), texts.begin(), texts.end());
  return NameTable(std::move(table));
}

TEST(NameTable, PrefersEnglishAndDecodes) {
  const std::string german("\0D\0E", 4), english("\0E\0N", 4);
  EXPECT_EQ(
      Names({{3, 1, 0x407, 1, german}, {1, 0, 0, 1, "Mac"}, {3, 1, 0x409, 1, english}}).Text(1),
      "EN");
  EXPECT_EQ(Names({{3, 1, 0x407, 1, german},
                   {1, 0, 0, 1,
                    "M\x8A"
                    "c"}})
                .Text(1),
            "M\xC3\xA4"
            "c");
  EXPECT_EQ(Names({{3, 1, 0x407, 1, german}}).Text(1), "DE");
  EXPECT_EQ(Names({{3, 1, 0x407, 1, german}}).Text(2), "");
  // U+1F600 as a pair, then half a pair, then a blank and a control character.
  EXPECT_EQ(Names({{0, 3, 0, 1, std::string("\xD8\x3D\xDE\x00\xDC\x00\0 \0\1", 10)}}).Text(1),
            "\xF0\x9F\x98\x80\xEF\xBF\xBD");
  // A text outside of the table.
  EXPECT_EQ(NameTable({0, 0, 0, 1, 0, 18, 0, 3, 0, 1, 4, 9, 0, 1, 0, 4, 0, 0}).Text(1), "");
}

}  // namespace
}  // namespace Nodrix
