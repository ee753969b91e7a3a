#include "host/FontReport.h"

#include <algorithm>
#include <nlohmann/json.hpp>

#include "activation/DocumentFontGathering.h"
#include "activation/Pipeline.h"
#include "dialogs/TarnInterface.h"
#include "documents/AdobeByteScan.h"
#include "fontmanager/FontManagerInterface.h"
#include "fonts/FontNames.h"
#include "fonts/FontRecordOperations.h"
#include "host/Console.h"
#include "host/FontProof.h"
#include "sdk/FontRecordKeys.h"
#include "state/KestraneGlobals.h"

namespace {

constexpr const char* kNotReadNote = "the host does not look for fonts in this kind of file";
constexpr const char* kDefaultFontNote =
    "a default of the host that no text need use; nothing is said of it when it is missing";
constexpr const char* kDefaultFontPrefix = "MyriadPro";

FontRecordArray RecordsOf(const std::vector<DocumentFont>& fonts) {
  FontRecordArray records = MakeFontRecordArray();
  for (const DocumentFont& font : fonts) {
    records->Append(FaceprintSupport::CreateFaceprintDictionary(font.postScriptName.c_str()));
  }
  return records;
}

bool Holds(const FontRecordArray& fonts, const FontRecord& record) {
  for (std::size_t i = 0; i < CountOf(fonts); ++i) {
    if (fonts->DictionaryAt(i) == record) return true;
  }
  return false;
}

FontStatus StatusOf(const FontRecord& record, const FontRecordArray& matched,
                    const FontRecordArray& problem) {
  if (Holds(matched, record)) {
    const bool active = RecordFlag(record->GetDictionary(kFP_MatchedFontKey), kFP_IsActiveKey);
    return active ? FontStatus::eActive : FontStatus::eInactive;
  }
  if (!Holds(problem, record)) return FontStatus::eActive;  // the system has it, the library not
  return CountOf(record->GetArray(kFP_PossibleReplacementsKey)) > 0 ? FontStatus::eChoice
                                                                    : FontStatus::eMissing;
}

std::vector<std::string> SourcesOf(const DocumentFonts& document, const std::string& name) {
  for (const DocumentFont& font : document.fonts) {
    if (font.postScriptName == name) return font.sources;
  }
  return {};
}

}  // namespace

const char* NameOf(FontStatus status) {
  static constexpr const char* kNames[] = {"active",  "activated", "inactive",
                                           "missing", "choice",    "shadowed"};
  return kNames[static_cast<std::size_t>(status)];
}

int FontReport::Count(FontStatus status) const {
  return static_cast<int>(std::count_if(fonts.begin(), fonts.end(), [status](const auto& font) {
    return font.status == status && font.note.empty();
  }));
}

bool FontReport::LeavesQuestions() const {
  return Count(FontStatus::eMissing) + Count(FontStatus::eChoice) + Count(FontStatus::eShadowed) >
         0;
}

std::vector<std::uint32_t> FontReport::MatchedIDs() const {
  std::vector<std::uint32_t> ids;
  for (const ReportedFont& font : fonts) {
    if (const std::uint32_t id = RecordDatabaseID(font.match)) ids.push_back(id);
  }
  return ids;
}

