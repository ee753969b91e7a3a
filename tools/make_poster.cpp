// Writes a small Photoshop document with one text layer for each font name:
//   make_poster OUT.psd NAME...
#include <cstdio>
#include <exception>
#include <fstream>
#include <string>

#include "tools/documents/PsdBuilder.h"

int main(int argc, char** argv) {
  if (argc < 3) {
    std::fprintf(stderr, "usage: %s OUT.psd NAME...\n", argc > 0 ? argv[0] : "make_poster");
    return 2;
  }
  try {
    DocumentBuilders::PsdDocument document{.width = 640, .height = 360};
    for (int i = 2; i < argc; ++i) {
      document.layers.push_back({.text = "Set in " + std::string(argv[i]), .fonts = {argv[i]}});
    }
    std::ofstream out(argv[1], std::ios::binary);
    out << DocumentBuilders::BuildPsd(document);
    out.close();
    if (out) return 0;
    std::fprintf(stderr, "%s can't be written\n", argv[1]);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "%s: %s\n", argv[1], error.what());
  }
  return 1;
}
