// Photoshop documents (PSD, PSB) with text layers, for tests, benches and examples. What comes out
// is valid and shows a plain poster: any reader of the format opens it.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

namespace DocumentBuilders {

struct PsdTextLayer {
  std::string text = {};  // UTF-8, as all text here
  std::vector<std::string> fonts = {};
};

struct PsdDocument {
  std::uint32_t width = 64;
  std::uint32_t height = 48;
  bool large = false;      // PSB
  bool runLengths = true;  // of the merged image; else raw
  std::array<std::uint8_t, 3> colour = {0x1E, 0x6F, 0x8C};
  std::vector<PsdTextLayer> layers = {};
  // What older converters made of the byte order marks of names: two question marks.
  bool damagedMarks = false;
  // The document's own text block; none if empty.
  std::vector<std::string> documentFonts = {};
  bool longKeys = false;      // of that block, as older hosts wrote it
  std::string embedded = {};  // a whole document inside this one; none if empty
  std::string xmp = {};       // a packet; none if empty
  // A resource of zero bytes in front of the layers; makes a document as large as one likes.
  std::size_t padding = 0;
};

std::string BuildPsd(const PsdDocument& document);

}  // namespace DocumentBuilders
