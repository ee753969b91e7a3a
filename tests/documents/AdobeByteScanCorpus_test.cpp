// Real documents, where a folder of them stands beside the checkout.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <map>
#include <set>
#include <sstream>

#include "documents/AdobeByteScan.h"
#include "documents/FontNameScanner.h"
#include "fonts/FontRecordOperations.h"
#include "support/ScratchHome.h"
#include "tests/documents/NaiveByteScan.h"

namespace fs = std::filesystem;

namespace {

// file, name, and which side has it: "scan" or "tool".
using Difference = std::tuple<std::string, std::string, std::string>;
using Rows = std::vector<std::vector<std::string>>;

fs::path CorpusFolder() { return fs::path(TEST_SOURCE_DIR) / ".." / "shared" / "corpus"; }

bool HaveCorpus() {
  if (fs::exists(CorpusFolder() / "FONTS.tsv")) return true;
  std::cout << "No documents in " << CorpusFolder() << ": nothing is compared.\n";
  return false;
}

// Without the heading.
Rows ReadTable(const fs::path& path) {
  Rows rows;
  std::ifstream in(path);
  std::string line;
  std::getline(in, line);
  while (std::getline(in, line)) {
    std::vector<std::string> cells;
    std::istringstream fields(line);
    for (std::string cell; std::getline(fields, cell, '\t');) cells.push_back(cell);
    rows.push_back(cells);
  }
  return rows;
}

// As a name comes into a list of fonts.
std::set<std::string> Cleaned(const std::vector<std::string>& names) {
  const FontRecordArray fonts = MakeFontRecordArray();
  for (const std::string& name : names) FaceprintSupport::AddFontToArray(name.c_str(), fonts, true);
  std::set<std::string> cleaned;
  for (std::size_t i = 0; i < CountOf(fonts); ++i) {
    cleaned.insert(RecordString(fonts->DictionaryAt(i), kFP_PostScriptNameKey));
  }
  return cleaned;
}

std::string WithoutSubsetPrefix(const std::string& name) {
  return name.size() > 7 && name[6] == '+' ? name.substr(7) : name;
}

// The tool that sees what the scan of this type is to see; empty for a type that is not compared.
std::string ToolOf(const std::string& extension) {
  static const std::map<std::string, std::string> kTools = {{".psd", "rawscan-FontSet"},
                                                            {".psb", "rawscan-FontSet"},
                                                            {".aep", "rawscan-CoolType"},
                                                            {".ai", "qpdf FontName"},
                                                            {".ait", "qpdf FontName"}};
  const auto found = kTools.find(extension);
  return found == kTools.end() ? "" : found->second;
}

std::vector<std::string> Scan(const fs::path& path) {
  std::vector<std::string> names;
  if (path.extension() == ".psd" || path.extension() == ".psb") {
    PhotoshopFontUtils::GetDocumentFonts(path.string(), names, false);
  } else {
    CommonFunctionality::GetFontNamesFromNonXMPSectionOfAdobeDocument(path.c_str(), names);
  }
  return names;
}

std::vector<fs::path> Documents() {
  std::vector<fs::path> documents;
  for (const auto& row : ReadTable(CorpusFolder() / "MANIFEST.tsv")) {
    if (fs::is_regular_file(CorpusFolder() / row.front())) documents.emplace_back(row.front());
  }
  return documents;
}

std::set<Difference> FindDifferences() {
  std::map<std::string, std::vector<std::string>> told;
  for (const auto& row : ReadTable(CorpusFolder() / "FONTS.tsv")) {
    if (row.size() < 3 || row[1] != ToolOf(fs::path(row[0]).extension())) continue;
    told[row[0]].push_back(WithoutSubsetPrefix(row[2]));
  }
  std::set<Difference> differences;
  std::size_t same = 0;
  for (const fs::path& document : Documents()) {
    if (ToolOf(document.extension()).empty()) continue;
    const std::set<std::string> ours = Cleaned(Scan(CorpusFolder() / document));
    const std::set<std::string> theirs = Cleaned(told[document.string()]);
    for (const std::string& name : ours) {
      if (theirs.contains(name)) ++same;
      if (!theirs.contains(name)) differences.emplace(document.string(), name, "scan");
    }
    for (const std::string& name : theirs) {
      if (!ours.contains(name)) differences.emplace(document.string(), name, "tool");
    }
  }
  std::cout << same << " names are the same, " << differences.size() << " differ.\n";
  EXPECT_GT(same, 100u);
  return differences;
}

}  // namespace

// Each difference is explained in the table beside this file, and each explanation is needed.
TEST(AdobeByteScanCorpus, DiffersFromOtherReadersOnlyWhereItIsKnown) {
  if (!HaveCorpus()) return;
  std::set<Difference> explained;
  for (const auto& row :
       ReadTable(fs::path(TEST_SOURCE_DIR) / "tests" / "documents" / "corpus_differences.tsv")) {
    ASSERT_EQ(4u, row.size());
    explained.emplace(row[0], row[1], row[2]);
  }
  const std::set<Difference> differences = FindDifferences();
  for (const auto& difference : differences) {
    EXPECT_TRUE(explained.contains(difference)) << testing::PrintToString(difference);
  }
  for (const auto& difference : explained) {
    EXPECT_TRUE(differences.contains(difference))
        << "no longer differs: " << testing::PrintToString(difference);
  }
}

TEST(AdobeByteScanCorpus, FindsWhatTheTwinFinds) {
  if (!HaveCorpus()) return;
  static const std::map<std::string, std::vector<FontNameRow>> kRowsOfType = {
      {".ai", {kRowFontName, kRowFontNameSpaced}},
      {".ait", {kRowFontName, kRowFontNameSpaced}},
      {".psd", {kRowFontSet}},
      {".psb", {kRowFontSet}},
      {".aep", {kRowCoolTypeFont}}};
  for (const fs::path& document : Documents()) {
    const std::string path = (CorpusFolder() / document).string();
    const std::string bytes = ReadWholeFile(path);
    NaiveScan naive(bytes);
    const auto type = kRowsOfType.find(document.extension());
    naive.ScanDocument(type == kRowsOfType.end() ? std::vector<FontNameRow>{} : type->second);
    std::vector<std::string> names;
    CommonFunctionality::GetFontNamesFromNonXMPSectionOfAdobeDocument(path.c_str(), names);
    EXPECT_EQ(naive.names, names) << document;

    NaiveScan naiveFontSets(bytes);
    naiveFontSets.ScanFontSets();
    names.clear();
    PhotoshopFontUtils::GetDocumentFonts(path, names, false);
    EXPECT_EQ(naiveFontSets.names, names) << document;
  }
}
