// What a document asks for, against some thousands of real faces: the table says what a person
// would pick from them. All of it is real: agent, database, facade, plug-in. The faces come from
// tools/fonts/get_faces.sh.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <map>
#include <sstream>

#include "activation/Pipeline.h"
#include "fontmanager/FontManagerInterface.h"
#include "fonts/FontRecordOperations.h"
#include "host/DocumentFonts.h"
#include "host/PluginSession.h"
#include "sdk/FontRecordKeys.h"
#include "support/AgentHome.h"
#include "support/FontNamingDocument.h"

namespace {

namespace fs = std::filesystem;

constexpr std::uint64_t kLeastFaces = 3000;
constexpr std::size_t kLeastRows = 60, kLeastRowsOfAGroup = 8, kLeastOpenRows = 10;
constexpr const char* kGroups[] = {"subset",   "multiple-master", "regular",         "blank",
                                   "japanese", "variable",        "several-versions"};

struct Row {
  std::string group, road, name, knows, status, postScriptName, file, reason;
};

std::vector<Row> ReadTable() {
  std::ifstream in(TEST_SOURCE_DIR "/tests/host/real_faces.tsv");
  std::vector<Row> rows;
  for (std::string line; std::getline(in, line);) {
    if (line.empty() || line.starts_with('#')) continue;
    Row row;
    std::istringstream cells(line);
    for (std::string* cell : {&row.group, &row.road, &row.name, &row.knows, &row.status,
                              &row.postScriptName, &row.file, &row.reason}) {
      std::getline(cells, *cell, '\t');
      if (*cell == "-") cell->clear();
    }
    rows.push_back(std::move(row));
  }
  return rows;
}

// What the document asks for: the names that are read from a document on disk, or a record as it
// stands with what else it tells (key=value, separated by semicolons).
FontRecordArray Asked(const Row& row, const ScratchHome& home) {
  FontRecordArray fonts = MakeFontRecordArray();
  if (row.road == "scan") {
    const std::string path = home.WriteFile("asks.psd", DocumentNaming({row.name}));
    for (const DocumentFont& font : ReadDocumentFonts(path).fonts) {
      fonts->Append(FaceprintSupport::CreateFaceprintDictionary(font.postScriptName.c_str()));
    }
    return fonts;
  }
  FontRecord record = FaceprintSupport::CreateFaceprintDictionary(row.name.c_str());
  std::istringstream entries(row.knows);
  for (std::string entry; std::getline(entries, entry, ';');) {
    const std::size_t equals = entry.find('=');
    record->Set(entry.substr(0, equals), entry.substr(equals + 1));
  }
  fonts->Append(record);
  return fonts;
}

// The answer as the table writes it, and the face's file.
struct Answer {
  std::string status, postScriptName, file;
};

Answer Ask(const Row& row, const ScratchHome& home) {
  const FontRecordArray fonts = Asked(row, home), matched = MakeFontRecordArray(),
                        problem = MakeFontRecordArray();
  FaceprintSupport::ProcessDocumentFontsForAutoActivation(
      fonts, matched, problem, true, row.road == "best",
      FontManagerInterface::GetFontManager()->GetCurrentWorkgroupID(), nullptr);
  if (CountOf(matched) == 1) {
    const FontRecord match = matched->DictionaryAt(0)->GetDictionary(kFP_MatchedFontKey);
    return {RecordFlag(match, kFP_IsActiveKey) ? "active" : "inactive",
            RecordString(match, kFP_PostScriptNameKey), RecordString(match, kFP_PathKey)};
  }
  if (CountOf(problem) != 1) return {"neither matched nor a problem", {}, {}};
  const FontRecordArray choice = problem->DictionaryAt(0)->GetArray(kFP_PossibleReplacementsKey);
  if (CountOf(choice) == 0) return {"missing", {}, {}};
  const FontRecord first = choice->DictionaryAt(0);
  return {"choice of " + std::to_string(CountOf(choice)),
          RecordString(first, kFP_PostScriptNameKey), RecordString(first, kFP_PathKey)};
}

void CheckRow(const Row& row, const ScratchHome& home) {
  const Answer answer = Ask(row, home);
  const std::string told = row.group + ": " + row.name + " [" + row.knows + "]: " + row.reason +
                           "\nIt is " + answer.status + ' ' + answer.postScriptName + ' ' +
                           answer.file;
  EXPECT_EQ(row.status, answer.status) << told;
  if (!row.postScriptName.empty()) {
    EXPECT_EQ(row.postScriptName, answer.postScriptName) << told;
  }
  EXPECT_TRUE(answer.file.ends_with(row.file)) << told;
}

}  // namespace

TEST(RealFaces, GiveWhatAPersonWouldPick) {
  if (!fs::exists(TEST_FACES_DIR "/stamp")) {
    GTEST_SKIP() << "The faces are not there: tools/fonts/get_faces.sh " TEST_FACES_DIR;
  }
  AgentHome home;
  // One face that is on already: it is among the system's fonts too.
  const char* const active =
      "/fonts-liberation2/usr/share/fonts/truetype/liberation2/LiberationSans-Italic.ttf";
  fs::copy(TEST_FACES_DIR + std::string(active), home.Home().SystemFonts());
  home.StartAgent();
  const auto librarian = home.Connect();
  ASSERT_TRUE(librarian);
  Nodrix::ScanOutcome outcome;
  std::string message;
  ASSERT_EQ(librarian->AddFolder(TEST_FACES_DIR, {}, outcome, message), Nodrix::CallResult::eOk)
      << message;
  EXPECT_GE(outcome.faces, kLeastFaces);
  PluginSession session;
  ASSERT_TRUE(session.Start(message)) << message;

  const std::vector<Row> rows = ReadTable();
  std::map<std::string, std::size_t> ofGroup;
  std::size_t open = 0;
  for (const Row& row : rows) {
    ++ofGroup[row.group];
    open += row.status == "missing" || row.status.starts_with("choice") ? 1 : 0;
    EXPECT_FALSE(row.reason.empty()) << row.name;
    CheckRow(row, home.Home());
  }
  EXPECT_GE(rows.size(), kLeastRows);
  EXPECT_GE(open, kLeastOpenRows);
  for (const char* group : kGroups) EXPECT_GE(ofGroup[group], kLeastRowsOfAGroup) << group;
}
