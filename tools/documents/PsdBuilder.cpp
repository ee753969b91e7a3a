#include "tools/documents/PsdBuilder.h"

#include <algorithm>

#include "tools/documents/BigEndianWriter.h"
#include "tools/documents/PsdText.h"

namespace DocumentBuilders {

namespace {

constexpr int kChannels = 3;
constexpr std::uint16_t kXmpResource = 1060;
constexpr std::uint16_t kPluginResource = 4000;  // the first one of those left to plug-ins

int LengthBytes(const PsdDocument& document) { return document.large ? 8 : 4; }

std::string Resource(std::uint16_t id, const std::string& data) {
  BigEndianWriter out;
  out.Text("8BIM").U16(id).U16(0).Sized(data).PadTo(2);
  return out.Bytes();
}

std::string Resources(const PsdDocument& document) {
  std::string out;
  if (!document.xmp.empty()) out += Resource(kXmpResource, document.xmp);
  if (document.padding > 0) out += Resource(kPluginResource, std::string(document.padding, '\0'));
  return out;
}

std::string TaggedBlock(const char* key, const std::string& data) {
  BigEndianWriter padded;
  padded.Text(data).PadTo(4);
  BigEndianWriter out;
  out.Text("8BIM").Text(key).Sized(padded.Bytes());
  return out.Bytes();
}

// A layer of no extent: its pixels are the host's to draw, from its text.
std::string LayerRecord(const PsdDocument& document, const PsdTextLayer& layer) {
  std::string name = layer.text.substr(0, 31);
  while (!name.empty() && (name.back() & 0x80) != 0) name.pop_back();  // no half a character
  BigEndianWriter extra;
  extra.U32(0).U32(0).Sized(name, 1).PadTo(4);
  extra.Text(TaggedBlock("TySh", TypeToolBlock(layer, document.damagedMarks)));
  BigEndianWriter out;
  out.Zeros(16).U16(kChannels + 1);
  for (int channel = -1; channel < kChannels; ++channel) {
    out.U16(static_cast<std::uint16_t>(channel)).Number(2, LengthBytes(document));
  }
  out.Text("8BIMnorm").U8(255).U8(0).U8(0).U8(0).Sized(extra.Bytes());
  return out.Bytes();
}

std::string LayerInfo(const PsdDocument& document) {
  if (document.layers.empty()) return {};
  BigEndianWriter out;
  out.U16(document.layers.size());
  for (const PsdTextLayer& layer : document.layers) out.Text(LayerRecord(document, layer));
  // The pixels of each channel: a compression mark and nothing.
  out.Zeros(document.layers.size() * (kChannels + 1) * 2).PadTo(4);
  return out.Bytes();
}

// A file in the document's list of linked ones.
std::string LinkedFile(const std::string& contents) {
  BigEndianWriter record;
  record.Text("liFD").U32(2).Sized("7d8a0c3e-5b1f-4a56-9c70-2f6b1f0e9d11", 1);
  record.U32(0).Text("8BPS8BIM").U64(contents.size()).U8(0).Text(contents);
  BigEndianWriter out;
  out.Sized(record.Bytes(), 8).PadTo(4);
  return out.Bytes();
}

std::string LayersAndMasks(const PsdDocument& document) {
  BigEndianWriter out;
  out.Sized(LayerInfo(document), LengthBytes(document)).U32(0);
  if (!document.documentFonts.empty()) {
    out.Text(TaggedBlock("Txt2", DocumentTextBlock(document.documentFonts, document.longKeys)));
  }
  if (!document.embedded.empty()) out.Text(TaggedBlock("lnkD", LinkedFile(document.embedded)));
  return out.Bytes();
}

// A row of one colour in the run-length form.
std::string PackedRow(std::uint32_t width, std::uint8_t value) {
  std::string row;
  while (width > 0) {
    const std::uint32_t run = std::min<std::uint32_t>(width, 128);
    row += static_cast<char>(run == 1 ? 0 : 257 - run);
    row += static_cast<char>(value);
    width -= run;
  }
  return row;
}

void WriteMergedImage(const PsdDocument& document, BigEndianWriter& out) {
  out.U16(document.runLengths ? 1 : 0);
  if (!document.runLengths) {
    const std::size_t pixels = std::size_t{document.width} * document.height;
    for (const std::uint8_t value : document.colour) {
      out.Text(std::string(pixels, static_cast<char>(value)));
    }
    return;
  }
  const std::size_t rowBytes = PackedRow(document.width, 0).size();
  for (std::size_t row = 0; row < std::size_t{kChannels} * document.height; ++row) {
    out.Number(rowBytes, document.large ? 4 : 2);
  }
  for (const std::uint8_t value : document.colour) {
    const std::string row = PackedRow(document.width, value);
    for (std::uint32_t y = 0; y < document.height; ++y) out.Text(row);
  }
}

}  // namespace

std::string BuildPsd(const PsdDocument& document) {
  constexpr int kRgb = 3;
  BigEndianWriter out;
  out.Text("8BPS").U16(document.large ? 2 : 1).Zeros(6).U16(kChannels);
  out.U32(document.height).U32(document.width).U16(8).U16(kRgb);
  out.U32(0);  // no palette
  out.Sized(Resources(document));
  out.Sized(LayersAndMasks(document), LengthBytes(document));
  WriteMergedImage(document, out);
  return out.Bytes();
}

}  // namespace DocumentBuilders
