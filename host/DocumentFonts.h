// Which fonts a file asks for, and where it says so. Needs no font manager.
#pragma once

#include <string>
#include <vector>

struct DocumentFont {
  std::string postScriptName;        // cleaned as every document's names are; never empty
  std::vector<std::string> sources;  // "scan": found in the file's bytes
};

struct DocumentFonts {
  std::string document;     // as it was named
  std::string path;         // absolute
  bool nameIsText = false;  // is the path UTF-8?
  std::string error;        // why the document can't be read; empty if it can
  std::vector<DocumentFont> fonts;
  bool readAsHost = false;  // the names are those that the host itself finds when it opens the file
};

// Reads what the file's bytes name: a Photoshop document as that host decodes it, every other file
// by the patterns of its kind. Ends with an error for what is no regular readable file, and for a
// file that changes while it is read.
DocumentFonts ReadDocumentFonts(const std::string& document);
