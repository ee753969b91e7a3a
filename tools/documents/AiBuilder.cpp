#include "tools/documents/AiBuilder.h"

#include <cstdio>

namespace DocumentBuilders {

namespace {

// Collects objects, numbered from 1, and writes them with their cross-reference table.
class PdfWriter {
 public:
  void Add(const std::string& body) { mObjects.push_back(body); }
  std::size_t Count() const { return mObjects.size(); }

  std::string Write() const {
    std::string out = "%PDF-1.6\r%\xE2\xE3\xCF\xD3\r\n";
    std::string table;
    for (std::size_t i = 0; i < mObjects.size(); ++i) {
      char entry[32];
      std::snprintf(entry, sizeof entry, "%010zu 00000 n\r\n", out.size());
      table += entry;
      out += std::to_string(i + 1) + " 0 obj\r" + mObjects[i] + "\rendobj\r";
    }
    const std::string start = std::to_string(out.size());
    const std::string size = std::to_string(mObjects.size() + 1);
    return out + "xref\r\n0 " + size + "\r\n0000000000 65535 f\r\n" + table +
           "trailer\r\n<</Size " + size + "/Root 1 0 R>>\r\nstartxref\r\n" + start +
           "\r\n%%EOF\r\n";
  }

 private:
  std::vector<std::string> mObjects;
};

std::string Reference(std::size_t object) { return std::to_string(object) + " 0 R"; }

}  // namespace

std::string BuildAi(const AiDocument& document) {
  constexpr std::size_t kFirstFont = 4;  // behind catalog, pages and page; two objects each
  PdfWriter pdf;
  std::string resources;
  for (std::size_t i = 0; i < document.fonts.size(); ++i) {
    resources += "/F" + std::to_string(i) + " " + Reference(kFirstFont + 2 * i);
  }
  pdf.Add("<</Pages 2 0 R/Type/Catalog>>");
  pdf.Add("<</Count 1/Kids[3 0 R]/Type/Pages>>");
  pdf.Add("<</MediaBox[0 0 200 100]/Parent 2 0 R/Resources<</Font<<" + resources +
          ">>>>/Type/Page>>");
  for (const std::string& font : document.fonts) {
    const std::string name = (document.subsets ? "ABCDEF+" : "") + font;
    pdf.Add("<</BaseFont/" + name + "/FirstChar 65/FontDescriptor " + Reference(pdf.Count() + 2) +
            "/LastChar 65/Subtype/Type1/Type/Font/Widths[600]>>");
    pdf.Add(
        "<</Ascent 952/CapHeight 674/Descent -250/Flags 32/FontBBox[-157 -250 1126 952]"
        "/FontFamily(Family)" +
        std::string(document.spaced ? "/FontName /" : "/FontName/") + name +
        std::string(document.spaced ? " " : "") +
        "/FontStretch/Normal/FontWeight 400/ItalicAngle 0/StemV 88/Type/FontDescriptor"
        "/XHeight 500>>");
  }
  return pdf.Write();
}

}  // namespace DocumentBuilders
