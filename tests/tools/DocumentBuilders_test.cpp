#include <gtest/gtest.h>

#include "documents/AdobeByteScan.h"
#include "support/ScratchHome.h"
#include "tools/documents/AepBuilder.h"
#include "tools/documents/AiBuilder.h"
#include "tools/documents/HostText.h"
#include "tools/documents/PsdBuilder.h"

using namespace DocumentBuilders;
using namespace std::string_literals;
using Names = std::vector<std::string>;

namespace {

Names ScanDocument(const std::string& name, const std::string& contents) {
  const ScratchHome home;
  Names names;
  CommonFunctionality::GetFontNamesFromNonXMPSectionOfAdobeDocument(
      home.WriteFile(name, contents).c_str(), names);
  return names;
}

Names FontSetsOf(const std::string& contents) {
  const ScratchHome home;
  Names names;
  PhotoshopFontUtils::GetDocumentFonts(home.WriteFile("a.psd", contents), names, false);
  return names;
}

// Walks the sections of a document by their lengths.
class PsdWalk {
 public:
  explicit PsdWalk(const std::string& bytes) : mBytes(bytes) {}

  std::uint64_t Number(int size) {
    std::uint64_t value = 0;
    for (int i = 0; i < size; ++i)
      value = value << 8 | static_cast<unsigned char>(mBytes.at(mAt++));
    return value;
  }
  std::string Take(std::uint64_t size) {
    const std::string part = mBytes.substr(mAt, size);
    EXPECT_EQ(size, part.size());
    mAt += part.size();
    return part;
  }
  std::size_t Rest() const { return mBytes.size() - mAt; }

 private:
  std::string mBytes;
  std::size_t mAt = 0;
};

void ExpectTaggedBlocks(const std::string& bytes, const Names& keys) {
  PsdWalk blocks(bytes);
  for (const std::string& key : keys) {
    EXPECT_EQ("8BIM" + key, blocks.Take(8));
    blocks.Take(blocks.Number(4));
  }
  EXPECT_EQ(0u, blocks.Rest());
}

// One layer's record, up to its type tool block.
void ExpectTextLayer(PsdWalk& layers, int lengthBytes) {
  layers.Take(16);
  ASSERT_EQ(4u, layers.Number(2));
  for (int channel = 0; channel < 4; ++channel) {
    layers.Take(2);
    EXPECT_EQ(2u, layers.Number(lengthBytes));
  }
  EXPECT_EQ("8BIMnorm", layers.Take(8));
  layers.Take(4);
  PsdWalk extra(layers.Take(layers.Number(4)));
  extra.Take(extra.Number(4));
  extra.Take(extra.Number(4));
  const std::uint64_t nameLength = extra.Number(1);
  extra.Take((nameLength + 1 + 3) / 4 * 4 - 1);
  ExpectTaggedBlocks(extra.Take(extra.Rest()), {"TySh"});
}

}  // namespace

TEST(HostText, EscapesBytesNotCharacters) {
  EXPECT_EQ("\xFE\xFF\0a\0\\(\0\\\\"s, HostText("a(\\"));
  // The high byte of U+2801 is a bracket, and so is the low byte of U+0128.
  EXPECT_EQ("\xFE\xFF\\\x28\x01\x01\\\x28"s, HostText("\xE2\xA0\x81\xC4\xA8"));
  EXPECT_EQ("\xD8\x3D\xDE\x00"s, Utf16BigEndian("\xF0\x9F\x98\x80"));
  EXPECT_THROW(HostText("\xC3"), std::invalid_argument);
  EXPECT_THROW(HostText("\xBF"), std::invalid_argument);
}