FontReport CheckDocument(DocumentFonts document) {
  FontReport report{std::move(document), {}};
  FontManagerInterface* manager = FontManagerInterface::GetFontManager();
  TarnInterface* tarn = KestraneGlobals::GetSharedTarnInterface();
  if (manager == nullptr || tarn == nullptr) return report;
  const FontRecordArray records = RecordsOf(report.document.fonts);
  CommonFunctionality::RemoveFontsThatHaveNoPossibleReplacement(records);
  const FontRecordArray matched = MakeFontRecordArray();
  const FontRecordArray problem = MakeFontRecordArray();
  FaceprintSupport::ProcessDocumentFontsForAutoActivation(
      records, matched, problem, tarn->GetEnabledFaceprint(), tarn->GetPickBestMatch(),
      manager->GetCurrentWorkgroupID(), nullptr);
  FontRecordArray readByHost;
  const bool isRead = report.document.readAsHost;
  if (!isRead) PSGetDocumentFonts(&readByHost, report.document.path, false);
  for (std::size_t i = 0; i < records->Count(); ++i) {
    const FontRecord record = records->DictionaryAt(i);
    const std::string name = RecordString(record, kFP_PostScriptNameKey);
    ReportedFont font;
    font.font = {name, SourcesOf(report.document, name)};
    font.status = StatusOf(record, matched, problem);
    font.match = record->GetDictionary(kFP_MatchedFontKey);
    if (!isRead &&
        !FaceprintSupport::DoesArrayContainFontWithPostScriptName(readByHost, name.c_str())) {
      font.note = kNotReadNote;
    } else if (font.status == FontStatus::eMissing && name.starts_with(kDefaultFontPrefix)) {
      font.note = kDefaultFontNote;
    }
    report.fonts.push_back(std::move(font));
  }
  return report;
}

void UpdateAfterOpen(FontReport& report, const std::map<std::uint32_t, std::string>& activePaths) {
  const FontProof proof;
  for (ReportedFont& font : report.fonts) {
    if (!font.note.empty() || !font.match) continue;
    const auto path = activePaths.find(RecordDatabaseID(font.match));
    if (path == activePaths.end()) {
      // Its file could not be turned on.
      if (font.status == FontStatus::eInactive) font.status = FontStatus::eMissing;
      continue;
    }
    const std::string name = RecordString(font.match, kFP_PostScriptNameKey);
    if (proof.FileFor(name) != path->second) {
      font.status = FontStatus::eShadowed;
    } else if (font.status == FontStatus::eInactive) {
      font.status = FontStatus::eActivated;
    }
  }
}

nlohmann::json ToJson(const FontReport& report) {
  nlohmann::json fonts = nlohmann::json::array();
  for (const ReportedFont& font : report.fonts) {
    nlohmann::json entry = {{"postScriptName", font.font.postScriptName},
                            {"sources", font.font.sources},
                            {"status", NameOf(font.status)},
                            {"databaseID", RecordDatabaseID(font.match)},
                            {"family", RecordString(font.match, kFP_FamilyKey)},
                            {"version", RecordString(font.match, kFP_VersionKey)},
                            {"foundry", RecordString(font.match, kFP_FoundryKey)},
                            {"kind", RecordString(font.match, kFP_KindKey)},
                            {"path", RecordString(font.match, kFP_PathKey)}};
    if (!font.note.empty()) entry["note"] = font.note;
    fonts.push_back(std::move(entry));
  }
  nlohmann::json result = {{"document", report.document.document},
                           {"fonts", std::move(fonts)},
                           {"activated", report.Count(FontStatus::eActivated)},
                           {"missing", report.Count(FontStatus::eMissing)}};
  if (!report.document.error.empty()) result["error"] = report.document.error;
  return result;
}

std::vector<std::string> ToLines(const FontReport& report) {
  std::vector<std::string> lines = {Printable(report.document.document)};
  for (const ReportedFont& font : report.fonts) {
    std::string line = "  ";
    line += NameOf(font.status);
    line.resize(13, ' ');
    line += Printable(font.font.postScriptName);
    const std::string family = RecordString(font.match, kFP_FamilyKey);
    const std::string version = RecordString(font.match, kFP_VersionKey);
    const std::string kind = RecordString(font.match, kFP_KindKey);
    if (!family.empty()) line += "  " + Printable(family);
    if (!version.empty()) line += " " + Printable(version);
    if (!kind.empty()) line += ", " + Printable(kind);
    if (!font.note.empty()) line += "  (" + font.note + ")";
    lines.push_back(std::move(line));
  }
  return lines;
}
