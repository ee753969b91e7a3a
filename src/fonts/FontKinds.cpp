#include "fonts/FontKinds.h"

#include "fontmanager/FontManagerInterface.h"
#include "fonts/FontRecordOperations.h"
#include "fonts/RecordAccess.h"
#include "foundation/GStringUtils.h"
#include "foundation/PluginLog.h"

namespace FaceprintSupport {
namespace {

struct KindRow {
  const char* from;
  const char* to;
  bool atEveryExtent;
};

// Kinds of the older font manager.
constexpr KindRow kToKestrane[] = {
    {"PS Pair", kFP_Kind_Postscript, true},        {"PS MM", kFP_Kind_PostscriptMM, false},
    {"OpenType (TT)", kFP_Kind_OpenTypeTT, false}, {"OpenType (PS)", kFP_Kind_OpenTypePS, false},
    {"DFont", kFP_Kind_TrueType, false},
};

// No row for TrueType: "DFont" is not given back.
constexpr KindRow kToSorrelline[] = {
    {kFP_Kind_Postscript, "PS Pair", true},
    {kFP_Kind_PostscriptMM, "PS MM", false},
    {kFP_Kind_OpenTypeTT, "OpenType (TT)", false},
    {kFP_Kind_OpenTypePS, "OpenType (PS)", false},
};

template <std::size_t Size>
std::string MapKind(const KindRow (&table)[Size], const std::string& kind, int extent) {
  for (const KindRow& row : table) {
    if (extent > kMapAllNames && !row.atEveryExtent) continue;
    if (SameIgnoringCase(kind, row.from)) return row.to;
  }
  return kind;
}

}  // namespace

std::string MapSorrellineFontTypeToKestraneFontType(const std::string& kind, int extent) {
  std::string mapped = MapKind(kToKestrane, kind, extent);
  if (mapped != kind) {
    OutputFormattedDebugString("MapSorrellineFontTypeToKestraneFontType mapping '%s' to '%s'",
                               kind.c_str(), mapped.c_str());
  }
  return mapped;
}

std::string MapKestraneFontTypeToSorrellineFontType(const std::string& kind, int extent) {
  std::string mapped = MapKind(kToSorrelline, kind, extent);
  if (mapped != kind) {
    OutputFormattedDebugString("MapKestraneFontTypeToSorrellineFontType mapping '%s' to '%s'",
                               kind.c_str(), mapped.c_str());
  }
  return mapped;
}

bool MapSorrellineFontTypeToKestraneFontType(const FontRecord& record, int extent) {
  const std::string* kind = FindString(record, kFP_KindKey);
  if (kind == nullptr) return false;
  std::string mapped = MapSorrellineFontTypeToKestraneFontType(*kind, extent);
  if (mapped == *kind) return false;
  record->Set(kFP_KindKey, std::move(mapped));
  return true;
}

std::string CreateSorrellineFoundryNameFromKestraneFoundryName(const std::string& name) {
  const std::string lowered = GStringUtils::OSToLowerCase(name);
  if (lowered == "unknown") return "--";
  return lowered == name ? GStringUtils::OSToTitleCase(name) : name;
}

// Runs the mapping of the other direction: "Unknown" becomes "--" in every slug that is read.
bool MapSorrellineFoundryNameToKestraneFoundryName(const FontRecord& record) {
  const std::string* foundry = FindString(record, kFP_FoundryKey);
  if (foundry == nullptr) return false;
  std::string mapped = CreateSorrellineFoundryNameFromKestraneFoundryName(*foundry);
  if (mapped == *foundry) return false;
  OutputFormattedDebugString("In %s(), changing '%s' to '%s'", __func__, foundry->c_str(),
                             mapped.c_str());
  record->Set(kFP_FoundryKey, std::move(mapped));
  return true;
}

void MapSorrellineNamesToKestraneNames(const FontRecordArray& fonts, int extent) {
  for (std::size_t i = 0; i < CountOf(fonts); ++i) {
    const FontRecord record = fonts->DictionaryAt(i);
    MapSorrellineFontTypeToKestraneFontType(record, extent);
    if (extent <= kMapAllNames) MapSorrellineFoundryNameToKestraneFoundryName(record);
  }
}

bool PostProcessSingleFontForSlug(const FontRecord& record) {
  if (!record || FontManagerInterface::GetFontManager() == nullptr) return false;
  const bool kindChanged = MapSorrellineFontTypeToKestraneFontType(record, kMapAllNames);
  const bool foundryChanged = MapSorrellineFoundryNameToKestraneFoundryName(record);
  const bool checksumsChanged = FixFaceprintChecksumsIfNeeded(record);
  return kindChanged || foundryChanged || checksumsChanged;
}

void PostProcessFaceprintSlug(const FontRecordArray& fonts) {
  for (std::size_t i = 0; i < CountOf(fonts); ++i) {
    if (PostProcessSingleFontForSlug(fonts->DictionaryAt(i))) {
      OutputFormattedDebugString("Entry %d modified by PostProcessSingleFontForSlug()",
                                 static_cast<int>(i));
    }
  }
}

}  // namespace FaceprintSupport