TEST(PsdBuilder, WritesSectionsWhoseLengthsAgree) {
  for (const bool large : {false, true}) {
    for (const bool runLengths : {false, true}) {
      const std::string bytes = BuildPsd({.width = 300,
                                          .height = 2,
                                          .large = large,
                                          .runLengths = runLengths,
                                          .layers = {{"Title", {"Arial"}},
                                                     {"Gr\xC3\xB6\xC3\x9F"
                                                      "e",
                                                      {"Zapf"}}},
                                          .documentFonts = {"Arial"},
                                          .embedded = "inside",
                                          .xmp = "<x/>",
                                          .padding = 1001});
      const int lengthBytes = large ? 8 : 4;
      PsdWalk walk(bytes);
      EXPECT_EQ("8BPS\0"s + (large ? "\2" : "\1"), walk.Take(6));
      walk.Take(6);
      EXPECT_EQ(3u, walk.Number(2));
      EXPECT_EQ(2u, walk.Number(4));
      EXPECT_EQ(300u, walk.Number(4));
      walk.Take(4);
      EXPECT_EQ(0u, walk.Number(4));
      PsdWalk resources(walk.Take(walk.Number(4)));
      for (const std::uint64_t size : {4u, 1001u}) {
        EXPECT_EQ("8BIM", resources.Take(4));
        resources.Take(4);
        EXPECT_EQ(size, resources.Number(4));
        resources.Take(size + size % 2);
      }
      EXPECT_EQ(0u, resources.Rest());

      PsdWalk section(walk.Take(walk.Number(lengthBytes)));
      PsdWalk layers(section.Take(section.Number(lengthBytes)));
      ASSERT_EQ(2u, layers.Number(2));
      for (int layer = 0; layer < 2; ++layer) ExpectTextLayer(layers, lengthBytes);
      EXPECT_GE(layers.Rest(), 16u);  // eight channels without pixels
      EXPECT_EQ(0u, section.Number(4));
      ExpectTaggedBlocks(section.Take(section.Rest()), {"Txt2", "lnkD"});

      // 300 pixels pack into runs of 128, 128 and 44: six bytes a row, in 3 channels of 2 rows.
      EXPECT_EQ(runLengths ? 1u : 0u, walk.Number(2));
      EXPECT_EQ(runLengths ? 6u * (large ? 4 : 2) + 6 * 6 : 300u * 6, walk.Rest());
    }
  }
}

// Each kind of structure that real documents have.
TEST(DocumentBuilders, WriteWhatTheScanFinds) {
  const PsdDocument poster{.layers = {{"One", {"Arial-BoldMT", "AdobeInvisFont"}},
                                      {"Two", {"A(b)c", "\xE5\xAE\x8B\xE4\xBD\x93"}}},
                           .padding = 300'000};
  const Names posterNames = {"Arial-BoldMT", "AdobeInvisFont", "A(b)c", "\xE5\xAE\x8B\xE4\xBD\x93"};
  EXPECT_EQ(posterNames, FontSetsOf(BuildPsd(poster)));
  PsdDocument large = poster;
  large.large = true;
  EXPECT_EQ(posterNames, FontSetsOf(BuildPsd(large)));
  // The other form of the scan decodes no more than ASCII; escapes stay.
  EXPECT_EQ((Names{"Zapf", ""}),
            ScanDocument("a.psb", BuildPsd({.layers = {{"", {"Zapf", "\xC2\xBF\xC2\xAC"}}}})));

  // Hosts don't escape a square bracket: it ends the set, after the name that it stands in.
  EXPECT_EQ(Names{"A[b]c"}, FontSetsOf(BuildPsd({.layers = {{"", {"A[b]c", "Zapf"}}}})));

  // Names whose bytes of another encoding were widened are taken as they are.
  EXPECT_EQ(Names{"\xC2\xBF\xC2\xAC\xC3\x8C\xC3\xA5"},
            FontSetsOf(BuildPsd({.layers = {{"", {"\xC2\xBF\xC2\xAC\xC3\x8C\xC3\xA5"}}}})));
  EXPECT_EQ(Names{"TwCenMT-Bold"},
            FontSetsOf(BuildPsd({.layers = {{"", {"TwCenMT-Bold"}}}, .damagedMarks = true})));
  EXPECT_EQ(Names{"Inner"},
            FontSetsOf(BuildPsd({.embedded = BuildPsd({.layers = {{"", {"Inner"}}}})})));

  // The document's own text block is not what Photoshop's form looks at.
  const std::string shortKeys = BuildPsd({.documentFonts = {"Centaur", "Futura"}});
  EXPECT_EQ(Names{}, FontSetsOf(shortKeys));
  EXPECT_EQ((Names{"Centaur", "Futura"}), ScanDocument("a.psd", shortKeys));
  EXPECT_EQ(Names{},
            ScanDocument("a.psd", BuildPsd({.documentFonts = {"Centaur"}, .longKeys = true})));

  EXPECT_EQ((Names{"BritannicBold", "AdobeInvisFont"}),
            ScanDocument("a.aep", BuildAep({"BritannicBold", "AdobeInvisFont"})));
  EXPECT_EQ((Names{"Roboto-Light", "PTMono-Bold"}),
            ScanDocument("a.ai", BuildAi({.fonts = {"Roboto-Light", "PTMono-Bold"}})));
  EXPECT_EQ(
      (Names{"Times-Roman", "Zapf"}),
      ScanDocument("a.ait",
                   BuildAi({.fonts = {"Times-Roman", "Zapf"}, .spaced = true, .subsets = false})));
}
