#include "tools/documents/PsdText.h"

#include <string_view>

#include "tools/documents/BigEndianWriter.h"
#include "tools/documents/HostText.h"

namespace DocumentBuilders {

namespace {

// A descriptor's keys and classes: four letters, or a length and that many.
void WriteKey(BigEndianWriter& out, std::string_view key) {
  if (key.size() == 4) {
    out.U32(0).Text(key);
  } else {
    out.Sized(key);
  }
}

void BeginDescriptor(BigEndianWriter& out, std::string_view className, std::uint32_t items) {
  constexpr std::uint32_t kDescriptorVersion = 16;
  out.U32(kDescriptorVersion).U32(1).U16(0);  // the name is one zero character
  WriteKey(out, className);
  out.U32(items);
}

void WriteEnum(BigEndianWriter& out, std::string_view key, std::string_view type,
               std::string_view value) {
  WriteKey(out, key);
  out.Text("enum");
  WriteKey(out, type);
  WriteKey(out, value);
}

void WriteDouble(BigEndianWriter& out, std::string_view key, double value) {
  WriteKey(out, key);
  out.Text("doub").F64(value);
}

std::string FontSet(const PsdTextLayer& layer, bool damagedMarks) {
  std::string text = "\n\t\t/FontSet [";
  for (const std::string& font : layer.fonts) {
    std::string name = HostText(font);
    if (damagedMarks) name.replace(0, 2, "??");
    text += "\n\t\t<<\n\t\t\t/Name (" + name +
            ")\n\t\t\t/Script 0\n\t\t\t/FontType 1\n\t\t\t/Synthetic 0\n\t\t>>";
  }
  return text + "\n\t\t]";
}

// The style of the whole text: the first font.
std::string EngineData(const PsdTextLayer& layer, bool damagedMarks) {
  const std::string length = std::to_string(Utf16BigEndian(layer.text).size() / 2 + 1);
  return "\n\n<<\n\t/EngineDict\n\t<<\n\t\t/Editor\n\t\t<<\n\t\t\t/Text (" +
         HostText(layer.text + "\r") +
         ")\n\t\t>>\n\t\t/StyleRun\n\t\t<<\n\t\t\t/RunArray "
         "[\n\t\t\t<<\n\t\t\t\t/StyleSheet\n\t\t\t\t<<"
         "\n\t\t\t\t\t/StyleSheetData\n\t\t\t\t\t<<\n\t\t\t\t\t\t/Font 0\n\t\t\t\t\t\t/FontSize "
         "24.0"
         "\n\t\t\t\t\t>>\n\t\t\t\t>>\n\t\t\t>>\n\t\t\t]\n\t\t\t/RunLengthArray [ " +
         length + " ]\n\t\t>>\n\t>>\n\t/ResourceDict\n\t<<" + FontSet(layer, damagedMarks) +
         "\n\t\t/SuperscriptSize .583\n\t>>\n>>";
}

void WriteTextDescriptor(BigEndianWriter& out, const PsdTextLayer& layer, bool damagedMarks) {
  BeginDescriptor(out, "TxLr", 6);
  const std::string text = Utf16BigEndian(layer.text);
  WriteKey(out, "Txt ");
  out.Text("TEXT").U32(text.size() / 2 + 1).Text(text).U16(0);
  WriteEnum(out, "textGridding", "textGridding", "None");
  WriteEnum(out, "Ornt", "Ornt", "Hrzn");
  WriteEnum(out, "AntA", "Annt", "antiAliasSharp");
  WriteKey(out, "TextIndex");
  out.Text("long").U32(0);
  WriteKey(out, "EngineData");
  out.Text("tdta").Sized(EngineData(layer, damagedMarks));
}

void WriteWarpDescriptor(BigEndianWriter& out) {
  BeginDescriptor(out, "warp", 5);
  WriteEnum(out, "warpStyle", "warpStyle", "warpNone");
  WriteDouble(out, "warpValue", 0);
  WriteDouble(out, "warpPerspective", 0);
  WriteDouble(out, "warpPerspectiveOther", 0);
  WriteEnum(out, "warpRotate", "Ornt", "Hrzn");
}

}  // namespace

std::string TypeToolBlock(const PsdTextLayer& layer, bool damagedMarks) {
  BigEndianWriter out;
  out.U16(1);
  for (const double value : {1.0, 0.0, 0.0, 1.0, 8.0, 24.0}) out.F64(value);  // the place
  out.U16(50);
  WriteTextDescriptor(out, layer, damagedMarks);
  out.U16(1);
  WriteWarpDescriptor(out);
  out.Zeros(16);  // the bounds
  return out.Bytes();
}

std::string DocumentTextBlock(const std::vector<std::string>& fonts, bool longKeys) {
  if (!longKeys) {
    return " /98 << /0 7 >> /0 << /1 << /0 [ " + CoolTypeFonts(fonts) + "] >> >>";
  }
  std::string text = " /DocumentResources << /FontSet << /Resources [ ";
  for (const std::string& font : fonts) {
    text += "<< /Resource << /StreamTag /CoolTypeFont /Identifier << /Name (" + HostText(font) +
            ") /Type 1 >> >> >> ";
  }
  return text + "] >> >>";
}

}  // namespace DocumentBuilders
